// SPDX-License-Identifier: MIT
// Start-up: its order of steps, the exit codes, and that a device runs one program at a time.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <QLockFile>
#include <QProcess>

#include "app/start_up.h"
#include "platform/qt/window/device_screen.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "terminal/actions.h"
#include "terminal/screen_buffer.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/services_test_hooks.h"

namespace {

std::vector<HWND> g_import_owners;

}  // namespace

void RealImport(HWND owner) asm("__real__Z16ImportConfigFileP11SliceWindow");
void SeenImport(HWND owner) asm("__wrap__Z16ImportConfigFileP11SliceWindow");
void SeenImport(HWND owner) {
    g_import_owners.push_back(owner);
    RealImport(owner);
}

namespace {

const char kImportNotice[] = "Quill Telnet: Installing configuration from file \\mconfig.cfg ";

void RegisterTaken(LPCWSTR name) {
    WNDCLASSW taken = {};
    taken.lpfnWndProc = DefWindowProcW;
    taken.lpszClassName = name;
    ASSERT_NE(RegisterClassW(&taken), 0);
}

TEST(StartUp, FirstStartShowsAnOfflineWindow) {
    EXPECT_EQ(
        RunProgram({},
                   [] {
                       ASSERT_TRUE(Eventually([] { return IsWindowVisible(session.main_window); }));
                       OnWindowThread([] {
                           EXPECT_EQ(Title(), "Quill Telnet  []");
                           EXPECT_EQ(StatusText(), "   offline    row: 1  column: 1     ");
                           EXPECT_NE(session.accelerators, nullptr);
                       });
                   }),
        0);
}

TEST(StartUp, FirstScreenIsBlankInEveryCell) {
    RunProgram({}, [] {
        OnWindowThread([] {
            for (int row = 1; row <= kRingLines; row++) {
                EXPECT_EQ(RowWords(row)[0], 0u) << row;
                for (int col = 1; col <= kScreenColumns; col++)
                    ASSERT_EQ(GetCell(row, col), kBlank) << row << "," << col;
            }
            EXPECT_EQ(session.screen.ring_origin, 0);
        });
    });
}

TEST(StartUp, ClassTakenEndsWithCode1) {
    EXPECT_EQ(RunProgram({.before = [] { RegisterTaken(u"TELNET"); }}, [] {}), 1);
}

TEST(StartUp, ClientClassTakenEndsWithCode2) {
    EXPECT_EQ(RunProgram({.before = [] { RegisterTaken(u"ClientWnd"); }}, [] {}), 2);
}

TEST(StartUp, NoMainWindowEndsWithCode16) {
    EXPECT_EQ(RunProgram({.before = [] { RefuseWindows(u"TELNET"); }}, [] {}), 16);
}

TEST(StartUp, NoClientWindowDestroysTheMainWindowAndEndsWithCode16) {
    EXPECT_EQ(RunProgram({.before = [] { RefuseWindows(u"ClientWnd"); }}, [] {}), 16);
}

TEST(StartUp, WithoutSocketLibraryTheErrorIsShownAndTheProgramEnds) {
    Stage stage{.config = "autoconnect = 1\nhost = \"127.0.0.1\"\n",
                .before = [] { services_test_hooks.fail_startup = true; }};
    EXPECT_EQ(RunProgram(stage,
                         [] {
                             DismissBox(kImportNotice);
                             DismissBox("Error: cannot find WinSock DLL. Maybe TCP/IP is missing");
                             for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
                             EXPECT_FALSE(ProgramRuns());
                         }),
              0);
    services_test_hooks = {};
}

TEST(StartUp, WithoutSocketLibraryTheSettingsAreStillSaved) {
    const std::string root = FreshRoot();
    RunProgram({.root = root, .before = [] { services_test_hooks.fail_startup = true; }},
               [] { PressOk(); });
    services_test_hooks = {};
    RunProgram({.root = root, .before = [] { EXPECT_EQ(ReadNumber(u"fsize", 99), 8u); }}, [] {});
}

TEST(StartUp, AutoconnectWithEmptyHostReportsItAtOnce) {
    RunProgram({.config = "autoconnect = 1\n"}, [] {
        DismissBox(kImportNotice);
        DismissBox("Error: Cannot connect to the UNIX Host");
    });
}

TEST(StartUp, ConfigurationFileTakesEffectInTheSameRun) {
    FakeHost host;
    const std::string root = FreshRoot();
    RunProgram({.root = root, .config = host.Config()}, [&] {
        DismissBox(kImportNotice);
        EXPECT_TRUE(host.Accept());
        EXPECT_FALSE(std::filesystem::exists(root + "/mconfig.cfg"));
    });
    RunProgram({.root = root}, [&] {
        EXPECT_TRUE(host.Accept()) << "the settings were kept";
        EXPECT_EQ(AwaitBox(300), "") << "the notice is shown once only";
    });
}

TEST(StartUp, ClientWindowOwnsTheImportAndItsBox) {
    for (const char* config : {"fsize = 9\n", ""}) {
        g_import_owners.clear();
        RunProgram({.config = config}, [&] {
            if (*config) DismissBox(kImportNotice);
            OnWindowThread([] {
                EXPECT_NE(session.client_window, nullptr);
                EXPECT_EQ(g_import_owners, std::vector<HWND>{session.client_window});
            });
        });
    }
}

TEST(StartUp, SettingsAreSavedAtExit) {
    const std::string root = FreshRoot();
    RunProgram({.root = root}, [] { OnWindowThread([] { session.settings.fsize = 11; }); });
    RunProgram({.root = root},
               [] { OnWindowThread([] { EXPECT_EQ(session.settings.fsize, 11u); }); });
}

TEST(StartUp, CloseButtonEndsTheProgramWithCode0) {
    EXPECT_EQ(RunProgram({},
                         [] {
                             PostToMain(WM_CLOSE);
                             for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
                             EXPECT_FALSE(ProgramRuns());
                         }),
              0);
}

// Starts the program again; returns its exit code. `said` gets its output.
int StartSecond(const std::string& root, QByteArray* said = nullptr) {
    QProcess second;
    second.setProcessChannelMode(QProcess::MergedChannels);
    // An option would make it say that the window keeps its own scale.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_SCALE_FACTOR", "1");
    second.setProcessEnvironment(environment);
    second.start(QUILL_PROGRAM, {"-platform", "offscreen", "--root", QString::fromStdString(root)});
    EXPECT_TRUE(second.waitForFinished(20000));
    for (QByteArray line = second.readLine(); said && !line.isEmpty(); line = second.readLine())
        if (line.startsWith("quill")) *said += line;  // the toolkit may print lines too
    return second.exitStatus() == QProcess::NormalExit ? second.exitCode() : -1;
}

// Other programs can empty the registry's log only if no program still reads from an old one.
bool LogOfRegistryEmpties(const std::string& root) {
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open((root + "/registry.db").c_str(), &database);
    EXPECT_EQ(SQLITE_OK,
              sqlite3_exec(database, "UPDATE registry SET data = x'01' WHERE name = 'BELL'",
                           nullptr, nullptr, nullptr));
    sqlite3_prepare_v2(database, "PRAGMA wal_checkpoint(TRUNCATE)", -1, &statement, nullptr);
    const bool emptied =
        sqlite3_step(statement) == SQLITE_ROW && sqlite3_column_int(statement, 0) == 0;
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return emptied;
}

// The program as a process of its own that has connected at its start and taken messages since.
void WithProcess(const std::function<void(const std::string& root, qint64 process)>& look) {
    const std::string root = FreshRoot();
    FakeHost host;
    RunProgram({.root = root, .config = host.Config()}, [&] {
        DismissBox(kImportNotice);
        EXPECT_TRUE(host.Accept());
    });
    QProcess program;
    program.start(QUILL_PROGRAM, {"-platform", "offscreen", "--scale", "1", "--root",
                                  QString::fromStdString(root)});
    ASSERT_TRUE(host.Accept());
    host.Send("\x1b[6n");
    EXPECT_EQ(host.Read(6), "\x1b[1;1R");
    look(root, program.processId());
    program.terminate();
    EXPECT_TRUE(program.waitForFinished(20000));
    EXPECT_EQ(program.exitCode(), 0);
}

TEST(StartUp, RegistryIsNotHeldOnceMessagesAreTaken) {
    WithProcess([](const std::string& root, qint64) { EXPECT_TRUE(LogOfRegistryEmpties(root)); });
}

TEST(StartUp, LoadsNoPluginForPictures) {
    WithProcess([](const std::string&, qint64 process) {
        std::ifstream file("/proc/" + std::to_string(process) + "/maps");
        const std::string maps((std::istreambuf_iterator<char>(file)), {});
        EXPECT_NE(maps.find("/platforms/"), std::string::npos) << "plugins are seen here";
        EXPECT_EQ(maps.find("/imageformats/"), std::string::npos);
    });
}

TEST(StartUp, SecondStartShowsTheFirstAndEndsWithCode0) {
    const std::string root = FreshRoot();
    RunProgram({.root = root}, [&] {
        OnWindowThread([] { DeviceScreen()->hide(); });
        EXPECT_EQ(StartSecond(root), 0);
        EXPECT_TRUE(Eventually([] { return DeviceScreen()->isVisible(); }));
    });
}

// Another window covers the notice; the second start raises the notice.
TEST(StartUp, SecondStartDuringTheImportNoticeShowsTheNotice) {
    const std::string root = FreshRoot();
    RunProgram({.root = root, .config = "bell = 0\n"}, [&] {
        ASSERT_EQ(AwaitBox(), kImportNotice);
        std::unique_ptr<QWidget> other;
        OnWindowThread([&] {
            other = std::make_unique<QWidget>();
            other->show();
            other->activateWindow();
        });
        ASSERT_TRUE(Eventually([&] { return QApplication::activeWindow() == other.get(); }));
        QByteArray said;
        EXPECT_EQ(StartSecond(root, &said), 0);
        EXPECT_EQ(said.toStdString(), "");
        EXPECT_TRUE(Eventually([] { return QApplication::activeWindow() == ShownMessageBox(); }));
        OnWindowThread([&] {
            EXPECT_FALSE(DeviceScreen()->isVisible()) << "there is no window to be shown yet";
            other.reset();
        });
        DismissBox(kImportNotice);
        EXPECT_TRUE(Eventually([] { return DeviceScreen()->isVisible(); }));
        EXPECT_EQ(session.settings.bell, 0u);
    });
}

TEST(StartUp, SecondStartDuringAQuestionBringsTheQuestionUp) {
    FakeHost host;
    const std::string root = FreshRoot();
    RunProgram({.root = root, .config = host.Config("confirm_exit = 1\n")}, [&] {
        DismissBox(kImportNotice);
        ASSERT_TRUE(host.Accept());
        host.Send("up");
        ASSERT_TRUE(TerminalShows("up"));
        PostToMain(WM_CLOSE);
        ASSERT_EQ(AwaitBox(), "Warning: Do you really want to close this program");
        EXPECT_EQ(StartSecond(root), 0);
        EXPECT_TRUE(Eventually([] { return QApplication::activeWindow() == ShownMessageBox(); }));
        PressCancel();
    });
}

// Another process holds the lock but does not listen.
TEST(StartUp, SecondStartThatGetsNoAnswerSaysSo) {
    const std::string root = FreshRoot();
    QLockFile lock(QString::fromStdString(root) + "/instance.lock");
    ASSERT_TRUE(lock.tryLock(0));
    QByteArray said;
    EXPECT_EQ(StartSecond(root, &said), 0);
    EXPECT_EQ(said.toStdString(), "quill: the program that runs on " + root + " does not answer\n");
}

TEST(StartUp, SecondStartLeavesTheFirstSessionAlone) {
    FakeHost host;
    const std::string root = FreshRoot();
    RunProgram({.root = root, .config = host.Config()}, [&] {
        DismissBox(kImportNotice);
        ASSERT_TRUE(host.Accept());
        host.Send("still here");
        ASSERT_TRUE(TerminalShows("still here"));
        EXPECT_EQ(StartSecond(root), 0);
        host.Send(", and after");
        EXPECT_TRUE(TerminalShows("still here, and after"));
    });
}

TEST(StartUp, ResetDeletesEveryValueAndEndsTheProgram) {
    const std::string root = FreshRoot();
    RunProgram({.root = root}, [] { OnWindowThread([] { SaveSettings(); }); });
    RunProgram({.root = root}, [] {
        PostToMain(WM_COMMAND, 40111);
        DismissBox("Warning: Do you really want to reset the configuration");
        DismissBox("Warning: Are you sure!");
        DismissBox("Information: Program will exit to complete the reset");
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
    });
    RunProgram({.root = root,
                .before =
                    [] {
                        EXPECT_EQ(ReadNumber(u"fsize", 77), 77u);
                        EXPECT_EQ(ReadNumber(u"tbar0", 77), 77u);
                        EXPECT_EQ(std::u16string(ReadString(u"key65", u"none")), u"none");
                    }},
               [] {});
}

void ExpectBox(const std::string& text, QMessageBox::Icon icon,
               QMessageBox::StandardButtons buttons) {
    ASSERT_EQ(AwaitBox(), text);
    OnWindowThread([&] {
        EXPECT_EQ(ShownMessageBox()->icon(), icon) << text;
        EXPECT_EQ(ShownMessageBox()->standardButtons(), buttons) << text;
    });
}

// While the last box is open, the values are deleted and saving is still enabled.
TEST(StartUp, ResetAsksTwiceDeletesThenReportsIt) {
    const auto both = QMessageBox::Ok | QMessageBox::Cancel;
    const auto stored = [](DWORD expected) {
        OnWindowThread([=] {
            EXPECT_EQ(ReadNumber(u"fsize", 77), expected);
            EXPECT_EQ(session.save_settings, 1u);
        });
    };
    const std::string root = FreshRoot();
    RunProgram({.root = root}, [&] {
        OnWindowThread([] { SaveSettings(); });
        PostToMain(WM_COMMAND, 40111);
        ExpectBox("Warning: Do you really want to reset the configuration", QMessageBox::Warning,
                  both);
        PressOk();
        ExpectBox("Warning: Are you sure!", QMessageBox::Warning, both);
        stored(8);
        PressOk();
        ExpectBox("Information: Program will exit to complete the reset", QMessageBox::Information,
                  QMessageBox::Ok);
        stored(77);
        EXPECT_TRUE(ProgramRuns());
        PressOk();
    });
}

TEST(StartUp, EitherCancelStopsTheReset) {
    RunProgram({}, [] {
        PostToMain(WM_COMMAND, 40111);
        EXPECT_NE(AwaitBox(), "");
        PressCancel();
        EXPECT_TRUE(Eventually([] { return ShownMessageBox() == nullptr; }));
        PostToMain(WM_COMMAND, 40111);
        DismissBox("Warning: Do you really want to reset the configuration");
        EXPECT_TRUE(Eventually([] { return ShownMessageBox() != nullptr; }));
        PressCancel();
        EXPECT_EQ(AwaitBox(200), "");
        OnWindowThread([] { EXPECT_EQ(session.save_settings, 1u); });
        EXPECT_TRUE(ProgramRuns());
    });
}

TEST(StartUp, ExitCodeIsThatOfTheQuitMessage) {
    EXPECT_EQ(RunProgram({}, [] { OnWindowThread([] { PostQuitMessage(7); }); }), 7);
}

TEST(StartUp, AutoconnectConnectsOnlyWhenItIs1) {
    for (const char* value : {"0", "2"}) {
        FakeHost host;
        const std::string config = "host = \"127.0.0.1\"\nport = " + std::to_string(host.port);
        RunProgram({.config = config + "\nautoconnect = " + value + "\n"}, [&] {
            DismissBox(kImportNotice);
            EXPECT_FALSE(host.Accept(200)) << value;
            OnWindowThread([] { EXPECT_EQ(session.connect_pending, 0u); });
        });
    }
}

// Checks the window at its creation: a screen that is shown or resized later adjusts it again.
TEST(StartUp, MainWindowTakesTheVisibleDesktopLessTheMenuBarUnlessThePanelIsUp) {
    for (const bool up : {false, true}) {
        RunProgram({.width = 500, .height = 400}, [&] {
            OnWindowThread([&] {
                SIPINFO panel = {};
                panel.cbSize = sizeof(panel);
                panel.fdwFlags = up ? SIPF_ON : 0;
                SHSipInfo(SPI_SETSIPINFO, 0, &panel, 0);
                SHSipInfo(SPI_GETSIPINFO, 0, &panel, 0);
                EXPECT_EQ(panel.rcVisibleDesktop.bottom < 400, up);
                const HWND window = InitInstance(session.instance, SW_HIDE);
                RECT place = {};
                ASSERT_TRUE(GetWindowRect(window, &place));
                EXPECT_EQ(place.right - place.left, 500);
                EXPECT_EQ(place.bottom - place.top, panel.rcVisibleDesktop.bottom - (up ? 0 : 26));
                DestroyWindow(window);
            });
        });
    }
}

TEST(StartUp, SettingsAreSavedAtExitOnlyWhenThatIsWanted) {
    for (const DWORD wanted : {0u, 2u}) {
        const std::string root = FreshRoot();
        RunProgram({.root = root}, [&] {
            OnWindowThread([&] { session.settings.fsize = 11, session.save_settings = wanted; });
        });
        RunProgram({.root = root},
                   [] { OnWindowThread([] { EXPECT_EQ(session.settings.fsize, 8u); }); });
    }
}

}  // namespace

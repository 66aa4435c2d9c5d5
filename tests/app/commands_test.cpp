// SPDX-License-Identifier: MIT
// The commands and messages of the main window, tested by what a person sees.
#include <gtest/gtest.h>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QPixmapCache>
#include <QUrl>

#include "connection/connection.h"
#include "platform/qt/services/services.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/main_window.h"

namespace {

const char kMayClose[] = "Warning: Do you really want to close this session";
const char kMayExit[] = "Warning: Do you really want to close this program";
const char kMayMinimise[] = "Warning: Do you really want to close Quill Telnet";
const char kMayCancel[] =
    "Warning: I am busy making a connection. Do you want to cancel the request";

bool Ended() {
    for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
    return !ProgramRuns();
}

void ConfirmExit(bool confirm) {
    OnWindowThread([=] { session.settings.confirm_exit = confirm; });
}

void ExpectWarningWithBothButtons() {
    OnWindowThread([] {
        ASSERT_NE(ShownMessageBox(), nullptr);
        EXPECT_EQ(ShownMessageBox()->icon(), QMessageBox::Warning);
        EXPECT_EQ(ShownMessageBox()->standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
    });
}

TEST(Commands, DisconnectActsAtOnceWithoutConfirmExit) {
    FakeHost host;
    WithSession(host, [&] {
        ConfirmExit(false);
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(Offline());
        EXPECT_TRUE(host.Closed());
        OnWindowThread([] { EXPECT_EQ(ShownMessageBox(), nullptr); });
    });
}

// The toolkit keeps the name of each icon that it has drawn, so boxes share theirs. It has
// forgotten the icon itself after some time.
TEST(Commands, EachWarningHasTheSameIconUntilTheDesktopChangesItsColours) {
    FakeHost host;
    WithSession(host, [&] {
        ConfirmExit(true);
        const auto icon_of_a_box = [] {
            qint64 icon = 0;
            OnWindowThread(QPixmapCache::clear);
            PostToMain(WM_COMMAND, 40011);
            EXPECT_EQ(AwaitBox(), kMayClose);
            OnWindowThread([&] { icon = ShownMessageBox()->iconPixmap().cacheKey(); });
            PressCancel();
            return icon;
        };
        const qint64 first = icon_of_a_box();
        EXPECT_EQ(first, icon_of_a_box());
        OnWindowThread([] { QApplication::setPalette(QPalette(Qt::darkGray)); });
        EXPECT_NE(first, icon_of_a_box());
        OnWindowThread([] { QApplication::setPalette(QPalette()); });
    });
}

TEST(Commands, DisconnectAsksWithConfirmExit) {
    FakeHost host;
    WithSession(host, [&] {
        ConfirmExit(true);
        PostToMain(WM_COMMAND, 40011);
        ASSERT_EQ(AwaitBox(), kMayClose);
        ExpectWarningWithBothButtons();
        PressCancel();
        host.Send("\r\nstill here");
        EXPECT_TRUE(TerminalShows("still here"));
        PostToMain(WM_COMMAND, 40011);
        DismissBox(kMayClose);
        EXPECT_TRUE(Offline());
    });
}

TEST(Commands, PendingRequestIsCancelledAfterAQuestion) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        PostToMain(WM_COMMAND, 40011);
        ASSERT_EQ(AwaitBox(), kMayCancel);
        ExpectWarningWithBothButtons();
        PressCancel();
        OnWindowThread([] { EXPECT_EQ(session.connect_pending, 1u); });
        PostToMain(WM_COMMAND, 40011);
        DismissBox(kMayCancel);
        EXPECT_TRUE(host.Closed());
    });
}

TEST(Commands, ExitActsAtOnceOffline) {
    EXPECT_EQ(RunProgram({},
                         [] {
                             OnWindowThread([] { session.settings.confirm_exit = 1; });
                             PostToMain(WM_COMMAND, 40002);
                             EXPECT_TRUE(Ended());
                         }),
              0);
}

TEST(Commands, ExitActsAtOnceWithoutConfirmExit) {
    FakeHost host;
    WithSession(host, [&] {
        ConfirmExit(false);
        PostToMain(WM_COMMAND, 40002);
        EXPECT_TRUE(Ended());
        EXPECT_TRUE(host.Closed());
    });
}

TEST(Commands, ExitAsksWithConfirmExitInASession) {
    FakeHost host;
    WithSession(host, [&] {
        ConfirmExit(true);
        for (const UINT message : {WM_COMMAND, WM_CLOSE}) {
            PostToMain(message, 40002);
            ASSERT_EQ(AwaitBox(), kMayExit);
            ExpectWarningWithBothButtons();
            PressCancel();
            ASSERT_TRUE(Eventually([] { return ShownMessageBox() == nullptr; }));
        }
        PostToMain(WM_COMMAND, 40002);
        DismissBox(kMayExit);
        EXPECT_TRUE(Ended());
    });
}

TEST(Commands, MinimisingEndsTheProgramOnlyWithXbox) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.xbox = 0, session.settings.confirm_exit = 0; });
        PostToMain(WM_SIZE, SIZE_MINIMIZED);
        host.Send("\r\nbehind the other windows");
        EXPECT_TRUE(TerminalShows("behind the other windows"));
        OnWindowThread([] { session.settings.xbox = 1; });
        PostToMain(WM_SIZE, SIZE_MINIMIZED);
        EXPECT_TRUE(Ended());
    });
}

TEST(Commands, MinimisingAsksWithConfirmExitInASession) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.xbox = 1, session.settings.confirm_exit = 1; });
        PostToMain(WM_SIZE, SIZE_MINIMIZED);
        ASSERT_EQ(AwaitBox(), kMayMinimise);
        ExpectWarningWithBothButtons();
        PressCancel();
        EXPECT_TRUE(Eventually([] { return ShownMessageBox() == nullptr; }));
        OnWindowThread([] { EXPECT_EQ(session.connected, 1u); });
        PostToMain(WM_SIZE, SIZE_MINIMIZED);
        DismissBox(kMayMinimise);
        EXPECT_TRUE(Ended());
    });
}

TEST(Commands, MinimisingOfflineAsksNothing) {
    EXPECT_EQ(RunProgram({},
                         [] {
                             OnWindowThread([] {
                                 session.settings.xbox = 1, session.settings.confirm_exit = 1;
                             });
                             PostToMain(WM_SIZE, SIZE_MINIMIZED);
                             EXPECT_TRUE(Ended());
                         }),
              0);
}

TEST(Commands, SessionKeepsTheDeviceAwakeWhileAliveIsSet) {
    FakeHost host;
    RunProgram({}, [&] {
        OnWindowThread([] { session.settings.alive = 1; });
        PostToMain(WM_TIMER, 1);
        OnWindowThread([] {});
        OnWindowThread([] { EXPECT_EQ(SilentKeyCount(), 0) << "offline the timer sends nothing"; });
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("x");
        ASSERT_TRUE(Online());
        PostToMain(WM_TIMER, 1);
        EXPECT_TRUE(Eventually([] { return SilentKeyCount() > 0; }));
        int before = 0;
        OnWindowThread([&] { session.settings.alive = 0, before = SilentKeyCount(); });
        PostToMain(WM_TIMER, 1);
        OnWindowThread([] {});
        OnWindowThread([&] { EXPECT_EQ(SilentKeyCount(), before); });
        EXPECT_EQ(host.ReadSome(50), "") << "the host hears none of it";
    });
}

TEST(Commands, TimerTogglesTheBlinkPhase) {
    RunProgram({}, [] {
        DWORD phase = 0;
        OnWindowThread([&] { phase = session.view.blink_phase; });
        PostToMain(WM_TIMER, 1);
        EXPECT_TRUE(Eventually([&] { return session.view.blink_phase != phase; }));
    });
}

TEST(Commands, SmallerFontStopsAtTheSecondSize) {
    RunProgram({}, [] {
        OnWindowThread([] { session.settings.fsize = 2; });
        PostToMain(WM_COMMAND, 40010);
        EXPECT_TRUE(Eventually([] { return session.settings.fsize == 1; }));
        PostToMain(WM_COMMAND, 40010);
        OnWindowThread([] {});
        OnWindowThread([] { EXPECT_EQ(session.settings.fsize, 1u); });
    });
}

// Replaces the desktop's viewer and records the address that it gets.
QUrl g_opened;

class Viewer : public QObject {
    Q_OBJECT
  public Q_SLOTS:
    void Open(const QUrl& url) { g_opened = url; }
};

TEST(Commands, HelpOpensThePageInTheDesktopsViewer) {
    RunProgram({}, [] {
        auto viewer = std::make_unique<Viewer>();
        OnWindowThread([&] { QDesktopServices::setUrlHandler("file", viewer.get(), "Open"); });
        for (const auto& [message, id] : {std::pair(WM_COMMAND, 40113), std::pair(WM_HELP, 0)}) {
            g_opened.clear();
            PostToMain(message, static_cast<WPARAM>(id));
            ASSERT_TRUE(Eventually([] { return !g_opened.isEmpty(); }));
            QFile page(g_opened.toLocalFile());
            ASSERT_TRUE(page.open(QIODevice::ReadOnly));
            EXPECT_TRUE(page.fileName().endsWith("/telnet.htm"));
            EXPECT_TRUE(page.readAll().contains("<title>Quill Telnet - Help</title>"));
        }
        g_opened.clear();
        PressKey(Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_TRUE(Eventually([] { return !g_opened.isEmpty(); })) << "by its accelerator";
        OnWindowThread([] { QDesktopServices::unsetUrlHandler("file"); });
    });
}

// A folder has the name of the page, because no user, not even root, can write a file over it.
TEST(Commands, HelpOpensATemporaryPageWhenTheDeviceFolderCannotBeWritten) {
    RunProgram({}, [] {
        auto viewer = std::make_unique<Viewer>();
        OnWindowThread([&] { QDesktopServices::setUrlHandler("file", viewer.get(), "Open"); });
        const QString blocked = QString::fromStdString(DevicePath(u"\\telnet.htm"));
        ASSERT_TRUE(QDir().mkpath(blocked));
        g_opened.clear();
        PostToMain(WM_COMMAND, 40113);
        ASSERT_TRUE(Eventually([] { return !g_opened.isEmpty(); }));
        QFile page(g_opened.toLocalFile());
        EXPECT_NE(page.fileName(), blocked);
        ASSERT_TRUE(page.open(QIODevice::ReadOnly));
        EXPECT_TRUE(page.readAll().contains("<title>Quill Telnet - Help</title>"));
        EXPECT_FALSE(page.permissions() & (QFile::WriteGroup | QFile::WriteOther));
        EXPECT_TRUE(page.remove());
        OnWindowThread([] { QDesktopServices::unsetUrlHandler("file"); });
    });
}

TEST(Commands, HelpPageListsEachStateMessageAndKey) {
    const char* const texts[] = {"offline",
                                 "OFF",
                                 "request",
                                 "REQ",
                                 "online",
                                 "ON",
                                 "secure",
                                 "SSH1, SSH2",
                                 "Cannot connect to the UNIX Host",
                                 "Not possible to create a session to the UNIX Host",
                                 "Connection to the UNIX Host has failed",
                                 "Connection to the UNIX Host has been closed...",
                                 "Already a session to the UNIX Host",
                                 "No active network. Should I dial a network using modem",
                                 "<kbd>N</kbd>",
                                 "<kbd>Q</kbd>",
                                 "<kbd>C</kbd>",
                                 "<kbd>V</kbd>",
                                 "<kbd>H</kbd>",
                                 "<kbd>+</kbd>",
                                 "<kbd>-</kbd>",
                                 "<kbd>Backspace</kbd>",
                                 "Enter, Esc, the arrows, Page Up and Page Down"};
    RunProgram({}, [&] {
        auto viewer = std::make_unique<Viewer>();
        OnWindowThread([&] { QDesktopServices::setUrlHandler("file", viewer.get(), "Open"); });
        g_opened.clear();
        PostToMain(WM_HELP);
        ASSERT_TRUE(Eventually([] { return !g_opened.isEmpty(); }));
        QFile page(g_opened.toLocalFile());
        ASSERT_TRUE(page.open(QIODevice::ReadOnly));
        const QString words = QString::fromUtf8(page.readAll()).simplified();
        for (const char* text : texts) EXPECT_TRUE(words.contains(text)) << text;
        OnWindowThread([] { QDesktopServices::unsetUrlHandler("file"); });
    });
}

TEST(Commands, EveryOtherNumberDoesNothing) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            for (int id = 0; id <= 0xFFFF; id++)
                if (id < 100 || (id > 200 && id < 40000) || id > 40170)
                    SendMessageW(session.main_window, WM_COMMAND, static_cast<WPARAM>(id), 0);
        });
        EXPECT_EQ(host.ReadSome(50), "");
        OnWindowThread([] { EXPECT_EQ(session.connected, 1u); });
    });
}

TEST(Commands, CommandsStillWorkBehindAnOpenQuestion) {
    FakeHost host;
    WithSession(host, [&] {
        ConfirmExit(true);
        PostToMain(WM_COMMAND, 40011);
        ASSERT_EQ(AwaitBox(), kMayClose);
        PostToMain(WM_COMMAND, 40118);
        EXPECT_EQ(host.Read(5), "\033[15~");
        PressCancel();
        ASSERT_TRUE(Eventually([] { return ShownMessageBox() == nullptr; }));
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

struct ExitCase {
    const char* name;
    void (*prepare)(FakeHost&);
    const char* question;
};

void Nothing(FakeHost&) {}
void Pending(FakeHost& host) {
    SetHost(u"127.0.0.1", host.port);
    Connect();
    ASSERT_TRUE(host.Accept());
}
void InSession(FakeHost& host) {
    Pending(host);
    host.Send("x");
    ASSERT_TRUE(Online());
}
void Flooded(FakeHost& host) {
    InSession(host);
    for (int i = 0; i < 50; i++) host.TrySend(std::string(4000, 'x'));
}
void Dropped(FakeHost& host) {
    InSession(host);
    host.Drop();
    DismissBox("Error: Connection to the UNIX Host has been closed...");
}
void PanelUp(FakeHost& host) {
    InSession(host);
    OnWindowThread([] {
        SIPINFO panel = {};
        panel.cbSize = sizeof(panel);
        panel.fdwFlags = SIPF_ON;
        SHSipInfo(SPI_SETSIPINFO, 0, &panel, 0);
    });
}

const ExitCase kExits[] = {
    {"Offline", Nothing, nullptr},      {"Pending", Pending, nullptr},
    {"InSession", InSession, kMayExit}, {"Flooded", Flooded, kMayExit},
    {"Dropped", Dropped, nullptr},      {"PanelUp", PanelUp, kMayExit},
};

class ExitInEveryState : public testing::TestWithParam<ExitCase> {};

TEST_P(ExitInEveryState, EndsTheProgramWithCode0) {
    FakeHost host;
    const int code = RunProgram({}, [&] {
        ConfirmExit(true);
        GetParam().prepare(host);
        PostToMain(WM_CLOSE);
        if (GetParam().question) {
            DismissBox(GetParam().question);
        }
        EXPECT_TRUE(Ended());
    });
    EXPECT_EQ(code, 0);
}

INSTANTIATE_TEST_SUITE_P(Commands, ExitInEveryState, testing::ValuesIn(kExits),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace

#include "commands_test.moc"

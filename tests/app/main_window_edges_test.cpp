// SPDX-License-Identifier: MIT
// The main window when messages, boxes, menus, keys and the input panel interrupt each other.
#include <gtest/gtest.h>
#include <QInputMethodEvent>
#include <QMenu>
#include <QtTest/QTest>

#include "connection/connection.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "platform/qt/window/window_widget.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/view/view.h"

namespace {

const char kClosed[] = "Error: Connection to the UNIX Host has been closed...";
const char kMayClose[] = "Warning: Do you really want to close this session";

bool Ended() {
    for (int i = 0; i < 2000 && ProgramRuns(); i++) Sleep(5);
    return !ProgramRuns();
}

bool NoBox() {
    return Eventually([] { return ShownMessageBox() == nullptr; });
}

void OnDevice(int width, int height, const std::function<void()>& person) {
    Stage stage;
    stage.width = width, stage.height = height;
    RunProgram(stage, [&] {
        ASSERT_TRUE(Eventually([] { return session.view.visible_rows > 0; }));
        person();
    });
}

void SetPanel(bool up) {
    SIPINFO panel = {};
    panel.cbSize = sizeof(panel);
    panel.fdwFlags = up ? SIPF_ON : 0;
    SHSipInfo(SPI_SETSIPINFO, 0, &panel, 0);
}

void ShowPanel(bool up) {
    OnWindowThread([=] { SetPanel(up); });
    ASSERT_TRUE(Eventually([=] { return session.input_panel_up == (up ? 1u : 0u); }));
}

// True if the lower edge of the cursor's row is above the panel's upper edge on the screen.
bool CursorAboveThePanel() {
    UpdateWindow(session.client_window);
    RECT client;
    GetWindowRect(session.client_window, &client);
    const int row = session.screen.cursor_row - session.view.view_top;
    return client.top + row * session.view.cell_height <= ShellInputPanel()->geometry().top();
}

bool FootStaysInSight(FakeHost& host) {
    host.Send("\033[H\033[24;1Hfoot");
    return TerminalShows("foot") && Eventually(CursorAboveThePanel);
}

// ---------------------------------------------------------------- focus

TEST(MainWindowEdges, KeysGoToTheHostAfterATapOnTheTerminal) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            QTest::mouseClick(FindWindowRecord(session.client_window)->widget, Qt::LeftButton, {},
                              QPoint(20, 20));
            QTest::mouseClick(FindWindowRecord(session.status_window)->widget, Qt::LeftButton, {},
                              QPoint(20, 4));
        });
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

TEST(MainWindowEdges, KeysGoToTheHostWhereTheDesktopFocusesTheWholeDevice) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            DeviceScreen()->setFocus();
            EXPECT_EQ(QApplication::focusWidget(), FindWindowRecord(session.main_window)->widget);
        });
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

TEST(MainWindowEdges, CommandBarIsAlwaysAsWideAsTheWindow) {
    RunProgram({}, [] {
        for (const int width : {800, 300, 640}) {
            ResizeDevice(width, 480);
            EXPECT_TRUE(Eventually([=] {
                return FindWindowRecord(session.command_bar)->widget->width() == width;
            })) << width;
        }
    });
}

TEST(MainWindowEdges, KeysGoToTheHostAfterAScrollBarWasUsed) {
    FakeHost host;
    OnDevice(240, 200, [&] {
        BeginSession(host);
        OnWindowThread([] {
            for (const auto* bar : {FindWindowRecord(session.client_window)->vertical.bar,
                                    FindWindowRecord(session.client_window)->horizontal.bar}) {
                auto* widget = reinterpret_cast<QWidget*>(const_cast<QScrollBar*>(bar));
                ASSERT_TRUE(widget->isVisible());
                QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
            }
        });
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

// ---------------------------------------------------------------- the input panel's rows

TEST(MainWindowEdges, PanelThatWasUpBeforeTheSessionKeepsTheCursorVisible) {
    FakeHost host;
    OnDevice(240, 320, [&] {
        ShowPanel(true);
        BeginSession(host);
        EXPECT_TRUE(FootStaysInSight(host));
    });
}

TEST(MainWindowEdges, SmallerFontUnderThePanelKeepsTheCursorVisible) {
    FakeHost host;
    OnDevice(240, 320, [&] {
        OnWindowThread([] { session.settings.fsize = 20; });
        PostToMain(WM_COMMAND, 40009);
        BeginSession(host);
        ShowPanel(true);
        for (int i = 0; i < 12; i++) PostToMain(WM_COMMAND, 40010);
        ASSERT_TRUE(Eventually([] { return session.settings.fsize < 12; }));
        EXPECT_TRUE(FootStaysInSight(host));
    });
}

TEST(MainWindowEdges, WiderDeviceUnderThePanelKeepsTheCursorVisible) {
    FakeHost host;
    OnDevice(240, 320, [&] {
        BeginSession(host);
        ShowPanel(true);
        for (const QSize& size : {QSize(640, 320), QSize(240, 320), QSize(700, 260)}) {
            ResizeDevice(size.width(), size.height());
            EXPECT_TRUE(FootStaysInSight(host)) << size.width();
        }
    });
}

TEST(MainWindowEdges, StatusBarHiddenUnderThePanelKeepsTheCursorVisible) {
    FakeHost host;
    OnDevice(240, 320, [&] {
        BeginSession(host);
        ShowPanel(true);
        OnWindowThread([] {
            session.settings.hidestatus = 1;
            RebuildStatusBar();
            LayoutTerminal();
        });
        EXPECT_TRUE(FootStaysInSight(host));
    });
}

TEST(MainWindowEdges, ManySettingChangesEndInTheShellsLastState) {
    FakeHost host;
    OnDevice(240, 320, [&] {
        BeginSession(host);
        for (int round = 0; round < 20; round++) {
            host.TrySend("flooding with text\r\n");
            OnWindowThread([=] {
                for (int i = 0; i < 50; i++) {
                    if (i % 7 == 0) SetPanel((i + round) % 2 == 0);
                    PostMessageW(session.main_window, WM_SETTINGCHANGE, i % 3 ? 224 : 47, 0);
                    if (i % 11 == 0) PostMessageW(session.main_window, WM_SIZE, SIZE_MINIMIZED, 0);
                }
            });
            ResizeDevice(100 + round * 30, 80 + round * 20);
        }
        ResizeDevice(240, 320);
        ShowPanel(true);
        EXPECT_TRUE(FootStaysInSight(host));
        ShowPanel(false);
        OnWindowThread([] { EXPECT_EQ(session.view.covered_rows, 0); });
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

// ---------------------------------------------------------------- boxes

TEST(MainWindowEdges, MinimisingUnderAQuestionAsksNoSecondOne) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.xbox = session.settings.confirm_exit = 1; });
        PostToMain(WM_COMMAND, 40011);
        ASSERT_EQ(AwaitBox(), kMayClose);
        OnWindowThread([] {
            DeviceScreen()->showMinimized();
            DeviceScreen()->showNormal();
        });
        OnWindowThread([] {});
        ASSERT_EQ(AwaitBox(), kMayClose);
        PressCancel();
        EXPECT_TRUE(NoBox());
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

TEST(MainWindowEdges, MinimisingTheDesktopWindowIsTheCloseButton) {
    RunProgram({}, [] {
        OnWindowThread([] {
            session.settings.xbox = 1;
            DeviceScreen()->showMinimized();
        });
        EXPECT_TRUE(Ended());
    });
}

TEST(MainWindowEdges, KeysAndInputMethodUnderABoxDoNotReachTheHost) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.confirm_exit = 1; });
        PostToMain(WM_COMMAND, 40011);
        ASSERT_EQ(AwaitBox(), kMayClose);
        ASSERT_TRUE(Eventually([] { return QApplication::focusWidget() != nullptr; }));
        OnWindowThread([] {
            QInputMethodEvent text;
            text.setCommitString("abc");
            QApplication::sendEvent(QApplication::focusWidget(), &text);
        });
        TypeText("abc");
        PressKey(Qt::Key_F5);
        EXPECT_EQ(host.ReadSome(100), "");
        PressCancel();
        EXPECT_TRUE(NoBox());
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

TEST(MainWindowEdges, QuestionAnsweredAfterTheSessionEndedClosesNothing) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.confirm_exit = 1; });
        PostToMain(WM_COMMAND, 40011);
        ASSERT_EQ(AwaitBox(), kMayClose);
        host.Drop();
        ASSERT_TRUE(Eventually([] {
            return ShownMessageBox() && ShownMessageBox()->text().contains("has been closed");
        }));
        DismissBox(kClosed);
        ASSERT_TRUE(Eventually([] {
            return ShownMessageBox() && ShownMessageBox()->text().contains("this session");
        }));
        PressOk();
        EXPECT_TRUE(NoBox());
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("again");
        EXPECT_TRUE(TerminalShows("again"));
        host.Drop();
        DismissBox(kClosed);
    });
}

// ---------------------------------------------------------------- menus

QMenu* OpenMenu(int index) {
    QMenuBar* bar = ShellMenuStrip()->bar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(bar->actions()[index]).center());
    return bar->actions()[index]->menu();
}

TEST(MainWindowEdges, ProgramEndsWithAMenuOpen) {
    FakeHost host;
    WithSession(host, [&] {
        for (int i = 0; i < 4; i++) OnWindowThread([=] { OpenMenu(i); });
        OnWindowThread([] { EXPECT_NE(QApplication::activePopupWidget(), nullptr); });
        PostToMain(WM_CLOSE);
        EXPECT_TRUE(Ended());
    });
}

TEST(MainWindowEdges, BoxThatComesOverAnOpenMenuClosesIt) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            session.settings.confirm_exit = 1;
            OpenMenu(1);
        });
        PostToMain(WM_COMMAND, 40011);
        ASSERT_EQ(AwaitBox(), kMayClose);
        EXPECT_TRUE(Eventually([] { return QApplication::activePopupWidget() == nullptr; }));
        PressCancel();
        EXPECT_TRUE(NoBox());
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

TEST(MainWindowEdges, AltAloneActivatesTheMenus) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            QTest::keyPress(QApplication::focusWidget(), Qt::Key_Alt, Qt::AltModifier);
            QTest::keyRelease(QApplication::focusWidget(), Qt::Key_Alt);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
        });
        EXPECT_TRUE(
            Eventually([] { return ShellMenuStrip()->bar()->actions()[1]->menu()->isVisible(); }));
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

// ---------------------------------------------------------------- status line

TEST(MainWindowEdges, UnconnectedTitleWithAnEmptyHostEndsInBrackets) {
    RunProgram({}, [] { OnWindowThread([] { EXPECT_EQ(Title(), "Quill Telnet  []"); }); });
}

TEST(MainWindowEdges, ScreenOf350PixelsTakesTheLongFormat) {
    for (const auto& [width, text] :
         {std::pair(349, "OFF  1,1    "), std::pair(350, "   offline    row: 1  column: 1     ")})
        OnDevice(width, 320, [&, text = text] {
            OnWindowThread([&] { EXPECT_EQ(StatusText(), text) << width; });
        });
}

// ---------------------------------------------------------------- messages and commands

TEST(MainWindowEdges, ChildWindowsHaveTheirNumbers) {
    RunProgram({}, [] {
        OnWindowThread([] {
            ASSERT_NE(session.client_window, nullptr);
            EXPECT_EQ(GetDlgItem(session.main_window, 1), session.command_bar);
            EXPECT_EQ(GetDlgItem(session.main_window, 2), session.client_window);
            EXPECT_EQ(GetDlgItem(session.client_window, 106), session.status_window);
        });
    });
}

TEST(MainWindowEdges, WidthsAreThoseAtTheCreationOfTheWindows) {
    OnDevice(300, 320, [] {
        int client = 0;
        OnWindowThread([&] {
            client = session.client_width;
            EXPECT_EQ(session.main_width, 300);
            EXPECT_GT(client, 250) << "all but a scroll bar";
            EXPECT_LE(client, 300);
        });
        ResizeDevice(640, 320);
        OnWindowThread([&] {
            EXPECT_EQ(session.main_width, 300);
            EXPECT_EQ(session.client_width, client);
        });
    });
}

TEST(MainWindowEdges, EverySizeMessageLaysOut) {
    RunProgram({}, [] {
        for (const WPARAM how : {SIZE_RESTORED, SIZE_MINIMIZED}) {
            RECT room = {}, client = {};
            OnWindowThread([=] {
                MoveWindow(session.client_window, 3, 60, 70, 80, FALSE);
                PostMessageW(session.main_window, WM_SIZE, how, 0);
            });
            EXPECT_TRUE(Eventually([&] {
                GetWindowRect(session.main_window, &room);
                GetWindowRect(session.client_window, &client);
                return client.left == 0 && client.right == room.right &&
                       client.top == session.command_bar_height && client.bottom == room.bottom;
            })) << how;
        }
    });
}

TEST(MainWindowEdges, MinimisedWindowComesToTheFrontForItsQuestion) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            session.settings.xbox = session.settings.confirm_exit = 1;
            DeviceScreen()->showMinimized();
        });
        ASSERT_EQ(AwaitBox(), "Warning: Do you really want to close Quill Telnet");
        OnWindowThread([] { EXPECT_FALSE(DeviceScreen()->isMinimized()); });
        PressCancel();
        EXPECT_TRUE(NoBox());
    });
}

TEST(MainWindowEdges, ExitAndMinimisingForgetTheDialUpConnection) {
    for (const auto& [message, wparam] :
         {std::pair(WM_COMMAND, WPARAM{40002}), std::pair(WM_SIZE, WPARAM{SIZE_MINIMIZED})}) {
        RunProgram({}, [&, message = message, wparam = wparam] {
            OnWindowThread([] {
                session.settings.xbox = 1;
                session.ras_connection = reinterpret_cast<HRASCONN>(INT_PTR{0x7777});
            });
            PostToMain(message, wparam);
            EXPECT_TRUE(Ended());
        });
        EXPECT_EQ(session.ras_connection, nullptr) << message;
    }
}

TEST(MainWindowEdges, InactiveWindowIgnoresThePanelsChange) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.confirm_exit = 1; });
        PostToMain(WM_COMMAND, 40011);
        ASSERT_EQ(AwaitBox(), kMayClose);
        ASSERT_TRUE(Eventually([] { return GetActiveWindow() == nullptr; }));
        OnWindowThread([] {
            SetPanel(true);
            SendMessageW(session.main_window, WM_SETTINGCHANGE, 224, 0);
            EXPECT_EQ(session.input_panel_up, 0u);
        });
        PressCancel();
        EXPECT_TRUE(NoBox());
    });
}

TEST(MainWindowEdges, EveryKeyRewritesStatusAndTitle) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { lstrcpyW(session.settings.host, u"one"); });
        PostToMain(WM_COMMAND, 40118);
        EXPECT_TRUE(Eventually([] { return Title() == "Quill Telnet  [one]"; }));
        OnWindowThread([] { lstrcpyW(session.settings.host, u"two"); });
        PostToMain(WM_KEYDOWN, VK_F1 + 4);
        EXPECT_TRUE(Eventually([] { return Title() == "Quill Telnet  [two]"; }));
        Close();
        ASSERT_TRUE(Offline());
        OnWindowThread([] { lstrcpyW(session.settings.host, u"three"); });
        PostToMain(WM_KEYDOWN, VK_F1 + 4);
        EXPECT_TRUE(Eventually([] { return Title() == "Quill Telnet  [three]"; }));
    });
}

TEST(MainWindowEdges, SilentKeyIsTheReleaseOfF24) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.alive = 1; });
        PostToMain(WM_TIMER, 1);
        ASSERT_TRUE(Eventually([] { return SilentKeyCount() > 0; }));
        OnWindowThread([] {
            EXPECT_EQ(LastSilentKey().virtual_key, 135);
            EXPECT_EQ(LastSilentKey().flags, DWORD{KEYEVENTF_KEYUP | KEYEVENTF_SILENT});
        });
    });
}

TEST(MainWindowEdges, TimerOneTicksEverySecond) {
    RunProgram({}, [] {
        OnWindowThread([] { EXPECT_EQ(TimerMilliseconds(session.main_window, 1), 1000); });
    });
}

TEST(MainWindowEdges, OtherValuesThan1DoNotSetASwitch) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            session.settings.xbox = session.settings.alive = session.settings.confirm_exit = 2;
        });
        PostToMain(WM_SIZE, SIZE_MINIMIZED);
        PostToMain(WM_TIMER, 1);
        OnWindowThread([] {});
        OnWindowThread([] { EXPECT_EQ(SilentKeyCount(), 0); });
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(Offline());
        OnWindowThread([] { EXPECT_EQ(ShownMessageBox(), nullptr); });
    });
}

TEST(MainWindowEdges, TimerTicksByItself) {
    RunProgram({}, [] {
        DWORD phase = 0;
        OnWindowThread([&] { phase = session.view.blink_phase; });
        EXPECT_TRUE(Eventually([&] { return session.view.blink_phase != phase; }));
        EXPECT_TRUE(Eventually([&] { return session.view.blink_phase == phase; }));
    });
}

// ---------------------------------------------------------------- what ends the program

struct EndCase {
    const char* name;
    void (*prepare)();
};

void NothingMore() {}
void WithQuestion() {
    PostToMain(WM_COMMAND, 40011);
    ASSERT_EQ(AwaitBox(), kMayClose);
}
void WithMenu() {
    OnWindowThread([] { OpenMenu(3); });
}
void WithPanelAndMenu() {
    ShowPanel(true);
    WithMenu();
}
void Minimised() {
    OnWindowThread([] { DeviceScreen()->showMinimized(); });
}

const EndCase kEnds[] = {{"Plain", NothingMore},
                         {"Question", WithQuestion},
                         {"Menu", WithMenu},
                         {"PanelAndMenu", WithPanelAndMenu},
                         {"Minimised", Minimised}};

class EndInASession : public testing::TestWithParam<EndCase> {};

TEST_P(EndInASession, ExitOnDisconnectEndsTheProgram) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.confirm_exit = session.settings.exit_dis = 1; });
        GetParam().prepare();
        host.Drop();
        EXPECT_TRUE(Ended());
    });
}

TEST_P(EndInASession, ExitDestroysTheWindowOnce) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.confirm_exit = 1; });
        GetParam().prepare();
        OnWindowThread([] {
            session.settings.confirm_exit = 0;
            PostMessageW(session.main_window, WM_COMMAND, 40002, 0);
            PostMessageW(session.main_window, WM_COMMAND, 40002, 0);
            PostMessageW(session.main_window, WM_CLOSE, 0, 0);
        });
        EXPECT_TRUE(Ended());
        EXPECT_TRUE(host.Closed());
    });
}

INSTANTIATE_TEST_SUITE_P(MainWindowEdges, EndInASession, testing::ValuesIn(kEnds),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace

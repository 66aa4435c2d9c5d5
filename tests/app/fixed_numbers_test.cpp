// SPDX-License-Identifier: MIT
// Fixed numbers: those of the messages that the receiving thread and the dial-up service post, and
// the window class that the program registers.
#include <gtest/gtest.h>

#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

struct NumberRow {
    UINT name;
    UINT number;
};

const NumberRow kMessages[] = {
    {WM_CREATE, 1},    {WM_CLOSE, 16},           {WM_SIZE, 5},           {WM_HELP, 83},
    {WM_COMMAND, 273}, {WM_RASDIALEVENT, 52429}, {WM_SETTINGCHANGE, 26}, {WM_TIMER, 275},
    {WM_DESTROY, 2},   {WM_SOCKET_DATA, 105},    {WM_KEYDOWN, 256},      {WM_SOCKET_CONNECTED, 107},
    {WM_CHAR, 258},
};

TEST(FixedNumbers, MessagesHaveTheirNumbers) {
    for (const NumberRow& row : kMessages) EXPECT_EQ(row.name, row.number);
}

TEST(FixedNumbers, MessagesAreHandledByTheirNumbers) {
    FakeHost host;
    WithSession(host, [&] {
        HWND bar = nullptr;
        OnWindowThread([&] {
            bar = session.command_bar;
            session.dialling = 1;
        });
        PostToMain(107);
        EXPECT_TRUE(Eventually([&] { return session.command_bar != bar; }));
        PostToMain(52429, 4099, 0);
        EXPECT_TRUE(TerminalShows("helloPasswordExpired"));
        OnWindowThread([] { session.dialling = 0; });
        PostToMain(105, 1);
        DismissBox("Error: Connection to the UNIX Host has been closed...");
    });
}

// Checks what the thread posts before the window thread takes it.
TEST(FixedNumbers, ReceivingThreadPostsTheNumbers) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        OnWindowThread([&] {
            const auto waits = [](UINT number, WPARAM wparam) {
                MSG message = {};
                for (int i = 0; i < 2000; i++) {
                    if (PeekMessageW(&message, session.main_window, number, number, PM_REMOVE))
                        return message.wParam == wparam && message.lParam == 0;
                    Sleep(5);
                }
                return false;
            };
            host.Send("hello");
            EXPECT_TRUE(waits(107, 0)) << "connected";
            EXPECT_TRUE(waits(105, 0)) << "a chunk";
            host.Drop();
            session.receive_ready = 1;
            EXPECT_TRUE(waits(105, 1)) << "the end";
            PostMessageW(session.main_window, 105, 1, 0);
        });
        DismissBox("Error: Connection to the UNIX Host has been closed...");
    });
}

TEST(FixedNumbers, FirstActivityIsReportedOncePerSession) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        HWND before = nullptr;
        for (int times = 0; times < 2; times++) {
            Connect();
            ASSERT_TRUE(host.Accept());
            host.Send("first");
            ASSERT_TRUE(TerminalShows("first"));
            HWND bar = nullptr;
            OnWindowThread([&] { bar = session.command_bar; });
            EXPECT_NE(bar, before);
            for (const char* text : {" second", " third"}) {
                host.Send(text);
                ASSERT_TRUE(TerminalShows(text));
                OnWindowThread([&] { EXPECT_EQ(session.command_bar, bar) << text; });
            }
            Close();
            ASSERT_TRUE(Offline());
            OnWindowThread([&] { before = session.command_bar; });
        }
    });
}

TEST(FixedNumbers, MainWindowsClassTakesDoubleClicksOnWhite) {
    RunProgram({}, [] {
        OnWindowThread([] {
            const WindowClass* made = FindWindowRecord(session.main_window)->window_class;
            EXPECT_EQ(made->name, u"TELNET");
            EXPECT_EQ(made->style, UINT{CS_DBLCLKS});
            EXPECT_EQ(CS_DBLCLKS, 8);
            EXPECT_EQ(made->background, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
            EXPECT_EQ(WHITE_BRUSH, 0);
            const WindowClass* client = FindWindowRecord(session.client_window)->window_class;
            EXPECT_EQ(client->name, u"ClientWnd");
            EXPECT_EQ(client->style, UINT{CS_DBLCLKS});
        });
    });
}

TEST(FixedNumbers, MainWindowIsWhiteWhereNoChildCoversIt) {
    RunProgram({}, [] {
        ASSERT_TRUE(Eventually([] { return session.view.cell_height > 0; }));
        OnWindowThread([] {
            ShowWindow(session.client_window, SW_HIDE);
            UpdateWindow(session.main_window);
        });
        EXPECT_EQ(Picture().pixelColor(320, 240), QColor(Qt::white));
    });
}

}  // namespace

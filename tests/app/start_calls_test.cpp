// SPDX-License-Identifier: MIT
// The calls of start-up and program end to the windows and the socket library.
#include <gtest/gtest.h>

#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "ui/main_window.h"

namespace {

struct Call {
    std::string name;
    HWND window;
    bool operator==(const Call&) const = default;
};
std::vector<Call> g_calls;
bool g_logging = false;

void Log(const char* name, HWND window) {
    if (g_logging) g_calls.push_back({name, window});
}

}  // namespace

void RealRebuild() asm("__real__Z14RebuildMenuBarv");
void LoggedRebuild() asm("__wrap__Z14RebuildMenuBarv");
void LoggedRebuild() {
    Log("rebuild", session.main_window);
    RealRebuild();
}

BOOL RealForeground(HWND window) asm("__real__Z19SetForegroundWindowP11SliceWindow");
BOOL LoggedForeground(HWND window) asm("__wrap__Z19SetForegroundWindowP11SliceWindow");
BOOL LoggedForeground(HWND window) {
    Log("foreground", window);
    return RealForeground(window);
}

BOOL RealShow(HWND window, int how) asm("__real__Z10ShowWindowP11SliceWindowi");
BOOL LoggedShow(HWND window, int how) asm("__wrap__Z10ShowWindowP11SliceWindowi");
BOOL LoggedShow(HWND window, int how) {
    Log(how == SW_SHOW ? "show" : "show otherwise", window);
    return RealShow(window, how);
}

BOOL RealBarShow(HWND bar, BOOL show) asm("__real__Z15CommandBar_ShowP11SliceWindowi");
BOOL LoggedBarShow(HWND bar, BOOL show) asm("__wrap__Z15CommandBar_ShowP11SliceWindowi");
BOOL LoggedBarShow(HWND bar, BOOL show) {
    Log(show ? "show bar" : "hide bar", bar);
    return RealBarShow(bar, show);
}

LRESULT RealSend(HWND window, UINT message, WPARAM wparam,
                 LPARAM lparam) asm("__real__Z12SendMessageWP11SliceWindowjml");
LRESULT LoggedSend(HWND window, UINT message, WPARAM wparam,
                   LPARAM lparam) asm("__wrap__Z12SendMessageWP11SliceWindowjml");
LRESULT LoggedSend(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_PAINT) Log("paint", window);
    return RealSend(window, message, wparam, lparam);
}

namespace {

// The calls that start-up makes before the person's first step.
std::vector<Call> CallsOfAStart(Stage stage, const std::function<void()>& person) {
    const auto before = stage.before;
    stage.before = [=] {
        if (before) before();
        g_calls.clear();
        g_logging = true;
    };
    std::vector<Call> calls;
    RunProgram(stage, [&] {
        person();
        EXPECT_TRUE(Eventually([] { return session.accelerators != nullptr; }));
        OnWindowThread([&] {
            g_logging = false;
            calls = g_calls;
        });
    });
    return calls;
}

TEST(StartCalls, MainWindowAndItsCommandBarAreShown) {
    HWND window = nullptr, bar = nullptr;
    const std::vector<Call> calls = CallsOfAStart({}, [&] {
        EXPECT_TRUE(Eventually([] { return session.accelerators != nullptr; }));
        OnWindowThread([&] { window = session.main_window, bar = session.command_bar; });
    });
    EXPECT_EQ(calls, (std::vector<Call>{{"show", window}, {"show bar", bar}, {"show", bar}}));
}

TEST(StartCalls, SecondStartRaisesShowsAndPaintsTheFirst) {
    RunProgram({}, [] {
        EXPECT_TRUE(Eventually([] { return session.accelerators != nullptr; }));
        OnWindowThread([] {
            g_calls.clear();
            g_logging = true;
            EXPECT_EQ(WinMain(nullptr, nullptr, nullptr, SW_SHOW), 0);
            g_logging = false;
            const HWND first = session.main_window;
            EXPECT_EQ(g_calls, (std::vector<Call>{
                                   {"foreground", first}, {"show", first}, {"paint", first}}));
        });
        EXPECT_TRUE(ProgramRuns());
    });
}

TEST(StartCalls, MenusAreRebuiltAfterAnAutoconnectThatIsStillPending) {
    const auto rebuilds = [](const std::vector<Call>& calls) {
        int count = 0;
        for (const Call& call : calls) count += call.name == "rebuild";
        return count;
    };
    for (const char* wanted : {"1", "0"}) {
        FakeHost host;
        const std::string config = "host = \"127.0.0.1\"\nport = " + std::to_string(host.port) +
                                   "\nautoconnect = " + wanted + "\n";
        const bool connects = *wanted == '1';
        const std::vector<Call> calls = CallsOfAStart({.config = config}, [&] {
            DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
            EXPECT_EQ(host.Accept(connects ? 10000 : 100), connects);
        });
        EXPECT_EQ(rebuilds(calls), connects ? 1 : 0);
    }
}

TEST(StartCalls, CustomColoursAreClearedAtTheStart) {
    RunProgram({.before =
                    [] {
                        for (COLORREF& color : session.custom_colors) color = 0x123456;
                    }},
               [] {
                   OnWindowThread([] {
                       for (const COLORREF color : session.custom_colors) EXPECT_EQ(color, 0u);
                   });
               });
}

TEST(StartCalls, EndClosesTheSessionFreesTheEventsAndStopsTheSocketLibrary) {
    FakeHost host;
    for (int times = 0; times < 2; times++) {
        RunProgram({}, [&] {
            OnWindowThread([&] {
                lstrcpyW(session.settings.host, u"127.0.0.1");
                session.settings.port = static_cast<DWORD>(host.port);
                PostMessageW(session.main_window, WM_COMMAND, 40011, 0);
            });
            EXPECT_TRUE(Eventually([] { return ShownDialog() != nullptr; }));
            OnWindowThread([] { ClickControl(IDOK); });
            ASSERT_TRUE(host.Accept());
            host.Send("hello");
            ASSERT_TRUE(TerminalShows("hello"));
        });
        EXPECT_TRUE(host.Closed());
        EXPECT_EQ(session.socket.load(), INVALID_SOCKET);
        EXPECT_EQ(session.handed_back, nullptr) << "the thread has ended before";
        EXPECT_EQ(session.receive_ended, nullptr);
        EXPECT_EQ(socket(AF_INET, SOCK_STREAM, 0), INVALID_SOCKET);
        EXPECT_EQ(WSAGetLastError(), 10093);
    }
}

TEST(StartCalls, EndForgetsTheSecretsOfTheSession) {
    RunProgram({}, [] {
        OnWindowThread([] {
            session.ssh2.sendSeq = 7;
            std::memset(session.ssh.recvBuf, 'k', sizeof(session.ssh.recvBuf));
        });
    });
    EXPECT_EQ(session.ssh2.sendSeq, 0u);
    for (const auto byte : session.ssh.recvBuf) ASSERT_EQ(byte, 0);
}

}  // namespace

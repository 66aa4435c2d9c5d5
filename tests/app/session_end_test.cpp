// SPDX-License-Identifier: MIT
// The boxes at the end of a session or a request, and the state of the program under each box.
#include <gtest/gtest.h>
#include <QMenu>

#include "connection/connection.h"
#include "platform/qt/shell/shell.h"
#include "protocol/ssh/ssh_session.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/services_test_hooks.h"
#include "tests/support/sessions.h"

namespace {

const char kClosed[] = "Error: Connection to the UNIX Host has been closed...";
const char kNotPossible[] = "Error: Not possible to create a session to the UNIX Host";
const char kMayCancel[] =
    "Warning: I am busy making a connection. Do you want to cancel the request";

std::string StateWord() { return StatusText().substr(0, 10); }

std::string FirstEntry() {
    std::string text;
    OnWindowThread([&] {
        const auto menus = ShellMenuStrip()->bar()->actions();
        text = menus.first()->menu()->actions().first()->text().toStdString();
    });
    return text;
}

HWND CommandBar() {
    HWND bar = nullptr;
    OnWindowThread([&] { bar = session.command_bar; });
    return bar;
}

// Opens a session and closes it, so that the test continues with a used session record.
void UseOnce(FakeHost& host) {
    BeginSession(host);
    Close();
    ASSERT_TRUE(Offline());
}

TEST(SessionEnd, StatusLineIsOfflineUnderTheBoxOfARefusedPort) {
    FakeHost host;
    RunProgram({}, [&] {
        for (int times = 0; times < 2; times++) {
            SetHost(u"127.0.0.1", RefusingPort());
            Connect();
            ASSERT_EQ(AwaitBox(), kNotPossible);
            EXPECT_EQ(StateWord(), "   offline");
            PressOk();
            EXPECT_EQ(StateWord(), "   offline");
            UseOnce(host);
        }
    });
}

TEST(SessionEnd, StatusLineIsOfflineUnderTheBoxOfACancelledRequest) {
    FakeHost host;
    RunProgram({}, [&] {
        for (int times = 0; times < 2; times++) {
            SetHost(u"127.0.0.1", host.port);
            Connect();
            ASSERT_TRUE(host.Accept());
            EXPECT_EQ(StateWord(), "   request");
            PostToMain(WM_COMMAND, 40011);
            ASSERT_EQ(AwaitBox(), kMayCancel);
            EXPECT_EQ(StateWord(), "   request");
            PressOk();
            ASSERT_TRUE(Eventually([] {
                return ShownMessageBox() && ShownMessageBox()->text().contains("Not possible");
            }));
            EXPECT_EQ(StateWord(), "   offline");
            PressOk();
            UseOnce(host);
        }
    });
}

// The request is over when its box is answered.
TEST(SessionEnd, RequestIsStillPendingUnderTheBoxThatEndsIt) {
    FakeHost host;
    const std::pair<int, const char*> errors[] = {
        {10051, "Error: Connection to the UNIX Host has failed (10051)"},
        {WSAEHOSTUNREACH, "Request: No active network. Should I dial a network using modem () ?"}};
    RunProgram({}, [&] {
        services_test_hooks.dial_up_folder = FreshRoot();
        for (int times = 0; times < 2; times++) {
            for (const auto& [error, text] : errors) {
                SetHost(u"127.0.0.1", 23);
                services_test_hooks.force_connect_error = error;
                ConnectLater();
                ASSERT_EQ(AwaitBox(), text);
                OnWindowThread([] { EXPECT_EQ(session.connect_pending, 1u); });
                EXPECT_EQ(StateWord(), "   request");
                error == WSAEHOSTUNREACH ? PressCancel() : PressOk();
                EXPECT_TRUE(Offline());
                EXPECT_EQ(StateWord(), "   offline");
                services_test_hooks.force_connect_error = 0;
                UseOnce(host);
            }
        }
    });
    services_test_hooks = {};
}

TEST(SessionEnd, MenusAreOfflineBeforeTheBoxOfAClosedSession) {
    FakeHost host;
    RunProgram({}, [&] {
        UseOnce(host);
        for (int times = 0; times < 2; times++) {
            Connect();
            ASSERT_TRUE(host.Accept());
            host.Send("again");
            ASSERT_TRUE(TerminalShows("again"));
            ASSERT_EQ(FirstEntry(), "&Disconnect...");
            const HWND online = CommandBar();
            host.Drop();
            ASSERT_EQ(AwaitBox(), kClosed);
            EXPECT_EQ(FirstEntry(), "&Connect...");
            EXPECT_EQ(StateWord(), "   offline");
            const HWND offline = CommandBar();
            EXPECT_NE(offline, online);
            PressOk();
            EXPECT_EQ(CommandBar(), offline) << "made once";
        }
    });
}

TEST(SessionEnd, MenusAreRebuiltAfterTheBoxOfASessionThatWasNotPossible) {
    FakeHost host;
    RunProgram({}, [&] {
        UseOnce(host);
        SetHost(u"127.0.0.1", RefusingPort());
        for (int times = 0; times < 2; times++) {
            const HWND before = CommandBar();
            Connect();
            ASSERT_EQ(AwaitBox(), kNotPossible);
            EXPECT_EQ(CommandBar(), before);
            PressOk();
            EXPECT_NE(CommandBar(), before);
        }
    });
}

TEST(SessionEnd, AnyValueOfExitOnDisconnectButZeroEndsTheProgram) {
    for (const DWORD value : {2u, 0x80000000u}) {
        FakeHost host;
        WithSession(host, [&] {
            OnWindowThread([=] { session.settings.exit_dis = value; });
            host.Drop();
            for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
            EXPECT_FALSE(ProgramRuns()) << value;
        });
    }
}

TEST(SessionEnd, CloseSessionForgetsTheCiphersBeforeItCloses) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            static const CipherAlgorithm kSsh2 = {};
            static const Ssh1Cipher kSsh1 = {};
            session.ssh2.cipher = &kSsh2;
            session.ssh1.ssh1Cipher = &kSsh1;
            session.ssh1.ssh1State = 3;
            CloseSession();
            EXPECT_EQ(session.ssh2.cipher, nullptr);
            EXPECT_EQ(session.ssh1.ssh1Cipher, nullptr);
            EXPECT_EQ(session.ssh1.ssh1State, 0);
            EXPECT_EQ(session.closing, 1u);
            EXPECT_EQ(session.socket.load(), INVALID_SOCKET);
            EXPECT_EQ(session.connected.load(), 1u) << "until the notification of its end";
        });
        EXPECT_TRUE(host.Closed());
        EXPECT_TRUE(Offline());
        EXPECT_EQ(AwaitBox(100), "");
    });
}

}  // namespace

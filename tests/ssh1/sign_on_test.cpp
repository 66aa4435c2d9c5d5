// SPDX-License-Identifier: MIT
// Logging in to an SSH-1 server through the Sign on dialog itself.
#include <gtest/gtest.h>
#include <QApplication>
#include <QThread>
#include <QWidget>

#include "session/session_state.h"
#include "tests/ssh1/test_server.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

const char kLoginIncorrect[] = "Error: Login incorrect";

// Runs the program while it connects to the server, with no user or password remembered.
void Connecting(const std::function<void(TestServer&)>& person) {
    TestServer server;
    ASSERT_GT(server.port, 0) << testing::PrintToString(server.Told());
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", server.port);
        OnWindowThread([] {
            session.settings.ssh = 1;
            session.settings.ssh_type2 = 0;
            session.settings.ssh_type = 1;
            session.settings.ssh_def = 0;
        });
        ConnectLater();
        person(server);
    });
}

bool DialogShown() {
    return Eventually([] {
        const QWidget* top = QApplication::activeModalWidget();
        return top && top->isVisible() && top->windowTitle() == "Sign on to the host";
    });
}

// Replaces the text of the two fields, starting with the first.
void SignOn(const std::string& user, const std::string& password) {
    ASSERT_TRUE(DialogShown());
    PressKey(Qt::Key_A, Qt::ControlModifier);
    TypeText(user);
    PressKey(Qt::Key_Tab);
    TypeText(password);
    PressKey(Qt::Key_Return);
}

TEST(SignOnDialog, TypedUserAndPasswordOpenTheShell) {
    Connecting([](TestServer& server) {
        SignOn("visitor", "warehouse7");
        ASSERT_TRUE(TerminalShows("$\n")) << TerminalText();
        EXPECT_TRUE(server.Tells("user visitor"));
        EXPECT_TRUE(server.Tells("password warehouse7"));
        OnWindowThread([] { EXPECT_EQ(session.settings.ssh_p[0], 0) << "not remembered"; });
    });
}

TEST(SignOnDialog, OpensAgainAfterAWrongPassword) {
    Connecting([](TestServer& server) {
        SignOn("visitor", "guess");
        ASSERT_TRUE(DismissBox(kLoginIncorrect));
        SignOn("visitor", "warehouse7");
        ASSERT_TRUE(TerminalShows("$\n")) << TerminalText();
        EXPECT_TRUE(server.Tells("password guess"));
        EXPECT_EQ(server.Count("user visitor"), 2);
    });
}

TEST(SignOnDialog, CancelledWithoutAUserNameEndsTheSession) {
    Connecting([](TestServer& server) {
        ASSERT_TRUE(DialogShown());
        PressKey(Qt::Key_Escape);
        EXPECT_TRUE(DismissBox("Error: Cannot sign on to the host without a valid user name"));
        EXPECT_TRUE(Offline());
        EXPECT_EQ(server.Count("user"), 0);
        OnWindowThread([] { EXPECT_EQ(session.dialog_result, -1); });
    });
}

TEST(SignOnDialog, CancelledWithAUserNameSendsTheStoredValues) {
    Connecting([](TestServer& server) {
        SignOn("visitor", "guess");
        ASSERT_TRUE(DismissBox(kLoginIncorrect));
        ASSERT_TRUE(DialogShown());
        PressKey(Qt::Key_Escape);
        ASSERT_TRUE(DismissBox(kLoginIncorrect));
        EXPECT_TRUE(server.Tells("password "));
        SignOn("visitor", "warehouse7");
        ASSERT_TRUE(TerminalShows("$\n")) << TerminalText();
    });
}

TEST(SignOnDialog, HostThatDropsTheLineMeanwhileIsReportedBehindIt) {
    Connecting([](TestServer& server) {
        ASSERT_TRUE(DialogShown());
        server.process.closeWriteChannel();
        ASSERT_TRUE(server.Tells("ended"));
        SignOn("visitor", "warehouse7");
        EXPECT_TRUE(DismissBox("Error: Connection to the UNIX Host has been closed..."));
        EXPECT_TRUE(Offline());
        OnWindowThread([] { EXPECT_EQ(session.ssh1.ssh1State, 0); });
    });
}

TEST(SignOnDialog, ProgramThatIsClosedMeanwhileEnds) {
    Connecting([](TestServer& server) {
        ASSERT_TRUE(DialogShown());
        OnWindowThread([] { session.settings.confirm_exit = 0; });
        PostToMain(WM_CLOSE);
        for (int i = 0; i < 1000 && ProgramRuns(); i++) QThread::msleep(5);
        EXPECT_FALSE(ProgramRuns());
        EXPECT_TRUE(server.Tells("gone"));
        EXPECT_EQ(server.Count("user"), 0);
    });
}

TEST(SignOnDialog, SessionThatIsClosedMeanwhileSendsNothingMore) {
    Connecting([](TestServer& server) {
        ASSERT_TRUE(DialogShown());
        Close();
        EXPECT_TRUE(Offline());
        SignOn("visitor", "warehouse7");
        EXPECT_TRUE(server.Tells("gone"));
        EXPECT_EQ(server.Count("user"), 0);
        EXPECT_EQ(AwaitBox(200), "");
    });
}

// The dial's connect is refused, since a session is up. It restarts that session's protocol, so the
// server soon ends it.
TEST(SignOnDialog, DialThatConnectsMeanwhileLeavesTheProgramRunning) {
    Connecting([](TestServer& server) {
        ASSERT_TRUE(DialogShown());
        PostToMain(WM_RASDIALEVENT, RASCS_Connected);
        ASSERT_TRUE(DismissBox("Error: Already a session to the UNIX Host"));
        OnWindowThread([] { QApplication::activeModalWidget()->activateWindow(); });
        SignOn("visitor", "warehouse7");
        EXPECT_TRUE(server.Tells("user visitor"));
        OnWindowThread([] { EXPECT_GE(session.ssh.recvFill, 0); });
        EXPECT_TRUE(ProgramRuns());
    });
}

TEST(SignOnDialog, SessionOpenedMeanwhileIsNotTouched) {
    Connecting([](TestServer& server) {
        ASSERT_TRUE(DialogShown());
        Close();
        EXPECT_TRUE(Offline());
        OnWindowThread([] {
            session.settings.ssh_def = 1;
            lstrcpyW(session.settings.ssh_u, u"visitor");
            lstrcpyW(session.settings.ssh_p, u"warehouse7");
        });
        Connect();
        ASSERT_TRUE(TerminalShows("$\n")) << TerminalText();
        SignOn("somebody", "else");
        EXPECT_EQ(AwaitBox(200), "");
        EXPECT_EQ(server.Count("user"), 1);
        TypeText("echo sum $((40 + 2))\n");
        EXPECT_TRUE(TerminalShows("\nsum 42\n")) << TerminalText();
    });
}

}  // namespace

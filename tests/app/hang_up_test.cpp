// SPDX-License-Identifier: MIT
// Hanging up: the user, another dial or the program's end ends dials and links.
#include "connection/connection.h"
#include "resources/resource_ids.h"
#include "settings/toolbars.h"
#include "tests/app/dial_stage.h"
#include "tests/support/fake_host.h"
#include "ui/main_window.h"

namespace {

class HangUp : public Dialling {};

TEST_F(HangUp, TheConnectCommandHangsUpASilentDialAndNothingElse) {
    MakeEntry("depot");
    MakeProgram("while :; do sleep 0.02; done\n", kEnds);
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Dial(u"depot");
        ASSERT_TRUE(TerminalShows("Open port"));
        ASSERT_TRUE(FileAppears(folder + "/process"));
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(FileAppears(folder + "/ended"));
        EXPECT_TRUE(ProgramGone());
        EXPECT_TRUE(TerminalShows("Open port\nDisconnection or failed connection\n"));
        EXPECT_EQ(AwaitBox(200), "") << "the user's own end is no failure";
        OnWindowThread([] { EXPECT_EQ(session.ras_connection, nullptr); });
        EXPECT_FALSE(host.Accept(100));
        Connect();
        EXPECT_TRUE(host.Accept());
    });
}

TEST_F(HangUp, TheToolbarsConnectButtonAbortsTheDialWithALine) {
    MakeEntry("depot");
    MakeProgram("while :; do sleep 0.02; done\n");
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(TerminalShows("Open port"));
        ASSERT_TRUE(FileAppears(folder + "/process"));
        OnWindowThread([] {
            WORD button = 0;
            while (ToolbarAction(button, session.toolbar) != kActionConnect) button++;
            RunCommand(static_cast<WORD>(IDM_TOOLBAR_FIRST + button));
        });
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(ProgramGone());
        EXPECT_TRUE(
            TerminalShows("Open port\nAbort modem dialing\nDisconnection or failed connection\n"));
    });
}

TEST_F(HangUp, AProgramThatDoesNotEndIsEndedByForce) {
    MakeEntry("depot");
    MakeProgram("while :; do sleep 0.02; done\n", "");
    services_test_hooks.dial_up_patience = 300;
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(ProgramGone());
        EXPECT_EQ(AwaitBox(100), "");
    });
}

TEST_F(HangUp, DiallingAgainHangsUpTheLinkBefore) {
    MakeEntry("depot");
    MakeProgram(kUp, kEnds);
    Let("go");
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Dial(u"depot");
        ASSERT_TRUE(host.Accept());
        const std::string first = ReadFile(folder + "/process");
        fs::remove(folder + "/process");
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        EXPECT_NE(ReadFile(folder + "/process"), first);
        EXPECT_NE(kill(std::stoi(first), 0), 0);
        EXPECT_TRUE(NotDialling());
    });
}

TEST_F(HangUp, DiallingAgainWhileDiallingLeavesTheNewDialInProgress) {
    MakeEntry("depot");
    MakeProgram("await go\necho 'Serial connection established.'\nwhile :; do sleep 0.02; done\n");
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(TerminalShows("Open port"));
        ASSERT_TRUE(FileAppears(folder + "/process"));
        const std::string first = ReadFile(folder + "/process");
        fs::remove(folder + "/process");
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        EXPECT_NE(kill(std::stoi(first), 0), 0);
        Let("go");
        EXPECT_TRUE(TerminalShows("Open port\nA device has connected successfully\n"));
        OnWindowThread([] { EXPECT_EQ(session.dialling, 1u) << "the end was the first dial's"; });
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(ProgramGone());
    });
}

// The end of the slice hangs up too, but only after the program has ended.
TEST_F(HangUp, EveryWayToExitHangsUpBeforeTheProgramEnds) {
    MakeEntry("depot");
    MakeProgram(kUp, kEnds);
    void (*const ways_out[])() = {[] { RunCommand(IDM_EXIT); },
                                  [] {
                                      session.settings.xbox = 1;
                                      CloseByMinimising();
                                  },
                                  [] {
                                      session.settings.exit_dis = 1;
                                      session.connected = 1;
                                      SessionClosed();
                                  }};
    for (void (*const leave)() : ways_out) {
        RunProgram({}, [&] {
            Dial(u"depot");
            ASSERT_TRUE(TerminalShows("completed authentication"));
            OnWindowThread([&] {
                session.settings.confirm_exit = 0;
                EXPECT_NE(session.ras_connection, nullptr);
                leave();
                EXPECT_EQ(session.ras_connection, nullptr);
            });
            EXPECT_TRUE(ProgramGone()) << "before the device's own end";
            for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
            EXPECT_FALSE(ProgramRuns());
        });
    }
}

TEST_F(HangUp, TheLinkOutlastsEverySessionUnlessTheSessionsEndIsTheProgramsEnd) {
    MakeEntry("depot");
    MakeProgram(kUp, kEnds);
    Let("go");
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Dial(u"depot");
        const auto session_with_end = [&](const std::function<void()>& end) {
            ASSERT_TRUE(host.Accept());
            host.Send("hello");
            ASSERT_TRUE(TerminalShows("hello"));
            end();
            ASSERT_TRUE(Offline());
            OnWindowThread([] { EXPECT_NE(session.ras_connection, nullptr); });
            EXPECT_TRUE(ProgramLives());
            Connect();
        };
        session_with_end([&] {
            host.Drop();
            DismissBox("Error: Connection to the UNIX Host has been closed...");
        });
        session_with_end([] { PostToMain(WM_COMMAND, IDM_CONNECT); });
        session_with_end([] { Close(); });
        ASSERT_TRUE(host.Accept());
        SetHost(u"127.0.0.1", RefusingPort());
        Close();
        DismissBox("Error: Not possible to create a session to the UNIX Host");
        Connect();
        DismissBox("Error: Not possible to create a session to the UNIX Host");
        OnWindowThread([] { EXPECT_NE(session.ras_connection, nullptr); });
        EXPECT_TRUE(ProgramLives());
    });
    EXPECT_TRUE(ProgramGone()) << "the device's end hangs up";
}

TEST_F(HangUp, TheLinkStaysWhileTheQuestionOfTheProgramsEndIsOpenAndAfterItsCancel) {
    MakeEntry("depot");
    MakeProgram(kUp, kEnds);
    Let("go");
    FakeHost host;
    const std::pair<UINT, WPARAM> ways[] = {
        {WM_COMMAND, IDM_EXIT}, {WM_CLOSE, 0}, {WM_SIZE, SIZE_MINIMIZED}};
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Dial(u"depot");
        ASSERT_TRUE(host.Accept());
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        OnWindowThread([] { session.settings.xbox = session.settings.confirm_exit = 1; });
        const auto link_is_up = [&](const char* when) {
            OnWindowThread([&] { EXPECT_NE(session.ras_connection, nullptr) << when; });
            EXPECT_TRUE(ProgramLives()) << when;
        };
        for (const auto& [message, wparam] : ways) {
            PostToMain(message, wparam);
            ASSERT_NE(AwaitBox(), "");
            link_is_up("under the question");
            PressCancel();
            link_is_up("after the cancel");
        }
        host.Send(" again");
        EXPECT_TRUE(TerminalShows("hello again"));
    });
}

// ---------------------------------------------------------------- after a hang-up

TEST_F(HangUp, AProgramThatEndsNormallyHasEndedWhenTheHangUpReturns) {
    MakeEntry("depot");
    MakeProgram("while :; do sleep 0.02; done\n", "sleep 0.2; exit 5");
    services_test_hooks.dial_up_patience = 60000;  // a normal end may take long on a busy machine
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        OnWindowThread([&] {
            RunCommand(IDM_CONNECT);
            EXPECT_FALSE(ProgramLives());
        });
    });
}

TEST_F(HangUp, HangingUpDoesNotWaitForASlowProgram) {
    MakeEntry("depot");
    MakeProgram("await leave\nexit 5\n", ": >asked");
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        PostToMain(WM_COMMAND, IDM_CONNECT);
        EXPECT_TRUE(TerminalShows("Open port\nDisconnection or failed connection\n"));
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(FileAppears(folder + "/asked"));
        Connect();
        EXPECT_TRUE(host.Accept()) << "over a network that has come up meanwhile";
        host.Send("login: ");
        EXPECT_TRUE(TerminalShows("login:"));
        EXPECT_TRUE(ProgramLives()) << "all of this was before its end";
        Let("leave");
        EXPECT_TRUE(ProgramGone());
    });
}

TEST_F(HangUp, ADialAfterAHangUpWaitsForTheLine) {
    MakeEntry("depot");
    MakeProgram("await leave\nexit 5\n", ": >asked");
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        PostToMain(WM_COMMAND, IDM_CONNECT);
        ASSERT_TRUE(NotDialling());
        fs::remove(folder + "/arguments");
        Dial(u"depot");
        ASSERT_TRUE(Dialled());
        EXPECT_TRUE(TerminalShows("connection\nOpen port\n"));
        ASSERT_TRUE(FileAppears(folder + "/asked"));
        EXPECT_FALSE(fs::exists(folder + "/arguments")) << "two programs at one modem";
        EXPECT_TRUE(ProgramLives());
        Let("leave");
        EXPECT_TRUE(FileAppears(folder + "/arguments"));
        EXPECT_EQ(AwaitBox(), kFailed) << "the new dial's own end, by exit code 5";
        PressOk();
    });
}

TEST_F(HangUp, ADialThatIsHungUpWhileItWaitsForTheLineNeverStarts) {
    MakeEntry("depot");
    MakeProgram("await leave\nexit 5\n", ": >asked");
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        PostToMain(WM_COMMAND, IDM_CONNECT);
        ASSERT_TRUE(NotDialling());
        fs::remove(folder + "/arguments");
        for (int i = 0; i < 3; i++) {
            Dial(u"depot");
            ASSERT_TRUE(Dialled());
            PostToMain(WM_COMMAND, IDM_CONNECT);
            ASSERT_TRUE(NotDialling());
        }
        Let("leave");
        EXPECT_TRUE(ProgramGone());
    });
    EXPECT_FALSE(fs::exists(folder + "/arguments"));
}

TEST_F(HangUp, AConnectionMadeDuringTheHangUpStartsNoSession) {
    MakeEntry("depot");
    MakeProgram("await go\necho 'local  IP address 10.0.0.2'\nawait leave\n");
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        ASSERT_TRUE(TerminalShows("Open port"));
        OnWindowThread([&] {
            Let("go");
            MSG next = {};
            for (int i = 0; i < 2000 && next.message != WM_RASDIALEVENT; i++) {
                PeekMessageW(&next, session.main_window, WM_RASDIALEVENT, WM_RASDIALEVENT, 0);
                Sleep(5);
            }
            EXPECT_EQ(next.wParam, WPARAM{RASCS_Connected});
            RunCommand(IDM_CONNECT);
        });
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(TerminalShows("Open port\nDisconnection or failed connection\n"));
        EXPECT_FALSE(host.Accept(100));
        OnWindowThread([] { EXPECT_EQ(session.connect_pending, 0u); });
        EXPECT_TRUE(ProgramGone());
    });
}

TEST_F(HangUp, AFailureDuringTheHangUpIsNotReported) {
    MakeEntry("depot");
    MakeProgram("await go\nexit 1\n");
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        ASSERT_TRUE(TerminalShows("Open port"));
        OnWindowThread([&] {
            Let("go");
            MSG next = {};
            for (int i = 0; i < 2000 && next.message != WM_RASDIALEVENT; i++) {
                PeekMessageW(&next, session.main_window, WM_RASDIALEVENT, WM_RASDIALEVENT, 0);
                Sleep(5);
            }
            EXPECT_EQ(next.wParam, WPARAM{RASCS_Disconnected});
            RunCommand(IDM_CONNECT);
        });
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(TerminalShows("Open port\nDisconnection or failed connection\n"));
        EXPECT_EQ(AwaitBox(100), "");
    });
}

TEST_F(HangUp, LeavingTheProgramDoesNotWaitForTheModem) {
    MakeEntry("depot");
    MakeProgram("await leave\nexit 5\n", ": >asked");
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(FileAppears(folder + "/process"));
        PostToMain(WM_COMMAND, IDM_EXIT);
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
        EXPECT_TRUE(FileAppears(folder + "/asked"));
        EXPECT_TRUE(ProgramLives());
        Let("leave");
    });
    EXPECT_TRUE(ProgramGone()) << "the device's end waits for it";
}

TEST_F(HangUp, WhileDiallingTheConnectCommandLeavesASessionAlone) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            session.settings.confirm_exit = 1;
            session.dialling = 1;
            session.ras_connection = reinterpret_cast<HRASCONN>(static_cast<UINT_PTR>(0x1234));
        });
        PostToMain(WM_COMMAND, IDM_CONNECT);
        EXPECT_EQ(AwaitBox(200), "");
        OnWindowThread([] {
            EXPECT_EQ(session.ras_connection, nullptr);
            EXPECT_EQ(session.connected, 1u);
            session.dialling = 0;
        });
        host.Send(" again");
        EXPECT_TRUE(TerminalShows("hello again"));
    });
}

}  // namespace

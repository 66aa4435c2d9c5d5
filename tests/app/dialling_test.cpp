// SPDX-License-Identifier: MIT
// Dialling in the running program. The dial-up program is a script that writes the lines of pppd in
// order and ends with its exit codes.
#include "connection/connection.h"
#include "terminal/screen_buffer.h"
#include "tests/app/dial_stage.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"

namespace {

// ---------------------------------------------------------------- states

TEST_F(Dialling, EveryStateHasItsLine) {
    const std::pair<int, const char*> rows[] = {
        {0, "Open port"},
        {1, "The com. port has been opened successfully"},
        {2, "A device is about to be connected"},
        {3, "A device has connected successfully"},
        {4, "All devices in the device chain have successfully connected"},
        {5, "The authentication process is starting"},
        {6, "An authentication event has occurred"},
        {7, "The client has requested another validation attempt"},
        {8, "The remote access server has requested a callback number"},
        {9, "The client has requested to change the password on the account"},
        {10, "The projection phase is starting"},
        {11, "The link-speed calculation phase is starting"},
        {12, "An authentication request is being acknowledged"},
        {13, "Reauthentication (after callback) is starting"},
        {14, "The client has successfully completed authentication"},
        {15, "The line is about to disconnect in preparation for callback"},
        {16, "The client is delaying in order to give the modem time to reset"},
        {17, "The client is waiting for an incoming call from the remote server"},
        {4096, "Interactive"},
        {4097, "RetryAuthentication"},
        {4098, "CallbackSetByCaller"},
        {4099, "PasswordExpired"},
        {8193, "Disconnection or failed connection"},
        {18, "unknown ras dial event 18"},
        {8194, "unknown ras dial event 8194"},
        {-1000, "unknown ras dial event -1000"}};
    RunProgram({}, [&] {
        OnWindowThread([&] {
            for (const auto& [state, line] : rows) {
                ClearAllLines();
                session.screen.cursor_row = session.screen.cursor_col = 1;
                session.dialling = 1;
                OnDialEvent(static_cast<WPARAM>(state), 0);
                EXPECT_EQ(TerminalRow(1), line);
                EXPECT_EQ(session.screen.cursor_row, 2) << line;
                EXPECT_EQ(session.screen.cursor_col, 1) << line;
                EXPECT_EQ(session.dialling, state == 8193 ? 0u : 1u) << line;
            }
            session.dialling = 0;
        });
    });
}

TEST_F(Dialling, ARepeatedStateWritesOneLine) {
    RunProgram({}, [] {
        for (int i = 0; i < 3; i++) PostToMain(WM_RASDIALEVENT, 3, 0);
        OnWindowThread([] { session.dialling = 1; });
        for (int i = 0; i < 3; i++) PostToMain(WM_RASDIALEVENT, 4, 0);
        PostToMain(WM_RASDIALEVENT, 5, 0);
        ASSERT_TRUE(TerminalShows("starting"));
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(1), "All devices in the device chain have successfully connected")
                << "state 3 came while nothing was dialled";
            EXPECT_EQ(TerminalRow(2), "The authentication process is starting");
            session.dialling = 0;
        });
    });
}

TEST_F(Dialling, AnotherDialsFirstStateIsNotShownWhenItWasTheLast) {
    RunProgram({}, [] {
        OnWindowThread([] {
            EXPECT_EQ(session.last_dial_state, -1);
            session.dialling = 1;
            OnDialEvent(0, 0);
            session.dialling = 0;
            session.dialling = 1;
            OnDialEvent(0, 0);
            OnDialEvent(1, 0);
            EXPECT_EQ(TerminalRow(2), "The com. port has been opened successfully");
            session.dialling = 0;
        });
    });
}

// A first state that equals the last state of the previous dial is ignored, and its error too.
TEST_F(Dialling, TheLastStateOfADialIsNotForgottenByTheNext) {
    MakeEntry("depot");
    MakeProgram("exit 1\n");
    RunProgram({}, [&] {
        for (int dials = 0; dials < 2; dials++) {
            Dial(u"depot");
            ASSERT_EQ(AwaitBox(), kFailed);
            PressOk();
            ASSERT_TRUE(NotDialling());
        }
        MakeProgram("await go\n");
        const std::string failed = "Open port\nDisconnection or failed connection\n";
        OnWindowThread([&] {
            lstrcpyW(session.settings.ras, u"depot");
            StartDial();
            EXPECT_EQ(session.dialling, 1u);
            AnswerMessageBoxes(true);  // if one appears
            OnDialEvent(RASCS_Disconnected, 676);
            AnswerMessageBoxes(false);
            EXPECT_EQ(session.dialling, 1u);
            EXPECT_EQ(TerminalText().substr(0, 2 * failed.size()), failed + failed);
            EXPECT_EQ(TerminalRow(5), "");
        });
        ASSERT_TRUE(FileAppears(folder + "/process"));
        EXPECT_TRUE(TerminalShows(failed + failed + "Open port\n"));
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(ProgramGone());
    });
}

TEST_F(Dialling, TwoDialsWhoseFirstStateIsTheLastOfTheOneBeforeShowItOnce) {
    MakeEntry("depot");
    MakeProgram("await go\necho 'Serial connection established.'\nwhile :; do sleep 0.02; done\n");
    RunProgram({}, [&] {
        for (int dials = 0; dials < 3; dials++) {
            fs::remove(folder + "/process");
            Dial(u"depot");
            ASSERT_TRUE(FileAppears(folder + "/process"));
            ASSERT_TRUE(TerminalShows("Open port"));
        }
        Let("go");
        EXPECT_TRUE(TerminalShows("A device has connected successfully"));
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(1), "Open port");
            EXPECT_EQ(TerminalRow(2), "A device has connected successfully");
        });
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(ProgramGone());
    });
}

TEST_F(Dialling, ARequestIsTakenOnceHoweverLongItsBoxStaysOpen) {
    RunProgram({}, [] {
        for (int times = 0; times < 2; times++) {
            Dial(u"shop");
            ASSERT_EQ(AwaitBox(),
                      "Error: Cannot find dial information for connection name. (shop)");
            for (int ticks = 0; ticks < 3; ticks++) PostToMain(WM_TIMER, 1);
            OnWindowThread([] {});
            OnWindowThread([] { EXPECT_EQ(session.dial_request, 0u); });
            PressOk();
            OnWindowThread([] { EXPECT_EQ(ShownMessageBox(), nullptr) << "one request, one box"; });
        }
    });
}

TEST_F(Dialling, AConnectionWithAnErrorConnectsAndShowsTheError) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        for (int times = 0; times < 2; times++) {
            OnWindowThread([] { session.dialling = 1; });
            PostToMain(WM_RASDIALEVENT, 5, 0);
            PostToMain(WM_RASDIALEVENT, 8192, 691);
            ASSERT_EQ(AwaitBox(), kFailed);
            ASSERT_TRUE(host.Accept()) << "begun before the box";
            OnWindowThread([] {
                EXPECT_EQ(session.dialling, 0u);
                EXPECT_EQ(session.connect_pending, 1u);
            });
            PressOk();
            host.Send("hello");
            ASSERT_TRUE(TerminalShows("hello"));
            Close();
            ASSERT_TRUE(Offline());
        }
    });
}

TEST_F(Dialling, AFailureWritesItsLineBeforeTheErrorIsShown) {
    RunProgram({}, [] {
        OnWindowThread([] { session.dialling = 1; });
        PostToMain(WM_RASDIALEVENT, 8193, 676);
        ASSERT_EQ(AwaitBox(), kFailed);
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(1), "Disconnection or failed connection");
            EXPECT_EQ(session.dialling, 0u);
        });
        PressOk();
    });
}

TEST_F(Dialling, ProgressIsWrittenOnlyWhileDialling) {
    RunProgram({}, [] {
        OnWindowThread([] {
            DialProgress("not now\r\n");
            session.dialling = 1;
            DialProgress("Abort modem dialing\r\n");
            session.dialling = 0;
            EXPECT_EQ(TerminalRow(1), "Abort modem dialing");
        });
    });
}

// ---------------------------------------------------------------- dials

TEST_F(Dialling, ASuccessfulDialConnectsByItself) {
    MakeEntry("depot");
    MakeProgram(kUp, kEnds);
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Dial(u"depot");
        ASSERT_TRUE(TerminalShows("completed authentication"));
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(1), "Open port");
            EXPECT_EQ(TerminalRow(2), "A device has connected successfully");
            EXPECT_EQ(TerminalRow(3),
                      "All devices in the device chain have successfully connected");
            EXPECT_EQ(TerminalRow(4), "The client has successfully completed authentication");
            EXPECT_NE(session.ras_connection, nullptr);
            EXPECT_EQ(session.connect_pending, 0u);
        });
        Let("go");
        ASSERT_TRUE(host.Accept());
        host.Send("login: ");
        EXPECT_TRUE(TerminalShows("login:"));
        OnWindowThread([] {
            EXPECT_EQ(session.dialling, 0u);
            EXPECT_EQ(session.last_dial_state, 8192);
            EXPECT_NE(session.ras_connection, nullptr) << "the link stays up";
        });
        EXPECT_EQ(ReadFile(folder + "/arguments"), "call\ndepot\nnodetach\n");
        OnWindowThread([] { session.settings.confirm_exit = 0; });
        PostToMain(WM_COMMAND, 40002);
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_TRUE(ProgramGone());
        EXPECT_TRUE(fs::exists(folder + "/ended")) << "it was asked to end, and waited for";
    });
}

TEST_F(Dialling, TheQuestionAnsweredWithOkDialsAtTheNextTick) {
    MakeEntry("depot");
    MakeProgram(kUp, kEnds);
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        OnWindowThread([] { services_test_hooks.force_connect_error = WSAEHOSTUNREACH; });
        ConnectLater();
        ASSERT_EQ(AwaitBox(),
                  "Request: No active network. Should I dial a network using modem (depot) ?");
        OnWindowThread([] { services_test_hooks.force_connect_error = 0; });
        PressOk();
        Let("go");
        EXPECT_TRUE(host.Accept());
        OnWindowThread([] { EXPECT_EQ(session.dial_request, 0u); });
    });
    EXPECT_TRUE(ProgramGone()) << "the device's end hangs up";
}

TEST_F(Dialling, ADeviceWithoutEntriesAsksWithAnEmptyName) {
    RunProgram({}, [] {
        SetHost(u"127.0.0.1", 23);
        OnWindowThread([] { services_test_hooks.force_connect_error = WSAEHOSTUNREACH; });
        ConnectLater();
        ASSERT_EQ(AwaitBox(),
                  "Request: No active network. Should I dial a network using modem () ?");
        PressOk();
        DismissBox("Error: Cannot find dial information for connection name. ()");
        EXPECT_TRUE(NotDialling());
    });
}

TEST_F(Dialling, ADeviceWithoutTheProgramAsksWithAnEmptyName) {
    MakeEntry("depot");
    RunProgram({}, [] {
        SetHost(u"127.0.0.1", 23);
        OnWindowThread([] { services_test_hooks.force_connect_error = WSAEHOSTUNREACH; });
        ConnectLater();
        DismissBox("Request: No active network. Should I dial a network using modem () ?");
        DismissBox("Error: Cannot find dial information for connection name. ()");
    });
}

TEST_F(Dialling, TheSessionsEndHangsUpWithExitOnDisconnect) {
    MakeEntry("depot");
    MakeProgram(kUp, kEnds);
    Let("go");
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Dial(u"depot");
        ASSERT_TRUE(host.Accept());
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        OnWindowThread([] { session.settings.exit_dis = 1; });
        host.Drop();
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
        EXPECT_TRUE(FileAppears(folder + "/ended"));
    });
    EXPECT_TRUE(ProgramGone());
}

// ---------------------------------------------------------------- failures

TEST_F(Dialling, ABusyLineIsReported) {
    MakeEntry("depot");
    MakeProgram(
        "echo 'send (ATDT5551234^M)'; echo 'Failed (BUSY)'\n"
        "echo 'Connect script failed'; exit 8\n");
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_EQ(AwaitBox(), kFailed);
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(1), "Open port");
            EXPECT_EQ(TerminalRow(2), "A device is about to be connected");
            EXPECT_EQ(TerminalRow(3), "Disconnection or failed connection");
            EXPECT_EQ(session.dialling, 0u);
        });
        PressOk();
        EXPECT_TRUE(ProgramGone());
    });
}

TEST_F(Dialling, EveryExitCodeOfTheProgramIsAFailure) {
    MakeEntry("depot");
    RunProgram({}, [&] {
        for (const char* end : {"exit 0", "exit 1", "exit 2", "exit 4", "exit 7", "exit 10",
                                "exit 16", "exit 19", "exit 255", "kill -KILL $$"}) {
            MakeProgram(std::string("sleep 0.05\n") + end + "\n");
            Dial(u"depot");
            EXPECT_EQ(AwaitBox(), kFailed) << end;
            PressOk();
            EXPECT_TRUE(NotDialling()) << end;
        }
    });
}

TEST_F(Dialling, AMissingProgramIsReportedAndTheUserCanConnectAgain) {
    MakeEntry("depot");
    FakeHost host;
    RunProgram({}, [&] {
        Dial(u"depot");
        DismissBox("Error: RAS Dial has failed. Check your network configuration (2)");
        EXPECT_TRUE(NotDialling());
        SetHost(u"127.0.0.1", host.port);
        Connect();
        EXPECT_TRUE(host.Accept());
    });
}

TEST_F(Dialling, AProgramThatCannotBeStartedIsReported) {
    MakeEntry("depot");
    MakeProgram("exit 0\n");
    fs::permissions(folder + "/pppd", fs::perms::owner_read);
    RunProgram({}, [&] {
        Dial(u"depot");
        DismissBox("Error: RAS Dial has failed. Check your network configuration (5)");
        EXPECT_TRUE(NotDialling());
    });
}

TEST_F(Dialling, AnUnknownEntryIsReported) {
    MakeEntry("depot");
    MakeEntry("a-name-of-20-letters");
    RunProgram({}, [&] {
        for (const char16_t* name :
             {u"shop", u"", u"../../etc/passwd", u"a-name-of-20-letters-and-more"}) {
            Dial(name);
            DismissBox("Error: Cannot find dial information for connection name. (" +
                       fs::path(name).string() + ")");
            EXPECT_TRUE(NotDialling());
        }
    });
}

TEST_F(Dialling, NamesReachTheProgramUnchanged) {
    const std::pair<const char*, const char16_t*> names[] = {
        {"two words", u"two words"},
        {"it's \"mine\"", u"it's \"mine\""},
        {"$(touch x); `y`", u"$(touch x); `y`"},
        {"-detach", u"-detach"},
        {"a-name-of-20-letters", u"a-name-of-20-letters"},
        {"caf\xc3\xa9 \\ *", u"caf\u00e9 \\ *"}};
    MakeProgram("exit 1\n");
    RunProgram({}, [&] {
        for (const auto& [file, name] : names) {
            MakeEntry(file);
            Dial(name);
            EXPECT_EQ(AwaitBox(), kFailed) << file;
            PressOk();
            EXPECT_EQ(ReadFile(folder + "/arguments"),
                      std::string("call\n").append(file).append("\nnodetach\n"));
        }
        EXPECT_FALSE(fs::exists(folder + "/x"));
    });
}

TEST_F(Dialling, AProgramThatFloodsItsLogDoesNotStopTheTerminal) {
    MakeEntry("depot");
    MakeProgram(
        "exec yes 'Connect: ppp0\nSerial connection established.\nPAP authentication "
        "succeeded\nbabble'\n");
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(TerminalShows("completed authentication"));
        Sleep(300);
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(2),
                      "All devices in the device chain have successfully connected");
            EXPECT_EQ(TerminalRow(3), "The client has successfully completed authentication");
            EXPECT_EQ(TerminalRow(4), "");
        });
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(ProgramGone());
    });
}

TEST_F(Dialling, ALogHeldOpenByAnotherProgramDoesNotHoldUpTheEnd) {
    MakeEntry("depot");
    MakeProgram("(await go; : >released) &\nexit 16\n");
    RunProgram({}, [&] {
        Dial(u"depot");
        EXPECT_EQ(AwaitBox(), kFailed);
        EXPECT_FALSE(fs::exists(folder + "/released"));
        Let("go");
        EXPECT_TRUE(FileAppears(folder + "/released"));
        PressOk();
    });
}

TEST_F(Dialling, ALogThatIsClosedEarlyIsNotTheEnd) {
    MakeEntry("depot");
    MakeProgram("exec >/dev/null 2>&1\nawait go\nexit 1\n");
    RunProgram({}, [&] {
        Dial(u"depot");
        ASSERT_TRUE(Dialled());
        EXPECT_EQ(AwaitBox(300), "");
        Let("go");
        EXPECT_EQ(AwaitBox(), kFailed);
        PressOk();
    });
}

TEST_F(Dialling, HangingUpAnUnknownConnectionReturnsInvalidHandle) {
    EXPECT_EQ(6u, RasHangUp(nullptr));
    EXPECT_EQ(6u, RasHangUp(reinterpret_cast<HRASCONN>(static_cast<UINT_PTR>(0x1234))));
}

TEST_F(Dialling, LeavesNoDescriptorOpen) {
    MakeEntry("depot");
    MakeProgram("exit 1\n");
    const auto open = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    RASDIALPARAMSW parameters = {};
    parameters.dwSize = sizeof(parameters);
    lstrcpyW(parameters.szEntryName, u"depot");
    const auto before = open();
    for (int i = 0; i < 20; i++) {
        HRASCONN connection = nullptr;
        ASSERT_EQ(0u, RasDial(nullptr, nullptr, &parameters, 0xFFFFFFFF, nullptr, &connection));
        EXPECT_EQ(0u, RasHangUp(connection));
        fs::rename(folder + "/pppd", folder + "/other");
        EXPECT_EQ(2u, RasDial(nullptr, nullptr, &parameters, 0xFFFFFFFF, nullptr, &connection));
        EXPECT_EQ(connection, nullptr);
        fs::rename(folder + "/other", folder + "/pppd");
    }
    for (int i = 0; i < 2000 && open() != before; i++) Sleep(5);
    EXPECT_EQ(open(), before);
}

// The connect that follows would clear the screen, but not while a session is up.
TEST_F(Dialling, ASuccessfulDialWritesItsLineBeforeItConnects) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.dialling = 1; });
        PostToMain(WM_RASDIALEVENT, 8192, 0);
        ASSERT_EQ(AwaitBox(), "Error: Already a session to the UNIX Host");
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(1), "helloSuccessful connection");
            EXPECT_EQ(session.screen.cursor_row, 2);
            EXPECT_EQ(session.screen.cursor_col, 1);
            EXPECT_EQ(session.dialling, 0u);
            EXPECT_EQ(session.last_dial_state, 8192);
        });
        PressOk();
    });
}

TEST_F(Dialling, AnErrorIsShownWithEveryNewState) {
    RunProgram({}, [] {
        OnWindowThread([] { session.dialling = 1; });
        PostToMain(WM_RASDIALEVENT, 5, 691);
        ASSERT_EQ(AwaitBox(), kFailed);
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(1), "The authentication process is starting");
            EXPECT_EQ(session.dialling, 1u) << "the end has its own state";
        });
        PressOk();
        PostToMain(WM_RASDIALEVENT, 5, 691);
        EXPECT_EQ(AwaitBox(200), "") << "a repeated state is passed over whole";
        OnWindowThread([] { session.dialling = 0; });
    });
}

}  // namespace

// SPDX-License-Identifier: MIT
// The connection manager against a host whose bytes the test controls.
#include <gtest/gtest.h>

#include "session/session_state.h"
#include "settings/settings.h"
#include "terminal/screen_buffer.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/services_test_hooks.h"
#include "tests/support/sessions.h"

namespace {

const char kClosed[] = "Error: Connection to the UNIX Host has been closed...";
const char kNotPossible[] = "Error: Not possible to create a session to the UNIX Host";

TEST(Connection, BytesOfTheHostReachTheGridAndTheScreen) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\r\nsecond line");
        EXPECT_TRUE(
            Eventually([] { return DrawnText().find("second line") != std::string::npos; }));
    });
}

TEST(Connection, TypedTextReachesTheHost) {
    FakeHost host;
    WithSession(host, [&] {
        TypeText("ls -l\n");
        EXPECT_EQ(host.Read(6), "ls -l\r");
    });
}

TEST(Connection, SilentHostNeverBringsTheSessionOnline) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        Sleep(700);
        OnWindowThread([] {
            EXPECT_EQ(session.connected, 0u);
            EXPECT_EQ(session.connect_pending, 1u);
            EXPECT_EQ(StatusText().substr(0, 10), "   request");
        });
    });
}

TEST(Connection, ConnectingWhileARequestIsPendingDoesNothing) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        Connect();
        EXPECT_EQ(AwaitBox(200), "");
        host.Send("x");
        EXPECT_TRUE(Online());
    });
}

TEST(Connection, ConnectingWhileOnlineShowsAlreadyASession) {
    FakeHost host;
    WithSession(host, [&] {
        ConnectLater();
        DismissBox("Error: Already a session to the UNIX Host");
        host.Send(" again");
        EXPECT_TRUE(TerminalShows("hello again"));
    });
}

// The number of a socket alone does not tell them apart: the system may use it again.
TEST(Connection, EverySessionIsCountedAndARefusedConnectIsNot) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        for (DWORD made = 1; made <= 2; ++made) {
            Connect();
            ASSERT_TRUE(host.Accept());
            Connect();
            OnWindowThread([&] {
                EXPECT_EQ(CurrentSession().sockets_made, made);
                EXPECT_EQ(CurrentSession().socket, session.socket.load());
            });
            Close();
            ASSERT_TRUE(DismissBox(kNotPossible));
        }
    });
}

TEST(Connection, DottedAddressIsNeverLookedUpByName) {
    FakeHost host;
    services_test_hooks.host_lookups = 0;
    WithSession(host, [] {});
    EXPECT_EQ(services_test_hooks.host_lookups, 0);
}

TEST(Connection, NameIsLookedUp) {
    FakeHost host;
    services_test_hooks.host_lookups = 0;
    RunProgram({}, [&] {
        SetHost(u"localhost", host.port);
        Connect();
        EXPECT_TRUE(host.Accept());
    });
    EXPECT_EQ(services_test_hooks.host_lookups, 1);
}

TEST(Connection, UnknownNameIsReportedAndTheNextConnectWorks) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"no-such-host.invalid", host.port);
        ConnectLater();
        DismissBox("Error: Cannot connect to the UNIX Host");
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("x");
        EXPECT_TRUE(Online());
    });
}

TEST(Connection, RefusedConnectionShowsNotPossibleAndTheNextConnectWorks) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", RefusingPort());
        Connect();
        DismissBox(kNotPossible);
        EXPECT_TRUE(Offline());
        EXPECT_TRUE(Eventually([] { return StatusText().substr(0, 10) == "   offline"; }));
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("x");
        EXPECT_TRUE(Online());
    });
}

TEST(Connection, OnlyTheLowSixteenBitsOfThePortCount) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port + 65536);
        Connect();
        EXPECT_TRUE(host.Accept());
        OnWindowThread([] { EXPECT_EQ(session.peer.sin_family, 2); });
    });
}

TEST(Connection, NoSocketIsReported) {
    RunProgram({.before = [] { services_test_hooks.fail_socket = true; }}, [&] {
        SetHost(u"127.0.0.1", 23);
        ConnectLater();
        DismissBox("Error: Cannot open the socket interface. Maybe TCP/IP is missing");
        services_test_hooks = {};
    });
}

TEST(Connection, OtherErrorsAreShownWithTheirNumber) {
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", 23);
        services_test_hooks.force_connect_error = 10051;
        ConnectLater();
        DismissBox("Error: Connection to the UNIX Host has failed (10051)");
        services_test_hooks = {};
        EXPECT_TRUE(Offline());
    });
}

TEST(Connection, WithoutNetworkAndEntriesTheQuestionHasAnEmptyName) {
    RunProgram({}, [&] {
        services_test_hooks.dial_up_folder = FreshRoot();
        services_test_hooks.force_connect_error = WSAEHOSTUNREACH;
        SetHost(u"127.0.0.1", 23);
        ConnectLater();
        EXPECT_EQ(AwaitBox(),
                  "Request: No active network. Should I dial a network using modem () ?");
        PressCancel();
        EXPECT_TRUE(Offline());
        OnWindowThread([] { EXPECT_EQ(session.dial_request, 0u); });
        services_test_hooks = {};
    });
}

TEST(Connection, WithoutNetworkTheFirstEntryIsTakenAndSavedWithTheNextSave) {
    const std::string root = FreshRoot(), peers = FreshRoot();
    fclose(fopen((peers + "/ward").c_str(), "w"));
    fclose(fopen((peers + "/annex").c_str(), "w"));
    RunProgram({.root = root}, [&] {
        OnWindowThread([] { session.save_settings = 0; });
        services_test_hooks.dial_up_folder = peers;
        services_test_hooks.dial_up_program = peers + "/ward";
        services_test_hooks.force_connect_error = WSAEHOSTUNREACH;
        SetHost(u"127.0.0.1", 23);
        ConnectLater();
        DismissBox("Request: No active network. Should I dial a network using modem (annex) ?");
        EXPECT_TRUE(Eventually([] { return session.dial_request == 1; }));
        OnWindowThread([] {
            EXPECT_EQ(std::u16string(session.settings.ras), u"annex");
            EXPECT_EQ(std::u16string(ReadString(u"ras", u"none")), u"none");
            EXPECT_EQ(session.save_settings, 1u);
            session.dial_request = 0;
        });
        services_test_hooks = {};
    });
    RunProgram({.root = root,
                .before = [] { EXPECT_EQ(std::u16string(ReadString(u"ras", u"none")), u"annex"); }},
               [] {});
}

TEST(Connection, ANamedEntryIsAskedFor) {
    RunProgram({}, [&] {
        services_test_hooks.force_connect_error = WSAEHOSTUNREACH;
        SetHost(u"127.0.0.1", 23);
        OnWindowThread([] { lstrcpyW(session.settings.ras, u"depot"); });
        ConnectLater();
        EXPECT_EQ(AwaitBox(),
                  "Request: No active network. Should I dial a network using modem (depot) ?");
        PressCancel();
        services_test_hooks = {};
    });
}

TEST(Connection, DisconnectByCommandShowsNoMessage) {
    FakeHost host;
    WithSession(host, [&] {
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(host.Closed());
        EXPECT_TRUE(Offline());
        EXPECT_EQ(AwaitBox(300), "");
        OnWindowThread([] { EXPECT_EQ(StatusText().substr(0, 10), "   offline"); });
    });
}

TEST(Connection, HostThatDropsTheLineIsReported) {
    FakeHost host;
    WithSession(host, [&] {
        host.Drop();
        DismissBox(kClosed);
        EXPECT_TRUE(Offline());
    });
}

TEST(Connection, HostThatResetsTheLineIsReported) {
    FakeHost host;
    WithSession(host, [&] {
        host.Reset();
        DismissBox(kClosed);
        EXPECT_TRUE(Offline());
    });
}

TEST(Connection, HostThatDropsBeforeAnyByteCountsAsClosed) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Drop();
        DismissBox(kClosed);
    });
}

TEST(Connection, ExitOnDisconnectEndsTheProgramWithoutAMessage) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.exit_dis = 1; });
        host.Drop();
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
    });
}

TEST(Connection, ExitOnDisconnectAppliesToTheUsersOwnDisconnectToo) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.exit_dis = 1; });
        PostToMain(WM_COMMAND, 40011);
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
    });
}

TEST(Connection, CancellingARequestClosesItsSocketAndReportsIt) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        PostToMain(WM_COMMAND, 40011);
        DismissBox("Warning: I am busy making a connection. Do you want to cancel the request");
        DismissBox(kNotPossible);
        EXPECT_TRUE(host.Closed());
        EXPECT_TRUE(Offline());
    });
}

TEST(Connection, UrgentDataOfTheHostEndsTheSession) {
    FakeHost host;
    WithSession(host, [&] {
        host.SendUrgent('!');
        DismissBox(kClosed);
        EXPECT_TRUE(Offline());
    });
}

TEST(Connection, ResizeSendsATelnetHostNothing) {
    FakeHost host;
    WithSession(host, [&] {
        host.ReadSome(100);
        ResizeDevice(240, 320);
        ResizeDevice(320, 200);
        ResizeDevice(640, 480);
        EXPECT_EQ(host.ReadSome(300), "");
        TypeText("still here");
        EXPECT_EQ(host.Read(10), "still here");
    });
}

// The receiving thread does not read on while the window thread has not handled its chunk. The
// host's next bytes then wait in the sockets, and the host has to stop sending.
TEST(Connection, SlowTerminalSlowsTheSocket) {
    FakeHost host;
    WithSession(host, [&] {
        size_t sent = 0;
        OnWindowThread([&] {
            const std::string block(65536, 'x');
            sent += host.TrySend(block);
            for (int i = 0; i < 2000 && session.receive_ready == 1; i++) Sleep(5);
            for (int idle = 0; idle < 100;) {
                const size_t n = host.TrySend(block);
                sent += n;
                idle = n > 0 ? 0 : idle + 1;
                if (n == 0) Sleep(2);
            }
            EXPECT_LE(session.receive_count, 3000);
            EXPECT_EQ(session.receive_ready, 0u);
        });
        EXPECT_GT(sent, 0u);
        host.Send("\033[2J\033[Hall of it");
        EXPECT_TRUE(TerminalShows("all of it"));
    });
}

TEST(Connection, LocalEchoShowsTypedCharactersUntilTheHostEchoes) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\377\375\001\033[12l\033[2J\033[H");
        ASSERT_TRUE(
            Eventually([] { return session.modes.localecho == 1 && TerminalRow(1).empty(); }));
        TypeText("abc");
        EXPECT_TRUE(TerminalShows("abc"));
        host.Send("\377\373\001");
        ASSERT_TRUE(Eventually([] { return session.modes.localecho == 0; }));
        TypeText("d");
        host.ReadSome(200);
        OnWindowThread([] { EXPECT_EQ(TerminalRow(1), "abc"); });
    });
}

TEST(Connection, ADialUpNameThatBeginsWithABlankIsReplacedByTheFirstEntry) {
    const std::string peers = FreshRoot();
    fclose(fopen((peers + "/annex").c_str(), "w"));
    RunProgram({}, [&] {
        services_test_hooks.dial_up_folder = peers;
        services_test_hooks.dial_up_program = peers + "/annex";
        services_test_hooks.force_connect_error = WSAEHOSTUNREACH;
        SetHost(u"127.0.0.1", 23);
        OnWindowThread([] {
            lstrcpyW(session.settings.ras, u" depot");
            session.save_settings = 0;
        });
        ConnectLater();
        ASSERT_EQ(AwaitBox(),
                  "Request: No active network. Should I dial a network using modem (annex) ?");
        OnWindowThread([] {
            ASSERT_NE(ShownMessageBox(), nullptr);
            EXPECT_EQ(ShownMessageBox()->icon(), QMessageBox::Question);
            EXPECT_EQ(ShownMessageBox()->standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
            EXPECT_EQ(session.save_settings, 1u);
        });
        PressCancel();
        EXPECT_TRUE(Offline());
        services_test_hooks = {};
    });
}

TEST(Connection, AConnectionThatNeverCameUpIsReportedEvenWithExitOnDisconnect) {
    RunProgram({}, [&] {
        OnWindowThread([] { session.settings.exit_dis = 1; });
        SetHost(u"127.0.0.1", RefusingPort());
        Connect();
        DismissBox(kNotPossible);
        EXPECT_TRUE(Offline());
        OnWindowThread([] {});
        EXPECT_TRUE(ProgramRuns());
    });
}

TEST(Connection, ConnectingWhileOnlineNeitherClearsTheScreenNorLogsInAgain) {
    FakeHost host;
    RunProgram({}, [&] {
        OnWindowThread([] {
            lstrcpyW(session.settings.sear1, u"ogin");
            lstrcpyW(session.settings.resp1, u"name\\015");
        });
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("\033[1mlogin: ");
        EXPECT_EQ(host.Read(5), "name\r");
        ConnectLater();
        DismissBox("Error: Already a session to the UNIX Host");
        host.Send("login: ");
        ASSERT_TRUE(TerminalShows("login: login:"));
        EXPECT_EQ(host.ReadSome(100), "");
        Close();
        ASSERT_TRUE(Offline());
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("login: ");
        EXPECT_EQ(host.Read(5), "name\r") << "a new connect arms it again";
        OnWindowThread([] { EXPECT_EQ(TerminalRow(1), "login:"); });
    });
}

// Each connect clears the SSH progress first, even if the connect then fails.
TEST(Connection, EveryConnectResetsTheSshProgress) {
    FakeHost host;
    const auto reached = [] {
        OnWindowThread([] {
            session.banner_sent = session.ssh_progress = 1;
            session.ssh.recvFill = 7;
        });
    };
    const auto expect_forgotten = [] {
        OnWindowThread([] {
            EXPECT_EQ(session.banner_sent, 0u);
            EXPECT_EQ(session.ssh_progress, 0u);
            EXPECT_EQ(session.ssh.recvFill, 0);
        });
    };
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        reached();
        Connect();
        expect_forgotten();
        ASSERT_TRUE(host.Accept());
        reached();
        Connect();
        expect_forgotten();
        host.Send("x");
        ASSERT_TRUE(Online());
        reached();
        ConnectLater();
        ASSERT_EQ(AwaitBox(), "Error: Already a session to the UNIX Host");
        expect_forgotten();
        PressOk();
    });
}

// Local echo and the attribute belong to the terminal and stay; the host's modes are reset.
TEST(Connection, NewSessionClearsTheScreenAndKeepsAttributeAndEcho) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send(
            "\033[12l\033[20h\033[?5h\033[4h\033[5;10r\033[1mbold\033[7;1H\033#6wide\033[12;3");
        ASSERT_TRUE(TerminalShows("wide"));
        ASSERT_TRUE(Eventually([] { return session.parser.parser_state == 2; }));
        Close();
        ASSERT_TRUE(Offline());
        Connect();
        ASSERT_TRUE(host.Accept());
        OnWindowThread([] {
            EXPECT_EQ(TerminalText().find_first_not_of('\n'), std::string::npos);
            EXPECT_FALSE(IsDoubleWidth(7));
            EXPECT_EQ(session.screen.cursor_row, 1);
            EXPECT_EQ(session.screen.cursor_col, 1);
            EXPECT_EQ(session.screen.top_margin, 1);
            EXPECT_EQ(session.screen.bottom_margin, 24);
            EXPECT_EQ(session.modes.insert_mode, 0u);
            EXPECT_EQ(session.modes.newline_mode, 0u);
            EXPECT_EQ(session.modes.localecho, 1u);
            EXPECT_EQ(session.modes.screen_reverse, 1u);
        });
        host.Send("new");
        ASSERT_TRUE(TerminalShows("new"));
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(1), "new");
            EXPECT_EQ(GetCell(1, 1), DWORD{'n'} | kCellBold);
        });
    });
}

TEST(Connection, UnknownNameStillClearsTheScreenOfTheLastSession) {
    FakeHost host;
    WithSession(host, [&] {
        Close();
        ASSERT_TRUE(Offline());
        OnWindowThread([] { EXPECT_EQ(TerminalRow(1), "hello"); });
        SetHost(u"no-such-host.invalid", host.port);
        ConnectLater();
        ASSERT_EQ(AwaitBox(), "Error: Cannot connect to the UNIX Host");
        OnWindowThread([] {
            EXPECT_EQ(TerminalRow(1), "");
            EXPECT_NE(session.socket.load(), INVALID_SOCKET) << "until the next close";
            EXPECT_EQ(session.connect_pending, 0u);
        });
        PressOk();
    });
}

TEST(Connection, ClearedScreenIsPaintedBeforeTheHostSaysAnything) {
    FakeHost host;
    WithSession(host, [&] {
        const auto drawn = [] { return DrawnText().find("hello") != std::string::npos; };
        ASSERT_TRUE(Eventually(drawn));
        Close();
        ASSERT_TRUE(Offline());
        ASSERT_TRUE(Eventually(drawn)) << "the last session's text stays until the next one";
        Connect();
        ASSERT_TRUE(host.Accept());
        EXPECT_TRUE(Eventually([&] { return !drawn(); }));
    });
}

}  // namespace

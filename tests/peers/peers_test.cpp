// SPDX-License-Identifier: MIT
// The program against real servers: logins typed by a person, the terminal type and size, much
// output, a test suite for terminals.
#include <gtest/gtest.h>
#include <QProcess>

#include "session/session_ports.h"
#include "session/session_state.h"
#include "tests/support/person.h"
#include "tests/support/real_servers.h"
#include "tests/support/sessions.h"

namespace {

struct Server : RealServer {
    explicit Server(const QString& script, const QStringList& arguments = {})
        : RealServer(QUILL_PEERS "/" + script, arguments) {}
};

void LogIn() {
    ASSERT_TRUE(TerminalShows("ogin:")) << TerminalText();
    TypeText("visitor\n");
    ASSERT_TRUE(TerminalShows("assword:")) << TerminalText();
    TypeText("warehouse7\n");
    ASSERT_TRUE(TerminalShows("\n$\n")) << TerminalText();
}

void WithLogin(Server& server, const std::function<void()>& person) {
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", server.port);
        Connect();
        LogIn();
        if (!testing::Test::HasFatalFailure()) person();
    });
}

// What the terminal got: the linker redirects each call of TerminalWrite (--wrap).
std::string g_received;

// 20,000 numbered lines, each of which reaches the terminal once and in order.
void ManyLines() {
    std::string expected;
    for (int i = 1; i <= 20000; i++)
        expected.append("line ").append(std::to_string(i)).append("\r\n");
    ClearAndRun("seq 1 20000 | sed 's/^/line /'; echo \"the \"end");
    ASSERT_TRUE(Eventually(
        [] { return TerminalText().find("line 20000\nthe end") != std::string::npos; }, 60000))
        << TerminalText();
    OnWindowThread([&] {
        // A server that reads CR and LF in two pieces sends CR NUL LF; the terminal ignores the
        // NUL.
        std::erase(g_received, '\0');
        const size_t start = g_received.find("line 1\r\n");
        ASSERT_NE(start, std::string::npos);
        const std::string lines = g_received.substr(start, expected.size());
        const auto place =
            std::mismatch(expected.begin(), expected.end(), lines.begin(), lines.end());
        EXPECT_TRUE(place.first == expected.end())
            << "after " << (place.first - expected.begin()) << " bytes: "
            << testing::PrintToString(
                   std::string(place.second, std::min(place.second + 60, lines.end())));
    });
}

TEST(InetutilsTelnetd, LetsInAPersonWhoTypes) {
    Server server("telnetd.sh");
    START_OR_SKIP(server);
    WithLogin(server, [] {
        ClearAndRun("id -un");
        EXPECT_TRUE(TerminalShows("\nvisitor\n")) << TerminalText();
        OnWindowThread([] { EXPECT_EQ(session.modes.localecho, 0u) << "the host echoes"; });
    });
}

TEST(InetutilsTelnetd, TerminalTypeAndSizeArrive) {
    Server server("telnetd.sh");
    START_OR_SKIP(server);
    WithLogin(server, [] {
        ClearAndRun("echo type=$TERM; stty -a");
        EXPECT_TRUE(TerminalShows("type=vt220")) << TerminalText();
        EXPECT_TRUE(TerminalShows("erase = ")) << TerminalText();
        EXPECT_TRUE(TerminalShows(" echo ")) << TerminalText();
    });
}

TEST(InetutilsTelnetd, TwentyThousandLinesArriveIntact) {
    Server server("telnetd.sh");
    START_OR_SKIP(server);
    WithLogin(server, [] { ManyLines(); });
}

TEST(InetutilsTelnetd, VttestDrawsItsFirstScreen) {
    Server server("telnetd.sh");
    START_OR_SKIP(server);
    WithLogin(server, [] { ExpectFirstScreenOfVttest("vttest"); });
}

TEST(InetutilsTelnetd, InterruptKeepsTheSession) {
    Server server("telnetd.sh");
    START_OR_SKIP(server);
    WithLogin(server, [] {
        ClearAndRun("yes");
        ASSERT_TRUE(TerminalShows("y\ny\ny\n"));
        OnWindowThread([] { SessionSend(reinterpret_cast<const BYTE*>("\003"), 1, 0); });
        ASSERT_TRUE(Eventually([] { return TerminalRow(session.screen.cursor_row) == "$"; }))
            << TerminalText();
        TypeText("echo still $((40 + 2))\n");
        EXPECT_TRUE(TerminalShows("\nstill 42\n")) << TerminalText();
    });
}

TEST(InetutilsTelnetd, TheServersEndIsReported) {
    Server server("telnetd.sh");
    START_OR_SKIP(server);
    WithLogin(server, [] {
        TypeText("exit\n");
        DismissBox("Error: Connection to the UNIX Host has been closed...");
    });
}

// The default search text sends the name, the second pair sends the password.
void LogInByItself(Server& server) {
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", server.port);
        OnWindowThread([] {
            EXPECT_EQ(lstrcmpW(session.settings.sear1, u"ogin"), 0);
            lstrcpyW(session.settings.resp1, u"visitor\\015");
            lstrcpyW(session.settings.sear2, u"assword");
            lstrcpyW(session.settings.resp2, u"warehouse7\\015");
        });
        Connect();
        ASSERT_TRUE(TerminalShows("\n$\n")) << TerminalText();
        ClearAndRun("id -un");
        EXPECT_TRUE(TerminalShows("\nvisitor\n")) << TerminalText();
    });
}

TEST(InetutilsTelnetd, LogsInByItself) {
    Server server("telnetd.sh");
    START_OR_SKIP(server);
    LogInByItself(server);
}

TEST(BusyboxTelnetd, LogsInByItself) {
    Server server("busybox_telnetd.sh");
    START_OR_SKIP(server);
    LogInByItself(server);
}

TEST(BusyboxTelnetd, LetsInAPersonWhoTypes) {
    Server server("busybox_telnetd.sh");
    START_OR_SKIP(server);
    WithLogin(server, [] {
        ClearAndRun("id -un");
        EXPECT_TRUE(TerminalShows("\nvisitor\n")) << TerminalText();
    });
}

TEST(BusyboxTelnetd, TwentyThousandLinesArriveIntact) {
    Server server("busybox_telnetd.sh");
    START_OR_SKIP(server);
    WithLogin(server, [] { ManyLines(); });
}

TEST(NoNetwork, QuestionIsAskedWhereNoInterfaceIsUp) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root for a network name space";
    QProcess inside;
    inside.start("unshare",
                 {"-n", QCoreApplication::applicationFilePath(), "--gtest_also_run_disabled_tests",
                  "--gtest_filter=NoNetwork.DISABLED_Inside"});
    ASSERT_TRUE(inside.waitForFinished(60000));
    EXPECT_EQ(inside.exitCode(), 0) << inside.readAll().toStdString();
}

// The test above runs this one in a network name space without interfaces.
TEST(NoNetwork, DISABLED_Inside) {
    RunProgram({}, [] {
        SetHost(u"192.0.2.1", 23);
        OnWindowThread([] { lstrcpyW(session.settings.ras, u"depot"); });
        ConnectLater();
        EXPECT_EQ(AwaitBox(),
                  "Request: No active network. Should I dial a network using modem (depot) ?");
        PressCancel();
        EXPECT_TRUE(Offline());
    });
}

}  // namespace

void RealTerminalWrite(const BYTE* bytes, int count) __asm__("__real__Z13TerminalWritePKhi");
void RecordTerminalWrite(const BYTE* bytes, int count) __asm__("__wrap__Z13TerminalWritePKhi");
void RecordTerminalWrite(const BYTE* bytes, int count) {
    g_received.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    RealTerminalWrite(bytes, count);
}

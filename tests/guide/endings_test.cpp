// SPDX-License-Identifier: MIT
// What ends or blocks a session on the host's side, as docs/hosts.md says.
#include <gtest/gtest.h>
#include <QThread>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/guide/host_page.h"
#include "tests/guide/host_steps.h"
#include "tests/ssh1/test_server.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

const char kClosed[] = "Error: Connection to the UNIX Host has been closed...";

TEST(Endings, ServerThatAsksWhetherTheClientIsThereEndsAnIdleSession) {
    const Host host =
        SshHost("ClientAliveInterval 0", "ClientAliveInterval 1\nClientAliveCountMax 1\n");
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] { EXPECT_TRUE(DismissBox(kClosed)); });
}

TEST(Endings, ServerOfTheBoxLeavesAnIdleSessionAlone) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] {
        QThread::sleep(4);
        RunAtPrompt("echo still $((40 + 2))", "still 42");
    });
}

// The time limit of bash, which counts only at its prompt.
TEST(Endings, ShellWithATimeLimitEndsASessionAtThePrompt) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] {
        TypeText("TMOUT=3; cat\n");
        QThread::sleep(4);
        TypeText("in front\n");
        ASSERT_TRUE(TerminalShows("in front\nin front\n")) << TerminalText();
        TypeText("\004unset TMOUT; clear\n");
        QThread::sleep(4);
        RunAtPrompt("echo still $((40 + 2))", "still 42");
        TypeText("TMOUT=1\n");
        EXPECT_TRUE(Offline());
    });
}

void SignOnWith(const char16_t* password) {
    const HWND dialog = AwaitDialog("Sign on to the host");
    ASSERT_NE(dialog, nullptr);
    TypeInto(dialog, IDC_SSH_P, password);
    ClickControl(dialog, IDOK);
    ASSERT_TRUE(Closed(dialog));
}

TEST(Endings, SignOnThatTakesTooLongEndsWithItsOk) {
    const Host host = SshHost("PermitRootLogin no", "LoginGraceTime 1\n");
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithConfig(Recipe("ssh-client", host.words()), [] {
        ASSERT_NE(AwaitDialog("Sign on to the host"), nullptr);
        QThread::sleep(3);
        SignOnWith(u"warehouse7");
        EXPECT_TRUE(DismissBox(kClosed));
        EXPECT_TRUE(Offline());
    });
}

// The last one ends the session, the others bring the sign-on back.
TEST(Endings, SignOnWithTooManyWrongPasswordsIsClosed) {
    const Host host = SshHost("PermitRootLogin no", "MaxAuthTries 2\n");
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithConfig(Recipe("ssh-client", host.words()), [] {
        SignOnWith(u"wrong");
        SignOnWith(u"wrong again");
        EXPECT_TRUE(DismissBox(kClosed));
        EXPECT_TRUE(Offline());
        ConnectLater();
        SignOnWithPassword();
        EXPECT_TRUE(TerminalShows("$\n")) << TerminalText();
    });
}

// The limits of the server that these tests use.
TEST(Endings, LimitsOfTheServerAreThoseOfThePage) {
    Host host = SshHost();
    host.steps += "/usr/sbin/sshd -T -f /etc/ssh/sshd_quill >/var/log/settings\n";
    HostMachine machine(host);
    START_OR_SKIP(machine);
    const std::string settings = machine.Log("settings");
    for (const char* line : {"\nlogingracetime 120\n", "\nmaxauthtries 6\n", "\ntcpkeepalive yes\n",
                             "\nclientaliveinterval 0\n"}) {
        EXPECT_NE(settings.find(line), std::string::npos) << line << settings;
    }
}

TEST(Endings, MissingListenerIsReportedAtOnce) {
    const int port = FreePort();
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", port);
        ConnectLater();
        EXPECT_TRUE(DismissBox("Error: Not possible to create a session to the UNIX Host"));
    });
}

// ---------------------------------------------------------------- nothing in common

// For each row of the page's table: the log has its words, and the row's line repairs the server.
TEST(Endings, LogOfTheServerShowsWhatIsMissing) {
    const auto rows = HostsPage().tables.find("An SSH server");
    ASSERT_NE(rows, HostsPage().tables.end());
    ASSERT_EQ(rows->second.size(), 4u);
    for (const PageRow& row : rows->second) {
        SCOPED_TRACE(row[0]);
        const std::vector<std::string> line = CodeOf(row[1]);
        const Host host = line.empty() ? SshHost() : SshHost(line[0], "");
        HostMachine machine(host);
        START_OR_SKIP(machine);
        WithConfig(Recipe("ssh-client", host.words()) + (line.empty() ? "ssh_type = 2\n" : ""), [] {
            EXPECT_TRUE(DismissBox(kClosed));
            EXPECT_TRUE(Offline());
        });
        const std::string expected = CodeOf(row[0]).at(0);
        EXPECT_NE(machine.Log("sshd_quill.log").find(expected), std::string::npos)
            << machine.Log("sshd_quill.log");
    }
}

// ---------------------------------------------------------------- SSH-1

void SignOn(const char16_t* name) {
    const HWND dialog = AwaitDialog("Sign on to the host");
    ASSERT_NE(dialog, nullptr);
    TypeInto(dialog, IDC_SSH_U, name);
    TypeInto(dialog, IDC_SSH_P, u"warehouse7");
    ClickControl(dialog, IDOK);
    ASSERT_TRUE(Closed(dialog));
}

TEST(Endings, NameMistypedInSsh1IsCorrectedByAnotherConnect) {
    TestServer server({"--one-name"});
    ASSERT_GT(server.port, 0) << testing::PrintToString(server.Told());
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", server.port);
        OnWindowThread([] {
            session.settings.ssh = 1;
            session.settings.ssh_type2 = 0;
        });
        ConnectLater();
        SignOn(u"visitro");
        ASSERT_TRUE(DismissBox("Error: Login incorrect"));
        SignOn(u"visitor");
        ASSERT_TRUE(DismissBox("Error: Login incorrect")) << "the server keeps the first name";
        SignOn(u"");
        ASSERT_TRUE(DismissBox("Error: Cannot sign on to the host without a valid user name"));
        ASSERT_TRUE(Offline());
        ConnectLater();
        SignOn(u"visitor");
        EXPECT_TRUE(TerminalShows("$")) << TerminalText();
    });
}

// ---------------------------------------------------------------- silent servers

void UseSsh2() {
    OnWindowThread([] { session.settings.ssh = session.settings.ssh_type2 = 1; });
}

std::string Uint32(size_t value) {
    std::string bytes;
    for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

// A server's offer of algorithms that the terminal has, as a packet.
std::string OfferPacket() {
    std::string payload = "\x14" + std::string(16, 'c');
    for (const std::string list : {"diffie-hellman-group1-sha1", "ssh-dss", "3des-cbc", "3des-cbc",
                                   "hmac-sha1", "hmac-sha1", "none", "none", "", ""}) {
        payload += Uint32(list.size()) + list;
    }
    payload += std::string(5, '\0');
    const size_t padding = 8 - (payload.size() + 5) % 8 + 8;
    return Uint32(1 + payload.size() + padding) + static_cast<char>(padding) + payload +
           std::string(padding, 'p');
}

// The same packet alone is answered.
TEST(Endings, ServerWhoseFirstPacketComesWithItsGreetingStaysOnline) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        UseSsh2();
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("SSH-2.0-old\r\n" + OfferPacket());
        EXPECT_EQ(host.Read(15), "SSH-2.0-1.0.00\n");
        ASSERT_TRUE(Online());
        EXPECT_EQ(host.ReadSome(200), "") << "no answer to the packet";
        EXPECT_EQ(StatusText().substr(0, 10), "    online");
        EXPECT_EQ(AwaitBox(100), "");
        host.Send(OfferPacket());
        EXPECT_EQ(host.Read(4).size(), 4u) << "a packet by itself is answered";
    });
}

TEST(Endings, SilentHostLeavesARequestPending) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        TypeText("\n");
        EXPECT_EQ(host.ReadSome(300), "") << "no key is sent";
        EXPECT_EQ(StatusText().substr(0, 10), "   request");
        host.Send("\xff\xfb\x01");
        EXPECT_TRUE(Online()) << "an option is enough";
    });
}

TEST(Endings, StoppedOutputContinuesWithCtrlQ) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] {
        ClearAndRun("stty ixon -ixany; echo rea\"dy\"; cat");
        ASSERT_TRUE(ShowsRow("ready")) << TerminalText();
        TypeText("\023");
        TypeText("word\n");
        EXPECT_FALSE(
            Eventually([] { return TerminalText().find("word") != std::string::npos; }, 300));
        TypeText("\021");
        EXPECT_TRUE(TerminalShows("word\nword\n")) << TerminalText();
    });
}

}  // namespace

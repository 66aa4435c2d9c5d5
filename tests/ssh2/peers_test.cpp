// SPDX-License-Identifier: MIT
// The program against real SSH-2 servers: sign-on, the shell's window size and terminal type, much
// output, much input, new keys in mid-session, the end of the server.
#include <gtest/gtest.h>
#include <QCryptographicHash>
#include <QProcess>
#include <QThread>

#include "resources/resource_ids.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/support/person.h"
#include "tests/support/real_servers.h"
#include "tests/support/sessions.h"

namespace {

struct Server : RealServer {
    explicit Server(const QStringList& command)
        : RealServer(QUILL_SSH2_SERVERS "/" + command[0], command.mid(1),
                     {"QUILL_PEERS_PATH=" QUILL_PEERS_PATH}) {}
};

struct Peer {
    const char* name;
    QStringList command;
    QStringList rekeying;  // new keys every megabyte; empty: not supported
    DWORD ssh_type;
};

// clang-format off
const Peer kPeers[] = {
    {"OpenSshTripleDes",  {"sshd.sh"}, {"sshd.sh", "RekeyLimit=1M"}, 1},
    {"AsyncSshTripleDes", {"asyncssh_server.py", "3des-cbc"}, {"asyncssh_server.py", "3des-cbc", "1000000"}, 1},
    {"AsyncSshBlowfish",  {"asyncssh_server.py", "blowfish-cbc"}, {"asyncssh_server.py", "blowfish-cbc", "1000000"}, 2},
    {"ParamikoTripleDes", {"paramiko_server.py"}, {}, 0},
    {"ConchTripleDes",    {"conch_server.py", "3des-cbc"}, {}, 1},
    {"ConchBlowfish",     {"conch_server.py", "blowfish-cbc"}, {}, 2},
};
// clang-format on

// The name that a list of the tests shows.
void PrintTo(const Peer& peer, std::ostream* out) { *out << peer.name; }

class Ssh2Peer : public testing::TestWithParam<Peer> {};

// What the terminal got: the linker redirects each call of TerminalWrite (--wrap).
std::string g_received;
size_t g_received_digits;
int g_key_exchanges;
int g_requests_granted;

void UseSsh2(DWORD ssh_type) {
    OnWindowThread([=] {
        session.settings.ssh = 1;
        session.settings.ssh_type = ssh_type;
        session.settings.ssh_type2 = 1;
        session.settings.ssh_def = 0;
        g_received.clear();
        g_received_digits = 0;
        g_key_exchanges = 0;
        g_requests_granted = 0;
    });
}

// Types into the dialog as a person does.
void SignOn(const char16_t* user, const char16_t* password) {
    const HWND dialog = AwaitDialog("Sign on to the host");
    ASSERT_NE(dialog, nullptr);
    TypeInto(dialog, IDC_SSH_U, user);
    TypeInto(dialog, IDC_SSH_P, password);
    ClickControl(dialog, IDOK);
    ASSERT_TRUE(Closed(dialog));
}

void WithShell(const Server& server, DWORD ssh_type, const std::function<void()>& person) {
    RunProgram({}, [&] {
        UseSsh2(ssh_type);
        SetHost(u"127.0.0.1", server.port);
        Connect();
        SignOn(u"visitor", u"warehouse7");
        ASSERT_TRUE(TerminalShows("$")) << TerminalText() << StatusText();
        person();
    });
}

void Send(const std::string& bytes) {
    OnWindowThread([&] {
        SessionSend(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<int>(bytes.size()), 0);
    });
}

}  // namespace

// ---------------------------------------------------------------- redirected by the linker

void RealTerminalWrite(const BYTE* bytes, int count) __asm__("__real__Z13TerminalWritePKhi");
void RecordTerminalWrite(const BYTE* bytes, int count) __asm__("__wrap__Z13TerminalWritePKhi");
void RealNewKeys() __asm__("__real__Z9OnNewKeysv");
void CountNewKeys() __asm__("__wrap__Z9OnNewKeysv");
void RealChannelSuccess() __asm__("__real__Z16OnChannelSuccessv");
void CountGrant() __asm__("__wrap__Z16OnChannelSuccessv");

void RecordTerminalWrite(const BYTE* bytes, int count) {
    g_received_digits += static_cast<size_t>(std::count(bytes, bytes + count, BYTE{'7'}));
    if (g_received.size() < 4000000)
        g_received.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    RealTerminalWrite(bytes, count);
}

void CountNewKeys() {
    g_key_exchanges++;
    RealNewKeys();
}

void CountGrant() {
    g_requests_granted++;
    RealChannelSuccess();
}

// ---------------------------------------------------------------- tests with each server

TEST_P(Ssh2Peer, ShellKnowsItsSizeAndItsTerminalAndTheStatusIsSecure) {
    Server server(GetParam().command);
    START_OR_SKIP(server);
    WithShell(server, GetParam().ssh_type, [] {
        EXPECT_EQ(StatusText().substr(0, 10), "    secure");
        ClearAndRun("stty size; echo type=$TERM; tty");
        EXPECT_TRUE(TerminalShows("\n24 80\n")) << TerminalText();
        EXPECT_TRUE(TerminalShows("type=vt220")) << TerminalText();
        EXPECT_TRUE(TerminalShows("/dev/pts/")) << TerminalText();
        uint32_t sent = 0;
        OnWindowThread([&] { sent = session.ssh2.sendSeq; });
        ResizeDevice(320, 200);
        ResizeDevice(240, 320);
        ResizeDevice(320, 200);
        OnWindowThread([&] { EXPECT_EQ(session.ssh2.sendSeq, sent) << "nothing is told"; });
        ClearAndRun("stty size; echo re\"\"sized");
        EXPECT_TRUE(TerminalShows("resized")) << TerminalText();
        EXPECT_EQ(TerminalRow(2), "24 80") << "whatever the window shows";
    });
}

TEST_P(Ssh2Peer, WrongPasswordAsksAgainAndTheRightOneGetsIn) {
    Server server(GetParam().command);
    START_OR_SKIP(server);
    RunProgram({}, [&] {
        UseSsh2(GetParam().ssh_type);
        SetHost(u"127.0.0.1", server.port);
        Connect();
        SignOn(u"visitor", u"wrong");
        SignOn(u"visitor", u"wrong too");
        SignOn(u"visitor", u"warehouse7");
        EXPECT_TRUE(TerminalShows("$")) << TerminalText();
    });
}

TEST_P(Ssh2Peer, TwentyThousandLinesArriveWhole) {
    Server server(GetParam().command);
    START_OR_SKIP(server);
    WithShell(server, GetParam().ssh_type, [] {
        std::string expected;
        for (int i = 1; i <= 20000; i++)
            expected.append("line ").append(std::to_string(i)).append("\r\n");
        ClearAndRun("seq 1 20000 | sed 's/^/line /'; echo \"the \"end");
        ASSERT_TRUE(Eventually(
            [] { return TerminalText().find("line 20000\nthe end") != std::string::npos; }, 60000))
            << TerminalText();
        OnWindowThread([&] {
            const size_t start = g_received.find("line 1\r\n");
            ASSERT_NE(start, std::string::npos);
            EXPECT_TRUE(g_received.compare(start, expected.size(), expected) == 0);
        });
    });
}

// In raw mode, so that the pty buffers no lines. Every byte value except the pty's control bytes.
TEST_P(Ssh2Peer, TwelveThousandBytesOfInputArriveWhole) {
    Server server(GetParam().command);
    START_OR_SKIP(server);
    WithShell(server, GetParam().ssh_type, [] {
        std::string bytes;
        while (bytes.size() < 12000) bytes += static_cast<char>((bytes.size() * 7 + 1) % 256);
        QByteArray digest =
            QCryptographicHash::hash(QByteArray::fromStdString(bytes), QCryptographicHash::Sha1)
                .toHex();
        ClearAndRun("stty raw -echo; echo rea\"dy\"; head -c 12000 | sha1sum; stty sane");
        ASSERT_TRUE(TerminalShows("ready")) << TerminalText();
        Send(bytes);
        EXPECT_TRUE(TerminalShows(digest.toStdString())) << TerminalText();
    });
}

TEST_P(Ssh2Peer, NewKeysEveryMegabyteLeaveASessionOf50MegabytesWhole) {
    if (GetParam().rekeying.isEmpty()) GTEST_SKIP() << "this server does not ask for new keys";
    Server server(GetParam().rekeying);
    START_OR_SKIP(server);
    WithShell(server, GetParam().ssh_type, [] {
        ClearAndRun("head -c 50000000 /dev/zero | tr '\\0' $((8 - 1)); echo; echo \"the \"end");
        for (int i = 0; i < 20; i++) {
            TypeText("x");
            QThread::msleep(100);
        }
        ASSERT_TRUE(
            Eventually([] { return TerminalText().find("the end") != std::string::npos; }, 240000))
            << TerminalText() << g_received_digits;
        OnWindowThread([] {
            EXPECT_EQ(g_received_digits, 50000000u);
            EXPECT_GE(g_key_exchanges, 40);
        });
        PressKey(Qt::Key_C, Qt::ControlModifier);
        TypeText("\necho still $((40 + 2))\n");
        EXPECT_TRUE(TerminalShows("\nstill 42\n")) << TerminalText();
    });
}

TEST_P(Ssh2Peer, VttestDrawsItsFirstScreen) {
    Server server(GetParam().command);
    START_OR_SKIP(server);
    WithShell(server, GetParam().ssh_type, [] { ExpectFirstScreenOfVttest("vttest"); });
}

TEST_P(Ssh2Peer, ServerKilledInMidSessionIsReported) {
    Server server(GetParam().command);
    START_OR_SKIP(server);
    WithShell(server, GetParam().ssh_type, [&] {
        server.process.closeWriteChannel();
        EXPECT_TRUE(DismissBox("Error: Connection to the UNIX Host has been closed..."));
        EXPECT_TRUE(Offline());
    });
}

TEST_P(Ssh2Peer, LeavingTheShellEndsTheSessionWithoutABox) {
    Server server(GetParam().command);
    START_OR_SKIP(server);
    WithShell(server, GetParam().ssh_type, [] {
        TypeText("exit\n");
        EXPECT_TRUE(Offline());
        EXPECT_EQ(AwaitBox(200), "");
    });
}

// lshd grants the pty and then closes the channel: it requires a list of terminal modes with an end
// mark, and ours is empty.
class Ssh2Lsh : public testing::TestWithParam<Peer> {};

TEST_P(Ssh2Lsh, SignsOnAtTheSecondPasswordAndGetsAPty) {
    Server server(GetParam().command);
    START_OR_SKIP(server);
    RunProgram({}, [&] {
        UseSsh2(GetParam().ssh_type);
        SetHost(u"127.0.0.1", server.port);
        Connect();
        SignOn(u"visitor", u"wrong");
        SignOn(u"visitor", u"warehouse7");
        EXPECT_TRUE(Eventually([] { return g_requests_granted > 0; }));
        OnWindowThread([] { EXPECT_EQ(g_key_exchanges, 1); });
        EXPECT_TRUE(Offline());
        EXPECT_EQ(AwaitBox(200), "");
    });
}

INSTANTIATE_TEST_SUITE_P(Ssh2, Ssh2Lsh,
                         testing::Values(Peer{"TripleDes", {"lshd.sh", "3des-cbc"}, {}, 1},
                                         Peer{"Blowfish", {"lshd.sh", "blowfish-cbc"}, {}, 2}),
                         [](const auto& peer) { return std::string(peer.param.name); });

INSTANTIATE_TEST_SUITE_P(Ssh2, Ssh2Peer, testing::ValuesIn(kPeers),
                         [](const auto& peer) { return std::string(peer.param.name); });

// SPDX-License-Identifier: MIT
// The whole program against an SSH-1 server on a real terminal and a real shell.
#include <gtest/gtest.h>
#include <QCryptographicHash>

#include "session/session_ports.h"
#include "session/session_state.h"
#include "tests/ssh1/test_server.h"
#include "tests/support/person.h"
#include "tests/support/real_servers.h"
#include "tests/support/sessions.h"
#include "ui/dialogs/dialogs.h"

namespace {

enum { kDes, kTripleDes, kBlowfish };  // settings.ssh_type

std::string g_received;                 // what TerminalWrite got, through the linker's --wrap
int g_asked;                            // calls of AskSignOn
std::function<void()> g_during_dialog;  // what the user does in the dialog

const char kClosed[] = "Error: Connection to the UNIX Host has been closed...";

void SetUp(const TestServer& server, DWORD cipher) {
    SetHost(u"127.0.0.1", server.port);
    OnWindowThread([&] {
        Settings& settings = session.settings;
        settings.ssh = 1;
        settings.ssh_type2 = 0;
        settings.ssh_type = cipher;
        settings.ssh_def = 1;
        lstrcpyW(settings.ssh_u, u"visitor");
        lstrcpyW(settings.ssh_p, u"warehouse7");
        g_received.clear();
        g_asked = 0;
        g_during_dialog = nullptr;
    });
}

// Runs the program set up for the server, but not connected.
void WithProgram(const QStringList& options, DWORD cipher,
                 const std::function<void(TestServer&)>& person) {
    TestServer server(options);
    ASSERT_GT(server.port, 0) << testing::PrintToString(server.Told());
    RunProgram({}, [&] {
        SetUp(server, cipher);
        person(server);
    });
    EXPECT_EQ(server.Count("misbehaviour"), 0) << testing::PrintToString(server.Told());
    EXPECT_EQ(server.Count("Traceback"), 0) << testing::PrintToString(server.Told());
}

// Runs the program with a session at the shell's prompt.
void WithShell(const QStringList& options, DWORD cipher,
               const std::function<void(TestServer&)>& person) {
    WithProgram(options, cipher, [&](TestServer& server) {
        Connect();
        ASSERT_TRUE(TerminalShows("$\n")) << TerminalText();
        person(server);
    });
}

void ExpectWorkingShell(const QStringList& options, DWORD cipher = kTripleDes) {
    WithShell(options, cipher, [](TestServer&) {
        TypeText("echo sum $((40 + 2))\n");
        EXPECT_TRUE(TerminalShows("\nsum 42\n")) << TerminalText();
    });
}

// Expects that the connection ends with exactly this box.
void ExpectBox(const QStringList& options, DWORD cipher, const std::string& text) {
    WithProgram(options, cipher, [&](TestServer&) {
        ConnectLater();
        EXPECT_TRUE(DismissBox(text));
        EXPECT_TRUE(Offline());
        EXPECT_EQ(AwaitBox(100), "");
    });
}

// ---------------------------------------------------------------- ciphers and keys

TEST(Ciphers, DesOpensAShell) { ExpectWorkingShell({}, kDes); }
TEST(Ciphers, TripleDesOpensAShell) { ExpectWorkingShell({}, kTripleDes); }
TEST(Ciphers, BlowfishOpensAShell) { ExpectWorkingShell({}, kBlowfish); }

TEST(Ciphers, TheServerSeesTheChosenOne) {
    const char* lines[] = {"cipher 2", "cipher 3", "cipher 6"};
    for (const DWORD cipher : {kDes, kTripleDes, kBlowfish})
        WithShell({}, cipher,
                  [&](TestServer& server) { EXPECT_TRUE(server.Tells(lines[cipher])); });
}

TEST(Ciphers, UnsupportedOneIsReportedWithTheServersList) {
    ExpectBox({"--ciphers", "0x44"}, kTripleDes,
              "Error: Server does not support selected encryption (3-DES). Try another encryption\n"
              "Server supports: DES BLOWFISH ");
}

QStringList Keys(int host, int server) {
    return {"--host-bits", QString::number(host), "--server-bits", QString::number(server)};
}

TEST(Keys, HostKeyMayBeTheLongerOne) { ExpectWorkingShell(Keys(1024, 768)); }
TEST(Keys, HostKeyMayBeTheShorterOne) { ExpectWorkingShell(Keys(768, 1024)); }
TEST(Keys, Of512And2048BitsOpenAShell) { ExpectWorkingShell(Keys(512, 2048)); }
TEST(Keys, Of2048And512BitsOpenAShell) { ExpectWorkingShell(Keys(2048, 512)); }
TEST(Keys, Of2048And1024BitsOpenAShell) { ExpectWorkingShell(Keys(2048, 1024)); }
TEST(Keys, OfOddLengthsOpenAShell) { ExpectWorkingShell(Keys(1001, 777)); }

// A number as long as the key leaves no room for the padding.
TEST(Keys, OfOneLengthCannotCarryASessionKey) {
    ExpectBox(Keys(1024, 1024), kTripleDes, "Error: SSH protocol violation. Session must close!!!");
}

// ---------------------------------------------------------------- login

TEST(Login, TheServerSeesUserPasswordAndTerminal) {
    WithShell({}, kTripleDes, [](TestServer& server) {
        EXPECT_TRUE(server.Tells("client SSH-1.5-1.0.00"));
        EXPECT_TRUE(server.Tells("flags 0"));
        EXPECT_TRUE(server.Tells("user visitor"));
        EXPECT_TRUE(server.Tells("password warehouse7"));
        EXPECT_TRUE(server.Tells("pty vt220 24 80 0 0 modes 00"));
        EXPECT_TRUE(server.Tells("shell"));
        EXPECT_EQ(g_asked, 0);
    });
}

TEST(Login, AnyIdentificationIsTaken) {
    ExpectWorkingShell({"--line", "SSH-1.99-whatever comes\\r\\n"});
}

TEST(Login, StatusLineReadsSecure) {
    WithShell({}, kTripleDes, [](TestServer&) {
        EXPECT_TRUE(Eventually([] { return StatusText().find("secure") != std::string::npos; }))
            << StatusText();
    });
}

TEST(Login, SucceedsWithTheRightPasswordAfterAWrongOne) {
    WithProgram({}, kBlowfish, [](TestServer& server) {
        OnWindowThread([] {
            lstrcpyW(session.settings.ssh_p, u"guess");
            g_during_dialog = [] { lstrcpyW(session.settings.ssh_p, u"warehouse7"); };
        });
        ConnectLater();
        EXPECT_TRUE(DismissBox("Error: Login incorrect"));
        ASSERT_TRUE(TerminalShows("$\n")) << TerminalText();
        EXPECT_TRUE(server.Tells("password guess"));
        EXPECT_TRUE(server.Tells("password warehouse7"));
        EXPECT_EQ(server.Count("user visitor"), 2);
        EXPECT_EQ(g_asked, 1);
    });
}

TEST(Login, PasswordThatIsNotRememberedIsAskedForAndForgotten) {
    WithProgram({}, kDes, [](TestServer& server) {
        OnWindowThread([] {
            session.settings.ssh_def = 0;
            session.settings.ssh_p[0] = 0;
            g_during_dialog = [] { lstrcpyW(session.settings.ssh_p, u"warehouse7"); };
        });
        Connect();
        ASSERT_TRUE(TerminalShows("$\n")) << TerminalText();
        EXPECT_EQ(g_asked, 1);
        EXPECT_TRUE(server.Tells("password warehouse7"));
        OnWindowThread([] { EXPECT_EQ(session.settings.ssh_p[0], 0); });
    });
}

TEST(Login, WithoutAUserNameIsRefusedHere) {
    WithProgram({}, kTripleDes, [](TestServer&) {
        OnWindowThread([] { session.settings.ssh_u[0] = 0; });
        ConnectLater();
        EXPECT_TRUE(DismissBox("Error: Cannot sign on to the host without a valid user name"));
        EXPECT_TRUE(Offline());
    });
}

TEST(Login, ServerThatRequiresNoPassword) {
    WithShell({"--no-password"}, kTripleDes,
              [](TestServer& server) { EXPECT_EQ(server.Count("password"), 0); });
}

TEST(Login, RefusedTerminalStillGivesAShell) {
    WithShell({"--no-pty"}, kTripleDes, [](TestServer&) {
        OnWindowThread([] {
            const char line[] = "printf '\\r\\nno terminal: %s' \"$(tty)\"\n";
            SessionSend(reinterpret_cast<const BYTE*>(line), sizeof(line) - 1, 0);
        });
        EXPECT_TRUE(TerminalShows("no terminal: not a tty")) << TerminalText();
    });
}

TEST(Login, OpensASecondSessionOfTheSameProgram) {
    WithShell({}, kDes, [](TestServer& server) {
        Close();
        EXPECT_TRUE(Offline());
        OnWindowThread([] { session.settings.ssh_type = kBlowfish; });
        Connect();
        EXPECT_TRUE(server.Tells("cipher 6"));
        ASSERT_TRUE(TerminalShows("$\n")) << TerminalText();
        TypeText("echo again $((40 + 2))\n");
        EXPECT_TRUE(TerminalShows("\nagain 42\n")) << TerminalText();
    });
}

// ---------------------------------------------------------------- in the session

TEST(Session, IgnoreAndDebugMessagesAnywhere) {
    for (const char* pieces : {"0", "1", "7"})
        ExpectWorkingShell({"--chatter", "--pieces", pieces});
}

TEST(Session, TwentyThousandLinesArriveIntact) {
    std::string expected;
    for (int i = 1; i <= 20000; i++)
        expected.append("line ").append(std::to_string(i)).append("\r\n");
    for (const DWORD cipher : {kDes, kTripleDes, kBlowfish}) {
        WithShell({}, cipher, [&](TestServer&) {
            ClearAndRun("seq 1 20000 | sed 's/^/line /'; echo \"the \"end");
            ASSERT_TRUE(Eventually(
                [] { return TerminalText().find("line 20000\nthe end") != std::string::npos; },
                60000))
                << TerminalText();
            OnWindowThread([&] {
                EXPECT_NE(g_received.find(expected), std::string::npos) << "the lines in a row";
            });
        });
    }
}

TEST(Session, TwelveThousandBytesTypedArriveIntact) {
    std::string typed;
    for (int i = 0; i < 12000; i++) typed += static_cast<char>(i * 7 + i / 256);
    const std::string digest =
        QCryptographicHash::hash(QByteArray::fromStdString(typed), QCryptographicHash::Md5)
            .toHex()
            .toStdString();
    WithShell({}, kTripleDes, [&](TestServer&) {
        TypeText("stty raw -echo; echo rea\"\"dy; head -c 12000 | md5sum; stty sane\n");
        ASSERT_TRUE(TerminalShows("\nready\n")) << TerminalText();
        OnWindowThread([&] {
            SessionSend(reinterpret_cast<const BYTE*>(typed.data()), static_cast<int>(typed.size()),
                        0);
        });
        EXPECT_TRUE(TerminalShows(digest)) << TerminalText();
    });
}

// The shell does not read for a while, so all buffers on the way fill up.
TEST(Session, AMegabyteForASlowReaderArrivesIntact) {
    std::string typed;
    for (int i = 0; i < 1000000; i++) typed += static_cast<char>(i * 7 + i / 256);
    const std::string digest =
        QCryptographicHash::hash(QByteArray::fromStdString(typed), QCryptographicHash::Md5)
            .toHex()
            .toStdString();
    WithShell({}, kTripleDes, [&](TestServer&) {
        TypeText("stty raw -echo; echo rea\"\"dy; sleep 2; head -c 1000000 | md5sum; stty sane\n");
        ASSERT_TRUE(TerminalShows("\nready\n")) << TerminalText();
        OnWindowThread([&] {
            SessionSend(reinterpret_cast<const BYTE*>(typed.data()), static_cast<int>(typed.size()),
                        0);
        });
        EXPECT_TRUE(
            Eventually([&] { return TerminalText().find(digest) != std::string::npos; }, 60000))
            << TerminalText();
    });
}

TEST(Session, VttestDrawsItsFirstScreen) {
    QProcess unpack;
    unpack.start(QUILL_PEERS "/unpack.sh", {"vttest"});
    unpack.waitForFinished(120000);
    if (unpack.exitCode() == 77) GTEST_SKIP() << unpack.readAllStandardError().toStdString();
    const std::string program = unpack.readAll().trimmed().toStdString() + "/usr/bin/vttest";
    WithShell({}, kBlowfish, [&](TestServer&) { ExpectFirstScreenOfVttest(program); });
}

TEST(Session, ReportsOfTheTerminalAreSent) {
    WithShell({}, kTripleDes, [](TestServer&) {
        TypeText(
            "stty -echo; printf '\\033[5;9H\\033[6n'; IFS= read -rsd R at; clear; stty echo;"
            " echo \"at${at#?}\"\n");
        EXPECT_TRUE(TerminalShows("at[5;9")) << TerminalText();
    });
}

// Every packet that the client builds changes its send buffer.
TEST(Session, ResizeSendsTheServerNothing) {
    WithShell({}, kTripleDes, [](TestServer&) {
        const auto built = [] {
            const BYTE* bytes = session.ssh1.sendBuf;
            return std::string(bytes, bytes + 4096);
        };
        TypeText("stty size\n");
        ASSERT_TRUE(TerminalShows("24 80\n$")) << TerminalText();
        std::string before;
        OnWindowThread([&] { before = built(); });
        ResizeDevice(320, 200);
        ResizeDevice(240, 320);
        OnWindowThread([&] { EXPECT_TRUE(built() == before); });
        TypeText("clear; stty size; echo re\"\"sized\n");
        EXPECT_TRUE(TerminalShows("24 80\nresized")) << TerminalText();
        OnWindowThread([&] { EXPECT_FALSE(built() == before) << "typing does"; });
    });
}

TEST(Session, ExitOfTheShellIsConfirmed) {
    WithShell({}, kTripleDes, [](TestServer& server) {
        TypeText("exit 3\n");
        EXPECT_TRUE(DismissBox(kClosed));
        EXPECT_TRUE(server.Tells("exit 3 confirmed"));
    });
}

TEST(Session, DisconnectByTheUserIsSilent) {
    WithShell({}, kTripleDes, [](TestServer& server) {
        Close();
        EXPECT_TRUE(Offline());
        EXPECT_EQ(AwaitBox(100), "");
        EXPECT_TRUE(server.Tells("gone"));
    });
}

TEST(Session, ItsStateIsClearedAfterwards) {
    WithShell({}, kTripleDes, [](TestServer&) {
        ClearAndRun("echo confiden\"\"tial");
        ASSERT_TRUE(TerminalShows("\nconfidential\n")) << TerminalText();
        Close();
        EXPECT_TRUE(Offline());
        OnWindowThread([] {
            static const Ssh1State fresh = {};
            EXPECT_EQ(std::memcmp(&session.ssh1, &fresh, sizeof(fresh)), 0);
            for (const BYTE byte : session.ssh.recvBuf) ASSERT_EQ(byte, 0);
        });
    });
}

TEST(Session, DisconnectByTheServerIsReported) {
    ExpectBox({"--say", "shell=1:00000003627965"}, kTripleDes,
              "Error: Disconnect request from SSH Server. Session must be terminated");
}

// ---------------------------------------------------------------- bad servers

const char kViolation[] = "Error: SSH protocol violation. Session must close!!!";
const char kRejected[] =
    "Error: SSH server rejects the encryption mode. Session must be terminated";
const char kNoTerminal[] = "Error: SSH server has no TTY ressources. Session must be terminated";
const char kChecksum[] = "Error: SSH message with illegal CRC checksum. Session must close!!!";
const char kTooLarge[] = "Error: Illegal SSH message. Out of memory";

TEST(BadServer, WrongChecksumAtEachPoint) {
    for (const char* point : {"key", "session", "user", "password", "pty"})
        ExpectBox({"--spoil", point}, kTripleDes, kChecksum);
}

TEST(BadServer, WrongTypeAtEachPoint) {
    ExpectBox({"--say", "key=14"}, kTripleDes, kViolation);
    ExpectBox({"--say", "session=15"}, kTripleDes, kRejected);
    ExpectBox({"--say", "pty=17:00000000"}, kTripleDes, kNoTerminal);
}

TEST(BadServer, KeyMessageCutShort) {
    ExpectBox({"--say", "key=2:0011223344556677"}, kTripleDes, kViolation);
    ExpectBox({"--say", "key=2"}, kTripleDes, kViolation);
}

TEST(BadServer, LengthFieldTooLargeAtEachPoint) {
    for (const char* point : {"key", "session", "user", "password", "pty", "shell"})
        ExpectBox({"--raw", QString(point) + "=0000ffff"}, kDes, kTooLarge);
}

}  // namespace

void RealTerminalWrite(const BYTE* bytes, int count) __asm__("__real__Z13TerminalWritePKhi");
void RecordTerminalWrite(const BYTE* bytes, int count) __asm__("__wrap__Z13TerminalWritePKhi");
void RecordTerminalWrite(const BYTE* bytes, int count) {
    g_received.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    RealTerminalWrite(bytes, count);
}

// Answers the Sign on dialog without showing it.
bool AnswerSignOn() __asm__("__wrap__Z9AskSignOnv");
bool AnswerSignOn() {
    g_asked++;
    if (g_during_dialog) g_during_dialog();
    return true;
}

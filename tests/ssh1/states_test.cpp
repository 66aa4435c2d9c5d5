// SPDX-License-Identifier: MIT
// The states of a session: which message each accepts, and how it answers every other one.
#include <gtest/gtest.h>

#include "crypto/ciphers.h"
#include "protocol/protocols.h"
#include "protocol/ssh/ssh1.h"
#include "protocol/ssh/ssh_session.h"
#include "tests/ssh1/outside.h"
#include "tests/ssh1/scripted_host.h"
#include "tests/support/leftovers.h"
#include "text/bytes.h"

namespace {

const std::string kRejected =
    "Error: SSH server rejects the encryption mode. Session must be terminated";
const std::string kNoUser = "Error: Cannot sign on to the host without a valid user name";

const Message kUser = {4, String("visitor"), ""};
const Message kPassword = {9, String("warehouse7"), ""};
const Message kTerminal = {
    10, String("vt220") + Uint32(24) + Uint32(80) + Uint32(0) + Uint32(0) + std::string(1, 0), ""};
const Message kShell = {12, "", ""};

typedef std::vector<Message> Messages;

bool AllZero(const void* memory, size_t size) {
    const auto* bytes = static_cast<const BYTE*>(memory);
    for (size_t i = 0; i < size; i++)
        if (bytes[i]) return false;
    return true;
}

// ---------------------------------------------------------------- a normal session

TEST(Conversation, GoesFromKeyToShell) {
    ScriptedHost host;
    NewSession();
    Receive(host.PublicKey());
    ASSERT_TRUE(host.TakeSessionKey());
    Receive(host.Packet(14));
    EXPECT_EQ(host.Sent(), Messages{kUser});
    Receive(host.Packet(15));
    EXPECT_EQ(host.Sent(), Messages{kPassword});
    Receive(host.Packet(14));
    EXPECT_EQ(host.Sent(), Messages{kTerminal});
    Receive(host.Packet(14));
    EXPECT_EQ(host.Sent(), Messages{kShell});
    EXPECT_EQ(outside.asked, 0);
    EXPECT_EQ(Box(), "");
}

TEST(Conversation, StatusIsSecureFromTheSessionKeyOn) {
    for (int state = 0; state <= 5; state++) {
        SessionInState(state);
        EXPECT_EQ(session.ssh_progress, static_cast<DWORD>(state));
    }
    ScriptedHost host;
    NewSession();
    Receive(host.PublicKey());
    EXPECT_EQ(outside.status_updates, 1);
}

TEST(Conversation, ASecondSessionStartsFromTheBeginning) {
    ScriptedHost host = SessionInState(3);
    Receive(host.Packet(15));  // a refused password
    host = SessionInState(5);
    EXPECT_EQ(outside.asked, 0) << "the last session's refusal is forgotten";
    Receive(host.Packet(17, String("again")));
    EXPECT_EQ(Shown(), "again");
}

TEST(Identification, IsAnsweredWhateverTheLineSays) {
    for (const char* line : {"SSH-1.5-server\n", "SSH-2.0-server\r\n", "hello", "\n"}) {
        NewSession();
        session.banner_sent = 0;
        Receive(line);
        EXPECT_EQ(Wire(), "SSH-1.5-1.0.00\n") << line;
        EXPECT_EQ(session.banner_sent, 1u);
    }
}

TEST(Identification, IsThatOfSsh1ForEveryVersionButOne) {
    for (const DWORD version : {0u, 2u, 0xFFFFFFFFu}) {
        ScriptedHost host;
        NewSession();
        session.banner_sent = 0;
        session.settings.ssh_type2 = version;
        Receive("SSH-2.0-server\n");
        EXPECT_EQ(Wire(), "SSH-1.5-1.0.00\n") << version;
        Receive(host.PublicKey());
        EXPECT_TRUE(host.TakeSessionKey()) << version;
    }
}

TEST(Identification, BytesBehindTheLineInItsChunkAreLost) {
    ScriptedHost host;
    NewSession();
    session.banner_sent = 0;
    Receive("SSH-1.5-eager\n" + host.PublicKey());
    EXPECT_EQ(Wire(), "SSH-1.5-1.0.00\n");
    EXPECT_EQ(session.ssh1.ssh1State, 0);
    EXPECT_EQ(session.ssh.recvFill, 0);
    Receive(host.PublicKey());
    EXPECT_TRUE(host.TakeSessionKey());
}

TEST(Identification, BeginsInTheFirstStateInTheClear) {
    SessionInState(4);
    session.banner_sent = 0;
    Receive("SSH-1.5-next\n");
    EXPECT_EQ(session.ssh1.ssh1State, 0);
    EXPECT_EQ(session.ssh1.ssh1Cipher, nullptr);
}

TEST(Identification, AfterAFailedSendTheNextChunkIsTheLine) {
    NewSession();
    session.banner_sent = 0;
    outside.sends_that_fail = 1;
    Receive("SSH-1.5-lost\n");
    EXPECT_EQ(session.banner_sent, 0u);
    EXPECT_EQ(Wire(), "");
    Receive("SSH-1.5-again\n");
    EXPECT_EQ(session.banner_sent, 1u);
    EXPECT_EQ(Wire(), "SSH-1.5-1.0.00\n");
}

// ---------------------------------------------------------------- every wrong type

TEST(WrongType, WhileTheKeyIsAwaited) {
    for (int type = 0; type <= 255; type++) {
        if (type == 2 || type == 32 || type == 36) continue;
        ScriptedHost host = SessionInState(0);
        Receive(host.Packet(type));
        EXPECT_EQ(Box(), "Error: SSH protocol violation. Session must close!!!") << type;
        EXPECT_EQ(outside.closed, 1);
        EXPECT_EQ(Wire(), "");
    }
}

TEST(WrongType, WhileTheEncryptionIsConfirmed) {
    for (int type = 0; type <= 255; type++) {
        if (type == 14 || type == 32 || type == 36) continue;
        ScriptedHost host = SessionInState(1);
        Receive(host.Packet(type));
        EXPECT_EQ(Box(), kRejected) << type;
        EXPECT_EQ(outside.closed, 1);
        EXPECT_EQ(Wire(), "");
    }
}

TEST(WrongType, AfterTheUserNameMeansThatNoPasswordIsNeeded) {
    for (int type = 0; type <= 255; type++) {
        if (type == 15 || type == 32 || type == 36) continue;
        ScriptedHost host = SessionInState(2);
        Receive(host.Packet(type));
        EXPECT_EQ(host.Sent(), Messages{kTerminal}) << type;
        EXPECT_EQ(session.ssh1.ssh1State, 4);
        EXPECT_EQ(Box(), "");
    }
}

TEST(WrongType, AfterThePasswordMeansThatItWasWrong) {
    for (int type = 0; type <= 255; type++) {
        if (type == 14 || type == 32 || type == 36) continue;
        ScriptedHost host = SessionInState(3);
        Receive(host.Packet(type));
        EXPECT_EQ(Box(), "Error: Login incorrect") << type;
        EXPECT_EQ(outside.asked, 1);
        EXPECT_EQ(host.Sent(), Messages{kUser});
        EXPECT_EQ(session.ssh1.ssh1State, 2);
        EXPECT_EQ(outside.closed, 0);
    }
}

TEST(WrongType, AfterTheTerminalRequestEndsTheSession) {
    for (int type = 0; type <= 255; type++) {
        if (type == 14 || type == 15 || type == 32 || type == 36) continue;
        ScriptedHost host = SessionInState(4);
        Receive(host.Packet(type));
        EXPECT_EQ(Box(), "Error: SSH server has no TTY ressources. Session must be terminated")
            << type;
        EXPECT_EQ(outside.closed, 1);
        EXPECT_EQ(Wire(), "");
    }
}

TEST(WrongType, InTheSessionIsIgnored) {
    ScriptedHost host = SessionInState(5);
    for (int type = 0; type <= 255; type++) {
        if (type == 1 || type == 17 || type == 18 || type == 20) continue;
        Receive(host.Packet(type, String("nothing")));
    }
    EXPECT_EQ(Box(), "");
    EXPECT_EQ(Shown(), "");
    EXPECT_EQ(Wire(), "");
    Receive(host.Packet(17, String("still here")));
    EXPECT_EQ(Shown(), "still here");
}

TEST(IgnoreAndDebug, AreDroppedInEveryState) {
    for (int state = 0; state <= 5; state++) {
        ScriptedHost host = SessionInState(state);
        for (const int type : {32, 36}) {
            Receive(host.Packet(type, String("chatter")));
            Receive(host.Packet(type));
            Receive(host.Packet(type, Uint32(0xFFFFFFFF)));
        }
        EXPECT_EQ(Box(), "") << state;
        EXPECT_EQ(Wire(), "");
        EXPECT_EQ(Shown(), "");
        EXPECT_EQ(session.ssh1.ssh1State, state);
    }
}

// ---------------------------------------------------------------- user name and password

TEST(SignOn, IsNotAskedWhereThePasswordIsRemembered) {
    SessionInState(5);
    EXPECT_EQ(outside.asked, 0);
}

TEST(SignOn, IsAskedWhereItIsNot) {
    ScriptedHost host = SessionInState(1);
    session.settings.ssh_def = 0;
    outside.during_dialog = [] {
        SetText(session.settings.ssh_u, "clerk");
        SetText(session.settings.ssh_p, "typed");
    };
    Receive(host.Packet(14));
    EXPECT_EQ(outside.asked, 1);
    EXPECT_EQ(host.Sent(), (Messages{{4, String("clerk"), ""}}));
    Receive(host.Packet(15));
    EXPECT_EQ(host.Sent(), (Messages{{9, String("typed"), ""}}));
    EXPECT_EQ(outside.asked, 1);
}

TEST(SignOn, PasswordThatIsNotRememberedIsEmptiedOnceSent) {
    ScriptedHost host = SessionInState(2);
    session.settings.ssh_def = 0;
    Receive(host.Packet(15));
    EXPECT_EQ(host.Sent(), Messages{kPassword});
    EXPECT_TRUE(AllZero(session.settings.ssh_p, sizeof(session.settings.ssh_p)));
    EXPECT_EQ(GetText(session.settings.ssh_u), "visitor");
}

TEST(SignOn, PasswordThatIsRememberedStays) {
    SessionInState(5);
    EXPECT_EQ(GetText(session.settings.ssh_p), "warehouse7");
}

TEST(SignOn, IsAskedAgainAfterARefusalThoughThePasswordIsRemembered) {
    ScriptedHost host = SessionInState(3);
    outside.during_dialog = [] { SetText(session.settings.ssh_p, "better"); };
    Receive(host.Packet(15));
    EXPECT_EQ(Box(), "Error: Login incorrect");
    EXPECT_EQ(outside.asked, 1);
    EXPECT_EQ(host.Sent(), Messages{kUser});
    Receive(host.Packet(15));
    EXPECT_EQ(host.Sent(), (Messages{{9, String("better"), ""}}));
    Receive(host.Packet(15));
    EXPECT_EQ(Box(), "Error: Login incorrect");
    EXPECT_EQ(outside.asked, 2);
    Receive(Join({host.Packet(15), host.Packet(14)}));
    EXPECT_EQ(session.ssh1.ssh1State, 4);
}

TEST(SignOn, CancelledSendsTheStoredValues) {
    ScriptedHost host = SessionInState(1);
    session.settings.ssh_def = 0;
    outside.during_dialog = [] {
        session.dialog_result = -1;
        SetText(session.settings.ssh_p, "");
    };
    Receive(Join({host.Packet(14), host.Packet(15)}));
    EXPECT_EQ(host.Sent(), (Messages{kUser, {9, String(""), ""}}));
    EXPECT_EQ(outside.closed, 0);
    session.dialog_result = 0;
}

TEST(SignOn, ThatCannotBeShownEndsTheSessionWithoutAMessage) {
    ScriptedHost host = SessionInState(1);
    session.settings.ssh_def = 0;
    outside.dialog_can_be_shown = false;
    Receive(host.Packet(14));
    EXPECT_EQ(outside.closed, 1);
    EXPECT_EQ(Box(), "");
    EXPECT_EQ(Wire(), "");
}

TEST(SignOn, WithoutAUserNameEndsTheSession) {
    for (const DWORD remembered : {0u, 1u}) {
        ScriptedHost host = SessionInState(1);
        session.settings.ssh_def = remembered;
        SetText(session.settings.ssh_u, "");
        Receive(host.Packet(14));
        EXPECT_EQ(Box(), kNoUser);
        EXPECT_EQ(outside.closed, 1);
        EXPECT_EQ(Wire(), "");
    }
}

TEST(SignOn, TextsGoInTheAnsiCodePage) {
    ScriptedHost host = SessionInState(1);
    session.settings.ssh_u[0] = 0x00E9;  // e with acute
    session.settings.ssh_u[1] = 0x20AC;  // the euro sign
    session.settings.ssh_u[2] = 0;
    Receive(host.Packet(14));
    EXPECT_EQ(host.Sent(), (Messages{{4, String("\xE9\x80"), ""}}));
}

TEST(SignOn, LongestTextsGoWhole) {
    const std::string longest(kSettingUnits - 1, 'l');
    ScriptedHost host = SessionInState(1);
    SetText(session.settings.ssh_u, longest);
    SetText(session.settings.ssh_p, longest);
    SetText(session.settings.termtype, longest);
    Receive(Join({host.Packet(14), host.Packet(15), host.Packet(14)}));
    const Messages sent = host.Sent();
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(sent[0].data, String(longest));
    EXPECT_EQ(sent[1].data, String(longest));
    EXPECT_EQ(sent[2].data.substr(0, 4 + longest.size()), String(longest));
}

TEST(SignOn, ServerThatRequiresNoPasswordGetsNoPassword) {
    ScriptedHost host = SessionInState(2);
    session.settings.ssh_def = 0;
    Receive(host.Packet(14));
    EXPECT_EQ(host.Sent(), Messages{kTerminal});
    EXPECT_EQ(GetText(session.settings.ssh_p), "warehouse7") << "it was not sent";
}

// ---------------------------------------------------------------- while a box is shown

TEST(Interrupted, BoxComesBeforeTheEnd) {
    ScriptedHost host = SessionInState(5);
    int closed = -1;
    outside.during_box = [&] { closed = outside.closed; };
    Receive(host.Packet(1, String("bye")));
    EXPECT_EQ(closed, 0);
    EXPECT_EQ(outside.closed, 1);
}

TEST(Interrupted, SessionThatEndsBehindTheDialogSendsNothing) {
    ScriptedHost host = SessionInState(1);
    session.settings.ssh_def = 0;
    outside.during_dialog = [] { session.socket = INVALID_SOCKET; };
    Receive(host.Packet(14));
    EXPECT_EQ(Wire(), "");
    EXPECT_EQ(outside.closed, 0);
}

// The host drops the line while the dialog is open: the session state is cleared, but its socket
// number stays until the next session.
TEST(Interrupted, SessionThatEndsBehindTheDialogIsOverThoughItsSocketNumberStays) {
    ScriptedHost host = SessionInState(1);
    session.settings.ssh_def = 0;
    outside.during_dialog = [] {
        session.connected = 0;
        ForgetSshSession();
    };
    Receive(Join({host.Packet(14), host.Packet(15)}));
    EXPECT_EQ(outside.asked, 1);
    EXPECT_EQ(session.socket, kTestSocket);
    EXPECT_EQ(session.ssh1.ssh1State, 0);
    EXPECT_EQ(session.ssh1.sendLength, 0);
    EXPECT_EQ(session.ssh.recvFill, 0);
    EXPECT_EQ(outside.status_updates, 0);
    EXPECT_EQ(outside.closed, 0);
    EXPECT_EQ(Wire(), "");
}

// A connect that is refused, since a session is up, empties the receive buffer.
TEST(Interrupted, RefusedConnectBehindTheDialogLeavesNoPacketToRemove) {
    ScriptedHost host = SessionInState(1);
    session.settings.ssh_def = 0;
    outside.during_dialog = BeginProtocol;
    Receive(Join({host.Packet(14), host.Packet(15)}));
    EXPECT_EQ(outside.asked, 1);
    EXPECT_EQ(session.ssh.recvFill, 0);
}

// The system gives the socket of the next session the number of the closed one.
TEST(Interrupted, NextSessionBehindTheDialogIsNotTouchedThoughItsSocketNumberIsTheSame) {
    ScriptedHost host = SessionInState(1);
    session.settings.ssh_def = 0;
    outside.during_dialog = [] {
        ForgetSshSession();
        BeginProtocol();
        ++session.sockets_made;
        Receive("SSH-1.5-next\r\n");
        Receive("abc");
    };
    Receive(Join({host.Packet(14), host.Packet(15)}));
    EXPECT_EQ(Wire(), "SSH-1.5-1.0.00\n") << "no user name";
    EXPECT_EQ(session.ssh1.ssh1State, 0);
    EXPECT_EQ(session.ssh.recvFill, 3);
    EXPECT_EQ(outside.closed, 0);
}

// The chunk was already queued when the user closed the session.
TEST(Interrupted, PacketAfterTheUsersCloseShowsNoDialogOrMessage) {
    for (int state = 0; state <= 5; state++) {
        ScriptedHost host = SessionInState(state);
        session.socket = INVALID_SOCKET;
        Receive(host.Packet(1, String("bye")));
        EXPECT_EQ(Box(), "") << state;
        EXPECT_EQ(outside.asked, 0);
        EXPECT_EQ(Wire(), "");
    }
}

TEST(Interrupted, SessionThatFollowsBehindABoxIsNotClosed) {
    ScriptedHost host = SessionInState(5);
    outside.during_box = [] { session.socket = kTestSocket + 1; };
    Receive(host.Packet(1, String("bye")));
    EXPECT_EQ(outside.closed, 0);
}

TEST(Interrupted, SessionThatEndsBehindLoginIncorrectIsNotAskedFor) {
    ScriptedHost host = SessionInState(3);
    outside.during_box = [] { session.connected = 0; };
    Receive(host.Packet(15));
    EXPECT_EQ(outside.asked, 0);
    EXPECT_EQ(Wire(), "");
}

// ---------------------------------------------------------------- terminal, shell, data

TEST(Terminal, RefusedStillLeadsToTheShell) {
    ScriptedHost host = SessionInState(4);
    Receive(host.Packet(15));
    EXPECT_EQ(host.Sent(), Messages{kShell});
    EXPECT_EQ(session.ssh1.ssh1State, 5);
    EXPECT_EQ(Box(), "");
}

TEST(Data, OfBothKindsGoesToTheTerminal) {
    ScriptedHost host = SessionInState(5);
    Receive(Join({host.Packet(17, String("out ")), host.Packet(18, String("err"))}));
    EXPECT_EQ(Shown(), "out err");
}

TEST(Data, WhoseLengthDoesNotFitIsDropped) {
    ScriptedHost host = SessionInState(5);
    for (const int type : {17, 18}) {
        Receive(host.Packet(type));
        Receive(host.Packet(type, "abc"));
        Receive(host.Packet(type, Uint32(3) + "four"));
        Receive(host.Packet(type, Uint32(5) + "four"));
        Receive(host.Packet(type, Uint32(0xFFFFFFFF) + "four"));
        Receive(host.Packet(type, Uint32(0x80000004) + "four"));
        Receive(host.Packet(type, Uint32(0xFFFFFFFC)));
        Receive(host.Packet(type, Uint32(0)));
    }
    EXPECT_EQ(Shown(), "");
    EXPECT_EQ(Box(), "");
    Receive(host.Packet(17, String("four")));
    EXPECT_EQ(Shown(), "four");
}

TEST(Data, OfNegativeOrNoLengthIsNotSent) {
    ScriptedHost host = SessionInState(5);
    for (const int length : {0, -1, -8, -65000, -2147483647 - 1}) {
        SendSessionData(nullptr, length, 0);
        Ssh1SendData(nullptr, length);
    }
    EXPECT_EQ(Wire(), "");
    EXPECT_EQ(Box(), "");
}

TEST(Exit, IsConfirmedAndTheSessionContinues) {
    ScriptedHost host = SessionInState(5);
    Receive(Join({host.Packet(20, Uint32(3)), host.Packet(17, String("last words"))}));
    EXPECT_EQ(host.Sent(), (Messages{{33, "", ""}}));
    EXPECT_EQ(Shown(), "last words");
    EXPECT_EQ(outside.closed, 0);
}

TEST(Disconnect, OfTheServerIsReportedAndClosesTheSession) {
    ScriptedHost host = SessionInState(5);
    Receive(host.Packet(1, String("maintenance")));
    EXPECT_EQ(Box(), "Error: Disconnect request from SSH Server. Session must be terminated");
    EXPECT_EQ(outside.closed, 1);
    EXPECT_EQ(Wire(), "");
}

TEST(Disconnect, LeavesTheFirstStateInTheClear) {
    for (int state = 1; state <= 5; state++) {
        ScriptedHost host = SessionInState(state);
        ResetCiphers();
        EXPECT_EQ(session.ssh1.ssh1State, 0) << state;
        EXPECT_EQ(session.ssh1.ssh1Cipher, nullptr) << state;
    }
}

// ---------------------------------------------------------------- secrets

TEST(Secrets, AllStateIsZeroWhenTheSessionIsForgotten) {
    ScriptedHost host = SessionInState(5);
    Receive(Join({host.Packet(17, String("confidential")), host.Packet(17, "half").substr(0, 7)}));
    ForgetSshSession();
    session.ssh1.ptyRows = session.ssh1.ptyColumns = 0;
    EXPECT_TRUE(AllZero(&session.ssh1, sizeof(session.ssh1)));
    EXPECT_TRUE(AllZero(&session.ssh, sizeof(session.ssh)));
}

TEST(Secrets, SessionKeyIsWipedOnceTheCipherHasIt) {
    SessionInState(1);
    EXPECT_TRUE(AllZero(session.ssh1.sessionKey, sizeof(session.ssh1.sessionKey)));
}

// The result of the cipher for a block in each direction; it shows which keys are set.
std::string Fingerprint(const Ssh1Cipher& cipher) {
    BYTE out[8] = {}, in[8] = {};
    cipher.encrypt(out, 8);
    cipher.decrypt(in, 8);
    return std::string(out, out + 8) + std::string(in, in + 8);
}

TEST(Secrets, CipherForgetsItsKeysWithTheSession) {
    for (uint32_t type = 0; type <= 2; type++) {
        SessionInState(5, type);
        const Ssh1Cipher& cipher = *session.ssh1.ssh1Cipher;
        ForgetSshSession();
        const std::string left = Fingerprint(cipher);
        WipeCipherKeys();
        EXPECT_EQ(left, Fingerprint(cipher)) << type;
    }
}

// Anyone with the server's private keys could decrypt the session key from it.
TEST(Secrets, EncryptedSessionKeyIsNotLeftOnTheStack) {
    static BYTE encrypted[16];  // the first bytes of the number that is sent
    static bool answered;
    ScriptedHost host;
    NewSession();
    const std::string data = host.PublicKeyData();
    const auto exchange = [&] {
        answered = Ssh1ExchangeKeys(reinterpret_cast<const BYTE*>(data.data()),
                                    static_cast<int>(data.size()));
        const BYTE* packet = session.ssh1.sendBuf;
        const int padding = 8 - packet[3] % 8;
        for (int i = 0; i < 16; i++) encrypted[i] = packet[4 + padding + 1 + 1 + 8 + 2 + i];
    };
    outside.keep_keys = true;
    EXPECT_EQ(LeftOnStack(encrypted, exchange), 0);
    outside.keep_keys = false;
    for (RsaKey& key : outside.kept) RsaReleaseKey(&key);
    EXPECT_TRUE(answered);
    EXPECT_EQ(encrypted[1], 2) << "the padding of the outer key";
}

TEST(Secrets, PasswordIsNotLeftOnTheStack) {
    const std::string password = "a password of 30 bytes, no less";
    ScriptedHost host = SessionInState(2);
    SetText(session.settings.ssh_p, password);
    EXPECT_EQ(LeftOnStack(password.data(), [] { Ssh1RunState(15, nullptr, 0); }), 0);
    EXPECT_EQ(host.Sent(), (Messages{{9, String(password), ""}}));
}

}  // namespace

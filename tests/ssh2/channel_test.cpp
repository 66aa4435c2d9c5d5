// SPDX-License-Identifier: MIT
// Authentication and the channel, after the first exchange of keys.
#include <climits>

#include "connection/connection.h"
#include "protocol/protocols.h"
#include "session/session_ports.h"
#include "tests/ssh2/conversation.h"

class Ssh2Authentication : public Conversation {};
class Ssh2Channel : public Conversation {};

static void EnterInDialog(const char* user, const char* password) {
    outside.sign_on = [=] {
        SetText(session.settings.ssh_u, user);
        SetText(session.settings.ssh_p, password);
        return true;
    };
}

// ---------------------------------------------------------------- authentication

TEST_F(Ssh2Authentication, RememberedPasswordGoesOutWithoutADialogAndAFailureBringsItUp) {
    ToPassword();
    EXPECT_EQ(outside.sign_ons, 0);
    EnterInDialog("second", "try");
    Give(Message(51, Str("password") + Message(0)));
    EXPECT_EQ(outside.sign_ons, 1);
    Expect(PasswordRequest("second", "try"));
    ExpectOpen();
}

TEST_F(Ssh2Authentication, WithoutRememberingTheDialogComesFirst) {
    session.settings.ssh_def = 0;
    EnterInDialog("somebody", "secret");
    ToService();
    EXPECT_EQ(outside.sign_ons, 0);
    Give(Message(6, Str("any service")));
    EXPECT_EQ(outside.sign_ons, 1);
    Expect(PasswordRequest("somebody", "secret"));
    ExpectSilence();
}

TEST_F(Ssh2Authentication, FailuresAskAgainWithoutLimit) {
    ToPassword();
    EnterInDialog("visitor", "wrong");
    for (int attempt = 1; attempt <= 50; attempt++) {
        Give(Message(51));
        EXPECT_EQ(outside.sign_ons, attempt);
        Expect(PasswordRequest("visitor", "wrong"));
    }
    Give(Message(52));
    EXPECT_EQ(Take()[0], 90);
    ExpectOpen();
}

TEST_F(Ssh2Authentication, CancelledDialogSendsTheStoredValues) {
    session.settings.ssh_def = 0;
    outside.sign_on = [] {
        session.dialog_result = -1;
        return true;
    };
    ToService();
    Give(Message(6));
    Expect(PasswordRequest("visitor", "warehouse7"));
    ExpectOpen();
}

TEST_F(Ssh2Authentication, DialogThatCannotBeShownClosesTheSession) {
    session.settings.ssh_def = 0;
    outside.sign_on = [] { return false; };
    ToService();
    Give(Message(6));
    ExpectClosed();
}

TEST_F(Ssh2Authentication, EmptyUserNameIsReportedAndClosesTheSession) {
    SetText(session.settings.ssh_u, "");
    ToService();
    Give(Message(6));
    ASSERT_EQ(outside.boxes.size(), 1u);
    EXPECT_EQ(outside.boxes[0], "Error: Cannot sign on to the host without a valid user name");
    EXPECT_EQ(outside.closes, 1);
    ExpectSilence();
}

TEST_F(Ssh2Authentication, NextSessionBehindTheBoxIsNotClosed) {
    SetText(session.settings.ssh_u, "");
    ToService();
    outside.during_box = [] { session.socket = 8; };
    Give(Message(6));
    EXPECT_EQ(outside.boxes.size(), 1u);
    EXPECT_EQ(outside.closes, 0);
    ExpectSilence();
}

TEST_F(Ssh2Authentication, ConnectionThatEndsDuringTheDialogGetsNoPassword) {
    session.settings.ssh_def = 0;
    outside.sign_on = [] {
        session.connected = 0;
        return true;
    };
    ToService();
    Give(Message(6));
    ExpectSilence();
    EXPECT_EQ(outside.closes, 0);
}

TEST_F(Ssh2Authentication, SessionThatIsClosedDuringTheDialogGetsNoPassword) {
    session.settings.ssh_def = 0;
    outside.sign_on = [] {
        session.socket = INVALID_SOCKET;
        return true;
    };
    ToService();
    std::string bytes = Seal(server, Message(6));
    bytes += Seal(server, Message(52));
    Receive(bytes);
    EXPECT_EQ(outside.sign_ons, 1);
    ExpectSilence();
    EXPECT_EQ(session.ssh.recvFill, 0);
}

TEST_F(Ssh2Authentication, NextSessionBehindTheDialogKeepsWhatItHasReceived) {
    session.settings.ssh_def = 0;
    outside.sign_on = [] {
        session.socket = 8;
        std::memcpy(session.ssh.recvBuf, "half", 4);
        session.ssh.recvFill = 4;
        session.ssh2.headDecrypted = 1;
        return true;
    };
    ToService();
    Give(Message(6));
    ExpectSilence();
    EXPECT_EQ(session.ssh.recvFill, 4);
    EXPECT_EQ(std::memcmp(session.ssh.recvBuf, "half", 4), 0);
    EXPECT_EQ(session.ssh2.headDecrypted, 1u);
    EXPECT_EQ(session.receive_ready, 0u) << "the buffer is the next session's";
}

// A connect that is refused, since a session is up, empties the receive buffer.
TEST_F(Ssh2Authentication, RefusedConnectDuringTheDialogLeavesNoPacketToRemove) {
    session.settings.ssh_def = 0;
    outside.sign_on = [] { return BeginProtocol(), true; };
    ToService();
    std::string bytes = Seal(server, Message(6));
    bytes += Seal(server, Message(52));
    Receive(bytes);
    EXPECT_EQ(outside.sign_ons, 1);
    EXPECT_EQ(session.ssh.recvFill, 0);
    EXPECT_EQ(session.receive_ready, 1u);
}

// The system gives the socket of the next session the number of the closed one.
TEST_F(Ssh2Authentication, NextSessionIsNotTouchedThoughItsSocketNumberIsTheSame) {
    session.settings.ssh_def = 0;
    outside.sign_on = [] {
        ForgetSshSession();
        BeginProtocol();
        ++session.sockets_made;
        Receive("SSH-2.0-next\r\n");
        Receive("abc");
        session.receive_ready = 0;
        return true;
    };
    ToService();
    Give(Message(6));
    EXPECT_EQ(outside.wire, kClientLine);
    EXPECT_EQ(session.ssh.recvFill, 3);
    EXPECT_EQ(session.receive_ready, 0u) << "the buffer is the next session's";
}

// The host drops the line while the dialog is open: the session state is cleared, but its socket
// number stays until the next session.
TEST_F(Ssh2Authentication, SessionThatEndsDuringTheDialogIsOverThoughItsSocketNumberStays) {
    session.settings.ssh_def = 0;
    outside.sign_on = [] {
        session.connected = 0;
        OnSocketEvent(1);
        return true;
    };
    ToService();
    const SOCKET socket = session.socket;
    std::string bytes = Seal(server, Message(6));
    bytes += Seal(server, Message(52));
    Receive(bytes);
    EXPECT_EQ(outside.sign_ons, 1);
    EXPECT_EQ(session.socket, socket);
    EXPECT_EQ(session.ssh.recvFill, 0);
    EXPECT_EQ(session.ssh2.sendSeq, 0u);
    EXPECT_EQ(outside.closes, 0);
    ExpectSilence();
}

// The chunk was already queued when the user closed the session.
TEST_F(Ssh2Authentication, RefusalThatComesAfterTheUsersCloseAsksNothing) {
    ToPassword();
    session.socket = INVALID_SOCKET;
    Give(Message(51));
    EXPECT_EQ(outside.sign_ons, 0);
    ExpectSilence();
}

TEST_F(Ssh2Authentication, LongestNameAndPasswordGoOutWhole) {
    const std::string name(kSettingUnits - 1, 'n'), password(kSettingUnits - 1, '\xe4');
    SetText(session.settings.ssh_u, name.c_str());
    SetText(session.settings.ssh_p, password.c_str());
    ToService();
    Give(Message(6));
    Expect(PasswordRequest(name, password));
}

TEST_F(Ssh2Authentication, RequestToChangeThePasswordClosesTheSession) {
    ToPassword();
    Give(Message(60, Str("change it") + Str("")));
    ExpectClosed();
}

// ---------------------------------------------------------------- opening

TEST_F(Ssh2Channel, OpensWithPtyAndShell) { ToShell(); }

TEST_F(Ssh2Channel, SecondSuccessSendsNothing) {
    ToShell();
    for (int i = 0; i < 3; i++) Give(Message(99, U32(27)));
    ExpectSilence();
}

TEST_F(Ssh2Channel, PtyIsOf80ColumnsAnd24RowsWhateverTheWindowShows) {
    session.narrow_screen = 1;
    session.client_width = 240;
    ToPty();  // compares the request
    session.narrow_screen = 0;
}

TEST_F(Ssh2Channel, PtyNamesTheTerminalType) {
    const std::string type(39, 't');
    SetText(session.settings.termtype, type.c_str());
    ToChannel();
    Give(Message(91, U32(27) + U32(kServerChannel) + U32(0) + U32(32768)));
    Expect(PtyRequest(type));
}

TEST_F(Ssh2Channel, RefusedOpenClosesTheSession) {
    ToChannel();
    Give(Message(92, U32(27) + U32(1) + Str("no") + Str("")));
    ExpectClosed();
}

TEST_F(Ssh2Channel, RefusedPtyClosesTheSession) {
    ToPty();
    Give(Message(100, U32(27)));
    ExpectClosed();
}

TEST_F(Ssh2Channel, RefusedShellClosesTheSession) {
    ToPty();
    Give(Message(99, U32(27)));
    Take();
    Give(Message(100, U32(27)));
    ExpectClosed();
}

TEST_F(Ssh2Channel, AnyChannelNumberAndWindowAreAccepted) {
    for (const uint32_t number : {0u, 28u, 0x7fffffffu, 0xffffffffu}) {
        NewSession();
        server = {};
        ToChannel();
        Give(Message(91, U32(number) + U32(kServerChannel) + U32(number) + U32(number)));
        Expect(PtyRequest("vt220"));
        EXPECT_EQ(session.ssh2.remoteWindow, number);
        Give(Message(99, U32(number)));
        Take();
        Give(Message(93, U32(number) + U32(0xffffffff)));
        Give(Message(94, U32(number) + Str("shown")));
        Type("typed");
        Expect(ClientData("typed"));
        EXPECT_EQ(outside.display, "shown");
        ExpectOpen();
    }
}

TEST_F(Ssh2Channel, ConfirmationThatIsCutOffIsDropped) {
    ToChannel();
    Give(Message(91, U32(27) + U32(kServerChannel) + "abc"));
    ExpectSilence();
    EXPECT_EQ(session.ssh2.channelOpen, 0u);
    ExpectOpen();
}

// ---------------------------------------------------------------- bytes in

TEST_F(Ssh2Channel, DataIsShown) {
    ToShell();
    Give(Data("some text"));
    Give(Message(95, U32(27) + U32(1) + Str(", an error")));
    Give(Message(95, U32(27) + U32(77) + Str(", anything")));
    EXPECT_EQ(outside.display, "some text, an error, anything");
    ExpectSilence();
}

// A write, even of no bytes, would make the terminal drop its selection.
TEST_F(Ssh2Channel, DataOfNoBytesDoesNotTouchTheTerminal) {
    ToShell();
    Give(Data(""));
    Give(Message(95, U32(27) + U32(1) + Str("")));
    EXPECT_EQ(outside.terminal_writes, 0);
    ExpectSilence();
    ExpectOpen();
}

TEST_F(Ssh2Channel, DataOf4000BytesLeavesTheWindow) {
    ToShell();
    Give(Data(std::string(4000, 'd')));
    ExpectSilence();
    EXPECT_EQ(session.ssh2.localWindow, 4000);
    Give(Data("d"));
    Expect(Adjust(4001));
    EXPECT_EQ(session.ssh2.localWindow, 8000);
}

TEST_F(Ssh2Channel, EveryOpenGrantsTheWholeWindowAgain) {
    ToShell();
    Give(Data(std::string(1000, 'd')));
    Give(Message(52));
    Expect(Message(90, Str("session") + U32(27) + U32(8000) + U32(16384)));
    Give(Data(std::string(4000, 'd')));
    ExpectSilence();
}

TEST_F(Ssh2Channel, DataOf4001BytesIsAnsweredByAnAdjustOf4001) {
    ToShell();
    Give(Data(std::string(4001, 'd')));
    Expect(Adjust(4001));
    ExpectSilence();
    EXPECT_EQ(session.ssh2.localWindow, 8000);
    EXPECT_EQ(outside.display, std::string(4001, 'd'));
}

TEST_F(Ssh2Channel, ExtendedDataCountsInTheWindow) {
    ToShell();
    Give(Data(std::string(3000, 'd')));
    Give(Message(95, U32(27) + U32(1) + Str(std::string(1001, 'e'))));
    Expect(Adjust(4001));
}

TEST_F(Ssh2Channel, TerminalsAnswerGoesOutBeforeTheAdjust) {
    ToShell();
    outside.on_display = [] { Type("\033[1;1R"); };
    Give(Data(std::string(4001, 'd')));
    Expect(ClientData("\033[1;1R"));
    Expect(Adjust(4001));
    Give(Message(95, U32(27) + U32(1) + Str(std::string(4001, 'e'))));
    Expect(ClientData("\033[1;1R"));
    Expect(Adjust(4001));
    ExpectSilence();
}

TEST_F(Ssh2Channel, ServerThatOverrunsTheWindowGetsAllOfItBack) {
    ToShell();
    Give(Data(std::string(20000, 'd')));
    Expect(Adjust(20000));
    EXPECT_EQ(outside.display.size(), 20000u);
}

TEST_F(Ssh2Channel, DataWhoseLengthLeadsOutsideThePacketIsDropped) {
    ToShell();
    for (uint32_t length : {5u, 13u, 300u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
        Give(Message(94, U32(27) + U32(length) + "data"));
        Give(Message(95, U32(27) + U32(1) + U32(length) + "data"));
    }
    for (const char* cut : {"", "\0\0\0", "abcd", "abcdefg"}) {
        Give(Message(94, cut));
        Give(Message(95, cut));
    }
    EXPECT_EQ(outside.display, "");
    EXPECT_EQ(session.ssh2.localWindow, 8000);
    Give(Data("still here"));
    EXPECT_EQ(outside.display, "still here");
    ExpectSilence();
    ExpectOpen();
}

TEST_F(Ssh2Channel, MessagesThatNeedNoReplyGetNoReply) {
    ToShell();
    const int ignored[] = {0, 1, 2, 3, 4, 5, 7, 22, 30, 53, 80, 81, 82, 90, 93, 96, 98, 101, 255};
    for (const int number : ignored)
        Give(Message(number, U32(27) + Str("exit-status") + Message(1)));
    ExpectSilence();
    EXPECT_EQ(outside.display, "");
    Give(Data("still here"));
    EXPECT_EQ(outside.display, "still here");
    ExpectOpen();
}

TEST_F(Ssh2Channel, CloseEndsTheSessionAndIsNotAnswered) {
    ToShell();
    std::string bytes = Seal(server, Message(97, U32(27)));
    bytes += Seal(server, Data("too late"));
    Receive(bytes);
    ExpectClosed();
    EXPECT_EQ(outside.display, "");
}

// ---------------------------------------------------------------- bytes out

TEST_F(Ssh2Channel, TypedBytesAreOnePacketEach) {
    ToShell();
    Type("l");
    Type("s\xff\r");
    Expect(ClientData("l"));
    Expect(ClientData("s\xff\r"));
    ExpectSilence();
}

TEST_F(Ssh2Channel, LongDataIsSplitAt16384Bytes) {
    ToShell();
    std::string bytes;
    for (int i = 0; i < 40000; i++) bytes += static_cast<char>(i % 251);
    Type(bytes);
    Expect(ClientData(bytes.substr(0, 16384)));
    Expect(ClientData(bytes.substr(16384, 16384)));
    Expect(ClientData(bytes.substr(32768)));
    Type(bytes.substr(0, 16384));
    Expect(ClientData(bytes.substr(0, 16384)));
    ExpectSilence();
}

TEST_F(Ssh2Channel, DataIsSentBeyondTheServersWindow) {
    ToShell();
    EXPECT_EQ(session.ssh2.remoteWindow, 0u);
    for (int i = 0; i < 5; i++) {
        Type(std::string(16384, 'x'));
        Expect(ClientData(std::string(16384, 'x')));
    }
}

TEST_F(Ssh2Channel, NegativeOrZeroLengthSendsAndQueuesNothing) {
    const auto type_nothing = [] {
        for (const int length : {0, -1, -9, -16384, INT_MIN}) {
            SendSessionData(nullptr, length, 0);
            SessionSend(nullptr, length, 0);
        }
    };
    ToShell();
    const uint32_t sent = session.ssh2.sendSeq;
    type_nothing();
    ExpectSilence();
    EXPECT_EQ(session.ssh2.sendSeq, sent);
    Offer();
    type_nothing();
    EXPECT_EQ(session.ssh2.heldLength, 0);
    Type("held");
    type_nothing();
    EXPECT_EQ(session.ssh2.heldLength, 4);
    Reply();
    SwitchKeys();
    Expect(ClientData("held"));
    ExpectSilence();
}

TEST_F(Ssh2Channel, EveryExchangeHoldsItsOwnData) {
    ToShell();
    for (const size_t size : {4u, 3000u, 10u}) {
        const std::string text(size, 'h');
        Offer();
        Type(text);
        Reply();
        SwitchKeys();
        Expect(ClientData(text));
        EXPECT_EQ(session.ssh2.heldLength, 0);
        EXPECT_EQ(session.ssh2.heldData, nullptr);
    }
}

TEST_F(Ssh2Channel, DataForWhichThereIsNoMemoryIsDroppedWhole) {
    ToShell();
    Offer();
    Type("held");
    const std::string more(3000, 'd');
    outside.mallocs_that_fail = 1;
    Type(more);
    EXPECT_EQ(outside.mallocs_that_fail, 0);
    EXPECT_EQ(session.ssh2.heldLength, 4);
    Type(", too");
    Reply();
    SwitchKeys();
    Expect(ClientData("held, too"));
    ExpectSilence();
}

TEST_F(Ssh2Channel, TypingBeforeTheChannelIsOpenIsLost) {
    Type("a");
    Identify();
    Type("b");
    Offer();
    Type("c");
    Reply();
    SwitchKeys();
    Take();
    Type("d");
    ExpectSilence();
}

// The cipher is already removed, so the packet would be unencrypted.
TEST_F(Ssh2Channel, TypingAfterTheClientsOwnEndBuildsNoPacket) {
    ToShell();
    Give(Message(97, U32(27)));
    const uint32_t sent = session.ssh2.sendSeq;
    Type("typed");
    EXPECT_EQ(session.ssh2.sendSeq, sent);
    ExpectClosed();
}

// Each chunk looks up the protocol. SSH-1 then finds that it has no session.
TEST_F(Ssh2Channel, OtherProtocolChosenInMidSessionEndsItAndSendsNothing) {
    ToShell();
    session.settings.ssh_type2 = 0;
    Type("typed");
    ExpectSilence();
    Give(Data("shown"));
    ExpectSilence();
    EXPECT_EQ(outside.display, "");
    EXPECT_EQ(outside.closes, 1);
    ASSERT_EQ(outside.boxes.size(), 1u);
    EXPECT_TRUE(outside.boxes[0].starts_with("Error: ")) << outside.boxes[0];
}

TEST_F(Ssh2Channel, AnotherSshTypeChosenInMidSessionWaitsForTheNextKeys) {
    ToShell();
    session.settings.ssh_type = 2;
    Give(Data("shown"));
    Type("typed");
    EXPECT_EQ(outside.display, "shown");
    Expect(ClientData("typed"));
}

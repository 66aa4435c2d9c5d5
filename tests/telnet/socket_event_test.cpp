// SPDX-License-Identifier: MIT
// The handling of socket notifications; the buffer is handed back after each of them.
#include <gtest/gtest.h>

#include "connection/connection.h"
#include "protocol/telnet/telnet.h"
#include "tests/telnet/outside.h"

namespace {

void ExpectHandedBack() {
    EXPECT_EQ(session.receive_ready.load(), 1u);
    EXPECT_EQ(outside.wakes, 1);
    outside.wakes = 0;
}

void NewSshSession(DWORD type2) {
    NewSession();
    session.settings.ssh = 1;
    session.settings.ssh_type2 = type2;
}

}  // namespace

TEST(SocketEvent, DataGoesToTheTerminalOnce) {
    NewSession();
    Receive("some text");
    EXPECT_EQ(Shown(), "some text");
    EXPECT_EQ(outside.terminal_writes, 1);
    ExpectHandedBack();
}

TEST(SocketEvent, CommandsAreTakenOutOfTheData) {
    NewSession();
    Receive("so" + Iac(253, 31) + "me" + "\xFF\xFA\x18\x01\xFF\xF0" + Iac(251, 1) + "text");
    EXPECT_EQ(Shown(), "sometext");
    EXPECT_EQ(outside.terminal_writes, 1);
    ExpectHandedBack();
}

TEST(SocketEvent, BufferOfASessionThatEndsMeanwhileIsHandedBack) {
    NewSession();
    outside.socket_after_write = INVALID_SOCKET;
    Receive("text");
    ExpectHandedBack();
}

TEST(SocketEvent, BufferOfANewSessionIsNotHandedBackForTheOldOne) {
    NewSession();
    outside.socket_after_write = session.socket + 4;
    Receive("text");
    EXPECT_EQ(session.receive_ready.load(), 0u);
    EXPECT_EQ(outside.wakes, 0);
}

// The system gives the socket of the next session the number of the closed one.
TEST(SocketEvent, BufferOfANewSessionWhoseSocketHasTheSameNumberIsNotHandedBack) {
    NewSession();
    outside.socket_after_write = session.socket;
    Receive("text");
    EXPECT_EQ(session.receive_ready.load(), 0u);
    EXPECT_EQ(outside.wakes, 0);
}

TEST(SocketEvent, ChunkOfOnlyNegotiationShowsNothingAndChecksNoLogin) {
    NewSession();
    SetText(session.settings.sear1, "\xFF");
    SetText(session.settings.resp1, "name");
    ArmAutoLogin();
    Receive(Iac(253, 31));
    EXPECT_EQ(Sent(), Iac(252, 31));
    EXPECT_EQ(outside.terminal_writes, 0);
    ExpectHandedBack();
}

TEST(SocketEvent, WithoutBytesNothingIsDone) {
    for (int count : {0, -1, -2147483647 - 1}) {
        NewSession();
        session.receive_buffer[0] = 'x';
        session.receive_count = count;
        OnSocketEvent(0);
        EXPECT_EQ(outside.order, "");
        ExpectHandedBack();
    }
}

// The result of a failed recv goes no further: neither SSH protocol gets it, before or after the
// identification line.
TEST(SocketEvent, WithoutBytesSshGetsNoChunk) {
    for (DWORD type2 : {0u, 1u}) {
        for (DWORD banner_sent : {0u, 1u}) {
            for (int count : {0, -1, -2147483647 - 1}) {
                NewSshSession(type2);
                session.banner_sent = banner_sent;
                session.receive_count = count;
                OnSocketEvent(0);
                EXPECT_EQ(outside.ssh_chunks, "") << count;
                ExpectHandedBack();
            }
        }
    }
}

TEST(SocketEvent, FullBufferOfDataIsShownWhole) {
    NewSession();
    std::string bytes;
    for (int i = 0; i < kReceiveSize; i++) bytes += static_cast<char>(i % 255);
    Receive(bytes);
    EXPECT_EQ(Shown(), bytes);
    ExpectHandedBack();
}

TEST(SocketEvent, FullBufferOfCommandsIsAnswered) {
    NewSession();
    std::string bytes, replies;
    for (int i = 0; i < kReceiveSize / 3; i++) {
        bytes += Iac(251, 31);
        replies += Iac(254, 31);
    }
    Receive(bytes);
    EXPECT_EQ(Sent(), replies);
    ExpectHandedBack();
}

TEST(SocketEvent, CommandMaySpanChunks) {
    NewSession();
    Receive("a\xFF");
    Receive("\xFD");
    Receive(
        "\x1F"
        "b");
    EXPECT_EQ(Shown(), "ab");
    EXPECT_EQ(Sent(), Iac(252, 31));
}

TEST(SocketEvent, StaleNotificationIsIgnored) {
    NewSession();
    session.receive_buffer[0] = 'x';
    session.receive_count = 1;
    session.connected = 0;
    OnSocketEvent(0);
    ExpectHandedBack();
    session.connected = 1;  // receive_ready is 1 already
    OnSocketEvent(0);
    ExpectHandedBack();
    EXPECT_EQ(outside.order, "");
}

TEST(SocketEvent, StaleNotificationOfAnSshSessionGivesNoChunk) {
    NewSshSession(1);
    session.connected = 0;
    OnSocketEvent(0);
    EXPECT_EQ(outside.ssh_chunks, "");
    ExpectHandedBack();
}

TEST(SocketEvent, EndOfTheConnectionRunsTheClosedRoutine) {
    for (DWORD connected : {0u, 1u}) {
        for (DWORD ready : {0u, 1u}) {
            NewSession();
            session.connected = connected;
            session.receive_ready = ready;
            session.connect_pending = 1;
            session.receive_count = 5;
            OnSocketEvent(1);
            EXPECT_EQ(outside.closed, 1);
            EXPECT_EQ(outside.pending_when_closed, 0u) << "the request is over before it is told";
            EXPECT_EQ(outside.ready_when_closed, ready) << "the buffer is handed back at last";
            EXPECT_EQ(session.connect_pending, 0u);
            EXPECT_EQ(outside.order, "");
            ExpectHandedBack();
        }
    }
}

TEST(SocketEvent, EndOfAnSshConnectionRunsTheClosedRoutine) {
    NewSshSession(1);
    OnSocketEvent(1);
    EXPECT_EQ(outside.closed, 1);
    EXPECT_EQ(outside.sends, 0);
    ExpectHandedBack();
}

TEST(SocketEvent, OtherKindsOnlyHandTheBufferBack) {
    for (WPARAM kind : {WPARAM{2}, WPARAM{107}, ~WPARAM{0}}) {
        NewSession();
        session.connect_pending = 1;
        session.receive_count = 3;
        OnSocketEvent(kind);
        EXPECT_EQ(outside.closed, 0);
        EXPECT_EQ(outside.order, "");
        EXPECT_EQ(session.connect_pending, 1u);
        ExpectHandedBack();
    }
}

TEST(SocketEvent, ChunksOfAnSshSessionGoToSshWhole) {
    for (DWORD type2 : {0u, 1u}) {
        NewSshSession(type2);
        Receive("SSH-9.9-host\r\n");
        ExpectHandedBack();
        Receive(Iac(251, 1) + "text");
        ExpectHandedBack();
        EXPECT_EQ(outside.ssh_chunks, "[SSH-9.9-host\r\n][" + Iac(251, 1) + "text]");
        EXPECT_EQ(outside.order, "");
    }
}

TEST(SocketEvent, AnyValueOfSshButZeroIsAnSshSession) {
    for (const DWORD value : {2u, 3u, 0x100u, 0xFFFFFFFFu}) {
        NewSshSession(1);
        session.settings.ssh = value;
        Receive(Iac(251, 1) + "text");
        EXPECT_EQ(outside.ssh_chunks, "[" + Iac(251, 1) + "text]") << value;
        EXPECT_EQ(outside.order, "") << value;
        ExpectHandedBack();
    }
}

TEST(SocketEvent, RepliesAreSentUnescapedWhateverTypedDataDoes) {
    NewSession();
    session.telnet.escape_iac = 1;
    Receive(Iac(253, 31) + "\xFF\xFA\x18\x01\xFF\xF0");
    EXPECT_EQ(Sent(), Iac(252, 31) + std::string("\xFF\xFA\x18\0vt220\xFF\xF0", 11));
    SetText(session.settings.termtype, "\xFF");
    Receive("\xFF\xFA\x18\x01\xFF\xF0");
    EXPECT_EQ(Sent(), std::string("\xFF\xFA\x18\0\xFF\xFF\xF0", 7));
}

TEST(SocketEvent, TelnetCommandsInAnSshSessionAreNotAnswered) {
    NewSshSession(0);
    session.banner_sent = 1;
    Receive(Iac(251, 1) + "text");
    EXPECT_EQ(outside.order, "");
    EXPECT_EQ(session.telnet.last_command, 0u);
    ExpectHandedBack();
}

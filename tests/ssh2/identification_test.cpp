// SPDX-License-Identifier: MIT
// The identification lines that open a session.
#include <climits>
#include "crypto/ciphers.h"

#include "connection/connection.h"
#include "tests/ssh2/conversation.h"

class Ssh2Identification : public Conversation {};

TEST_F(Ssh2Identification, TheClientWaitsForTheServersLine) {
    ExpectSilence();
    Identify();
    EXPECT_EQ(outside.statuses, 1);
}

TEST_F(Ssh2Identification, AnyFirstChunkIsTakenAsTheLine) {
    for (const char* line : {"\n", "220 mail\r\n", "SSH-1.5-old\n", "no end of line"}) {
        NewSession();
        server = {};
        server.line = line;
        ToService();
    }
}

TEST_F(Ssh2Identification, LineIsHashedUpToItsFirstCarriageReturnOrLineFeed) {
    for (const char* line : {"SSH-2.0-one\rtwo\n", "SSH-2.0-one\ntwo\r\n", "\rtwo", "one\n\r"}) {
        NewSession();
        server = {};
        server.line = line;
        ToService();
    }
}

TEST_F(Ssh2Identification, KexInitBehindTheLineInTheSameChunkIsLost) {
    const std::string line = server.line;
    Receive(line + Seal(server, ServerKexInit()));
    EXPECT_EQ(outside.wire, kClientLine);
    outside.wire.clear();
    EXPECT_EQ(session.ssh.recvFill, 0);
    ExpectOpen();
    Offer();  // the server's next one begins the exchange
    Reply();
}

TEST_F(Ssh2Identification, AfterAFailedSendTheNextChunkIsTheLine) {
    outside.sends_that_fail = 1;
    Receive("SSH-2.0-lost\r\n");
    EXPECT_EQ(session.banner_sent, 0u);
    ToService();
}

TEST_F(Ssh2Identification, StateOfTheOtherProtocolIsCleared) {
    session.ssh1.ssh1State = 4;
    session.ssh1.ssh1Cipher = &kSsh1Des;
    Identify();
    EXPECT_EQ(session.ssh1.ssh1State, 0);
    EXPECT_EQ(session.ssh1.ssh1Cipher, nullptr);
}

// A chunk of no bytes, or the result of a failed recv, instead of the server's line and later.
TEST_F(Ssh2Identification, ChunkWithoutBytesIsNoLineAndNoPacket) {
    const auto notify = [](int count) {
        std::memset(session.receive_buffer, '#', kReceiveSize);
        session.receive_count = count;
        session.receive_ready = 0;
        OnSocketEvent(0);
        EXPECT_EQ(session.receive_ready, 1u) << count;
    };
    for (const int count : {0, -1, -3000, INT_MIN}) {
        notify(count);
        ExpectSilence();
        EXPECT_EQ(session.banner_sent, 0u);
    }
    Identify();
    Receive(U32(9) + "x");
    for (const int count : {0, -1, -5, -3000, INT_MIN}) {
        notify(count);
        ExpectSilence();
        EXPECT_EQ(session.ssh.recvFill, 5);
    }
    ExpectOpen();
}

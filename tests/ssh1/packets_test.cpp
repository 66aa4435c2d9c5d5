// SPDX-License-Identifier: MIT
// The packet layer: padding, checksum, reassembly, and the limits of lengths.
#include <gtest/gtest.h>
#include <cstdlib>
#include <set>

#include "protocol/protocols.h"
#include "protocol/ssh/ssh1.h"
#include "tests/ssh1/outside.h"
#include "tests/ssh1/scripted_host.h"

namespace {

const char kOutOfMemory[] = "Error: SSH out of memory";
const char kIllegal[] = "Error: Illegal SSH message. Out of memory";
const char kChecksum[] = "Error: SSH message with illegal CRC checksum. Session must close!!!";

void Type(const std::string& text) {
    SendSessionData(reinterpret_cast<const BYTE*>(text.data()), static_cast<int>(text.size()), 0);
}

// A data packet of `body` bytes from padding to checksum; `body` is a multiple of 8.
std::string DataPacket(ScriptedHost& host, size_t body) {
    return host.Packet(17, String(std::string(body - 8 - 9, 'd')));
}

TEST(Padding, LengthThatIsAMultipleOfEightCarriesEightBytes) {
    ScriptedHost host = SessionInState(5);
    Type(std::string(7, 'x'));  // 1 + 4 + 7 + 4 = 16
    const std::vector<Message> sent = host.Sent();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].padding.size(), 8u);
    Receive(host.Packet(17, String("fifteen")));
    EXPECT_EQ(Shown(), "fifteen");
}

TEST(Padding, IsOneToEightBytesSoThatTheRestIsAMultipleOfEight) {
    ScriptedHost host = SessionInState(5);
    std::set<size_t> seen;
    for (size_t size = 1; size <= 16; size++) {
        Type(std::string(size, 'x'));
        const std::vector<Message> sent = host.Sent();
        ASSERT_EQ(sent.size(), 1u);
        EXPECT_EQ((sent[0].padding.size() + size + 9) % 8, 0u);
        EXPECT_EQ(sent[0], (Message{16, String(std::string(size, 'x')), ""}));
        seen.insert(sent[0].padding.size());
        Receive(host.Packet(17, String(std::string(size, 'y'))));
        EXPECT_EQ(Shown(), std::string(size, 'y'));
    }
    EXPECT_EQ(seen, (std::set<size_t>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Padding, IsRandomBeforeThereIsACipherToo) {
    NewSession();
    ScriptedHost host;
    std::set<std::string> seen;
    for (int i = 0; i < 20; i++) {
        std::memcpy(Ssh1BeginPacket(33, 3), "abc", 3);
        Ssh1SendPacket();
        seen.insert(host.Sent()[0].padding);
    }
    EXPECT_GT(seen.size(), 15u);
}

TEST(Padding, IsWhatTheGeneratorGivesOneByteEach) {
    for (const int state : {0, 5}) {
        ScriptedHost host = SessionInState(state);
        for (int size = 0; size < 8; size++) {
            std::srand(11);
            std::memset(Ssh1BeginPacket(33, size), 'x', static_cast<size_t>(size));
            Ssh1SendPacket();
            const std::string padding = host.Sent().at(0).padding;
            std::srand(11);
            std::string wanted;
            while (wanted.size() < padding.size())
                if (const int value = std::rand()) wanted += static_cast<char>(value & 0xff);
            EXPECT_EQ(padding, wanted) << state << ' ' << size;
        }
    }
}

TEST(Padding, IsEncryptedWithTheRest) {
    ScriptedHost host = SessionInState(5);
    std::memcpy(session.ssh1.sendBuf, "????????????", 12);
    Type("1234567");
    const std::string wire = outside.wire;
    const std::string padding = host.Sent()[0].padding;
    EXPECT_NE(wire.substr(4, 8), padding);
}

TEST(Gathering, AnyCutGivesTheSameSession) {
    for (const int piece : {1, 2, 3, 5, 7, 8, 11, 64, 3000}) {
        ScriptedHost host;
        NewSession();
        Receive(host.PublicKey(), piece);
        ASSERT_TRUE(host.TakeSessionKey()) << piece;
        Receive(Join({host.Packet(14), host.Packet(15), host.Packet(14), host.Packet(14),
                      host.Packet(17, String("welcome")), host.Packet(18, String(" home"))}),
                piece);
        EXPECT_EQ(Shown(), "welcome home") << piece;
        EXPECT_EQ(host.Sent().size(), 4u) << piece;
        EXPECT_EQ(session.ssh.recvFill, 0) << piece;
    }
}

TEST(Gathering, PartOfAPacketWaitsForTheRest) {
    ScriptedHost host = SessionInState(5);
    const std::string first = host.Packet(17, String("one"));
    const std::string second = host.Packet(17, String("two"));
    Receive(first + second.substr(0, 5));
    EXPECT_EQ(Shown(), "one");
    EXPECT_EQ(session.ssh.recvFill, 5);
    Receive(second.substr(5));
    EXPECT_EQ(Shown(), "two");
    EXPECT_EQ(session.ssh.recvFill, 0);
}

TEST(Gathering, TheLargestPacketArrivesWhole) {
    ScriptedHost host = SessionInState(5);
    const std::string packet = DataPacket(host, 65528);
    ASSERT_EQ(packet.size(), 65532u);
    Receive(packet);
    EXPECT_EQ(Shown().size(), 65528u - 17);
    EXPECT_EQ(Box(), "");
}

TEST(Gathering, OverflowIsReportedAndTheBufferedBytesAreDropped) {
    ScriptedHost host = SessionInState(5);
    session.ssh.recvFill = 65000;  // the start of an incomplete packet
    std::memcpy(session.ssh.recvBuf, Uint32(65520).data(), 4);
    std::string chunk;
    while (chunk.size() <= 535) chunk += host.Packet(14);  // a type that is ignored
    Receive(chunk + host.Packet(17, String("after")));
    EXPECT_EQ(Box(), kOutOfMemory);
    EXPECT_EQ(Shown(), "after");
    EXPECT_EQ(session.ssh.recvFill, 0);
    EXPECT_EQ(outside.closed, 0);
}

TEST(Gathering, ExactlyFullIsNoOverflow) {
    for (const int room : {10, 9}) {
        SessionInState(5);
        session.ssh.recvFill = kSshReassemblySize - room;
        // The first packet has 12 bytes; the rest belongs to the next one.
        std::memcpy(session.ssh.recvBuf, Uint32(5).data(), 4);
        Receive(std::string(10, 'x'));
        EXPECT_EQ(outside.boxes[0], room == 10 ? kChecksum : kOutOfMemory);
    }
}

TEST(Gathering, SessionThatEndsBehindTheOverflowBoxIsLeftAlone) {
    SessionInState(5);
    session.ssh.recvFill = 65535;
    outside.during_box = [] { session.socket = kTestSocket + 1; };
    Receive("x");
    EXPECT_EQ(Box(), kOutOfMemory);
    EXPECT_EQ(session.ssh.recvFill, 65535);
}

TEST(Gathering, NothingIsHandledBehindTheEnd) {
    ScriptedHost host = SessionInState(5);
    Receive(Join({host.Packet(1, String("bye")), host.Packet(17, String("behind"))}));
    EXPECT_EQ(Box(), "Error: Disconnect request from SSH Server. Session must be terminated");
    EXPECT_EQ(Shown(), "");
    EXPECT_EQ(outside.closed, 1);
}

TEST(LengthField, BeyondTheLimitEndsTheSessionAtOnceInEveryState) {
    for (int state = 0; state <= 5; state++) {
        for (const uint32_t length :
             {65528u, 65535u, 65536u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF8u, 0xFFFFFFFFu}) {
            SessionInState(state);
            Receive(Uint32(length));
            EXPECT_EQ(Box(), kIllegal) << state << ' ' << length;
            EXPECT_EQ(outside.closed, 1);
        }
    }
}

TEST(LengthField, JustBelowTheLimitWaitsForTheRest) {
    SessionInState(5);
    Receive(Uint32(65527) + "abc");
    EXPECT_EQ(Box(), "");
    EXPECT_EQ(session.ssh.recvFill, 7);
}

TEST(LengthField, TooShortForATypeIsDroppedInEveryState) {
    for (int state = 0; state <= 5; state++) {
        ScriptedHost host = SessionInState(state);
        for (uint32_t length = 0; length <= 4; length++) Receive(host.ShortPacket(length));
        EXPECT_EQ(Box(), "") << state;
        EXPECT_EQ(session.ssh1.ssh1State, state);
        EXPECT_TRUE(host.Sent().empty());
        if (state == 5) {
            Receive(host.Packet(17, String("still here")));
            EXPECT_EQ(Shown(), "still here");
        }
    }
}

TEST(LengthField, TooShortWithABadChecksumEndsTheSession) {
    for (int state = 0; state <= 5; state++) {
        for (uint32_t length = 0; length <= 4; length++) {
            ScriptedHost host = SessionInState(state);
            Receive(host.ShortPacket(length, 1));
            EXPECT_EQ(Box(), kChecksum) << state << ' ' << length;
            EXPECT_EQ(outside.closed, 1);
        }
    }
}

TEST(Checksum, AnyWrongBitEndsTheSessionInEveryState) {
    for (int state = 0; state <= 5; state++) {
        for (int bit = 0; bit < 32; bit++) {
            ScriptedHost host = SessionInState(state);
            Receive(host.Packet(14, "", 1u << bit));
            EXPECT_EQ(Box(), kChecksum) << state;
            EXPECT_EQ(outside.closed, 1);
            EXPECT_TRUE(outside.wire.empty());
        }
    }
}

TEST(Checksum, CoversPaddingTypeAndData) {
    for (size_t at = 4; at < 4 + 24; at++) {
        ScriptedHost host;
        NewSession();
        std::string packet = host.Packet(32, String("twelve bytes"));
        ASSERT_EQ(packet.size(), 4 + 24u);
        packet[at] = static_cast<char>(packet[at] ^ 0x10);
        Receive(packet);
        EXPECT_EQ(Box(), kChecksum) << at;
    }
}

TEST(Checksum, PacketInTheClearIsRefusedOnceThereIsACipher) {
    for (int state = 1; state <= 5; state++) {
        ScriptedHost host = SessionInState(state);
        host.cipher = 0;
        Receive(host.Packet(14));
        EXPECT_EQ(Box(), kChecksum) << state;
    }
}

TEST(HandlePacket, LengthThatDoesNotFitTheFieldIsDropped) {
    ScriptedHost host;
    NewSession();
    const std::string packet = host.Packet(14);
    const auto* bytes = reinterpret_cast<const BYTE*>(packet.data());
    Ssh1HandlePacket(bytes, static_cast<int>(packet.size()) - 1);
    Ssh1HandlePacket(bytes, 4);
    EXPECT_EQ(Box(), "");
    Ssh1HandlePacket(bytes, static_cast<int>(packet.size()));
    EXPECT_EQ(Box(), "Error: SSH protocol violation. Session must close!!!");
}

TEST(SendData, IsOneUnchangedString) {
    ScriptedHost host = SessionInState(5);
    std::string all;
    for (int i = 0; i < 256; i++) all += static_cast<char>(i);
    Type(all);
    EXPECT_EQ(host.Sent(), (std::vector<Message>{{16, String(all), ""}}));
}

TEST(SendData, OfTwelveThousandBytesIsOneMessage) {
    ScriptedHost host = SessionInState(5);
    Type(std::string(12000, 'p'));
    EXPECT_EQ(host.Sent(), (std::vector<Message>{{16, String(std::string(12000, 'p')), ""}}));
}

TEST(SendData, BeyondAPacketIsSplit) {
    ScriptedHost host = SessionInState(5);
    std::string text;
    for (int i = 0; i < 200000; i++) text += static_cast<char>(i % 251);
    Type(text);
    std::string joined;
    for (const Message& message : host.Sent()) {
        EXPECT_EQ(message.type, 16);
        EXPECT_EQ(String(message.data.substr(4)), message.data);
        joined += message.data.substr(4);
    }
    EXPECT_EQ(joined, text);
}

TEST(SendData, OfNothingSendsNothing) {
    SessionInState(5);
    Type("");
    EXPECT_EQ(Wire(), "");
}

TEST(SendData, BeforeThereIsAShellIsDropped) {
    for (int state = 0; state <= 4; state++) {
        SessionInState(state);
        Type("too early");
        EXPECT_EQ(Wire(), "") << state;
    }
}

}  // namespace

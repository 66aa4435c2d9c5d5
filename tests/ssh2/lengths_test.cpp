// SPDX-License-Identifier: MIT
// Lengths of packets behind a cipher, where the length itself is encrypted.
#include "tests/ssh2/conversation.h"

namespace {

class Ssh2Lengths : public Conversation {
  protected:
    // Blocks that begin with this packet_length, encrypted with the server's keys and without a
    // MAC. They do not count as a packet.
    std::string Blocks(uint32_t packet_length, size_t count) {
        const uint32_t sent = server.sent;
        const std::string body(8 * count - 4, '\0');
        const std::string bytes = SealBody(server, packet_length, body).substr(0, 8 * count);
        server.sent = sent;
        return bytes;
    }
};

// No MAC can match: the bytes at its place are a decrypted block or belong to the next packet.
TEST_F(Ssh2Lengths, ShorterThanABlockBehindACipherAreDropped) {
    for (uint32_t length = 0; length < 4; length++) {
        NewSession();
        server = {};
        ToShell();
        const uint32_t before = session.ssh2.recvSeq;
        Receive(Blocks(length, 1) + std::string(20, 'm'));
        EXPECT_EQ(session.ssh2.recvSeq, before) << length;
        EXPECT_EQ(session.ssh.recvFill, 4 - static_cast<int>(length)) << length;
        ExpectSilence();
        ExpectOpen();
    }
}

TEST_F(Ssh2Lengths, ThatAreNotWholeBlocksBehindACipherAreDropped) {
    for (const uint32_t length : {5u, 8u, 11u, 13u, 29u}) {
        NewSession();
        server = {};
        ToShell();
        const uint32_t before = session.ssh2.recvSeq;
        Receive(Blocks(length, (4 + length + 7) / 8) + std::string(20, 'm'));
        EXPECT_EQ(session.ssh2.recvSeq, before) << length;
        ExpectSilence();
        ExpectOpen();
    }
}

// The next packet begins one block after the dropped head and is read from its start.
TEST_F(Ssh2Lengths, TooLongBehindACipherDropsTheDecryptedHeadToo) {
    for (const uint32_t length : {65536u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
        NewSession();
        server = {};
        ToShell();
        Receive(Blocks(length, 1));
        EXPECT_EQ(session.ssh.recvFill, 0) << length;
        EXPECT_EQ(session.ssh2.headDecrypted, 0u) << length;
        Give(Data("then"));
        EXPECT_EQ(outside.display, "then") << length;
        ExpectOpen();
    }
}

TEST_F(Ssh2Lengths, OverflowBehindACipherDropsTheDecryptedHeadToo) {
    ToShell();
    const std::string body(65000, 'x');
    const std::string packet = SealBody(server, 65516, Message(4, body + std::string(515, 'p')));
    Receive(packet.substr(0, 65535 - 3000));
    EXPECT_EQ(session.ssh2.headDecrypted, 1u);
    Receive(std::string(2999, 'x'));
    EXPECT_EQ(session.ssh2.headDecrypted, 1u);
    Receive(std::string(7, 'y'));
    EXPECT_EQ(session.ssh.recvFill, 7);
    EXPECT_EQ(session.ssh2.headDecrypted, 0u);
    ExpectOpen();
}

TEST_F(Ssh2Lengths, PaddingOfEverySizeIsTaken) {
    ToShell();
    std::string shown;
    for (int padding = 0; padding <= 255; padding++) {
        // The data fills the packet up to whole blocks.
        std::string text(static_cast<size_t>((8 - (5 + 9 + padding) % 8) % 8), 't');
        const std::string payload = Data(text);
        const std::string body =
            static_cast<char>(padding) + payload + std::string(static_cast<size_t>(padding), 'p');
        Receive(SealBody(server, static_cast<uint32_t>(body.size()), body));
        shown += text;
        ASSERT_EQ(outside.display, shown) << padding;
    }
    ExpectOpen();
}

// Nothing but padding, up to all of it.
TEST_F(Ssh2Lengths, PacketWithoutAPayloadBehindACipherIsDroppedAndCounted) {
    ToShell();
    const uint32_t before = session.ssh2.recvSeq;
    for (const int padding : {3, 11, 19, 251}) {
        Receive(
            SealBody(server, static_cast<uint32_t>(padding + 1),
                     static_cast<char>(padding) + std::string(static_cast<size_t>(padding), 'p')));
    }
    EXPECT_EQ(session.ssh2.recvSeq, before + 4);
    ExpectSilence();
    ExpectOpen();
    Give(Data("then"));
    EXPECT_EQ(outside.display, "then");
}

TEST_F(Ssh2Lengths, LongestPacketBehindACipherIsTaken) {
    ToShell();
    // 65,535 bytes hold 8,189 blocks and the MAC.
    const size_t size = 8 * 8189;
    const std::string text(size - 4 - 1 - 9 - 4, 'd');
    Receive(SealBody(server, static_cast<uint32_t>(size - 4), '\4' + Data(text) + "pppp"));
    EXPECT_EQ(outside.display.size(), text.size());
    EXPECT_EQ(outside.display, text);
    Expect(Adjust(static_cast<uint32_t>(text.size())));
    ExpectOpen();
}

// The packet never fits the buffer. The client drops it in the end, and later MACs do not match.
TEST_F(Ssh2Lengths, PacketBeyondTheBufferBehindACipherIsDroppedWithItsMac) {
    ToShell();
    const size_t size = 8 * 8190;
    const std::string text(size - 4 - 1 - 9 - 4, 'd');
    const uint32_t before = session.ssh2.recvSeq;
    Receive(SealBody(server, static_cast<uint32_t>(size - 4), '\4' + Data(text) + "pppp"));
    EXPECT_EQ(outside.display, "");
    EXPECT_EQ(session.ssh2.recvSeq, before);
    EXPECT_LT(session.ssh.recvFill, 3000);
    ExpectSilence();
    ExpectOpen();
}

}  // namespace

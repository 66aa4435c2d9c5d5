// SPDX-License-Identifier: MIT
// Packets and the exchange of keys.
#include "connection/connection.h"
#include "crypto/ciphers.h"
#include "protocol/ssh/ssh2.h"
#include "tests/ssh2/conversation.h"

class Ssh2Packets : public Conversation {};
class Ssh2KeyExchange : public Conversation {};

// ---------------------------------------------------------------- packets

TEST_F(Ssh2Packets, NewKeysIsAPacketOf16BytesWith10OfPadding) {
    Identify();
    Offer();
    Give(KexDhReply(server, "SSH-2.0-1.0.00"));
    ASSERT_EQ(outside.wire.size(), 16u);
    EXPECT_EQ(outside.wire.substr(0, 6), U32(12) + "\x0a\x15");
    Expect(Message(21));
}

TEST_F(Ssh2Packets, ServiceRequestIsAPacketOf32BytesWith10OfPadding) {
    Identify();
    Offer();
    Reply();
    SwitchKeys();
    EXPECT_EQ(outside.wire.size(), 32u + 20u);
    EXPECT_EQ(Take().size(), 17u);  // which compares the padding's size
}

TEST_F(Ssh2Packets, PaddingIsOf4To11BytesForEveryPayload) {
    ToShell();
    for (size_t length = 1; length <= 40; length++) {
        Type(std::string(length, 't'));
        Expect(ClientData(std::string(length, 't')));
    }
}

TEST_F(Ssh2Packets, ChunksOfEverySizeMakeTheSamePackets) {
    for (const size_t chunk : {1u, 2u, 3u, 7u, 8u, 9u, 27u, 28u, 29u, 100u}) {
        NewSession();
        server = {};
        ToShell();
        std::string bytes, shown;
        for (size_t i = 0; i < 60; i++) {
            const std::string text(i, static_cast<char>('0' + i));
            bytes += Seal(server, Data(text), static_cast<int>(i % 3));
            shown += text;
        }
        Receive(bytes, chunk);
        EXPECT_EQ(outside.display, shown) << "chunks of " << chunk;
    }
}

// Such a packet has less than four bytes of padding, which the client accepts.
TEST_F(Ssh2Packets, PacketOfOneBlockNeedsOnlyItsHeadDecrypted) {
    ToShell();
    const uint32_t before = session.ssh2.recvSeq;
    Receive(SealBody(server, 4, Message(2, Message(2, "pp"))));
    EXPECT_EQ(session.ssh2.recvSeq, before + 1);
    Give(Data("then"));
    EXPECT_EQ(outside.display, "then");
}

TEST_F(Ssh2Packets, PaddingBeyondThePacketDropsIt) {
    ToShell();
    const uint32_t before = session.ssh2.recvSeq;
    for (const int padding : {19, 20, 100, 255})
        Receive(
            SealBody(server, 20, static_cast<char>(padding) + Message(97) + std::string(18, 'p')));
    EXPECT_EQ(session.ssh2.recvSeq, before + 4) << "they count all the same";
    ExpectOpen();
    Give(Data("then"));
    EXPECT_EQ(outside.display, "then");
}

TEST_F(Ssh2Packets, PacketWithoutAPayloadInTheClearIsDropped) {
    Identify();
    Receive(U32(0) + U32(1) + std::string(1, '\0') + U32(2) + std::string("\1p"));
    EXPECT_EQ(session.ssh.recvFill, 0);
    EXPECT_EQ(session.ssh2.recvSeq, 3u);
    ExpectOpen();
    server.sent = 3;
    Offer();
}

TEST_F(Ssh2Packets, MacFailureLeavesRecvSeqAndTheSessionStalls) {
    ToShell();
    const uint32_t before = session.ssh2.recvSeq;
    std::string packet = Seal(server, Data("changed"));
    packet.back() = static_cast<char>(packet.back() ^ 1);
    Receive(packet);
    EXPECT_EQ(session.ssh2.recvSeq, before);
    for (int i = 0; i < 3; i++) Give(Data("later"));
    EXPECT_EQ(session.ssh2.recvSeq, before);
    EXPECT_EQ(outside.display, "");
    ExpectSilence();
    ExpectOpen();
}

TEST_F(Ssh2Packets, PacketIsExpectedWithTheSameNumberAfterAMacFailure) {
    ToShell();
    std::string packet = Seal(server, Data("changed"));
    packet.back() = static_cast<char>(packet.back() ^ 1);
    Receive(packet);
    server.sent--;
    Give(Data("with the number of the dropped one"));
    EXPECT_EQ(outside.display, "with the number of the dropped one");
}

TEST_F(Ssh2Packets, SequenceNumbersBeginAgainAfterTheLast) {
    ToShell();
    session.ssh2.sendSeq = session.ssh2.recvSeq = server.sent = server.received = 0xffffffff;
    for (const char* text : {"last ", "first ", "second"}) {
        Give(Data(text));
        Type(text);
        Expect(ClientData(text));
    }
    EXPECT_EQ(outside.display, "last first second");
    EXPECT_EQ(session.ssh2.recvSeq, 2u);
}

TEST_F(Ssh2Packets, NegativeOrTooLongLengthDropsTheWholeBuffer) {
    for (const uint32_t length : {0x80000000u, 0xffffffffu, 65536u}) {
        NewSession();
        server = {};
        Identify();
        Receive(U32(length) + "more that came along");
        EXPECT_EQ(session.ssh.recvFill, 0) << length;
        ExpectOpen();
        Offer();
        Reply();
    }
}

TEST_F(Ssh2Packets, LengthOf65535IsWaitedForUntilTheBufferOverflows) {
    Identify();
    Receive(U32(65535) + std::string(65531, 'x'));
    EXPECT_EQ(session.ssh.recvFill, 65535);
    Offer();  // does not fit behind it, so the buffer is dropped
    Reply();
}

TEST_F(Ssh2Packets, OneByteBeyondAFullBufferDropsTheBuffer) {
    Identify();
    server.server_kex_init = ServerKexInit();
    const std::string offer = Seal(server, server.server_kex_init);
    Receive(U32(65535) + std::string(65531, 'x'));
    ASSERT_EQ(session.ssh.recvFill, 65535);
    Receive(offer.substr(0, 1));
    EXPECT_EQ(session.ssh.recvFill, 1);
    tape = Tape(5);
    Receive(offer.substr(1));
    Expect(ClientKexInit(tape, cipher));
    ExpectOpen();
}

TEST_F(Ssh2Packets, PacketOf65535BytesClosesTheSession) {
    Identify();
    Receive(U32(65531) + std::string(65530, 'x'));
    ExpectOpen();
    Receive("x");
    ExpectClosed();
    EXPECT_EQ(session.ssh.recvFill, 0);
}

TEST_F(Ssh2Packets, PacketOf65534BytesIsTaken) {
    Identify();
    Receive(U32(65530) + Message(4, Message(2)) + std::string(65528, 'x'));
    ExpectOpen();
    EXPECT_EQ(session.ssh2.recvSeq, 1u);
    server.sent = 1;
    Offer();
}

TEST_F(Ssh2Packets, PacketWhoseSizeDoesNotFitItsLengthFieldIsDropped) {
    Identify();
    const std::string packet = Seal(server, Message(2));
    for (const size_t size : {packet.size() - 1, packet.size() + 1}) {
        std::vector<BYTE> bytes(packet.begin(), packet.end());
        bytes.resize(size);
        Ssh2HandlePacket(bytes.data(), static_cast<int>(size));
        EXPECT_EQ(session.ssh2.recvSeq, 0u) << size;
    }
    Receive(packet);
    EXPECT_EQ(session.ssh2.recvSeq, 1u);
}

TEST_F(Ssh2Packets, NothingIsSentWhileNoConnectionIsUp) {
    ToShell();
    session.connected = 0;
    BeginPacket(2, 1);
    SendPacket();
    ExpectSilence();
}

TEST_F(Ssh2Packets, SendThatFailsIsNotTriedAgainButCounts) {
    ToShell();
    const uint32_t sent = session.ssh2.sendSeq;
    outside.sends_that_fail = 1;
    Type("lost");
    ExpectSilence();
    EXPECT_EQ(session.ssh2.sendSeq, sent + 1);
    ExpectOpen();
    Give(Data("shown"));
    EXPECT_EQ(outside.display, "shown");
    ExpectSilence();
}

TEST_F(Ssh2Packets, DisconnectIsIgnored) {
    ToShell();
    Give(Message(1, U32(11) + Str("go away") + Str("")));
    ExpectSilence();
    ExpectOpen();
    Give(Data("still here"));
    EXPECT_EQ(outside.display, "still here");
}

// Without encryption the client neither asks for a password nor shows data.
TEST_F(Ssh2Packets, MessagesOfLaterLayersAreIgnoredInTheClear) {
    const std::function<void()> steps[] = {[this] { Identify(); }, [this] { Offer(); },
                                           [this] { Reply(); }};  // our NEWKEYS has been sent
    for (const auto& step : steps) {
        step();
        for (const int number : {6, 51, 52, 91, 94, 95, 99})
            Give(Message(number, U32(27) + U32(4) + U32(4) + "data"));
        ExpectSilence();
        EXPECT_EQ(outside.display, "");
        EXPECT_EQ(outside.sign_ons, 0);
        ExpectOpen();
    }
    SwitchKeys();
    Expect(Message(5, Str("ssh-userauth")));
}

TEST_F(Ssh2Packets, MessagesThatEndASessionEndItBeforeEncryptionToo) {
    for (const int number : {60, 92, 97, 100}) {
        NewSession();
        server = {};
        Identify();
        Give(Message(number, U32(27)));
        ExpectClosed();
    }
}

TEST_F(Ssh2Packets, BufferIsHandedBackWhereAPacketEndsTheSession) {
    ToShell();
    Give(Message(97, U32(27)));
    ExpectClosed();
    EXPECT_EQ(session.receive_ready, 1u);
}

TEST_F(Ssh2Packets, PacketsOfASessionBegunAsTheOtherProtocolAreIgnored) {
    session.settings.ssh_type2 = 0;
    Receive(server.line);
    outside.wire.clear();
    session.settings.ssh_type2 = 1;  // the setting for the next session
    Give(ServerKexInit());
    ExpectSilence();
    ExpectOpen();
}

TEST_F(Ssh2Packets, StringsAreReadOnlyInsideThePacket) {
    ToShell();
    Give(Message(2, U32(0x80000000) + "abc"));
    const BYTE* data = reinterpret_cast<const BYTE*>("");
    int length = 5;
    ReadString(&data, &length);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(length, 0);
    uint32_t value;
    EXPECT_TRUE(ReadUint32(&value)) << "the cursor has not moved";
    EXPECT_EQ(value, 0x80000000u);
    EXPECT_FALSE(ReadUint32(&value));
    Give(Message(2, Str("one") + Str("") + Str("\x80")));
    ReadString(&data, &length);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(data), 3), "one");
    ReadString(&data, &length);
    EXPECT_NE(data, nullptr);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(ReadMpint(), nullptr) << "a negative number";
    EXPECT_EQ(ReadMpint(), nullptr) << "the end";
}

// ---------------------------------------------------------------- exchange of keys

TEST_F(Ssh2KeyExchange, SshTypes0And1OfferAndUseTripleDes) {
    for (const DWORD type : {0u, 1u}) {
        NewSession();
        server = {};
        Use(type);
        ToShell();
        EXPECT_EQ(session.ssh2.cipher, &kTripleDesCbc);
    }
}

TEST_F(Ssh2KeyExchange, SshType2OffersAndUsesBlowfish) {
    Use(2);
    ToShell();
    EXPECT_EQ(session.ssh2.cipher, &kBlowfishCbc);
    Give(Data("text"));
    Type("typed");
    EXPECT_EQ(outside.display, "text");
    Expect(ClientData("typed"));
}

TEST_F(Ssh2KeyExchange, UnknownSshTypeLeavesTheCipherListsOut) {
    session.settings.ssh_type = 3;
    cipher = "";
    ToShell();
    EXPECT_EQ(session.ssh2.cipher, &kTripleDesCbc);
}

TEST_F(Ssh2KeyExchange, EverySeedOfTheClockIsUsed) {
    for (const int milliseconds : {0, 1, 36, 37, 999, 1000, 1005, 61000, 3599999}) {
        NewSession(milliseconds);
        server = {};
        Identify();
        server.server_kex_init = ServerKexInit();
        tape = Tape(milliseconds);
        Give(server.server_kex_init);
        const std::string expected = ClientKexInit(tape, cipher);
        Expect(expected);
        Expect(Message(30, ClientPublic(tape)));
    }
}

TEST_F(Ssh2KeyExchange, TheSessionIsSecureWithTheNewKeys) {
    Identify();
    Offer();
    Reply();
    EXPECT_EQ(session.ssh_progress, 0u);
    const int statuses = outside.statuses;
    SwitchKeys();
    EXPECT_EQ(session.ssh_progress, 1u);
    EXPECT_EQ(outside.statuses, statuses + 1);
}

TEST_F(Ssh2KeyExchange, NewKeysBeforeOursClosesTheSession) {
    Identify();
    Give(Message(21));
    ExpectClosed();

    NewSession();
    server = {};
    Identify();
    Offer();
    Give(Message(21));
    ExpectClosed();
}

TEST_F(Ssh2KeyExchange, SecondNewKeysClosesTheSession) {
    ToService();
    Give(Message(21));
    ExpectClosed();
}

TEST_F(Ssh2KeyExchange, BadSignatureIsNotAnsweredAndNewKeysThenCloses) {
    Identify();
    Offer();
    KexDhReply(server, "SSH-2.0-1.0.00");
    Give(Message(31, Str(HostKeyBlob()) + server.f + Str(SignatureBlob("another hash"))));
    ExpectSilence();
    ExpectOpen();
    Give(KexDhReply(server, "SSH-2.0-1.0.00"));  // an exchange has one reply
    ExpectSilence();
    ExpectOpen();
    Give(Message(21));
    ExpectClosed();
}

TEST_F(Ssh2KeyExchange, HostKeyThatCannotBeReadIsNotAnswered) {
    const std::string blob = HostKeyBlob();
    for (const std::string& key : {std::string(), Str("ssh-rsa") + blob.substr(11),
                                   blob.substr(0, blob.size() - 1), blob.substr(0, 20)}) {
        NewSession();
        server = {};
        Identify();
        Offer();
        KexDhReply(server, "SSH-2.0-1.0.00");
        Give(Message(31, Str(key) + server.f + Str(SignatureBlob(server.hash))));
        ExpectSilence();
        ExpectOpen();
    }
}

TEST_F(Ssh2KeyExchange, PublicValueOutsideTheGroupFailsTheExchange) {
    const std::string prime(128, '\xff');
    for (const std::string& f : {Str(""), Str("\x80"), Str("\xff\xff"), Str('\0' + prime),
                                 Str(std::string(60000, 'f')), std::string("\0\0\0", 3)}) {
        NewSession();
        server = {};
        Identify();
        Offer();
        KexDhReply(server, "SSH-2.0-1.0.00");
        Give(Message(31, Str(HostKeyBlob()) + f + Str(SignatureBlob(server.hash))));
        ExpectSilence();
        ExpectOpen();
        Give(Message(21));
        ExpectClosed();
    }
}

TEST_F(Ssh2KeyExchange, ReplyThatIsCutOffAnywhereIsNotAnswered) {
    Identify();
    Offer();
    const std::string reply = KexDhReply(server, "SSH-2.0-1.0.00");
    for (size_t length = 1; length < reply.size(); length += length < 12 ? 1 : 37) {
        NewSession();
        server.sent = server.received = 0;
        Identify();
        Offer();
        Give(reply.substr(0, length));
        ExpectSilence();
        ExpectOpen();
    }
}

TEST_F(Ssh2KeyExchange, ReplyThatCannotBeReadFailsTheExchange) {
    for (const size_t length : {1u, 3u, 100u, 600u}) {
        NewSession();
        server = {};
        Identify();
        Offer();
        const std::string reply = KexDhReply(server, "SSH-2.0-1.0.00");
        Give(reply.substr(0, length));
        Give(reply);
        ExpectSilence();
        Give(Message(21));
        ExpectClosed();
    }
}

TEST_F(Ssh2KeyExchange, ReplyThatNobodyAskedForIsIgnored) {
    Identify();
    Give(Message(31, Str(HostKeyBlob()) + Str("f") + Str("signature")));
    ExpectSilence();
    Offer();
    Reply();
}

TEST_F(Ssh2KeyExchange, SecondReplyDoesNotTouchTheAgreedKeys) {
    Identify();
    Offer();
    Reply();
    Give(Message(31, Str(HostKeyBlob()) + Str("f") + Str("signature")));
    ExpectSilence();
    SwitchKeys();
    Expect(Message(5, Str("ssh-userauth")));
}

TEST_F(Ssh2KeyExchange, SecondKexInitRestartsTheExchange) {
    Identify();
    Offer();
    Offer();
    Reply();
    Offer();  // our NEWKEYS does not count for this one
    Give(Message(21));
    ExpectClosed();
}

// The server's NEWKEYS then activates only the keys of the last exchange.
TEST_F(Ssh2KeyExchange, SecondExchangeBeforeNewKeysReplacesTheFirst) {
    Identify();
    Offer();
    Reply();
    const std::string first = server.hash;
    server.secret = "123456789abcdef0";
    Offer();
    Reply();
    EXPECT_NE(server.hash, first);
    SwitchKeys();
    EXPECT_EQ(server.session_id, server.hash);
    Expect(Message(5, Str("ssh-userauth")));
    Give(Message(6));
    Expect(PasswordRequest("visitor", "warehouse7"));
    Give(Message(21));
    ExpectClosed();
}

TEST_F(Ssh2KeyExchange, ServersListsAreNotRead) {
    Identify();
    server.server_kex_init = Message(20);
    tape = Tape(5);
    Give(server.server_kex_init);
    Expect(server.client_kex_init = ClientKexInit(tape, cipher));
    server.e = ClientPublic(tape);
    Expect(Message(30, server.e));
    Reply();
}

TEST_F(Ssh2KeyExchange, KeysSwitchInTheMiddleOfAChunk) {
    for (const size_t chunk : {1u, 5u, 15u, 17u, 24u, 25u, 3000u}) {
        NewSession();
        server = {};
        for (const bool again : {false, true}) {
            if (again) {
                Give(Message(52));
                Take();
                Give(Message(91, U32(27) + U32(kServerChannel) + U32(0) + U32(0)));
                Take();
            } else {
                Identify();
            }
            Offer();
            Reply();
            std::string bytes = Seal(server, Message(21));
            InstallKeys(server);
            bytes += Seal(server, Message(2, Str("ignore")));
            bytes += Seal(server, again ? Data("shown") : Message(6));
            Receive(bytes, chunk);
            if (!again) {
                Expect(Message(5, Str("ssh-userauth")));
                Expect(PasswordRequest("visitor", "warehouse7"));
            }
            ExpectSilence();
            EXPECT_EQ(outside.display, again ? "shown" : "") << "chunks of " << chunk;
        }
    }
}

// ---------------------------------------------------------------- exchange in mid-session

TEST_F(Ssh2KeyExchange, InMidSessionKeepsTheChannelAndTheSessionIdentifier) {
    ToShell();
    const std::string first = server.session_id;
    for (int i = 0; i < 3; i++) {
        Offer();
        Reply();
        SwitchKeys();
        ExpectSilence();  // no service is asked for again
        Give(Data("after"));
        Type("typed");
        Expect(ClientData("typed"));
    }
    EXPECT_EQ(outside.display, "afterafterafter");
    EXPECT_EQ(server.session_id, first);
    EXPECT_NE(server.hash, first);
}

TEST_F(Ssh2KeyExchange, BeforeTheChannelIsOpenAsksForTheServiceAgain) {
    ToPassword();
    Offer();
    Reply();
    SwitchKeys();
    Expect(Message(5, Str("ssh-userauth")));
}

TEST_F(Ssh2KeyExchange, BetweenPtyAndShellForgetsThatAPtyWasAskedFor) {
    ToPty();
    Offer();
    Reply();
    SwitchKeys();
    Give(Message(99, U32(27)));
    ExpectSilence();
}

TEST_F(Ssh2KeyExchange, TypingMeanwhileWaitsForTheNewKeys) {
    ToShell();
    Offer();
    Type("first ");
    ExpectSilence();
    Reply();
    Type("second");
    ExpectSilence();
    Type("");
    SwitchKeys();
    Expect(ClientData("first second"));
    Type("third");
    Expect(ClientData("third"));
    ExpectSilence();
}

// Many small replies of the terminal, as a host can trigger them.
TEST_F(Ssh2KeyExchange, HeldDataIsNotReallocatedForEachPiece) {
    ToShell();
    Offer();
    std::string typed;
    const BYTE* block = nullptr;
    int moves = 0;
    for (int i = 0; i < 60000; i++) {
        const std::string piece = "\033[" + std::to_string(i % 10);
        Type(piece);
        typed += piece;
        moves += session.ssh2.heldData != block;
        block = session.ssh2.heldData;
    }
    EXPECT_LE(moves, 20);
    Reply();
    SwitchKeys();
    for (size_t at = 0; at < typed.size(); at += 16384) Expect(ClientData(typed.substr(at, 16384)));
    ExpectSilence();
    EXPECT_EQ(session.ssh2.heldData, nullptr);
}

TEST_F(Ssh2KeyExchange, PieceThatDoesNotFitTheHeldDataIsDroppedWhole) {
    static constexpr size_t kMost = kSsh2MaxHeld;
    ToShell();
    Offer();
    Type(std::string(kMost + 1, 'x'));
    EXPECT_EQ(session.ssh2.heldLength, 0);
    std::string held;
    while (held.size() + 50001 <= kMost) {
        Type(std::string(50001, 'a'));
        held.append(50001, 'a');
    }
    Type(std::string(50001, 'x'));
    Type(std::string(kMost - held.size(), 'b'));
    held.resize(kMost, 'b');
    Type("x");
    EXPECT_EQ(session.ssh2.heldLength, kSsh2MaxHeld);
    Reply();
    SwitchKeys();
    for (size_t at = 0; at < held.size(); at += 16384) {
        ASSERT_EQ(Take(), ClientData(held.substr(at, 16384)));
    }
    ExpectSilence();
    Type("after");
    Expect(ClientData("after"));
}

// Every packet of the exchange, and of the session before and after it.
TEST_F(Ssh2KeyExchange, InMidSessionComesInOneByteChunks) {
    for (const DWORD type : {1u, 2u}) {
        NewSession();
        server = {};
        offers = 0;
        Use(type);
        ToShell();
        for (int i = 0; i < 3; i++) {
            server.server_kex_init = ServerKexInit(std::string(16, static_cast<char>('A' + i)));
            tape = Tape(5);
            Receive(Seal(server, server.server_kex_init), 1);
            Expect(server.client_kex_init = ClientKexInit(tape, cipher));
            Expect(Message(30, server.e = ClientPublic(tape)));
            Receive(Seal(server, Data("between ")), 1);
            Receive(Seal(server, KexDhReply(server, "SSH-2.0-1.0.00")), 1);
            Expect(Message(21));
            std::string bytes = Seal(server, Message(21));
            InstallKeys(server);
            bytes += Seal(server, Data("after "));
            Receive(bytes, 1);
            Type("typed");
            Expect(ClientData("typed"));
        }
        EXPECT_EQ(outside.display, "between after between after between after ") << type;
        ExpectSilence();
        ExpectOpen();
    }
}

TEST_F(Ssh2KeyExchange, WithAnotherSshTypeChangesTheCipher) {
    ToShell();
    session.settings.ssh_type = 2;
    cipher = "blowfish-cbc";
    Offer();
    Reply();
    server.blowfish = true;
    SwitchKeys();
    Give(Data("after"));
    EXPECT_EQ(outside.display, "after");
}

// ---------------------------------------------------------------- the end

TEST_F(Ssh2KeyExchange, EndOfTheSessionWipesItsSecrets) {
    ToShell();
    Type("secret");
    Take();
    Offer();
    Type("held");
    OnSocketEvent(1);
    const BYTE* bytes = reinterpret_cast<const BYTE*>(&session.ssh2);
    for (size_t i = 0; i < sizeof(session.ssh2); i++) ASSERT_EQ(bytes[i], 0) << i;
    for (const BYTE b : session.ssh.recvBuf) ASSERT_EQ(b, 0);
    EXPECT_EQ(session.ssh.recvFill, 0);
}

// As when the user connects again while this connection is up.
TEST_F(Ssh2KeyExchange, LineInMidSessionRestartsTheProtocol) {
    ToShell();
    Offer();  // a key exchange is in progress
    Type("held");
    session.banner_sent = 0;
    server = {};
    Identify();
    EXPECT_EQ(session.ssh2.cipher, nullptr);
    EXPECT_EQ(session.ssh2.channelOpen, 0u);
    EXPECT_EQ(session.ssh2.sendSeq, 0u);
    EXPECT_EQ(session.ssh2.recvSeq, 0u);
    Offer();
    Reply();
    SwitchKeys();
    Expect(Message(5, Str("ssh-userauth")));
    ExpectSilence();
}

TEST_F(Ssh2KeyExchange, NextSessionKeepsNoStateOfTheLast) {
    Identify();
    Offer();
    Reply();  // our NEWKEYS has been sent
    session.banner_sent = 0;
    outside.wire.clear();
    server = {};
    Identify();
    Give(Message(21));
    ExpectClosed();
}

// SPDX-License-Identifier: MIT
// A man in the middle who changes one bit. Before the keys are in use the client then sends no
// NEWKEYS; afterwards it drops the packet. The tests change one bit of each byte, a different one
// each time; in long numbers they change every fifth byte.
#include "tests/ssh2/conversation.h"

class Ssh2ManInTheMiddle : public Conversation {
  protected:
    // Starts a new session, up to the message that the test changes.
    void Begin() {
        NewSession();
        server = {};
        offers = 0;
    }
    void BeginToOffer() {
        Begin();
        Identify();
    }

    // The client has not agreed to keys, and does not use any after NEWKEYS.
    void ExpectNoKeys(size_t place) {
        Give(Message(21));
        EXPECT_EQ(session.ssh2.cipher, nullptr) << place;
        EXPECT_EQ(session.ssh_progress, 0u) << place;
        EXPECT_EQ(outside.wire.find(U32(12) + "\x0a\x15"), std::string::npos) << place;
    }

    // The server computes with the messages that it really sent and received.
    void GoOnWithReply() {
        server.client_kex_init = ClientKexInit(tape, cipher);
        tape.Take(10);  // the padding
        server.e = ClientPublic(tape);
        Give(KexDhReply(server, "SSH-2.0-1.0.00"));
    }
};

static std::string Changed(std::string bytes, size_t place) {
    bytes[place] = static_cast<char>(bytes[place] ^ 1 << place % 8);
    return bytes;
}

// The line ending is not part of the hash, so a change of it has no effect on the keys.
TEST_F(Ssh2ManInTheMiddle, AChangedBitOfTheLineGivesNoKeys) {
    const size_t length = server.line.find('\r');
    for (size_t place = 0; place < length; place++) {
        Begin();
        Receive(Changed(server.line, place));
        outside.wire.clear();
        Offer();
        Give(KexDhReply(server, "SSH-2.0-1.0.00"));
        ExpectSilence();
        ExpectNoKeys(place);
    }
}

// The padding of an unencrypted packet is not part of the hash either.
TEST_F(Ssh2ManInTheMiddle, AChangedBitOfTheOfferGivesNoKeys) {
    const size_t size = 5 + ServerKexInit().size();
    for (size_t place = 0; place <= size; place++) {
        BeginToOffer();
        server.server_kex_init = ServerKexInit();
        tape = Tape(5);
        const std::string offer = Seal(server, server.server_kex_init);
        Receive(place < size ? Changed(offer, place) : offer);
        GoOnWithReply();
        if (place < size)
            ExpectNoKeys(place);
        else
            EXPECT_EQ(session.ssh2.kexDone, 1u) << "what was not changed gets them";
    }
}

TEST_F(Ssh2ManInTheMiddle, AChangedBitOfHostKeyOrPublicValueGivesNoKeys) {
    const size_t size = 5 + 1 + 4 + HostKeyBlob().size() + 4 + 128;
    for (size_t place = 0; place < size; place += place < 30 ? 1 : 5) {
        BeginToOffer();
        Offer();
        Receive(Changed(Seal(server, KexDhReply(server, "SSH-2.0-1.0.00")), place));
        ExpectSilence();
        ExpectNoKeys(place);
    }
}

// Only the two numbers of the blob are checked; the client ignores their length field.
TEST_F(Ssh2ManInTheMiddle, AChangedBitOfTheSignatureGivesNoKeys) {
    BeginToOffer();
    Offer();
    const size_t end = 5 + KexDhReply(server, "SSH-2.0-1.0.00").size();
    for (size_t place = end - 40; place < end; place++) {
        BeginToOffer();
        Offer();
        Receive(Changed(Seal(server, KexDhReply(server, "SSH-2.0-1.0.00")), place));
        ExpectSilence();
        ExpectNoKeys(place);
    }
}

TEST_F(Ssh2ManInTheMiddle, AChangedBitOfOurValueOrOfferFailsTheServersSignature) {
    for (const bool offer : {false, true}) {
        BeginToOffer();
        Offer();
        std::string& bytes = offer ? server.client_kex_init : server.e;
        bytes = Changed(bytes, bytes.size() - 9);
        Give(KexDhReply(server, "SSH-2.0-1.0.00"));
        ExpectSilence();
        ExpectNoKeys(offer);
    }
}

TEST_F(Ssh2ManInTheMiddle, AChangedBitOfCiphertextOrMacDropsThePacketAndAllLaterOnes) {
    const size_t size = 4 + 1 + Data("rm -rf /").size() + 10 + 20;
    ASSERT_EQ(size % 8, 4u) << "whole blocks and the MAC";
    for (size_t place = 0; place < size; place++) {
        Begin();
        ToShell();
        const uint32_t expected = session.ssh2.recvSeq;
        std::string bytes = Changed(Seal(server, Data("rm -rf /")), place);
        bytes += Seal(server, Data("and more"));
        Receive(bytes);
        EXPECT_EQ(outside.display, "") << place;
        EXPECT_EQ(session.ssh2.recvSeq, expected) << place;
        ExpectSilence();
    }
}

// SPDX-License-Identifier: MIT
// Secrets are wiped as soon as they are no longer needed, and all of them at the session's end.
#include "connection/connection.h"
#include "crypto/ciphers.h"
#include "crypto/packet_checks.h"
#include "protocol/ssh/ssh2.h"
#include "tests/ssh2/conversation.h"
#include "tests/support/leftovers.h"

namespace {

class Ssh2Secrets : public Conversation {};

const std::string kPassword = "a password of 30 bytes, no less";

// The results of the keys in use for a block in each direction and for a packet's MAC.
std::string Fingerprint(const SshCipher& cipher) {
    BYTE out[8] = {}, in[8] = {}, packet[8 + kSha1Size] = {};
    cipher.encrypt(out, 8);
    cipher.decrypt(in, 8);
    kHmacSha1.generate(packet, 8, 0);
    std::string bytes;
    for (const BYTE* part : {out, in}) bytes.append(part, part + 8);
    return bytes.append(packet + 8, packet + sizeof(packet));
}

// The fingerprint without keys. The incoming MAC key shows only in a MAC that matches.
std::string FingerprintOfNone(const SshCipher& cipher) {
    WipeCipherKeys();
    WipeMacKeys();
    return Fingerprint(cipher);
}

TEST_F(Ssh2Secrets, KeysInUseAreOnlyInTheirCiphers) {
    ToService();
    EXPECT_EQ(session.ssh2.K, nullptr);
    for (const BYTE byte : session.ssh2.keyBlock) ASSERT_EQ(byte, 0);
}

TEST_F(Ssh2Secrets, EveryEndOfASessionForgetsTheKeys) {
    const std::function<void()> ends[] = {
        [] { OnSocketEvent(1); },  // the host, or the user
        [this] {                   // the client itself, whose thread then reports the end
            Give(Message(97, U32(27)));
            ExpectClosed();
            OnSocketEvent(1);
        },
    };
    for (const DWORD type : {1u, 2u}) {
        for (const auto& end : ends) {
            NewSession();
            server = {};
            Use(type);
            ToShell();
            const SshCipher& cipher = *session.ssh2.cipher;
            end();
            const std::string left = Fingerprint(cipher);
            EXPECT_EQ(Hex(left), Hex(FingerprintOfNone(cipher))) << cipher.name;
        }
    }
}

TEST_F(Ssh2Secrets, IncomingMacKeyIsForgottenToo) {
    ToShell();
    OnSocketEvent(1);
    BYTE packet[8 + kSha1Size] = {};
    WipeCipherKeys();
    kHmacSha1.generate(packet, 8, 0);  // with the outgoing key, which is cleared
    EXPECT_EQ(kHmacSha1.verify(packet, 8, 0), 1) << "as the incoming one is";
}

TEST_F(Ssh2Secrets, FailedExchangeLeavesNothingAfterTheSession) {
    Identify();
    Offer();
    KexDhReply(server, "SSH-2.0-1.0.00");
    Give(Message(31, Str(HostKeyBlob()) + server.f + Str(SignatureBlob("another hash"))));
    Give(Message(21));
    ExpectClosed();
    OnSocketEvent(1);
    const BYTE* bytes = reinterpret_cast<const BYTE*>(&session.ssh2);
    for (size_t i = 0; i < sizeof(session.ssh2); i++) ASSERT_EQ(bytes[i], 0) << i;
}

TEST_F(Ssh2Secrets, PasswordIsNotLeftOnTheStack) {
    SetText(session.settings.ssh_p, kPassword.c_str());
    ToService();
    EXPECT_EQ(LeftOnStack(kPassword.data(), [] { Ssh2Authenticate(false); }), 0);
    Expect(PasswordRequest("visitor", kPassword));
}

TEST_F(Ssh2Secrets, DataHeldForNewKeysIsWipedBeforeItIsReleased) {
    const std::string typed = "typed while keys are exchanged", more = " and more of it";
    ToShell();
    Offer();
    const std::string reply = KexDhReply(server, "SSH-2.0-1.0.00");
    std::string packets = Seal(server, reply);
    packets += Seal(server, Message(21));
    const int held = ReleasedWith(typed, [&] {
        Type(typed);
        Type(more);
        Receive(packets);
    });
    if (held < 0) GTEST_SKIP() << "the allocator has no hooks in this build";
    EXPECT_EQ(held, 0);
    Expect(Message(21));
    InstallKeys(server);
    Expect(ClientData(typed + more));
}

TEST_F(Ssh2Secrets, HeldDataIsWipedWhereItMovesToALargerBlock) {
    const std::string typed = "typed while keys are exchanged";
    ToShell();
    Offer();
    const BYTE* first = nullptr;
    const int held = ReleasedWith(typed, [&] {
        Type(typed);
        first = session.ssh2.heldData;
        Type(std::string(1000, '.'));
    });
    if (held < 0) GTEST_SKIP() << "the allocator has no hooks in this build";
    EXPECT_EQ(held, 0);
    EXPECT_NE(session.ssh2.heldData, first);
}

TEST_F(Ssh2Secrets, DataHeldAtTheEndOfTheSessionIsWipedToo) {
    const std::string typed = "typed while keys are exchanged";
    ToShell();
    Offer();
    const int held = ReleasedWith(typed, [&] {
        Type(typed);
        OnSocketEvent(1);
    });
    if (held < 0) GTEST_SKIP() << "the allocator has no hooks in this build";
    EXPECT_EQ(held, 0);
    EXPECT_EQ(session.ssh2.heldData, nullptr);
}

}  // namespace

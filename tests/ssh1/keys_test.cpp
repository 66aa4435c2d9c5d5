// SPDX-License-Identifier: MIT
// The public-key message and its answer.
#include <gtest/gtest.h>

#include <cstdlib>

#include "crypto/ciphers.h"
#include "protocol/protocols.h"
#include "tests/ssh1/outside.h"
#include "tests/ssh1/scripted_host.h"
#include "tests/support/services_test_hooks.h"

namespace {

const std::string kViolation = "Error: SSH protocol violation. Session must close!!!";

void ExpectRefused(ScriptedHost& host, const std::string& data, const std::string& what) {
    NewSession();
    Receive(host.Packet(2, data));
    EXPECT_EQ(Box(), kViolation) << what;
    EXPECT_EQ(outside.closed, 1) << what;
    EXPECT_EQ(Wire(), "") << what;
    EXPECT_EQ(session.ssh1.ssh1State, 0) << what;
}

void ExpectAccepted(ScriptedHost& host, const std::string& data, const std::string& what) {
    NewSession();
    Receive(host.Packet(2, data));
    EXPECT_EQ(Box(), "") << what;
    EXPECT_TRUE(host.TakeSessionKey()) << what;
    host.cipher = 0;
}

// ---------------------------------------------------------------- what is sent

TEST(SessionKey, IsSentWithCipherCookieAndFlags) {
    const int numbers[] = {2, 3, 6};
    for (uint32_t type = 0; type <= 2; type++) {
        ScriptedHost host = SessionInState(1, type);
        EXPECT_EQ(host.cipher, numbers[type]);
        EXPECT_EQ(host.client_flags, 0u);
        EXPECT_EQ(host.key_bits, 1024);
    }
}

TEST(SessionKey, KeepsLeadingZeroBytesOfTheEncryptedNumber) {
    ScriptedHost host = SessionInState(1);  // exponent 1 leaves the block as it is: 0 and 2 first
    EXPECT_EQ(host.key_bits, 8 * 128);
}

TEST(SessionKey, IsTheServersKeyFirstWhereTheHostKeyIsLonger) {
    SessionInState(1);
    EXPECT_EQ(outside.encrypted_with, (std::vector<int>{96, 128}));
}

TEST(SessionKey, IsTheHostKeyFirstWhereTheServersIsLonger) {
    ScriptedHost host;
    host.host_modulus.swap(host.server_modulus);
    NewSession();
    Receive(host.PublicKey());
    EXPECT_TRUE(host.TakeSessionKey());
    EXPECT_EQ(host.key_bits, 8 * 128);
    EXPECT_EQ(outside.encrypted_with, (std::vector<int>{96, 128}));
    Receive(host.Packet(14));
    EXPECT_EQ(host.Sent().size(), 1u);
}

// The result of the first encryption is as long as the second key, so the second encryption has no
// room for the padding and the session ends.
TEST(SessionKey, IsTheHostKeyFirstWhereBothAreEqual) {
    ScriptedHost host;
    host.host_modulus = std::string(96, '\xC5');
    ExpectRefused(host, host.PublicKeyData(), "no room under the second key");
    EXPECT_EQ(outside.encrypted_with, (std::vector<int>{96, 96}));
    EXPECT_EQ(outside.first_modulus_byte, (std::vector<int>{0xC5, 0xA3}));
}

TEST(SessionKey, FitsWhereTheKeysDifferByThreeBytes) {
    for (size_t difference = 0; difference <= 4; difference++) {
        ScriptedHost host;
        host.host_modulus = std::string(96 + difference, '\xC5');
        if (difference < 3) {
            ExpectRefused(host, host.PublicKeyData(), std::to_string(difference));
        } else {
            ExpectAccepted(host, host.PublicKeyData(), std::to_string(difference));
        }
    }
}

TEST(SessionKey, NeedsAKeyOfThirtyFiveBytes) {
    for (size_t size = 1; size <= 40; size++) {
        ScriptedHost host;
        host.server_modulus = std::string(size, '\xA3');
        if (size < 35) {
            ExpectRefused(host, host.PublicKeyData(), std::to_string(size));
        } else {
            ExpectAccepted(host, host.PublicKeyData(), std::to_string(size));
        }
    }
}

TEST(SessionKey, IsMadeForEveryKeySizeFrom512To2048) {
    for (size_t size = 64; size <= 256; size += 32) {
        ScriptedHost host;
        host.host_modulus = std::string(size, '\xC5');
        host.server_modulus = std::string(size == 96 ? 128 : 96, '\xA3');
        ExpectAccepted(host, host.PublicKeyData(), std::to_string(size));
    }
}

TEST(SessionKey, LongestKeyHas16384Bits) {
    ScriptedHost host;
    host.host_modulus = std::string(2048, '\xC5');
    ExpectAccepted(host, host.PublicKeyData(), "host key of 16384 bits");
    EXPECT_EQ(host.key_bits, 16384);
    host.host_modulus.swap(host.server_modulus);
    ExpectAccepted(host, host.PublicKeyData(), "server key of 16384 bits");
    host.server_modulus += '\1';
    ExpectRefused(host, host.PublicKeyData(), "a byte more");
}

// After the session key, packets in both directions are encrypted with it.
void ExpectSessionUnderTheKey(ScriptedHost& host, const std::string& what) {
    ASSERT_TRUE(host.TakeSessionKey()) << what;
    Receive(host.Packet(14));
    EXPECT_EQ(Box(), "") << what;
    EXPECT_EQ(host.Sent(), (std::vector<Message>{{4, String("visitor"), ""}})) << what;
}

// The key's first byte is zero once in 256 by chance. The number in the block is then shorter.
TEST(SessionKey, WithZerosInFrontIsSentWhole) {
    ScriptedHost host;
    const std::string id = host.SessionId();
    for (size_t zeros = 0; zeros <= 32; zeros++) {
        NewSession();
        std::string key(32, '\7');
        for (size_t i = 0; i < zeros; i++) key[i] = i < 16 ? id[i] : '\0';
        outside.drawn = key;
        Receive(host.PublicKey());
        ExpectSessionUnderTheKey(host, std::to_string(zeros));
        EXPECT_EQ(host.session_key, key);
        host.cipher = 0;
    }
}

TEST(SessionKey, IsDrawnFromTheGeneratorSeededByTheClock) {
    for (const int milliseconds : {0, 5, 36, 42, 999}) {
        ScriptedHost host;
        NewSession();
        services_test_hooks.system_time = milliseconds;
        Receive(host.PublicKey());
        services_test_hooks.system_time = -1;
        ASSERT_TRUE(host.TakeSessionKey());
        std::string wanted;
        std::srand(static_cast<unsigned>(milliseconds % 37));
        while (wanted.size() < 32)
            if (const int value = std::rand()) wanted += static_cast<char>(value & 0xff);
        EXPECT_EQ(host.session_key, wanted) << milliseconds;
    }
}

TEST(SessionKey, IsWipedWhereItCannotBeSent) {
    for (const bool by_cipher : {false, true}) {
        ScriptedHost host;
        if (by_cipher)
            host.ciphers = 0;
        else
            host.host_modulus = std::string(96, '\xC5');
        NewSession();
        Receive(host.PublicKey());
        EXPECT_NE(Box(), "");
        for (const BYTE byte : session.ssh1.sessionKey) ASSERT_EQ(byte, 0) << by_cipher;
    }
}

// ---------------------------------------------------------------- ciphers

TEST(Cipher, EachCarriesTheSession) {
    for (uint32_t type = 0; type <= 2; type++) {
        ScriptedHost host = SessionInState(5, type);
        Receive(host.Packet(17, String("through")));
        EXPECT_EQ(Shown(), "through");
    }
}

TEST(Cipher, ChangeInMidSessionAppliesToTheNextSession) {
    ScriptedHost host = SessionInState(5);
    session.settings.ssh_type = 2;
    Receive(host.Packet(17, String("through")));
    EXPECT_EQ(Shown(), "through");
    SendSessionData(reinterpret_cast<const BYTE*>("typed"), 5, 0);
    EXPECT_EQ(host.Sent(), (std::vector<Message>{{16, String("typed"), ""}}));
}

TEST(Cipher, UnsupportedOneIsReportedWithTheServersList) {
    ScriptedHost host;
    host.ciphers = 0x44;
    NewSession();
    Receive(host.PublicKey());
    EXPECT_EQ(Box(),
              "Error: Server does not support selected encryption (3-DES). Try another encryption\n"
              "Server supports: DES BLOWFISH ");
    EXPECT_EQ(outside.closed, 1);
    EXPECT_EQ(Wire(), "");
    EXPECT_EQ(session.ssh1.ssh1State, 0);
}

TEST(Cipher, BlowfishIsListedBeforeTssAndRc4) {
    ScriptedHost host;
    host.ciphers = 0xFFFFFFFF & ~(1u << 2);
    NewSession();
    session.settings.ssh_type = 0;
    Receive(host.PublicKey());
    EXPECT_EQ(Box(),
              "Error: Server does not support selected encryption (DES). Try another encryption\n"
              "Server supports: IDEA 3-DES BLOWFISH TSS RC4 ");
}

TEST(Cipher, EachOfTheServersIsListedByItsOwnBit) {
    const struct {
        int bit;
        const char* name;
    } kRows[] = {{1, "IDEA "}, {2, "DES "}, {3, "3-DES "},
                 {4, "TSS "},  {5, "RC4 "}, {6, "BLOWFISH "}};
    for (const auto& row : kRows) {
        ScriptedHost host;
        host.ciphers = 1u << row.bit;
        NewSession();
        session.settings.ssh_type = 3;
        Receive(host.PublicKey());
        EXPECT_EQ(Box(),
                  "Error: Server does not support selected encryption . Try another encryption\n"
                  "Server supports: " +
                      std::string(row.name));
    }
}

TEST(Cipher, ServerWithoutAnyIsReported) {
    ScriptedHost host;
    host.ciphers = 0;
    NewSession();
    session.settings.ssh_type = 2;
    Receive(host.PublicKey());
    EXPECT_EQ(
        Box(),
        "Error: Server does not support selected encryption (BLOWFISH). Try another encryption\n"
        "Server supports: ");
}

TEST(Cipher, UnknownSettingIsUnsupported) {
    for (const DWORD type : {3u, 6u, 0xFFFFFFFFu}) {
        ScriptedHost host;
        host.ciphers = 0xFFFFFFFF;
        NewSession();
        session.settings.ssh_type = type;
        Receive(host.PublicKey());
        EXPECT_EQ(Box(),
                  "Error: Server does not support selected encryption . Try another encryption\n"
                  "Server supports: IDEA DES 3-DES BLOWFISH TSS RC4 ");
        EXPECT_EQ(outside.closed, 1);
    }
}

// ---------------------------------------------------------------- bad messages

TEST(BadKeyMessage, CutAnywhereIsRefused) {
    ScriptedHost host;
    const std::string whole = host.PublicKeyData();
    for (size_t length = 0; length < whole.size(); length++)
        ExpectRefused(host, whole.substr(0, length), std::to_string(length));
}

TEST(BadKeyMessage, BytesBehindItAreIgnored) {
    ScriptedHost host;
    ExpectAccepted(host, host.PublicKeyData() + "more", "longer");
}

TEST(BadKeyMessage, StatedBitCountsAreNotTrusted) {
    ScriptedHost host;
    for (const uint32_t bits : {0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        const std::string key = Uint32(bits) + Ssh1Number("\1") + Ssh1Number(host.server_modulus);
        ExpectAccepted(host,
                       host.cookie + key + host.Key(host.host_modulus) + Uint32(0) +
                           Uint32(kAllCiphers) + Uint32(8),
                       std::to_string(bits));
    }
}

// Replaces each bit count in the message by another one: numbers that reach beyond the end of the
// message, or that end inside themselves or inside the next field.
TEST(BadKeyMessage, FalseBitCountsGiveAMessageOrNothing) {
    ScriptedHost host;
    const std::string whole = host.PublicKeyData();
    const size_t counts[] = {12, 15, 15 + 2 + 96 + 4, 15 + 2 + 96 + 4 + 3};
    for (const size_t at : counts) {
        const unsigned true_bits =
            static_cast<BYTE>(whole[at]) * 256u + static_cast<BYTE>(whole[at + 1]);
        for (unsigned bits = 0; bits <= 0xFFFF; bits += bits < 1200 ? 1 : 997) {
            if ((bits + 7) / 8 == (true_bits + 7) / 8) continue;
            std::string data = whole;
            data[at] = static_cast<char>(bits >> 8);
            data[at + 1] = static_cast<char>(bits & 0xFF);
            NewSession();
            Receive(host.Packet(2, data));
            const std::string box = outside.boxes.empty() ? "" : outside.boxes[0];
            const bool answered = session.ssh1.ssh1State == 1;
            EXPECT_TRUE(answered || box == kViolation ||
                        box.find("does not support selected encryption") != std::string::npos)
                << at << ' ' << bits << ' ' << box;
            EXPECT_EQ(outside.closed, answered ? 0 : 1);
        }
    }
}

TEST(BadKeyMessage, AllOnesBitCountsAreRefused) {
    ScriptedHost host;
    const std::string whole = host.PublicKeyData();
    for (const size_t at : {12, 15, 15 + 2 + 96 + 4, 15 + 2 + 96 + 4 + 3}) {
        std::string data = whole;
        data[at] = data[at + 1] = '\xFF';
        ExpectRefused(host, data, std::to_string(at));
    }
}

TEST(BadKeyMessage, ModulusOfZeroOrOneIsRefused) {
    for (const char* modulus : {"0", "00000000", "1"}) {
        std::string bytes(modulus);
        for (char& c : bytes) c = static_cast<char>(c - '0');
        for (const bool of_host : {false, true}) {
            ScriptedHost host;
            (of_host ? host.host_modulus : host.server_modulus) = bytes;
            ExpectRefused(host, host.PublicKeyData(), modulus);
        }
    }
    ScriptedHost host;
    host.server_modulus = "";
    ExpectRefused(host, host.PublicKeyData(), "no bytes at all");
    host.server_modulus = std::string(95, '\0') + '\1';
    ExpectRefused(host, host.PublicKeyData(), "leading zeros before a one");
}

TEST(BadKeyMessage, ExponentOfZeroIsRefused) {
    ScriptedHost host;
    const std::string key =
        Uint32(768) + Ssh1Number(std::string(1, 0)) + Ssh1Number(host.server_modulus);
    ExpectRefused(
        host, host.cookie + key + host.Key(host.host_modulus) + Uint32(0) + Uint32(4) + Uint32(8),
        "exponent 0");
}

TEST(BadKeyMessage, EvenModulusIsAnsweredLikeAnyOther) {
    ScriptedHost host;
    host.server_modulus.back() = '\0';
    host.host_modulus.back() = '\2';
    ExpectAccepted(host, host.PublicKeyData(), "even");
}

TEST(BadKeyMessage, LeadingZerosOfAModulusDoNotCountInItsLength) {
    ScriptedHost host;
    const std::string key =
        Uint32(768) + Ssh1Number("\1") + Ssh1Number(std::string(40, '\0') + host.server_modulus);
    ExpectAccepted(host,
                   host.cookie + key + host.Key(host.host_modulus) + Uint32(0) +
                       Uint32(kAllCiphers) + Uint32(8),
                   "leading zeros");
    EXPECT_EQ(outside.encrypted_with, (std::vector<int>{96, 128}));
    NewSession();
    Receive(host.Packet(2, host.cookie + key + host.Key(host.host_modulus) + Uint32(0) +
                               Uint32(kAllCiphers) + Uint32(8)));
    ExpectSessionUnderTheKey(host, "nor do they count in the session's identifier");
}

TEST(BadKeyMessage, NumbersThatWouldTakeTooLongAreRefused) {
    ScriptedHost host;
    host.host_modulus = std::string(2049, '\xC5');
    ExpectRefused(host, host.PublicKeyData(), "modulus of 16,392 bits");
    ScriptedHost other;
    const std::string key =
        Uint32(4096) + Ssh1Number(std::string(512, '\x81')) + Ssh1Number(std::string(512, '\xA3'));
    ExpectRefused(
        other,
        other.cookie + key + other.Key(other.host_modulus) + Uint32(0) + Uint32(4) + Uint32(8),
        "exponent of 4,096 bits");
}

TEST(BadKeyMessage, SecondOneDoesNotConfirmTheSessionKey) {
    ScriptedHost host = SessionInState(1);
    Receive(host.PublicKey());
    EXPECT_EQ(Box(), "Error: SSH server rejects the encryption mode. Session must be terminated");
}

}  // namespace

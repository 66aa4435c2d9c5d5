// SPDX-License-Identifier: MIT
// Hashes and MAC: the edge cases, by name.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <string>

#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "crypto_test_support.h"

static std::string Sha1Hex(const ByteString& message) {
    uint8_t digest[kSha1Size];
    Sha1(message.data(), Size(message), digest);
    return ToHex(digest, kSha1Size);
}

// An empty text where the system does not list the features. An emulator lists those of another
// processor.
static std::string ProcessorFeatures() {
#if defined(__x86_64__)
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("flags")) return line + ' ';
#endif
    return {};
}

static bool ProcessorHas(std::initializer_list<const char*> features) {
    const std::string all = ProcessorFeatures();
    return std::all_of(features.begin(), features.end(), [&](const std::string& feature) {
        return all.find(' ' + feature + ' ') != std::string::npos;
    });
}

TEST(Hashes, FastestFormIsChosen) {
    const Sha1Compressor fast_sha1 = Sha1CompressWithInstructions();
    const Sha512Compressor fast_sha512 = Sha512CompressWide();
    EXPECT_EQ(sha1_compressor, fast_sha1 != nullptr ? fast_sha1 : Sha1CompressPortable);
    EXPECT_EQ(sha512_compressor, fast_sha512 != nullptr ? fast_sha512 : Sha512CompressPortable);
}

TEST(Hashes, InstructionsAreUsedExactlyIfTheProcessorHasThem) {
    if (ProcessorFeatures().empty()) GTEST_SKIP() << "the system does not list the features";
    EXPECT_EQ(Sha1CompressWithInstructions() != nullptr,
              ProcessorHas({"sha_ni", "ssse3", "sse4_1"}));
    EXPECT_EQ(Sha512CompressWide() != nullptr, ProcessorHas({"avx2", "bmi1", "bmi2"}));
}

// Messages of repeated "a", with lengths where the padding needs an extra block or does not.
TEST(Sha1, PaddingBoundariesGiveTheStandardDigests) {
    const struct {
        int length;
        const char* digest;
    } kRows[] = {
        {0, "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
        {55, "c1c8bbdc22796e28c0e15163d20899b65621d65a"},
        {56, "c2db330f6083854c99d4b5bfb6e8f29f201be699"},
        {63, "03f09f5b158a7a8cdad920bddc29b81c18a551f5"},
        {64, "0098ba824b5c16427bd7a1122a5a442a25ec644d"},
        {65, "11655326c708d70319be2610e8a57d9a5b959d3b"},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(Sha1Hex(ByteString(static_cast<size_t>(row.length), 'a')), row.digest)
            << row.length;
    }
}

TEST(Sha1, StartHasTheFieldsAndInitialValuesOfTheStandard) {
    Sha1Context context;
    Sha1Init(&context);
    const uint32_t kInitial[5] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0};
    EXPECT_EQ(memcmp(context.state, kInitial, sizeof(kInitial)), 0);
    EXPECT_EQ(context.blockUsed, 0u);
    EXPECT_EQ(context.bytesHigh, 0u);
    EXPECT_EQ(context.bytesLow, 0u);
}

TEST(Sha1, BlockFillsAndEmptiesAsInputComes) {
    Sha1Context context;
    ByteString bytes(200, 7);
    Sha1Init(&context);
    Sha1Update(&context, bytes.data(), 63);
    EXPECT_EQ(context.blockUsed, 63u);
    Sha1Update(&context, bytes.data(), 1);
    EXPECT_EQ(context.blockUsed, 0u);
    Sha1Update(&context, bytes.data(), 130);
    EXPECT_EQ(context.blockUsed, 2u);
    EXPECT_EQ(context.bytesLow, 194u);
}

TEST(Sha1, LowByteCountCarriesIntoTheHighOne) {
    Sha1Context context;
    Sha1Init(&context);
    context.bytesLow = 0xFFFFFFC0u;
    ByteString bytes(65, 1);
    Sha1Update(&context, bytes.data(), 65);
    EXPECT_EQ(context.bytesHigh, 1u);
    EXPECT_EQ(context.bytesLow, 1u);
}

// The length field of the padding is the byte count in bits over both words: the same last block,
// built by hand and fed as a whole block, gives the same state.
TEST(Sha1, LengthFieldHoldsSixtyFourBitsOfBitCount) {
    Sha1Context context, by_hand;
    Sha1Init(&context);
    context.bytesHigh = 0x12345678;
    context.bytesLow = 0x9ABCDEC0;
    by_hand = context;
    uint8_t digest[kSha1Size], block[64] = {0x80};
    const uint64_t bits = 0x123456789ABCDEC0ull << 3;
    for (int i = 0; i < 8; i++) block[56 + i] = static_cast<uint8_t>(bits >> (56 - 8 * i));
    Sha1Final(&context, digest);
    Sha1Update(&by_hand, block, 64);
    for (int i = 0; i < kSha1Size; i++) {
        ASSERT_EQ(digest[i], by_hand.state[i / 4] >> (24 - i % 4 * 8) & 0xFF);
    }
}

TEST(Sha1, CopyOfAContextIsASecondHashOfTheSameStart) {
    Sha1Context first, second;
    Sha1Init(&first);
    Sha1Update(&first, reinterpret_cast<const uint8_t*>("abc"), 3);
    second = first;
    Sha1Update(&first, reinterpret_cast<const uint8_t*>("other end"), 9);
    uint8_t digest[kSha1Size];
    Sha1Final(&second, digest);
    EXPECT_EQ(ToHex(digest, kSha1Size), "a9993e364706816aba3e25717850c26c9cd0d89d");
}

TEST(Sha1, FinalWipesTheContext) {
    Sha1Context context;
    uint8_t digest[kSha1Size];
    Sha1Init(&context);
    Sha1Update(&context, reinterpret_cast<const uint8_t*>("secret"), 6);
    Sha1Final(&context, digest);
    const Sha1Context zero = {};
    EXPECT_EQ(memcmp(&context, &zero, sizeof(zero)), 0);
}

TEST(Sha1, NegativeLengthFeedsNothing) {
    EXPECT_EQ(Sha1Hex({}), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
    uint8_t digest[kSha1Size];
    Sha1(nullptr, -5, digest);
    EXPECT_EQ(ToHex(digest, kSha1Size), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

static std::string FedWith(void (*feed)(Sha1Context* context)) {
    Sha1Context context;
    uint8_t digest[kSha1Size];
    Sha1Init(&context);
    feed(&context);
    Sha1Final(&context, digest);
    return ToHex(digest, kSha1Size);
}

TEST(Sha1, UpdateStringFeedsTheLengthAndTheBytes) {
    EXPECT_EQ(FedWith([](Sha1Context* context) {
                  Sha1UpdateString(context, reinterpret_cast<const uint8_t*>("ssh-dss"), 7);
                  Sha1UpdateString(context, nullptr, 0);
              }),
              Sha1Hex(FromHex("000000077373682d64737300000000")));
}

TEST(Sha1, UpdateMpintFeedsTheWireFormOfTheNumber) {
    EXPECT_EQ(FedWith([](Sha1Context* context) {
                  Sha1UpdateMpint(context, FromHexNumber("80").get());
                  Sha1UpdateMpint(context, FromHexNumber("0").get());
                  Sha1UpdateMpint(context, FromHexNumber("09a378f9b2e332a7").get());
              }),
              Sha1Hex(FromHex("00000002008000000000"
                              "0000000809a378f9b2e332a7")));
}

// ---------------------------------------------------------------- counts of long inputs

// As LengthFieldHoldsSixtyFourBitsOfBitCount: 128 bits of it, big-endian.
TEST(Sha512, LengthFieldHoldsAllBitsOfTheBitCount) {
    Sha512Context context, by_hand;
    Sha512Init(&context);
    context.bytesHigh = 0x0123456789ABCDEF;
    context.bytesLow = 0xFEDCBA9876543200;
    by_hand = context;
    uint8_t digest[kSha512Size], block[128] = {0x80};
    const uint64_t high = context.bytesHigh << 3 | context.bytesLow >> 61;
    const uint64_t low = context.bytesLow << 3;
    for (int i = 0; i < 8; i++) {
        block[112 + i] = static_cast<uint8_t>(high >> (56 - 8 * i));
        block[120 + i] = static_cast<uint8_t>(low >> (56 - 8 * i));
    }
    Sha512Final(&context, digest);
    Sha512Update(&by_hand, block, 128);
    for (int i = 0; i < kSha512Size; i++) {
        ASSERT_EQ(digest[i], by_hand.state[i / 8] >> (56 - i % 8 * 8) & 0xFF);
    }
}

TEST(Sha512, LowByteCountCarriesIntoTheHighOne) {
    Sha512Context context;
    Sha512Init(&context);
    context.bytesLow = ~uint64_t{0} - 127;
    const ByteString bytes(129, 1);
    Sha512Update(&context, bytes.data(), 129);
    EXPECT_EQ(context.bytesHigh, 1u);
    EXPECT_EQ(context.bytesLow, 1u);
}

// Little-endian and without the bits above 64, as the standard says.
TEST(Md5, LengthFieldHoldsTheLowSixtyFourBitsOfTheBitCount) {
    Md5Context context, by_hand;
    Md5Init(&context);
    context.bitCount = 0xFEDCBA9876543200;
    by_hand = context;
    uint8_t digest[kMd5Size], block[64] = {0x80};
    for (int i = 0; i < 8; i++) block[56 + i] = static_cast<uint8_t>(context.bitCount >> 8 * i);
    Md5Final(&context, digest);
    Md5Update(&by_hand, block, 64);
    for (int i = 0; i < kMd5Size; i++) {
        ASSERT_EQ(digest[i], by_hand.state[i / 4] >> i % 4 * 8 & 0xFF);
    }
    Md5Init(&context);
    context.bitCount = ~uint64_t{0} - 511;
    Md5Update(&context, block, 64);
    EXPECT_EQ(context.bitCount, 0u);
}

TEST(Hashes, NoInputFeedsNothing) {
    for (int length : {0, -1, -64}) {
        Sha1Context sha1;
        Sha512Context sha512;
        Md5Context md5;
        uint8_t digest[kSha512Size];
        Sha1Init(&sha1);
        Sha1Update(&sha1, nullptr, length);
        Sha1Final(&sha1, digest);
        EXPECT_EQ(ToHex(digest, kSha1Size), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
        Md5Init(&md5);
        Md5Update(&md5, nullptr, length);
        Md5Final(&md5, digest);
        EXPECT_EQ(ToHex(digest, kMd5Size), "d41d8cd98f00b204e9800998ecf8427e");
        Sha512Init(&sha512);
        Sha512Update(&sha512, nullptr, length);
        Sha512Final(&sha512, digest);
        EXPECT_EQ(ToHex(digest, 8), "cf83e1357eefb8bd");
    }
}

TEST(Hashes, ContextsAndTheMacKeepTheOrderOfTheirFields) {
    EXPECT_EQ(offsetof(Sha1Context, state), 0u);
    EXPECT_EQ(offsetof(Sha1Context, block), 20u);
    EXPECT_EQ(offsetof(Sha1Context, blockUsed), 84u);
    EXPECT_EQ(offsetof(Sha1Context, bytesHigh), 88u);
    EXPECT_EQ(offsetof(Sha1Context, bytesLow), 92u);
    EXPECT_EQ(offsetof(MacKeyPair, inner), 0u);
    EXPECT_EQ(offsetof(MacKeyPair, outer), sizeof(Sha1Context));
    const size_t kRecord[] = {
        offsetof(MacAlgorithm, name),           offsetof(MacAlgorithm, setOutgoingKey),
        offsetof(MacAlgorithm, setIncomingKey), offsetof(MacAlgorithm, generate),
        offsetof(MacAlgorithm, verify),         offsetof(MacAlgorithm, nameRef),
        offsetof(MacAlgorithm, macLength)};
    EXPECT_TRUE(std::is_sorted(std::begin(kRecord), std::end(kRecord)));
    EXPECT_EQ(sizeof(kHmacSha1.name), 12u);
}

static std::string Mac(const ByteString& key, const ByteString& message) {
    uint8_t mac[kSha1Size];
    HmacSha1(key.data(), Size(key), message.data(), Size(message), mac);
    return ToHex(mac, kSha1Size);
}

TEST(HmacSha1, KeyOf65BytesOrMoreCountsByItsFirst64) {
    const ByteString message = RandomBytes(100);
    ByteString key = RandomBytes(64);
    const std::string mac = Mac(key, message);
    for (int extra = 1; extra < 40; extra++) {
        key.push_back(static_cast<uint8_t>(extra));
        ASSERT_EQ(Mac(key, message), mac);
    }
    key[63] = static_cast<uint8_t>(key[63] ^ 1);
    EXPECT_NE(Mac(key, message), mac);
}

class SshMacTest : public testing::Test {
  protected:
    ByteString key = RandomBytes(40);
    ByteString packet = RandomBytes(64);
    void SetUp() override {
        kHmacSha1.setOutgoingKey(key.data());
        kHmacSha1.setIncomingKey(key.data());
        packet.resize(64 + 20);
    }
    void TearDown() override { WipeMacKeys(); }
};

TEST_F(SshMacTest, RecordNamesTheAlgorithm) {
    EXPECT_STREQ(kHmacSha1.name, "hmac-sha1");
    EXPECT_EQ(kHmacSha1.nameRef, kHmacSha1.name);
    EXPECT_EQ(kHmacSha1.macLength, 20);
}

TEST_F(SshMacTest, GeneratePutsTheMacOfSequenceNumberAndPacketBehindThePacket) {
    kHmacSha1.generate(packet.data(), 64, 0x01020304);
    ByteString message = FromHex("01020304");
    message.insert(message.end(), packet.begin(), packet.begin() + 64);
    ByteString used(key.begin(), key.begin() + 20);  // only the first 20 bytes
    EXPECT_EQ(ToHex(packet.data() + 64, 20), Mac(used, message));
}

TEST_F(SshMacTest, VerifyTakesTheMacAndRefusesItWithAnyBitChanged) {
    kHmacSha1.generate(packet.data(), 64, 7);
    EXPECT_EQ(kHmacSha1.verify(packet.data(), 64, 7), 1);
    for (int bit = 0; bit < (64 + 20) * 8; bit++) {
        uint8_t& byte = packet[static_cast<size_t>(bit / 8)];
        byte = static_cast<uint8_t>(byte ^ 1 << bit % 8);
        ASSERT_EQ(kHmacSha1.verify(packet.data(), 64, 7), 0) << bit;
        byte = static_cast<uint8_t>(byte ^ 1 << bit % 8);
    }
    EXPECT_EQ(kHmacSha1.verify(packet.data(), 64, 7), 1);
}

TEST_F(SshMacTest, VerifyRefusesAnotherSequenceNumber) {
    kHmacSha1.generate(packet.data(), 64, 7);
    for (int bit = 0; bit < 32; bit++) {
        EXPECT_EQ(kHmacSha1.verify(packet.data(), 64, 7 ^ 1u << bit), 0);
    }
}

TEST_F(SshMacTest, DirectionsShareNoKey) {
    const ByteString other = RandomBytes(20);
    kHmacSha1.setIncomingKey(other.data());
    kHmacSha1.generate(packet.data(), 64, 1);
    EXPECT_EQ(kHmacSha1.verify(packet.data(), 64, 1), 0);
    kHmacSha1.setOutgoingKey(other.data());
    kHmacSha1.generate(packet.data(), 64, 1);
    EXPECT_EQ(kHmacSha1.verify(packet.data(), 64, 1), 1);
}

TEST_F(SshMacTest, MacIsUsedManyTimesWithoutASecondKey) {
    kHmacSha1.generate(packet.data(), 64, 1);
    const ByteString first = packet;
    kHmacSha1.generate(packet.data(), 32, 2);
    packet = first;
    std::fill(packet.begin() + 64, packet.end(), uint8_t{0});
    kHmacSha1.generate(packet.data(), 64, 1);
    EXPECT_EQ(ToHex(packet), ToHex(first));
}

TEST_F(SshMacTest, WipedKeysGenerateAnotherMac) {
    kHmacSha1.generate(packet.data(), 64, 7);
    const ByteString keyed = packet;
    WipeMacKeys();
    kHmacSha1.generate(packet.data(), 64, 7);
    EXPECT_NE(ToHex(packet), ToHex(keyed));
}

TEST_F(SshMacTest, WipedKeysVerifyNothing) {
    kHmacSha1.generate(packet.data(), 64, 1);
    WipeMacKeys();
    EXPECT_EQ(kHmacSha1.verify(packet.data(), 64, 1), 0);
}

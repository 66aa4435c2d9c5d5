// SPDX-License-Identifier: MIT
// CRC-32 and random numbers.
#include "crypto/random.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "crypto/packet_checks.h"
#include "crypto_test_support.h"

static std::vector<int> Sequence(int milliseconds) {
    clock_milliseconds = milliseconds;
    SeedRandom();
    std::vector<int> values;
    for (int i = 0; i < 50; i++) values.push_back(RandomNonZero());
    return values;
}

TEST(Crc32, EmptyBufferIsZero) { EXPECT_EQ(Crc32(nullptr, 0), 0u); }

TEST(Crc32, SingleZeroByteIsZero) {
    const uint8_t zero = 0;
    EXPECT_EQ(Crc32(&zero, 1), 0u);
}

TEST(Crc32, CheckValueIsTheOneWithoutInversions) {
    const uint8_t* digits = reinterpret_cast<const uint8_t*>("123456789");
    EXPECT_EQ(Crc32(digits, 9), 0x2DFD2D88u);
}

// Bit by bit, by the definition of a remainder of polynomials with reflected bits.
TEST(Crc32, RandomBuffersAgreeWithTheBitwiseDefinition) {
    for (int length = 0; length < 300; length++) {
        ByteString bytes = RandomBytes(length);
        uint32_t crc = 0;
        for (uint8_t byte : bytes) {
            for (int bit = 0; bit < 8; bit++) {
                uint32_t low = (crc ^ (byte >> bit)) & 1;
                crc = (crc >> 1) ^ (low ? 0xEDB88320u : 0);
            }
        }
        ASSERT_EQ(Crc32(bytes.data(), length), crc) << length;
    }
}

TEST(Random, SameMillisecondsModulo37GiveTheSameSequence) {
    EXPECT_EQ(Sequence(5), Sequence(5));
    EXPECT_EQ(Sequence(5), Sequence(5 + 37));
    EXPECT_EQ(Sequence(999), Sequence(0));  // 999 = 27 * 37
    EXPECT_NE(Sequence(5), Sequence(6));
}

TEST(Random, SecondsMinutesAndHoursOfTheClockDoNotCount) {
    const std::vector<int> sequence = Sequence(5);
    for (int seconds : {1, 2, 36, 37, 59, 60, 61, 3599, 3600, 86399})
        EXPECT_EQ(Sequence(5 + 1000 * seconds), sequence) << seconds;
}

TEST(Random, ThereAreExactly37Seeds) {
    std::set<std::vector<int>> sequences;
    for (int milliseconds = 0; milliseconds < 1000; milliseconds++) {
        sequences.insert(Sequence(milliseconds));
    }
    // srand(0) and srand(1) are the same in some runtime libraries.
    EXPECT_GE(sequences.size(), 36u);
    EXPECT_LE(sequences.size(), 37u);
}

TEST(Random, SequenceIsThatOfTheRuntimeLibrarySeededWithTheRemainder) {
    std::vector<int> ours = Sequence(123);
    srand(123 % 37);
    for (int value : ours) {
        int wanted = rand();
        while (wanted == 0) wanted = rand();
        ASSERT_EQ(value, wanted);
    }
}

// The runtime library returns zero too rarely for a test to see it.
TEST(Random, NonZeroDrawsAgainUntilItIsNotZero) {
    scripted_draws = {0, 7, 0, 0, 0, 32767, 1};
    EXPECT_EQ(RandomNonZero(), 7);
    EXPECT_EQ(RandomNonZero(), 32767);
    EXPECT_EQ(RandomNonZero(), 1);
    EXPECT_TRUE(scripted_draws.empty());
}

TEST(Random, ByteDrawsAgainForAZeroAndNotForAZeroByte) {
    scripted_draws = {0, 0, 0x4321, 0x100, 9};
    EXPECT_EQ(RandomByte(), 0x21);
    EXPECT_EQ(RandomByte(), 0);
    EXPECT_EQ(RandomByte(), 9);
    EXPECT_TRUE(scripted_draws.empty());
}

TEST(Random, ByteIsTheLowBitsOfOneDraw) {
    Sequence(17);
    std::vector<int> draws;
    for (int i = 0; i < 2000; i++) draws.push_back(RandomNonZero());
    Sequence(17);
    bool zero_seen = false;
    for (int draw : draws) {
        uint8_t byte = RandomByte();
        ASSERT_EQ(byte, draw & 0xFF);
        zero_seen = zero_seen || byte == 0;
    }
    EXPECT_TRUE(zero_seen);  // a byte may be zero
}

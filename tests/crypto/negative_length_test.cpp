// SPDX-License-Identifier: MIT
// Negative lengths count as zero: no procedure of crypto/ reads or writes any byte for them.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>

#include "crypto/block_ciphers.h"
#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "crypto/public_key.h"
#include "crypto_test_support.h"
#include "text/bytes.h"

namespace {

const int kNegative[] = {-1, -7, -8, -20, -64, -100000, INT_MIN + 1, INT_MIN};

TEST(NegativeLength, IsAnEmptyMessageOfEveryHash) {
    uint8_t digest[kSha512Size], empty[kSha512Size];
    Sha1(nullptr, 0, empty);
    for (int length : kNegative) {
        Sha1(nullptr, length, digest);
        EXPECT_EQ(ToHex(digest, kSha1Size), ToHex(empty, kSha1Size)) << length;
    }
    Sha512(nullptr, 0, empty);
    for (int length : kNegative) {
        Sha512(nullptr, length, digest);
        EXPECT_EQ(ToHex(digest, kSha512Size), ToHex(empty, kSha512Size)) << length;
    }
}

// In the middle of a message, with an incomplete block in the context.
TEST(NegativeLength, LeavesAHashUnchanged) {
    const ByteString message = RandomBytes(100);
    for (int length : kNegative) {
        Sha1Context sha1;
        Md5Context md5;
        Sha512Context sha512;
        Sha1Init(&sha1);
        Md5Init(&md5);
        Sha512Init(&sha512);
        Sha1Update(&sha1, message.data(), 100);
        Md5Update(&md5, message.data(), 100);
        Sha512Update(&sha512, message.data(), 100);
        const Sha1Context sha1_before = sha1;
        const Md5Context md5_before = md5;
        const Sha512Context sha512_before = sha512;
        Sha1Update(&sha1, nullptr, length);
        Md5Update(&md5, nullptr, length);
        Sha512Update(&sha512, nullptr, length);
        EXPECT_EQ(memcmp(&sha1, &sha1_before, sizeof(sha1)), 0) << length;
        EXPECT_EQ(memcmp(&md5, &md5_before, sizeof(md5)), 0) << length;
        EXPECT_EQ(memcmp(&sha512, &sha512_before, sizeof(sha512)), 0) << length;
    }
}

TEST(NegativeLength, OfAStringIsHashedAsZero) {
    uint8_t digest[kSha1Size], empty[kSha1Size];
    Sha1(reinterpret_cast<const uint8_t*>("\0\0\0\0"), 4, empty);
    for (int length : kNegative) {
        Sha1Context context;
        Sha1Init(&context);
        Sha1UpdateString(&context, nullptr, length);
        Sha1Final(&context, digest);
        EXPECT_EQ(ToHex(digest, kSha1Size), ToHex(empty, kSha1Size)) << length;
    }
}

TEST(NegativeLength, OfAKeyOrAMessageIsAnEmptyOneForAMac) {
    const ByteString message = RandomBytes(50), key = RandomBytes(20);
    uint8_t mac[kSha1Size], without_key[kSha1Size], without_message[kSha1Size];
    HmacSha1(nullptr, 0, message.data(), 50, without_key);
    HmacSha1(key.data(), 20, nullptr, 0, without_message);
    for (int length : kNegative) {
        HmacSha1(nullptr, length, message.data(), 50, mac);
        EXPECT_EQ(ToHex(mac, kSha1Size), ToHex(without_key, kSha1Size)) << length;
        HmacSha1(key.data(), 20, nullptr, length, mac);
        EXPECT_EQ(ToHex(mac, kSha1Size), ToHex(without_message, kSha1Size)) << length;
    }
}

TEST(NegativeLength, HasAChecksumOfZero) {
    for (int length : kNegative) EXPECT_EQ(Crc32(nullptr, length), 0u) << length;
}

TEST(NegativeLength, GivesNoNumber) {
    const uint8_t bytes[4] = {0, 8, 1, 2};
    uint8_t room[4] = {9, 9, 9, 9};
    for (int length : kNegative) {
        EXPECT_EQ(BignumFromBytes(bytes, length), nullptr) << length;
        EXPECT_EQ(BignumFromSsh1Bytes(bytes, length), nullptr) << length;
        EXPECT_EQ(BignumNew(length), nullptr) << length;
        BignumToBytes(room + 2, length, BignumOne);
        EXPECT_EQ(ToHex(room, 4), "09090909") << length;
    }
}

TEST(NegativeLength, LetsAReaderTakeNoField) {
    const uint8_t bytes[8] = {};
    for (int length : kNegative) {
        ByteReader reader = ReaderOf(bytes, length);
        const uint8_t* field;
        uint32_t number;
        uint8_t byte;
        int size;
        EXPECT_EQ(reader.left, 0) << length;
        EXPECT_FALSE(TakeByte(&reader, &byte)) << length;
        EXPECT_FALSE(TakeUint32(&reader, &number)) << length;
        EXPECT_FALSE(TakeString(&reader, &field, &size)) << length;
        EXPECT_TRUE(TakeBytes(&reader, 0, &field)) << length;
        EXPECT_EQ(reader.next, bytes) << length;
        reader = ReaderOf(bytes, 8);
        EXPECT_FALSE(TakeBytes(&reader, static_cast<uint32_t>(length), &field)) << length;
        EXPECT_EQ(reader.left, 8) << length;
    }
}

// The callers rely on it: they use what a failed read left.
TEST(Reader, FieldThatIsMissingIsZeroAndTheReaderStays) {
    const uint8_t bytes[7] = {0, 0, 0, 9, 1, 2, 3};  // a string of nine bytes with three
    for (int size = 0; size <= 7; size++) {
        ByteReader reader = ReaderOf(bytes, size);
        const uint8_t* field = bytes;
        int length = 77;
        EXPECT_FALSE(TakeString(&reader, &field, &length)) << size;
        EXPECT_EQ(field, nullptr) << size;
        EXPECT_EQ(length, 0) << size;
        EXPECT_EQ(reader.left, size);
    }
    ByteReader reader = ReaderOf(bytes, 0);
    uint8_t byte = 77;
    EXPECT_FALSE(TakeByte(&reader, &byte));
    EXPECT_EQ(byte, 0);
    reader = ReaderOf(bytes, 3);
    uint32_t number = 77;
    EXPECT_FALSE(TakeUint32(&reader, &number));
    EXPECT_EQ(number, 0u);
    EXPECT_EQ(reader.left, 3);
    const uint8_t* block = bytes;
    EXPECT_FALSE(TakeBytes(&reader, 4, &block));
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(reader.left, 3);
}

// In a block of its exact size, so that the sanitizer sees a read past its end.
TEST(Reader, NameOfADssKeyThatIsTooShortIsNotReadFurther) {
    for (uint8_t length = 0; length < 7; length++) {
        const auto blob = std::make_unique<uint8_t[]>(4u + length);
        blob[3] = length;
        std::memcpy(blob.get() + 4, "ssh-dss", length);
        EXPECT_EQ(nullptr, DssParseKey(blob.get(), 4 + length)) << int{length};
    }
}

TEST(Wiping, TakesEverySizeAndNothingElse) {
    for (size_t size = 0; size <= 5; size++) {
        uint8_t bytes[6] = {9, 9, 9, 9, 9, 9};
        Wipe(bytes, size);
        for (size_t i = 0; i < 6; i++) EXPECT_EQ(bytes[i], i < size ? 0 : 9) << size;
    }
}

TEST(NegativeLength, SchedulesNoKey) {
    static BlowfishContext context, before;
    BlowfishSetKey(&before, reinterpret_cast<const uint8_t*>("key"), 3);
    context = before;
    for (int length : kNegative) {
        BlowfishSetKey(&context, nullptr, length);
        EXPECT_EQ(memcmp(&context, &before, sizeof(context)), 0) << length;
    }
}

TEST(NegativeLength, ChangesNoBlockAndNoChain) {
    static BlowfishContext blowfish, blowfish_before;
    static DesContext des[3], des_before[3];
    blowfish.iv[0] = des[0].encryptIv[1] = des[0].decryptIv[0] = 5;
    blowfish_before = blowfish;
    memcpy(des_before, des, sizeof(des));
    for (int length : kNegative) {
        BlowfishCbcEncrypt(nullptr, nullptr, length, &blowfish);
        BlowfishCbcDecrypt(nullptr, nullptr, length, &blowfish);
        BlowfishLittleCbcEncrypt(nullptr, nullptr, length, &blowfish);
        BlowfishLittleCbcDecrypt(nullptr, nullptr, length, &blowfish);
        DesCbcEncrypt(nullptr, nullptr, length, des);
        DesCbcDecrypt(nullptr, nullptr, length, des);
        TripleDesCbcEncrypt(nullptr, nullptr, length, des);
        TripleDesCbcDecrypt(nullptr, nullptr, length, des);
        TripleDesPassesEncrypt(nullptr, nullptr, length, des);
        TripleDesPassesDecrypt(nullptr, nullptr, length, des);
        EXPECT_EQ(memcmp(&blowfish, &blowfish_before, sizeof(blowfish)), 0) << length;
        EXPECT_EQ(memcmp(des, des_before, sizeof(des)), 0) << length;
    }
}

TEST(NegativeLength, IsNotEncrypted) {
    const Number modulus = RandomNumber(512, 0), exponent(BignumFromUint32(3));
    const RsaKey key = {512, 64, modulus.get(), exponent.get()};
    ByteString buffer = RandomBytes(64);
    const ByteString before = buffer;
    for (int length : kNegative) {
        EXPECT_FALSE(RsaEncrypt(buffer.data(), length, &key)) << length;
        EXPECT_EQ(ToHex(buffer), ToHex(before)) << length;
    }
}

}  // namespace

// SPDX-License-Identifier: MIT
// Host keys and signatures with false lengths: the code refuses them and reads nothing outside the
// input (each input is in a block of exactly its size, so that the address sanitizer sees any other
// read).
#include <gtest/gtest.h>

#include <memory>

#include "crypto/public_key.h"
#include "crypto_test_support.h"
#include "public_key_blobs.h"
#include "text/bytes.h"

typedef std::unique_ptr<DssKey, void (*)(DssKey*)> OwnedKey;

static OwnedKey Parse(const ByteString& blob) {
    std::unique_ptr<uint8_t[]> exact(new uint8_t[blob.size()]);
    std::copy(blob.begin(), blob.end(), exact.get());
    return OwnedKey(DssParseKey(exact.get(), Size(blob)), DssFreeKey);
}

static bool Verify(const DssKey* key, const ByteString& signature, const ByteString& data) {
    std::unique_ptr<uint8_t[]> exact(new uint8_t[signature.size()]);
    std::copy(signature.begin(), signature.end(), exact.get());
    return DssVerify(key, exact.get(), Size(signature), data.data(), Size(data));
}

static int ParseRsa(const ByteString& bytes, RsaKey* key) {
    std::unique_ptr<uint8_t[]> exact(new uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    const uint8_t* end = nullptr;
    int used = RsaParseKey(exact.get(), Size(bytes), key, &end);
    EXPECT_EQ(end, exact.get() + used);
    return used;
}

static ByteString First(const ByteString& bytes, size_t count) {
    return ByteString(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
}

static const uint32_t kLies[] = {0,          1,          3,          4,          5,
                                 0xFF,       0x1000,     0xFFFF,     0x10000,    0x7FFFFFFF,
                                 0x80000000, 0xFFFFFFFB, 0xFFFFFFFC, 0xFFFFFFFE, 0xFFFFFFFF};

// The offsets of the length fields of a key blob: the name, p, q, g, y.
static std::vector<size_t> LengthFields(const ByteString& blob) {
    std::vector<size_t> fields;
    for (size_t at = 0; at + 4 <= blob.size(); at += 4 + LoadBig<uint32_t>(&blob[at])) {
        fields.push_back(at);
    }
    return fields;
}

class MalformedDss : public testing::Test {
  protected:
    void SetUp() override {
        DSA* peer = MakeDsaKey();
        blob = KeyBlob(peer);
        data = RandomBytes(20);
        signature = Sign(peer, data);
        DSA_free(peer);
    }
    ByteString blob, data, signature;
};

TEST_F(MalformedDss, KeyCutShortAnywhereIsRefused) {
    for (size_t length = 0; length < blob.size(); length++) {
        EXPECT_EQ(Parse(First(blob, length)), nullptr) << length;
    }
    EXPECT_NE(Parse(blob), nullptr);
}

TEST_F(MalformedDss, BytesBehindTheKeyAreIgnored) {
    EXPECT_NE(Parse(blob + RandomBytes(50)), nullptr);
}

TEST_F(MalformedDss, LengthFieldThatLeadsOutsideIsRefused) {
    const std::vector<size_t> fields = LengthFields(blob);
    ASSERT_EQ(fields.size(), 5u);
    for (size_t field : fields) {
        for (uint32_t lie : kLies) {
            ByteString changed = blob;
            StoreBig<uint32_t>(&changed[field], lie);
            OwnedKey key = Parse(changed);  // a shorter length may still give a key
            bool outside = lie > blob.size() - field - 4;
            EXPECT_TRUE(!outside || key == nullptr) << field << ", " << lie;
            EXPECT_FALSE(key != nullptr && Verify(key.get(), signature, data));
        }
    }
}

TEST_F(MalformedDss, ZeroPrimeOrOrderIsRefused) {
    const ByteString name = SshString(FromHex("7373682d647373")), none = SshString({});
    const ByteString some = SshString(FromHex("0b"));
    EXPECT_EQ(Parse(name + none + some + some + some), nullptr);
    EXPECT_EQ(Parse(name + some + none + some + some), nullptr);
    EXPECT_EQ(Parse(name + SshString(ByteString(9)) + some + some + some), nullptr);
    EXPECT_NE(Parse(name + some + some + none + none), nullptr);
}

TEST_F(MalformedDss, PrimeOrOrderBeyondTheLimitsIsRefused) {
    const ByteString name = SshString(FromHex("7373682d647373")), some = SshString({11});
    ByteString p(kDssMaxPrimeBits / 8, 0xFF), q(kDssMaxOrderBits / 8, 0xFF);
    EXPECT_NE(Parse(name + SshString(p) + SshString(q) + some + some), nullptr);
    p.insert(p.begin(), uint8_t{1});
    EXPECT_EQ(Parse(name + SshString(p) + SshString(q) + some + some), nullptr);
    p.erase(p.begin());
    q.insert(q.begin(), uint8_t{1});
    EXPECT_EQ(Parse(name + SshString(p) + SshString(q) + some + some), nullptr);
}

// Composite, even and tiny moduli are refused and cause no endless loop.
TEST_F(MalformedDss, InvalidKeysVerifyNothingAndReturn) {
    const ByteString name = SshString(FromHex("7373682d647373"));
    for (int round = 0; round < 2000; round++) {
        auto number = [](int bits) {
            Number a = RandomNumber(RandomBelow(bits), RandomBelow(6));
            ByteString bytes(static_cast<size_t>((BignumBitLength(a.get()) + 7) / 8));
            BignumToBytes(bytes.data(), Size(bytes), a.get());
            return SshString(bytes);
        };
        OwnedKey key = Parse(name + number(200) + number(170) + number(300) + number(300));
        if (key == nullptr) continue;
        Verify(key.get(), RandomBytes(40), data);
        ByteString small(40);
        small[19] = static_cast<uint8_t>(1 + RandomBelow(9));
        small[39] = static_cast<uint8_t>(1 + RandomBelow(9));
        Verify(key.get(), small, data);
    }
}

TEST_F(MalformedDss, SWithoutAnInverseIsRefused) {
    const ByteString name = SshString(FromHex("7373682d647373"));
    OwnedKey key = Parse(name + SshString(FromHex("17")) + SshString(FromHex("0c")) +
                         SshString(FromHex("02")) + SshString(FromHex("03")));
    ASSERT_NE(key, nullptr);
    ByteString halves(40);
    halves[19] = 1;
    halves[39] = 6;  // shares 6 with q = 12
    EXPECT_FALSE(Verify(key.get(), halves, data));
}

// With such a generator the equations give zero for any data.
TEST_F(MalformedDss, ROfZeroIsRefusedWhereTheGeneratorIsZeroToo) {
    const ByteString name = SshString(FromHex("7373682d647373"));
    for (const char* generator : {"", "17", "2e"}) {
        OwnedKey key = Parse(name + SshString(FromHex("17")) + SshString(FromHex("0b")) +
                             SshString(FromHex(generator)) + SshString(FromHex("02")));
        ASSERT_NE(key, nullptr);
        for (uint8_t s = 0; s < 11; s++) {
            ByteString zero_and_s(40);
            zero_and_s[39] = s;
            EXPECT_FALSE(Verify(key.get(), zero_and_s, data)) << generator << ' ' << int{s};
        }
    }
}

TEST_F(MalformedDss, SignatureCutShortOrStretchedIsRefused) {
    OwnedKey key = Parse(blob);
    const ByteString wrapped = WrapSignature(signature);
    for (size_t length = 0; length < wrapped.size(); length++) {
        EXPECT_FALSE(Verify(key.get(), First(wrapped, length), data)) << length;
    }
    for (size_t length = 0; length < 40; length++) {
        EXPECT_FALSE(Verify(key.get(), First(signature, length), data)) << length;
    }
    EXPECT_FALSE(Verify(key.get(), signature + ByteString{0}, data));
    EXPECT_TRUE(Verify(key.get(), wrapped, data));
    EXPECT_TRUE(Verify(key.get(), wrapped + RandomBytes(9), data));
}

TEST_F(MalformedDss, EveryFalseSignatureNameLengthIsRefused) {
    OwnedKey key = Parse(blob);
    for (uint32_t lie : kLies) {
        ByteString wrapped = WrapSignature(signature);
        StoreBig<uint32_t>(wrapped.data(), lie);
        EXPECT_FALSE(Verify(key.get(), wrapped, data)) << lie;
    }
}

TEST_F(MalformedDss, NoBytesAndNegativeLengthsAreRefused) {
    OwnedKey key = Parse(blob);
    for (int length : {0, -1, -40, -2147483647 - 1}) {
        EXPECT_EQ(DssParseKey(nullptr, length), nullptr) << length;
        EXPECT_FALSE(DssVerify(key.get(), nullptr, length, data.data(), 20)) << length;
        EXPECT_FALSE(DssVerify(key.get(), signature.data(), 40, nullptr, length)) << length;
    }
}

// A number with its top bit set and no zero byte before it would be negative as an mpint; the
// parser reads it as positive. It accepts leading zero bytes, although an mpint has one at most.
TEST_F(MalformedDss, NumbersAreUnsignedWithAnyLeadingZeros) {
    const ByteString name = SshString(FromHex("7373682d647373")), some = SshString({11});
    OwnedKey high = Parse(name + SshString({0xFF, 0x01}) + some + some + some);
    ASSERT_NE(high, nullptr);
    EXPECT_EQ(NumberHex(high->p), "ff01");
    OwnedKey padded = Parse(name + SshString(ByteString(300) + FromHex("ff01")) +
                            SshString(ByteString(9) + ByteString{11}) + some + some);
    ASSERT_NE(padded, nullptr);
    EXPECT_EQ(BignumCompare(padded->p, high->p), 0);
    EXPECT_EQ(BignumCompare(padded->q, high->q), 0);
}

// Numbers of the maximum word count and larger ones.
TEST_F(MalformedDss, NumbersOfHundredsOfThousandsOfBitsAreDecided) {
    const ByteString name = SshString(FromHex("7373682d647373"));
    const ByteString p = SshString(FromHex("10001")), q = SshString(FromHex("fff1"));
    const ByteString huge = RandomBytes(2 * kBignumMaxWords);
    OwnedKey key = Parse(name + p + q + SshString(huge) + SshString(huge));
    ASSERT_NE(key, nullptr);
    ByteString halves(40);
    halves[19] = halves[39] = 7;
    Verify(key.get(), halves, data);
    EXPECT_EQ(Parse(name + p + q + SshString(huge) + SshString(huge + ByteString{1})), nullptr);
    EXPECT_EQ(Parse(name + SshString(huge) + q + p + p), nullptr);
}

// ---------------------------------------------------------------- RSA

static ByteString RsaBytes(int exponent_bits, int modulus_bits) {
    auto form = [](int bits) {
        Number a = RandomNumber(bits, 0);
        ByteString bytes(static_cast<size_t>(BignumSsh1Size(a.get())));
        BignumToSsh1Bytes(bytes.data(), a.get());
        return bytes;
    };
    return ByteString(4) + form(exponent_bits) + form(modulus_bits);
}

TEST(MalformedRsa, KeyCutShortAnywhereIsRefusedAndLeftEmpty) {
    const ByteString bytes = RsaBytes(17, 1000);
    RsaKey key;
    for (size_t length = 0; length < bytes.size(); length++) {
        EXPECT_EQ(ParseRsa(First(bytes, length), &key), 0) << length;
        EXPECT_EQ(key.modulus, nullptr);
        EXPECT_EQ(key.exponent, nullptr);
    }
    // The result is the length of the key without the bytes behind it.
    EXPECT_EQ(ParseRsa(bytes + RandomBytes(30), &key), Size(bytes));
    RsaReleaseKey(&key);
}

TEST(MalformedRsa, BitCountsThatLeadOutsideAreRefused) {
    const ByteString bytes = RsaBytes(17, 1000);
    for (size_t field : {size_t{4}, size_t{4 + 2 + 3}}) {
        for (int bits : {0, 1, 16, 25, 999, 1009, 1025, 32768, 65528, 65535}) {
            ByteString changed = bytes;
            StoreBig<uint16_t>(&changed[field], static_cast<uint16_t>(bits));
            RsaKey key;
            int used = ParseRsa(changed, &key);
            EXPECT_LE(used, Size(bytes));
            bool outside = static_cast<size_t>((bits + 7) / 8) > bytes.size() - field - 2;
            EXPECT_TRUE(!outside || used == 0) << field << ", " << bits;
            RsaReleaseKey(&key);
        }
    }
}

TEST(MalformedRsa, NumbersOfZeroAreRefused) {
    RsaKey key;
    EXPECT_EQ(ParseRsa(RsaBytes(0, 1000), &key), 0);
    EXPECT_EQ(ParseRsa(RsaBytes(17, 0), &key), 0);
    EXPECT_EQ(ParseRsa(FromHex("00000400"
                               "0011000000"
                               "0008ff"),
                       &key),
              0);
}

TEST(MalformedRsa, NumbersThatWouldTakeTooLongAreRefused) {
    RsaKey key;
    EXPECT_EQ(ParseRsa(RsaBytes(17, kRsaMaxModulusBits + 1), &key), 0);
    EXPECT_EQ(ParseRsa(RsaBytes(kRsaMaxShortExponentBits + 1, kRsaLongModulusBits + 1), &key), 0);
    EXPECT_EQ(ParseRsa(RsaBytes(kRsaMaxExponentBits + 1, 1024), &key), 0);
    EXPECT_GT(ParseRsa(RsaBytes(kRsaMaxShortExponentBits, kRsaMaxModulusBits), &key), 0);
    RsaReleaseKey(&key);
    EXPECT_GT(ParseRsa(RsaBytes(kRsaMaxExponentBits, kRsaLongModulusBits), &key), 0);
    RsaReleaseKey(&key);
}

TEST(MalformedRsa, LengthOfTheModulusIsThatOfItsValueNotOfItsBitCount) {
    RsaKey key;
    ASSERT_GT(ParseRsa(FromHex("00000040"
                               "000103"
                               "004000000000000000ff"),
                       &key),
              0);
    EXPECT_EQ(key.bytes, 1);
    uint8_t byte = 5;
    EXPECT_FALSE(RsaEncrypt(&byte, 1, &key));
    RsaReleaseKey(&key);
}

TEST(MalformedRsa, NoBytesAndNegativeLengthsAreRefused) {
    RsaKey key;
    for (int length : {0, -1, -2147483647 - 1}) {
        const uint8_t byte = 0;
        const uint8_t* end = nullptr;
        EXPECT_EQ(RsaParseKey(&byte, length, &key, &end), 0);
        EXPECT_EQ(end, &byte);
        EXPECT_EQ(key.modulus, nullptr);
    }
    RsaReleaseKey(&key);
    RsaReleaseKey(&key);
}

// SPDX-License-Identifier: MIT
// Memory ends at each of the allocations of an operation in turn: the operation fails, without a
// wrong result, and nothing is left allocated.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <gtest/gtest.h>
#include <openssl/dsa.h>
#include <openssl/rsa.h>

#include <functional>

#include "crypto/bignum.h"
#include "crypto/public_key.h"
#include "crypto/random.h"
#include "crypto_test_support.h"
#include "public_key_blobs.h"
#include "text/bytes.h"

// The linker leads the calls of crypto/ here.
void* RealCalloc(size_t count, size_t size) __asm__("__real_calloc");
void* RealMalloc(size_t size) __asm__("__real_malloc");
void* LimitedCalloc(size_t count, size_t size) __asm__("__wrap_calloc");
void* LimitedMalloc(size_t size) __asm__("__wrap_malloc");

static int g_left = 0;  // allocations until the one that fails; 0: each one gets its memory

static bool MemoryEnds() { return g_left > 0 && --g_left == 0; }

void* LimitedCalloc(size_t count, size_t size) {
    return MemoryEnds() ? nullptr : RealCalloc(count, size);
}
void* LimitedMalloc(size_t size) { return MemoryEnds() ? nullptr : RealMalloc(size); }

// Calls `operation` with memory that ends at its first allocation, its second and so on, and at
// last with enough. It gets whether memory ends. Returns how many allocations it makes.
static int WithoutMemory(const std::function<void()>& operation,
                         const std::function<void(bool enough)>& check) {
    for (int time = 1;; ++time) {
        g_left = time;
        operation();
        const bool enough = g_left > 0;
        g_left = 0;
        check(enough);
        if (enough) return time - 1;
    }
}

TEST(NoMemory, KeyAgreementHasNoSecret) {
    DhContext other = {}, context = {};
    DhSetup(&other);
    DhGenerate(&other, kDhExponentBits);
    for (const int bits : {kDhExponentBits, 0}) {
        Number secret;
        const int allocations = WithoutMemory(
            [&] {
                DhForget(&context);
                DhSetup(&context);
                DhGenerate(&context, bits);
                secret.reset(DhSharedSecret(&context, other.e));
            },
            [&](bool enough) {
                EXPECT_EQ(enough, context.e && secret);
                if (!context.e || !secret) return;
                Number wanted(BignumModPow(context.e, other.x, other.p));
                EXPECT_EQ(NumberHex(wanted.get()), NumberHex(secret.get()));
            });
        EXPECT_GT(allocations, 6);
    }
    DhForget(&context);
    DhForget(&other);
}

TEST(NoMemory, NoSignatureIsGood) {
    DSA* peer = MakeDsaKey();
    const ByteString data = RandomBytes(20), blob = KeyBlob(peer), signature = Sign(peer, data);
    bool parsed = false, good = false;
    const int allocations = WithoutMemory(
        [&] {
            DssKey* key = DssParseKey(blob.data(), Size(blob));
            parsed = key != nullptr;
            good = parsed && DssVerify(key, signature.data(), Size(signature), data.data(), 20);
            DssFreeKey(key);
        },
        [&](bool enough) { EXPECT_EQ(enough, good); });
    EXPECT_GT(allocations, 40);
    DSA_free(peer);
}

TEST(NoMemory, NothingIsEncrypted) {
    RSA* peer = RSA_new();
    BIGNUM* exponent = BN_new();
    BN_set_word(exponent, 35);
    ASSERT_EQ(RSA_generate_key_ex(peer, 512, exponent, nullptr), 1);
    const ByteString blob = RsaBlob(peer);
    bool encrypted = false;
    const int allocations = WithoutMemory(
        [&] {
            RsaKey key = {};
            ByteString buffer(64, 7);
            encrypted = RsaParseKey(blob.data(), Size(blob), &key, nullptr) > 0 &&
                        RsaEncrypt(buffer.data(), 32, &key);
            RsaReleaseKey(&key);
        },
        [&](bool enough) { EXPECT_EQ(enough, encrypted); });
    EXPECT_GT(allocations, 4);
    BN_free(exponent);
    RSA_free(peer);
}

TEST(NoMemory, InverseIsNull) {
    Number seven(BignumFromUint32(7)), modulus(BignumFromUint32(0x10001)), inverse;
    WithoutMemory([&] { inverse.reset(BignumModInverse(seven.get(), modulus.get())); },
                  [&](bool enough) { EXPECT_EQ(enough, inverse != nullptr); });
}

// ---------------------------------------------------------------- null operands

TEST(NoMemory, EveryOperationOnIntegersReturnsNull) {
    const Number a = RandomNumber(700, 0), b = RandomNumber(300, 0), m = RandomNumber(511, 0);
    const Number prime = FromHexNumber("FFFFFFFFFFFFFFC5");
    const ByteString bytes = RandomBytes(21), ssh1 = FromHex("00100F0F");
    const struct {
        const char* name;
        std::function<Bignum()> make;
    } kRows[] = {
        {"New", [] { return BignumNew(3); }},
        {"FromUint32 of one word", [] { return BignumFromUint32(7); }},
        {"FromUint32 of two words", [] { return BignumFromUint32(70000); }},
        {"PowerOfTwo", [] { return BignumPowerOfTwo(100); }},
        {"Copy", [&] { return BignumCopy(a.get()); }},
        {"ShiftRight", [&] { return BignumShiftRight(a.get(), 33); }},
        {"FromBytes", [&] { return BignumFromBytes(bytes.data(), Size(bytes)); }},
        {"FromSsh1Bytes", [&] { return BignumFromSsh1Bytes(ssh1.data(), Size(ssh1)); }},
        {"MulAdd", [&] { return BignumMulAdd(a.get(), b.get(), m.get()); }},
        {"Mod", [&] { return BignumMod(a.get(), m.get()); }},
        {"Div", [&] { return BignumDiv(a.get(), b.get()); }},
        {"ModMul", [&] { return BignumModMul(a.get(), b.get(), m.get()); }},
        {"ModPow", [&] { return BignumModPow(b.get(), b.get(), m.get()); }},
        {"ModPow of a long base", [&] { return BignumModPow(a.get(), b.get(), m.get()); }},
        {"ModInverse", [&] { return BignumModInverse(b.get(), prime.get()); }},
        {"ModInverse of a longer number", [&] { return BignumModInverse(m.get(), prime.get()); }},
    };
    for (const auto& row : kRows) {
        Number made;
        WithoutMemory([&] { made.reset(row.make()); },
                      [&](bool enough) { EXPECT_EQ(made != nullptr, enough) << row.name; });
    }
}

TEST(NoMemory, AnMpintIsNullAndHasNoBytes) {
    const Number a = RandomNumber(700, 0);
    uint8_t* body = nullptr;
    int length = 0;
    WithoutMemory([&] { body = EncodeMpint(a.get(), &length); },
                  [&](bool enough) {
                      EXPECT_EQ(body != nullptr, enough);
                      EXPECT_EQ(length, enough ? 88 : 0);
                      WipeAndFree(body, static_cast<size_t>(length));
                  });
}

TEST(NoMemory, HostKeysAreRefused) {
    DSA* pair = MakeDsaKey();
    const ByteString blob = KeyBlob(pair);
    DSA_free(pair);
    DssKey* key = nullptr;
    WithoutMemory([&] { key = DssParseKey(blob.data(), Size(blob)); },
                  [&](bool enough) {
                      EXPECT_EQ(key != nullptr, enough);
                      DssFreeKey(key);
                  });
}

TEST(NoMemory, Ssh1KeysAreRefusedAndHoldNothing) {
    const ByteString blob = FromHex(
        "00000010"
        "001023AB"
        "0010F00D");
    RsaKey key;
    int taken = 0;
    WithoutMemory([&] { taken = RsaParseKey(blob.data(), Size(blob), &key, nullptr); },
                  [&](bool enough) {
                      EXPECT_EQ(taken, enough ? 12 : 0);
                      EXPECT_EQ(key.exponent != nullptr, enough);
                      EXPECT_EQ(key.modulus != nullptr, enough);
                      RsaReleaseKey(&key);
                  });
}

TEST(NullInteger, MakesEveryResultNull) {
    const ConstBignum one = BignumOne, null = nullptr;
    EXPECT_EQ(BignumCopy(null), nullptr);
    EXPECT_EQ(BignumShiftRight(null, 1), nullptr);
    for (const ConstBignum first : {one, null}) {
        const ConstBignum second = first ? null : one;
        EXPECT_EQ(BignumMod(first, second), nullptr);
        EXPECT_EQ(BignumDiv(first, second), nullptr);
        EXPECT_EQ(BignumModInverse(first, second), nullptr);
        EXPECT_EQ(BignumMulAdd(first, second, one), nullptr);
        EXPECT_EQ(BignumModMul(first, second, one), nullptr);
        EXPECT_EQ(BignumModPow(first, second, one), nullptr);
    }
    EXPECT_EQ(BignumMulAdd(one, one, null), nullptr);
    EXPECT_EQ(BignumModMul(one, one, null), nullptr);
    EXPECT_EQ(BignumModPow(one, one, null), nullptr);
    int length = 5;
    EXPECT_EQ(EncodeMpint(null, &length), nullptr);
    EXPECT_EQ(length, 0);
}

TEST(NullInteger, ReadsAsAZeroWithoutWords) {
    uint8_t bytes[2] = {1, 1};
    EXPECT_EQ(BignumBitLength(nullptr), 0);
    EXPECT_EQ(BignumByte(nullptr, 0), 0);
    EXPECT_EQ(BignumBit(nullptr, 0), 0);
    EXPECT_EQ(BignumModSmall(nullptr, 7), 0);
    EXPECT_EQ(BignumCompare(nullptr, BignumZero), 0);
    EXPECT_EQ(BignumCompare(nullptr, BignumOne), -1);
    EXPECT_EQ(BignumCompare(BignumOne, nullptr), 1);
    EXPECT_EQ(BignumSsh1Size(nullptr), 2);
    EXPECT_EQ(BignumSsh2Size(nullptr), 5);
    BignumSetBit(nullptr, 0, 1);
    BignumNormalise(nullptr);
    BignumToBytes(bytes, 2, nullptr);
    EXPECT_EQ(bytes[0] + bytes[1], 0);
}

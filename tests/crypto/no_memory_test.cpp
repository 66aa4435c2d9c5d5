// SPDX-License-Identifier: MIT
// Memory that is missing: each block that an operation asks for is refused once.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "crypto/bignum.h"
#include "crypto/public_key.h"
#include "crypto_test_support.h"
#include "public_key_blobs.h"
#include "text/bytes.h"

static int calls_to_refusal = 0;  // 1: the next call is refused; 0: no call is refused

void* RealCalloc(size_t count, size_t size) __asm__("__real_calloc");
void* RefusingCalloc(size_t count, size_t size) __asm__("__wrap_calloc");
void* RefusingCalloc(size_t count, size_t size) {
    return calls_to_refusal > 0 && --calls_to_refusal == 0 ? nullptr : RealCalloc(count, size);
}

// Runs `work` with its first block refused, then with its second one, until it has all of them.
// Calls `check` after each with whether a block was refused.
static void RefuseEachBlock(int first, const std::function<void()>& work,
                            const std::function<void(bool)>& check) {
    bool refused = true;
    int block = first;
    for (; refused; block++) {
        calls_to_refusal = block;
        work();
        refused = calls_to_refusal == 0;
        calls_to_refusal = 0;
        check(refused);
    }
    EXPECT_GT(block, first + 1);  // one was refused at least
}

TEST(NoMemory, EveryOperationOnIntegersReturnsNull) {
    const Number a = RandomNumber(700, 0), b = RandomNumber(300, 0), m = RandomNumber(511, 0);
    const Number prime = FromHexNumber("FFFFFFFFFFFFFFC5");
    const ByteString bytes = RandomBytes(21), ssh1 = FromHex("00100F0F");
    const struct {
        const char* name;
        int first;  // block; before it, memory is not checked
        std::function<Bignum()> make;
    } kRows[] = {
        {"New", 1, [] { return BignumNew(3); }},
        {"FromUint32 of one word", 1, [] { return BignumFromUint32(7); }},
        {"FromUint32 of two words", 1, [] { return BignumFromUint32(70000); }},
        {"PowerOfTwo", 1, [] { return BignumPowerOfTwo(100); }},
        {"Copy", 1, [&] { return BignumCopy(a.get()); }},
        {"ShiftRight", 1, [&] { return BignumShiftRight(a.get(), 33); }},
        {"FromBytes", 1, [&] { return BignumFromBytes(bytes.data(), Size(bytes)); }},
        {"FromSsh1Bytes", 1, [&] { return BignumFromSsh1Bytes(ssh1.data(), Size(ssh1)); }},
        {"MulAdd", 1, [&] { return BignumMulAdd(a.get(), b.get(), m.get()); }},
        {"Mod", 1, [&] { return BignumMod(a.get(), m.get()); }},
        {"Div", 1, [&] { return BignumDiv(a.get(), b.get()); }},
        {"ModMul", 1, [&] { return BignumModMul(a.get(), b.get(), m.get()); }},
        {"ModPow", 1, [&] { return BignumModPow(b.get(), b.get(), m.get()); }},
        {"ModPow of a long base", 1, [&] { return BignumModPow(a.get(), b.get(), m.get()); }},
        {"ModInverse", 5, [&] { return BignumModInverse(b.get(), prime.get()); }},
        {"ModInverse of a longer number", 5,
         [&] { return BignumModInverse(m.get(), prime.get()); }},
    };
    for (const auto& row : kRows) {
        Number made;
        RefuseEachBlock(
            row.first, [&] { made.reset(row.make()); },
            [&](bool refused) { EXPECT_EQ(made == nullptr, refused) << row.name; });
    }
}

TEST(NoMemory, AnMpintIsNullAndHasNoBytes) {
    const Number a = RandomNumber(700, 0);
    uint8_t* body = nullptr;
    int length = 0;
    RefuseEachBlock(
        1, [&] { body = EncodeMpint(a.get(), &length); },
        [&](bool refused) {
            EXPECT_EQ(body == nullptr, refused);
            EXPECT_EQ(length, refused ? 0 : 88);
            WipeAndFree(body, static_cast<size_t>(length));
        });
}

TEST(NoMemory, HostKeysAreRefused) {
    DSA* pair = MakeDsaKey();
    const ByteString blob = KeyBlob(pair);
    DSA_free(pair);
    DssKey* key = nullptr;
    RefuseEachBlock(
        1, [&] { key = DssParseKey(blob.data(), Size(blob)); },
        [&](bool refused) {
            EXPECT_EQ(key == nullptr, refused);
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
    RefuseEachBlock(
        1, [&] { taken = RsaParseKey(blob.data(), Size(blob), &key, nullptr); },
        [&](bool refused) {
            EXPECT_EQ(taken, refused ? 0 : 12);
            EXPECT_EQ(key.exponent == nullptr, refused);
            EXPECT_EQ(key.modulus == nullptr, refused);
            RsaReleaseKey(&key);
        });
}

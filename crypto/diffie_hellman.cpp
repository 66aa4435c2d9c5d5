// SPDX-License-Identifier: MIT
// The Diffie-Hellman key agreement over the Oakley Group 2.
#include "crypto/public_key.h"

#include <cstdlib>

#include "crypto/random.h"
#include "text/bytes.h"

// clang-format off
const uint8_t kDhPrime[128] = {
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xC9, 0x0F, 0xDA, 0xA2, 0x21, 0x68, 0xC2, 0x34,
    0xC4, 0xC6, 0x62, 0x8B, 0x80, 0xDC, 0x1C, 0xD1, 0x29, 0x02, 0x4E, 0x08, 0x8A, 0x67, 0xCC, 0x74,
    0x02, 0x0B, 0xBE, 0xA6, 0x3B, 0x13, 0x9B, 0x22, 0x51, 0x4A, 0x08, 0x79, 0x8E, 0x34, 0x04, 0xDD,
    0xEF, 0x95, 0x19, 0xB3, 0xCD, 0x3A, 0x43, 0x1B, 0x30, 0x2B, 0x0A, 0x6D, 0xF2, 0x5F, 0x14, 0x37,
    0x4F, 0xE1, 0x35, 0x6D, 0x6D, 0x51, 0xC2, 0x45, 0xE4, 0x85, 0xB5, 0x76, 0x62, 0x5E, 0x7E, 0xC6,
    0xF4, 0x4C, 0x42, 0xE9, 0xA6, 0x37, 0xED, 0x6B, 0x0B, 0xFF, 0x5C, 0xB6, 0xF4, 0x06, 0xB7, 0xED,
    0xEE, 0x38, 0x6B, 0xFB, 0x5A, 0x89, 0x9F, 0xA5, 0xAE, 0x9F, 0x24, 0x11, 0x7C, 0x4B, 0x1F, 0xE6,
    0x49, 0x28, 0x66, 0x51, 0xEC, 0xE6, 0x53, 0x81, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
};
// clang-format on

static const uint8_t kGenerator[1] = {2};

static Bignum AllOnes(int bits) {
    Bignum a = BignumNew((bits + 15) / 16);
    for (int i = 0; i < bits; ++i) BignumSetBit(a, i, 1);
    return a;
}

void DhSetup(DhContext* context) {
    DhRelease(context);
    context->p = BignumFromBytes(kDhPrime, sizeof(kDhPrime));
    context->g = BignumFromBytes(kGenerator, sizeof(kGenerator));
    context->q = BignumShiftRight(context->p, 1);
    context->bound = AllOnes(BignumBitLength(context->q));
}

// Sets the bits one by one, with the lowest bit of each random byte first.
static Bignum RandomBits(int bits) {
    Bignum a = BignumNew((bits + 15) / 16);
    int byte = 0;
    for (int i = 0; i < bits; ++i) {
        if (i % 8 == 0) byte = RandomByte();
        BignumSetBit(a, i, byte >> (i % 8) & 1);
    }
    return a;
}

// Returns the bound with each byte AND-ed with a random byte.
static Bignum RandomBelow(ConstBignum bound) {
    int size = BignumSsh1Size(bound);
    uint8_t* bytes = static_cast<uint8_t*>(malloc(static_cast<size_t>(size)));
    BignumToSsh1Bytes(bytes, bound);
    for (int i = 2; i < size; ++i) bytes[i] = static_cast<uint8_t>(bytes[i] & RandomByte());
    Bignum result = BignumFromSsh1Bytes(bytes, size);
    WipeAndFree(bytes, static_cast<size_t>(size));
    return result;
}

ConstBignum DhGenerate(DhContext* context, int bits) {
    bool stated = bits > 0 && bits <= BignumBitLength(context->bound);
    do {
        BignumFree(context->x);
        context->x = stated ? RandomBits(bits) : RandomBelow(context->bound);
    } while (BignumCompare(context->x, BignumOne) <= 0 ||
             BignumCompare(context->x, context->q) >= 0);
    BignumFree(context->e);
    context->e = BignumModPow(context->g, context->x, context->p);
    return context->e;
}

Bignum DhSharedSecret(const DhContext* context, ConstBignum f) {
    if (context->p == nullptr || context->x == nullptr) return nullptr;
    if (BignumBitLength(f) == 0 || BignumCompare(f, context->p) >= 0) return nullptr;
    return BignumModPow(f, context->x, context->p);
}

static void Release(Bignum* a) {
    BignumFree(*a);
    *a = nullptr;
}

void DhRelease(DhContext* context) {
    Release(&context->p);
    Release(&context->g);
    Release(&context->q);
    Release(&context->bound);
}

void DhForget(DhContext* context) {
    DhRelease(context);
    Release(&context->x);
    Release(&context->e);
}

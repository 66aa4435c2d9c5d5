// SPDX-License-Identifier: MIT
// Multiprecision integers: making and freeing them, bits and wire forms. The arithmetic is in
// bignum_arithmetic.cpp.
#include "crypto/bignum.h"

#include <bit>
#include <cstdlib>
#include <cstring>

#include "text/bytes.h"

static const uint16_t kOne[] = {1, 1};
static const uint16_t kZero[] = {1, 0};
const ConstBignum BignumOne = kOne;
const ConstBignum BignumZero = kZero;

Bignum BignumNew(int words) {
    if (words < 0 || words > kBignumMaxWords) return nullptr;
    Bignum a = static_cast<Bignum>(calloc(static_cast<size_t>(words) + 1, sizeof(uint16_t)));
    if (a != nullptr) a[0] = static_cast<uint16_t>(words);
    return a;
}

Bignum BignumFromUint32(uint32_t value) {
    Bignum a = BignumNew(value > 0xFFFF ? 2 : 1);
    if (a == nullptr) return nullptr;
    a[1] = static_cast<uint16_t>(value & 0xFFFF);
    if (value > 0xFFFF) a[2] = static_cast<uint16_t>(value >> 16);
    return a;
}

Bignum BignumPowerOfTwo(int bit) {
    Bignum a = BignumNew(bit / 16 + 1);
    if (a != nullptr) BignumSetBit(a, bit, 1);
    return a;
}

Bignum BignumCopy(ConstBignum a) {
    Bignum copy = BignumNew(a[0]);
    if (copy != nullptr) memcpy(copy, a, (size_t{a[0]} + 1) * sizeof(uint16_t));
    return copy;
}

// The words that BignumNormalise removed are zero, so it is enough to wipe the remaining ones.
void BignumFree(Bignum a) {
    if (a != nullptr) WipeAndFree(a, (size_t{a[0]} + 1) * sizeof(uint16_t));
}

void BignumNormalise(Bignum a) {
    while (a[0] > 1 && a[a[0]] == 0) --a[0];
}

int BignumBitLength(ConstBignum a) {
    int words = a[0];
    while (words > 0 && a[words] == 0) --words;
    return words == 0 ? 0 : 16 * (words - 1) + static_cast<int>(std::bit_width(a[words]));
}

uint8_t BignumByte(ConstBignum a, int index) {
    if (index < 0 || index >= 2 * a[0]) return 0;
    return static_cast<uint8_t>(a[1 + index / 2] >> (index % 2 * 8));
}

int BignumBit(ConstBignum a, int bit) {
    if (bit < 0 || bit >= 16 * a[0]) return 0;
    return (a[1 + bit / 16] >> (bit % 16)) & 1;
}

void BignumSetBit(Bignum a, int bit, int value) {
    if (bit < 0 || bit >= 16 * a[0]) return;
    uint16_t mask = static_cast<uint16_t>(1 << (bit % 16));
    uint16_t& word = a[1 + bit / 16];
    word = static_cast<uint16_t>(value != 0 ? word | mask : word & ~mask);
}

int BignumCompare(ConstBignum a, ConstBignum b) {
    for (int i = a[0] > b[0] ? a[0] : b[0]; i > 0; --i) {
        uint16_t left = i <= a[0] ? a[i] : uint16_t{0};
        uint16_t right = i <= b[0] ? b[i] : uint16_t{0};
        if (left != right) return left < right ? -1 : 1;
    }
    return 0;
}

Bignum BignumShiftRight(ConstBignum a, int bits) {
    int left = BignumBitLength(a) - bits;
    Bignum result = BignumNew(left > 0 ? (left + 15) / 16 : 0);
    if (result == nullptr) return nullptr;
    int skipped = bits / 16;
    for (int i = 1; i <= result[0]; ++i) {
        uint32_t pair = a[i + skipped];
        if (i + skipped < a[0]) pair |= uint32_t{a[i + skipped + 1]} << 16;
        result[i] = static_cast<uint16_t>(pair >> (bits % 16));
    }
    return result;
}

uint16_t BignumModSmall(ConstBignum a, uint16_t modulus) {
    uint32_t remainder = 0;
    for (int i = a[0]; i > 0; --i) remainder = (remainder << 16 | a[i]) % modulus;
    return static_cast<uint16_t>(remainder);
}

Bignum BignumFromBytes(const uint8_t* bytes, int count) {
    if (count < 0 || count > 2 * kBignumMaxWords) return nullptr;
    Bignum a = BignumNew((count + 1) / 2);
    if (a == nullptr) return nullptr;
    for (int i = 0; i < count; ++i) {
        uint16_t& word = a[1 + i / 2];
        word = static_cast<uint16_t>(word | bytes[count - 1 - i] << (i % 2 * 8));
    }
    return a;
}

void BignumToBytes(uint8_t* bytes, int count, ConstBignum a) {
    for (int i = 0; i < count; ++i) bytes[i] = BignumByte(a, count - 1 - i);
}

int BignumSsh1Size(ConstBignum a) { return (BignumBitLength(a) + 7) / 8 + 2; }

void BignumToSsh1Bytes(uint8_t* buffer, ConstBignum a) {
    int bits = BignumBitLength(a);
    StoreBig<uint16_t>(buffer, static_cast<uint16_t>(bits));
    BignumToBytes(buffer + 2, (bits + 7) / 8, a);
}

Bignum BignumFromSsh1Bytes(const uint8_t* buffer, int length) {
    if (length < 2) return nullptr;
    int count = (LoadBig<uint16_t>(buffer) + 7) / 8;
    return length - 2 < count ? nullptr : BignumFromBytes(buffer + 2, count);
}

int BignumSsh2Size(ConstBignum a) { return (BignumBitLength(a) + 8) / 8 + 4; }

uint8_t* EncodeMpint(ConstBignum a, int* length) {
    int bits = BignumBitLength(a);
    int count = bits == 0 ? 0 : (bits + 8) / 8;
    uint8_t* body = static_cast<uint8_t*>(calloc(static_cast<size_t>(count) + 1, 1));
    *length = body == nullptr ? 0 : count;
    if (body != nullptr) BignumToBytes(body, count, a);
    return body;
}

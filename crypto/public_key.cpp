// SPDX-License-Identifier: MIT
// The public-key operations. RSA for SSH-1: reading public keys and encrypting with them. For
// SSH-2: the Diffie-Hellman key agreement over the Oakley Group 2, and the host key algorithm
// "ssh-dss", reading public keys and checking signatures.
#include "crypto/public_key.h"

#include <cstdlib>
#include <cstring>

#include "crypto/hashes.h"
#include "crypto/random.h"
#include "text/bytes.h"

// ---------------------------------------------------------------- RSA

// Takes one number in SSH-1 form from the front of *bytes. Returns null if it is incomplete.
static Bignum TakeNumber(const uint8_t** bytes, int* length) {
    Bignum number = BignumFromSsh1Bytes(*bytes, *length);
    if (number == nullptr) return nullptr;
    int size = 2 + (LoadBig<uint16_t>(*bytes) + 7) / 8;
    *bytes += size;
    *length -= size;
    return number;
}

static bool Usable(const RsaKey* key) {
    if (key->modulus == nullptr || key->exponent == nullptr) return false;
    int modulus_bits = BignumBitLength(key->modulus);
    int exponent_bits = BignumBitLength(key->exponent);
    if (modulus_bits == 0 || exponent_bits == 0) return false;
    if (modulus_bits > kRsaMaxModulusBits) return false;
    return exponent_bits <=
           (modulus_bits > kRsaLongModulusBits ? kRsaMaxShortExponentBits : kRsaMaxExponentBits);
}

int RsaParseKey(const uint8_t* bytes, int length, RsaKey* key, const uint8_t** end) {
    *key = {};
    if (end != nullptr) *end = bytes;
    if (length < 4) return 0;
    const uint8_t* at = bytes + 4;
    int left = length - 4;
    key->bits = LoadBig<uint32_t>(bytes);
    key->exponent = TakeNumber(&at, &left);
    if (key->exponent != nullptr) key->modulus = TakeNumber(&at, &left);
    if (!Usable(key)) {
        RsaReleaseKey(key);
        return 0;
    }
    key->bytes = (BignumBitLength(key->modulus) + 7) / 8;
    if (end != nullptr) *end = at;
    return static_cast<int>(at - bytes);
}

void RsaReleaseKey(RsaKey* key) {
    BignumFree(key->modulus);
    BignumFree(key->exponent);
    *key = {};
}

static uint8_t NonZeroRandomByte() {
    uint8_t byte = RandomByte();
    while (byte == 0) byte = RandomByte();
    return byte;
}

bool RsaEncrypt(uint8_t* buffer, int length, const RsaKey* key) {
    if (length < 0 || length > key->bytes - 3) return false;
    int separator = key->bytes - length - 1;
    memmove(buffer + separator + 1, buffer, static_cast<size_t>(length));
    buffer[0] = 0x00;
    buffer[1] = 0x02;
    for (int i = 2; i < separator; ++i) buffer[i] = NonZeroRandomByte();
    buffer[separator] = 0x00;
    Bignum block = BignumFromBytes(buffer, key->bytes);
    Bignum result = BignumModPow(block, key->exponent, key->modulus);
    bool encrypted = result != nullptr;
    if (encrypted) BignumToBytes(buffer, key->bytes, result);
    BignumFree(block);
    BignumFree(result);
    return encrypted;
}

// ---------------------------------------------------------------- Diffie-Hellman

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
    if (bytes == nullptr) return nullptr;
    BignumToSsh1Bytes(bytes, bound);
    for (int i = 2; i < size; ++i) bytes[i] = static_cast<uint8_t>(bytes[i] & RandomByte());
    Bignum result = BignumFromSsh1Bytes(bytes, size);
    WipeAndFree(bytes, static_cast<size_t>(size));
    return result;
}

static void Release(Bignum* a) {
    BignumFree(*a);
    *a = nullptr;
}

static bool HasGroup(const DhContext* context) {
    return context->p != nullptr && context->g != nullptr && context->q != nullptr &&
           context->bound != nullptr;
}

ConstBignum DhGenerate(DhContext* context, int bits) {
    bool stated = bits > 0 && bits <= BignumBitLength(context->bound);
    Release(&context->e);
    do {
        Release(&context->x);
        if (!HasGroup(context)) return nullptr;
        context->x = stated ? RandomBits(bits) : RandomBelow(context->bound);
        if (context->x == nullptr) return nullptr;
    } while (BignumCompare(context->x, BignumOne) <= 0 ||
             BignumCompare(context->x, context->q) >= 0);
    context->e = BignumModPow(context->g, context->x, context->p);
    return context->e;
}

Bignum DhSharedSecret(const DhContext* context, ConstBignum f) {
    if (context->p == nullptr || context->x == nullptr) return nullptr;
    if (BignumBitLength(f) == 0 || BignumCompare(f, context->p) >= 0) return nullptr;
    return BignumModPow(f, context->x, context->p);
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

// ---------------------------------------------------------------- ssh-dss

static const char kDssName[] = "ssh-dss";
constexpr int kDssNameLength = 7;
constexpr int kNumberSize = 20;  // bytes of r and of s
constexpr int kSignatureSize = 2 * kNumberSize;

static Bignum TakeNumber(ByteReader* reader) {
    const uint8_t* bytes;
    int length;
    return TakeString(reader, &bytes, &length) ? BignumFromBytes(bytes, length) : nullptr;
}

static bool InRange(ConstBignum a, int max_bits) {
    int bits = BignumBitLength(a);
    return bits > 0 && bits <= max_bits;
}

static bool Usable(const DssKey* key) {
    return key->p != nullptr && key->q != nullptr && key->g != nullptr && key->y != nullptr &&
           InRange(key->p, kDssMaxPrimeBits) && InRange(key->q, kDssMaxOrderBits);
}

DssKey* DssParseKey(const uint8_t* blob, int length) {
    ByteReader reader = ReaderOf(blob, length);
    const uint8_t* name;
    int name_length;
    if (!TakeString(&reader, &name, &name_length) || name_length < kDssNameLength) return nullptr;
    if (memcmp(name, kDssName, kDssNameLength) != 0) return nullptr;
    DssKey* key = static_cast<DssKey*>(calloc(1, sizeof(DssKey)));
    if (key == nullptr) return nullptr;
    key->p = TakeNumber(&reader);
    key->q = TakeNumber(&reader);
    key->g = TakeNumber(&reader);
    key->y = TakeNumber(&reader);
    if (Usable(key)) return key;
    DssFreeKey(key);
    return nullptr;
}

void DssFreeKey(DssKey* key) {
    if (key == nullptr) return;
    BignumFree(key->p);
    BignumFree(key->q);
    BignumFree(key->g);
    BignumFree(key->y);
    free(key);
}

// Returns the 40 bytes of r and s, or null if the blob has neither of the two forms.
static const uint8_t* SignatureBytes(const uint8_t* blob, int length) {
    if (length == kSignatureSize) return blob;
    ByteReader reader = ReaderOf(blob, length);
    const uint8_t* name;
    const uint8_t* numbers;
    int name_length;
    uint32_t stated;
    if (!TakeString(&reader, &name, &name_length) || name_length != kDssNameLength) return nullptr;
    if (memcmp(name, kDssName, kDssNameLength) != 0) return nullptr;
    if (!TakeUint32(&reader, &stated)) return nullptr;
    return TakeBytes(&reader, kSignatureSize, &numbers) ? numbers : nullptr;
}

// (g^u1 * y^u2 mod p) mod q with u1 = h * w mod q and u2 = r * w mod q, with the names of FIPS
// 186-2.
static Bignum Recompute(const DssKey* key, ConstBignum h, ConstBignum r, ConstBignum w) {
    Bignum u1 = BignumModMul(h, w, key->q);
    Bignum u2 = BignumModMul(r, w, key->q);
    Bignum g_part = BignumModPow(key->g, u1, key->p);
    Bignum y_part = BignumModPow(key->y, u2, key->p);
    Bignum product = BignumModMul(g_part, y_part, key->p);
    Bignum v = BignumMod(product, key->q);
    BignumFree(u1);
    BignumFree(u2);
    BignumFree(g_part);
    BignumFree(y_part);
    BignumFree(product);
    return v;
}

static bool Matches(const DssKey* key, ConstBignum r, ConstBignum s, ConstBignum h) {
    if (BignumBitLength(r) == 0 || BignumCompare(r, key->q) >= 0) return false;
    if (BignumBitLength(s) == 0 || BignumCompare(s, key->q) >= 0) return false;
    Bignum w = BignumModInverse(s, key->q);
    if (w == nullptr) return false;  // q is not prime
    Bignum v = Recompute(key, h, r, w);
    bool good = BignumCompare(v, r) == 0;  // r is not zero, so a null v is another number
    BignumFree(w);
    BignumFree(v);
    return good;
}

bool DssVerify(const DssKey* key, const uint8_t* signatureBlob, int signatureLength,
               const uint8_t* data, int dataLength) {
    const uint8_t* signature = SignatureBytes(signatureBlob, signatureLength);
    if (signature == nullptr) return false;
    uint8_t digest[kSha1Size];
    Sha1(data, dataLength, digest);
    Bignum r = BignumFromBytes(signature, kNumberSize);
    Bignum s = BignumFromBytes(signature + kNumberSize, kNumberSize);
    Bignum h = BignumFromBytes(digest, kSha1Size);
    bool good = Matches(key, r, s, h);
    BignumFree(r);
    BignumFree(s);
    BignumFree(h);
    return good;
}

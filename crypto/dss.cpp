// SPDX-License-Identifier: MIT
// The host key algorithm "ssh-dss": reading public keys and checking signatures.
#include "crypto/public_key.h"

#include <cstdlib>
#include <cstring>

#include "crypto/hashes.h"
#include "text/bytes.h"

static const char kName[] = "ssh-dss";
static const int kNameLength = 7;
static const int kNumberSize = 20;  // bytes of r and of s
static const int kSignatureSize = 2 * kNumberSize;

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
    if (!TakeString(&reader, &name, &name_length) || name_length < kNameLength) return nullptr;
    if (memcmp(name, kName, kNameLength) != 0) return nullptr;
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
    if (!TakeString(&reader, &name, &name_length) || name_length != kNameLength) return nullptr;
    if (memcmp(name, kName, kNameLength) != 0) return nullptr;
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
    bool good = BignumCompare(v, r) == 0;
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

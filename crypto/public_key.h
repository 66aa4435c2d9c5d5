// SPDX-License-Identifier: MIT
// The public-key operations: RSA for SSH-1, host keys and the key agreement of SSH-2.
#ifndef QUILL_CRYPTO_PUBLIC_KEY_H
#define QUILL_CRYPTO_PUBLIC_KEY_H

#include <cstdint>

#include "crypto/bignum.h"

// ---------------------------------------------------------------- RSA

// RSA encryption of SSH-1, with the padding of PKCS #1 version 1.5, block type 2 (RFC 2313, 8.1).

// Beyond these an encryption would take too long. Of a modulus that is not long any exponent up to
// its limit is taken, of a long one a short exponent only.
inline constexpr int kRsaMaxModulusBits = 16384;
inline constexpr int kRsaLongModulusBits = 3072;  // a modulus of more bits is long
inline constexpr int kRsaMaxExponentBits = 3072;
inline constexpr int kRsaMaxShortExponentBits = 64;

struct RsaKey {
    uint32_t bits;  // as the server states it; not relied on
    int bytes;      // the modulus length, (modulus bits + 7)/8
    Bignum modulus;
    Bignum exponent;
};

// Reads an SSH-1 public key from at most `length` bytes: uint32 bits, then exponent and modulus in
// the SSH-1 form of bignum.h. Returns how many bytes it took, and in *end (null allowed) where it
// ended. 0, with the key all zero, when the bytes do not hold it or a number is zero or beyond the
// limits above. The caller releases the numbers with RsaReleaseKey.
int RsaParseKey(const uint8_t* bytes, int length, RsaKey* key, const uint8_t** end);
void RsaReleaseKey(RsaKey* key);

// Replaces the first `bytes` bytes of the buffer by the encryption of its first `length` bytes.
// False, with the buffer as it was, when length leaves no room for the padding's own three bytes.
bool RsaEncrypt(uint8_t* buffer, int length, const RsaKey* key);

// ---------------------------------------------------------------- ssh-dss

// The host key algorithm "ssh-dss" of SSH-2 (RFC 4253, 6.6): reading of public keys and checking
// of DSA signatures (FIPS 186-2) over SHA-1. Everything here comes from the peer and may be wrong
// in any way.

// A longer prime would make a check too long. The order has no more bits than r and s, of 20 bytes
// each, can reach. g and y may be of any size: they count modulo p.
inline constexpr int kDssMaxPrimeBits = 8192;
inline constexpr int kDssMaxOrderBits = 160;

struct DssKey {
    Bignum p;
    Bignum q;
    Bignum g;
    Bignum y;
};

// Reads `string` "ssh-dss" (a longer name that starts so will do) and the mpints p, q, g, y, which
// are taken as unsigned. What follows them is ignored. Null for another name, for lengths that
// lead outside the blob, and for p or q of zero or beyond the limits above. The caller releases
// the key with DssFreeKey.
DssKey* DssParseKey(const uint8_t* blob, int length);
void DssFreeKey(DssKey* key);  // a null key too

// Whether the signature is the key's over the data, which is hashed with SHA-1 first. The blob is
// either r and s alone, 20 bytes each, or a `string` "ssh-dss" and a `string` of those 40 bytes,
// whose length is not looked at; what follows them is ignored. False also for r or s of zero or
// not below q.
bool DssVerify(const DssKey* key, const uint8_t* signatureBlob, int signatureLength,
               const uint8_t* data, int dataLength);

// ---------------------------------------------------------------- Diffie-Hellman

// The key agreement "diffie-hellman-group1-sha1" of SSH-2 (RFC 4253, 8.1): Diffie-Hellman over the
// Oakley Group 2 (RFC 2409, 6.2), a 1,024-bit prime with generator 2.

inline constexpr int kDhExponentBits = 256;

// Starts as all null; the context owns every value in it.
struct DhContext {
    Bignum p;
    Bignum g;
    Bignum q;      // (p - 1)/2
    Bignum bound;  // as many one bits as q has bits; an exponent has at most so many
    Bignum x;      // the private exponent
    Bignum e;      // the public value, g^x mod p
};

extern const uint8_t kDhPrime[128];  // big-endian

// Loads the group; an earlier one is released first.
void DhSetup(DhContext* context);
// Chooses a new exponent, 1 < x < q, of at most `bits` random bits (0, or more than q has: as many
// as q; never 1, which no such exponent has) and returns e, which stays the context's. Values of an
// earlier exchange are released.
ConstBignum DhGenerate(DhContext* context, int bits);
// f^x mod p, owned by the caller; null unless 0 < f < p (RFC 4253, 8) and an exponent is there.
Bignum DhSharedSecret(const DhContext* context, ConstBignum f);
// Releases the group. x and e stay until the session ends.
void DhRelease(DhContext* context);
// Releases everything.
void DhForget(DhContext* context);

#endif

// SPDX-License-Identifier: MIT
// The public-key operations: RSA for SSH-1, and the host keys and the key agreement of SSH-2.
#ifndef QUILL_CRYPTO_PUBLIC_KEY_H
#define QUILL_CRYPTO_PUBLIC_KEY_H

#include <cstdint>

#include "crypto/bignum.h"

// ---------------------------------------------------------------- RSA

// RSA encryption of SSH-1, with the padding of PKCS #1 version 1.5, block type 2 (RFC 2313, 8.1).

// Keys beyond these limits are refused, because an encryption would take too long. A long modulus
// is accepted only with a short exponent.
inline constexpr int kRsaMaxModulusBits = 16384;
inline constexpr int kRsaLongModulusBits = 3072;  // a modulus of more bits is long
inline constexpr int kRsaMaxExponentBits = 3072;
inline constexpr int kRsaMaxShortExponentBits = 64;

struct RsaKey {
    uint32_t bits;  // as the server states it; not used
    int bytes;      // the modulus length, (modulus bits + 7)/8
    Bignum modulus;
    Bignum exponent;
};

// Reads an SSH-1 public key from at most `length` bytes: uint32 bits, then exponent and modulus in
// the SSH-1 form of bignum.h. Returns how many bytes it read, and sets *end (may be null) to the
// position after them. Returns 0 and sets the key to zero if the bytes do not hold a whole key, or
// if a number is zero or beyond the limits above. The caller releases the numbers with
// RsaReleaseKey.
int RsaParseKey(const uint8_t* bytes, int length, RsaKey* key, const uint8_t** end);
void RsaReleaseKey(RsaKey* key);

// Encrypts the first `length` bytes of the buffer and writes the result, key->bytes bytes, to its
// start. Returns false and does not change the buffer if there is no room for the padding's three
// fixed bytes. Returns false too if there is no memory; the buffer then has the padded text.
bool RsaEncrypt(uint8_t* buffer, int length, const RsaKey* key);

// ---------------------------------------------------------------- ssh-dss

// The host key algorithm "ssh-dss" of SSH-2 (RFC 4253, 6.6): reading public keys and checking DSA
// signatures (FIPS 186-2) with SHA-1. All input comes from the peer, so it may be wrong in any way.

// With a longer prime a check would take too long. The order q is limited to 160 bits because r and
// s have 20 bytes each. g and y may have any size: they are used modulo p.
inline constexpr int kDssMaxPrimeBits = 8192;
inline constexpr int kDssMaxOrderBits = 160;

struct DssKey {
    Bignum p;
    Bignum q;
    Bignum g;
    Bignum y;
};

// Reads the `string` "ssh-dss" (a longer name that starts with it is accepted) and the mpints p, q,
// g, y, which are taken as unsigned. Bytes after them are ignored. Returns null for another name,
// for lengths that exceed the blob, and if p or q is zero or beyond the limits above. The caller
// releases the key with DssFreeKey.
DssKey* DssParseKey(const uint8_t* blob, int length);
void DssFreeKey(DssKey* key);  // null is allowed

// Returns true if the signature of the data, which is hashed with SHA-1 first, was made with this
// key. The blob is either r and s alone, 20 bytes each, or a `string` "ssh-dss" and a `string` of
// these 40 bytes. The length of that second string is not checked, and bytes after the 40 are
// ignored. Returns false if r or s is zero or not less than q.
bool DssVerify(const DssKey* key, const uint8_t* signatureBlob, int signatureLength,
               const uint8_t* data, int dataLength);

// ---------------------------------------------------------------- Diffie-Hellman

// The key agreement "diffie-hellman-group1-sha1" of SSH-2 (RFC 4253, 8.1): Diffie-Hellman over the
// Oakley Group 2 (RFC 2409, 6.2), a 1,024-bit prime with generator 2.

inline constexpr int kDhExponentBits = 256;

// All values are null at first. The context owns them.
struct DhContext {
    Bignum p;
    Bignum g;
    Bignum q;      // (p - 1)/2
    Bignum bound;  // all one bits, as many as q has bits
    Bignum x;      // the private exponent
    Bignum e;      // the public value, g^x mod p
};

extern const uint8_t kDhPrime[128];  // big-endian

// Loads the group's values. Earlier ones are released first.
void DhSetup(DhContext* context);
// Chooses a new random exponent x, 1 < x < q, of at most `bits` bits, and returns e, which the
// context owns. If `bits` is 0 or more than q has, x has at most as many bits as q. `bits` must not
// be 1, since no such exponent exists. Earlier values of x and e are released. Returns null if
// there is no memory, or was none for the group.
ConstBignum DhGenerate(DhContext* context, int bits);
// Returns f^x mod p, which the caller owns. Returns null unless 0 < f < p (RFC 4253, 8) and there
// are a group and an exponent.
Bignum DhSharedSecret(const DhContext* context, ConstBignum f);
// Releases the group's values. x and e are kept until DhForget.
void DhRelease(DhContext* context);
// Releases all values.
void DhForget(DhContext* context);

#endif

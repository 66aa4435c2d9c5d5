// The key agreement "diffie-hellman-group1-sha1" of SSH-2 (RFC 4253, 8.1): Diffie-Hellman over the
// Oakley Group 2 (RFC 2409, 6.2), a 1,024-bit prime with generator 2.
#ifndef QUILL_CRYPTO_DIFFIE_HELLMAN_H
#define QUILL_CRYPTO_DIFFIE_HELLMAN_H

#include <cstdint>

#include "crypto/bignum.h"

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

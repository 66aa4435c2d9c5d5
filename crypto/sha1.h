// SHA-1 (FIPS 180-2).
#ifndef QUILL_CRYPTO_SHA1_H
#define QUILL_CRYPTO_SHA1_H

#include <cstdint>

#include "crypto/bignum.h"

inline constexpr int kSha1Size = 20;  // bytes of a digest

// A plain copy of a context is a second hash of the same input so far.
struct Sha1Context {
    uint32_t state[5];
    uint8_t block[64];   // pending input
    uint32_t blockUsed;  // bytes in block, 0..63
    uint32_t bytesHigh;  // bytes of input so far, as one 64-bit number
    uint32_t bytesLow;
};

void Sha1Init(Sha1Context* context);
// Any number of calls with pieces of any length give the digest of the pieces in a row.
void Sha1Update(Sha1Context* context, const uint8_t* bytes, int length);
// Writes the digest and wipes the context.
void Sha1Final(Sha1Context* context, uint8_t digest[kSha1Size]);
// All three in one.
void Sha1(const uint8_t* bytes, int length, uint8_t digest[kSha1Size]);

// Feeds an SSH `string` (RFC 4251, 5): the length as four bytes, big-endian, then the bytes.
void Sha1UpdateString(Sha1Context* context, const uint8_t* bytes, int length);
// Feeds an SSH `mpint` (RFC 4251, 5).
void Sha1UpdateMpint(Sha1Context* context, ConstBignum integer);

#endif

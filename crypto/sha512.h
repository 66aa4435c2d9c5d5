// SHA-512 (FIPS 180-2). It belongs to the making of signatures, and the program only checks them:
// so far the tests and benchmarks are its callers, and a program that does not call it is linked
// without it.
#ifndef QUILL_CRYPTO_SHA512_H
#define QUILL_CRYPTO_SHA512_H

#include <cstdint>

inline constexpr int kSha512Size = 64;  // bytes of a digest

// A plain copy of a context is a second hash of the same input so far.
struct Sha512Context {
    uint64_t state[8];
    uint64_t bytesHigh;  // bytes of input so far, as one 128-bit number
    uint64_t bytesLow;
    uint8_t block[128];  // pending input: bytesLow mod 128 bytes of it
};

void Sha512Init(Sha512Context* context);
// Any number of calls with pieces of any length give the digest of the pieces in a row.
void Sha512Update(Sha512Context* context, const uint8_t* bytes, int length);
// Writes the digest and wipes the context.
void Sha512Final(Sha512Context* context, uint8_t digest[kSha512Size]);
// All three in one.
void Sha512(const uint8_t* bytes, int length, uint8_t digest[kSha512Size]);

#endif

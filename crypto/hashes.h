// SPDX-License-Identifier: MIT
// The hashes: MD5, SHA-1 and SHA-512, each as a context that takes pieces of any length.
#ifndef QUILL_CRYPTO_HASHES_H
#define QUILL_CRYPTO_HASHES_H

#include <cstdint>

#include "crypto/bignum.h"

// ---------------------------------------------------------------- MD5 (RFC 1321)

inline constexpr int kMd5Size = 16;  // bytes of a digest

struct Md5Context {
    uint32_t state[4];
    uint64_t bitCount;   // bits of input so far, modulo 2^64
    uint8_t buffer[64];  // pending input: (bitCount / 8) mod 64 bytes of it
};

void Md5Init(Md5Context* context);
// Any number of calls with pieces of any length give the digest of the pieces in a row.
void Md5Update(Md5Context* context, const uint8_t* bytes, int length);
// Writes the digest and wipes the context.
void Md5Final(Md5Context* context, uint8_t digest[kMd5Size]);

// ---------------------------------------------------------------- SHA-1 (FIPS 180-2)

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

// The compression function of SHA-1, in every form there is, for the tests and benchmarks that
// compare the forms.

// Takes `count` blocks of 64 bytes into the state.
typedef void (*Sha1Compressor)(uint32_t state[5], const uint8_t* blocks, int count);

void Sha1CompressPortable(uint32_t state[5], const uint8_t* blocks, int count);

// The form for processors with SHA instructions; null where this processor has none.
Sha1Compressor Sha1CompressWithInstructions();

// The form in use: the fastest of them, unless a test has chosen another.
extern Sha1Compressor sha1_compressor;

// ---------------------------------------------------------------- SHA-512 (FIPS 180-2)

// It belongs to the making of signatures, and the program only checks them: so far the tests and
// benchmarks are its callers, and a program that does not call it is linked without it.

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

// The compression function of SHA-512, in every form there is, for the tests and benchmarks that
// compare the forms.

// Takes `count` blocks of 128 bytes into the state.
typedef void (*Sha512Compressor)(uint64_t state[8], const uint8_t* blocks, int count);

void Sha512CompressPortable(uint64_t state[8], const uint8_t* blocks, int count);

// The form for processors with wide vectors and three-operand rotates (x86: AVX2 and BMI2); null
// where this processor has them not.
Sha512Compressor Sha512CompressWide();

// The form in use: the fastest of them, unless a test has chosen another.
extern Sha512Compressor sha512_compressor;

extern const uint64_t kSha512Constants[80];

#endif

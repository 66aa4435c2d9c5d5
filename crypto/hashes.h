// SPDX-License-Identifier: MIT
// The hash functions MD5, SHA-1 and SHA-512. Each has a context that takes the input in pieces of
// any length.
#ifndef QUILL_CRYPTO_HASHES_H
#define QUILL_CRYPTO_HASHES_H

#include <cstdint>

#include "crypto/bignum.h"

// ---------------------------------------------------------------- MD5 (RFC 1321)

inline constexpr int kMd5Size = 16;  // bytes of a digest

struct Md5Context {
    uint32_t state[4];
    uint64_t bitCount;   // bits of input so far, modulo 2^64
    uint8_t buffer[64];  // pending input: (bitCount / 8) mod 64 bytes
};

void Md5Init(Md5Context* context);
// Adds a piece of any length. The digest is that of all pieces joined together.
void Md5Update(Md5Context* context, const uint8_t* bytes, int length);
// Writes the digest and wipes the context.
void Md5Final(Md5Context* context, uint8_t digest[kMd5Size]);

// ---------------------------------------------------------------- SHA-1 (FIPS 180-2)

inline constexpr int kSha1Size = 20;  // bytes of a digest

// A plain copy of a context continues independently from the same input.
struct Sha1Context {
    uint32_t state[5];
    uint8_t block[64];   // pending input
    uint32_t blockUsed;  // bytes in block, 0..63
    uint32_t bytesHigh;  // bytes of input so far, as one 64-bit number
    uint32_t bytesLow;
};

void Sha1Init(Sha1Context* context);
// Adds a piece of any length. The digest is that of all pieces joined together.
void Sha1Update(Sha1Context* context, const uint8_t* bytes, int length);
// Writes the digest and wipes the context.
void Sha1Final(Sha1Context* context, uint8_t digest[kSha1Size]);
// Computes the digest of a single piece.
void Sha1(const uint8_t* bytes, int length, uint8_t digest[kSha1Size]);

// Adds an SSH `string` (RFC 4251, 5): the length as four bytes, big-endian, then the bytes.
void Sha1UpdateString(Sha1Context* context, const uint8_t* bytes, int length);
// Adds an SSH `mpint` (RFC 4251, 5).
void Sha1UpdateMpint(Sha1Context* context, ConstBignum integer);

// All implementations of SHA-1's compression function, for the tests and benchmarks that compare
// them.

// Updates the state with `count` blocks of 64 bytes.
using Sha1Compressor = void (*)(uint32_t state[5], const uint8_t* blocks, int count);

void Sha1CompressPortable(uint32_t state[5], const uint8_t* blocks, int count);

// Returns the implementation for processors with SHA instructions, or null if this processor has no
// such instructions.
Sha1Compressor Sha1CompressWithInstructions();

// The implementation in use: the fastest one for this processor, unless a test has chosen another.
extern Sha1Compressor sha1_compressor;

// ---------------------------------------------------------------- SHA-512 (FIPS 180-2)

// SHA-512 is meant for making signatures, but the program only checks them. So far only tests and
// benchmarks call it. A program that does not call it is linked without it.

inline constexpr int kSha512Size = 64;  // bytes of a digest

// A plain copy of a context continues independently from the same input.
struct Sha512Context {
    uint64_t state[8];
    uint64_t bytesHigh;  // bytes of input so far, as one 128-bit number
    uint64_t bytesLow;
    uint8_t block[128];  // pending input: bytesLow mod 128 bytes
};

void Sha512Init(Sha512Context* context);
// Adds a piece of any length. The digest is that of all pieces joined together.
void Sha512Update(Sha512Context* context, const uint8_t* bytes, int length);
// Writes the digest and wipes the context.
void Sha512Final(Sha512Context* context, uint8_t digest[kSha512Size]);
// Computes the digest of a single piece.
void Sha512(const uint8_t* bytes, int length, uint8_t digest[kSha512Size]);

// All implementations of SHA-512's compression function, for the tests and benchmarks that compare
// them.

// Updates the state with `count` blocks of 128 bytes.
using Sha512Compressor = void (*)(uint64_t state[8], const uint8_t* blocks, int count);

void Sha512CompressPortable(uint64_t state[8], const uint8_t* blocks, int count);

// Returns the implementation for processors with wide vectors and three-operand rotates (x86: AVX2
// and BMI2), or null if this processor does not have both.
Sha512Compressor Sha512CompressWide();

// The implementation in use: the fastest one for this processor, unless a test has chosen another.
extern Sha512Compressor sha512_compressor;

extern const uint64_t kSha512Constants[80];

#endif

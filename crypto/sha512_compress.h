// The compression function of SHA-512, in every form there is: for crypto/sha512.cpp, and for the
// tests and benchmarks that compare the forms.
#ifndef QUILL_CRYPTO_SHA512_COMPRESS_H
#define QUILL_CRYPTO_SHA512_COMPRESS_H

#include <cstdint>

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

// The compression function of SHA-1, in every form there is: for crypto/sha1.cpp, and for the
// tests and benchmarks that compare the forms.
#ifndef QUILL_CRYPTO_SHA1_COMPRESS_H
#define QUILL_CRYPTO_SHA1_COMPRESS_H

#include <cstdint>

// Takes `count` blocks of 64 bytes into the state.
typedef void (*Sha1Compressor)(uint32_t state[5], const uint8_t* blocks, int count);

void Sha1CompressPortable(uint32_t state[5], const uint8_t* blocks, int count);

// The form for processors with SHA instructions; null where this processor has none.
Sha1Compressor Sha1CompressWithInstructions();

// The form in use: the fastest of them, unless a test has chosen another.
extern Sha1Compressor sha1_compressor;

#endif

// MD5 (RFC 1321).
#ifndef QUILL_CRYPTO_MD5_H
#define QUILL_CRYPTO_MD5_H

#include <cstdint>

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

#endif

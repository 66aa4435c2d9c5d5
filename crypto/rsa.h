// RSA encryption of SSH-1, with the padding of PKCS #1 version 1.5, block type 2 (RFC 2313, 8.1).
#ifndef QUILL_CRYPTO_RSA_H
#define QUILL_CRYPTO_RSA_H

#include <cstdint>

#include "crypto/bignum.h"

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

#endif

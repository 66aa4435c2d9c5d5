// The host key algorithm "ssh-dss" of SSH-2 (RFC 4253, 6.6): reading of public keys and checking
// of DSA signatures (FIPS 186-2) over SHA-1. Everything here comes from the peer and may be wrong
// in any way.
#ifndef QUILL_CRYPTO_DSS_H
#define QUILL_CRYPTO_DSS_H

#include <cstdint>

#include "crypto/bignum.h"

// A longer prime would make a check too long. The order has no more bits than r and s, of 20 bytes
// each, can reach. g and y may be of any size: they count modulo p.
inline constexpr int kDssMaxPrimeBits = 8192;
inline constexpr int kDssMaxOrderBits = 160;

struct DssKey {
    Bignum p;
    Bignum q;
    Bignum g;
    Bignum y;
};

// Reads `string` "ssh-dss" (a longer name that starts so will do) and the mpints p, q, g, y, which
// are taken as unsigned. What follows them is ignored. Null for another name, for lengths that
// lead outside the blob, and for p or q of zero or beyond the limits above. The caller releases
// the key with DssFreeKey.
DssKey* DssParseKey(const uint8_t* blob, int length);
void DssFreeKey(DssKey* key);  // a null key too

// Whether the signature is the key's over the data, which is hashed with SHA-1 first. The blob is
// either r and s alone, 20 bytes each, or a `string` "ssh-dss" and a `string` of those 40 bytes,
// whose length is not looked at; what follows them is ignored. False also for r or s of zero or
// not below q.
bool DssVerify(const DssKey* key, const uint8_t* signatureBlob, int signatureLength,
               const uint8_t* data, int dataLength);

#endif

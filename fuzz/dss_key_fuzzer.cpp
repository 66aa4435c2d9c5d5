// SPDX-License-Identifier: MIT
// DssParseKey on any bytes. A parsed key is used once, unless its numbers are so large that the
// check would take too long.
#include <cstddef>
#include <cstdint>

#include "crypto/public_key.h"

static const int kMaxBits = 256;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static const uint8_t kData[20] = {1, 2, 3};
    static const uint8_t kSignature[40] = {
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1,  // r
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3,  // s
    };
    DssKey* key = DssParseKey(bytes, static_cast<int>(size));
    bool used = key != nullptr && BignumBitLength(key->p) <= kMaxBits;
    if (used) DssVerify(key, kSignature, sizeof(kSignature), kData, sizeof(kData));
    DssFreeKey(key);
    return 0;
}

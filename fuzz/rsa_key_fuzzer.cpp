// SPDX-License-Identifier: MIT
// RsaParseKey on any bytes. A parsed key encrypts two messages, unless its numbers are so large
// that this would take too long.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "crypto/public_key.h"

static const int kMaxBytes = 64;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    RsaKey key;
    const uint8_t* end = nullptr;
    int used = RsaParseKey(bytes, static_cast<int>(size), &key, &end);
    if (end != bytes + used) __builtin_trap();
    if (used > 0 && key.bytes <= kMaxBytes && BignumBitLength(key.exponent) <= 64) {
        std::vector<uint8_t> buffer(static_cast<size_t>(key.bytes) + 32);
        RsaEncrypt(buffer.data(), 32, &key);
        RsaEncrypt(buffer.data(), 1, &key);
    }
    RsaReleaseKey(&key);
    return 0;
}

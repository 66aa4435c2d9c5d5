// RsaParseKey on any bytes, at any place of a packet; what parses encrypts a message once.
#include <cstdint>
#include <vector>

#include "crypto/rsa.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    RsaKey key;
    const uint8_t* end = nullptr;
    int used = RsaParseKey(bytes, static_cast<int>(size), &key, &end);
    if (end != bytes + used) __builtin_trap();
    if (used > 0) {
        std::vector<uint8_t> buffer(static_cast<size_t>(key.bytes) + 32);
        RsaEncrypt(buffer.data(), 32, &key);
        RsaEncrypt(buffer.data(), 1, &key);
    }
    RsaReleaseKey(&key);
    return 0;
}

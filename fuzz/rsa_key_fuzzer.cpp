// SPDX-License-Identifier: MIT
// RsaParseKey on any bytes. A parsed key encrypts two messages, unless its numbers are so large
// that this would take too long. What is encrypted has the padding around the message.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/judged_powers.h"

static const int kMaxBytes = 64;

static void Encrypt(const RsaKey& key, const std::string& text) {
    std::vector<uint8_t> buffer(static_cast<size_t>(key.bytes) + text.size());
    std::copy(text.begin(), text.end(), buffer.begin());
    const auto size = static_cast<size_t>(key.bytes);
    const bool fits = text.size() + 3 <= size;
    Require(RsaEncrypt(buffer.data(), static_cast<int>(text.size()), &key) == fits, "it fits");
    if (!fits) return;
    const std::string block = LastBase(key.bytes), head("\0\2", 2);
    const std::string padding = block.substr(2, size - text.size() - 3);
    Require(block.starts_with(head) && block.ends_with(std::string(1, '\0') + text) &&
                padding.find('\0') == std::string::npos,
            "the padding around the text");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    RsaKey key;
    const uint8_t* end = nullptr;
    int used = RsaParseKey(bytes, static_cast<int>(size), &key, &end);
    Require(end == bytes + used, "the end of the key");
    if (used > 0 && key.bytes <= kMaxBytes && BignumBitLength(key.exponent) <= 64) {
        Encrypt(key, std::string(32, 'k'));
        Encrypt(key, "k");
    }
    RsaReleaseKey(&key);
    return 0;
}

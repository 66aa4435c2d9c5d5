// SPDX-License-Identifier: MIT
// DssParseKey on any bytes, beside a second reading of the blob. A parsed key is used once, unless
// its numbers are so large that the check would take too long.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "crypto/hashes.h"
#include "fuzz/judged_powers.h"

static const int kMaxBits = 256;

// Takes a length of four bytes and so many bytes.
static std::optional<std::string> TakeString(std::string* left) {
    if (left->size() < 4) return std::nullopt;
    size_t length = 0;
    for (size_t i = 0; i < 4; ++i) length = length << 8 | static_cast<uint8_t>((*left)[i]);
    if (length > left->size() - 4) return std::nullopt;
    std::string taken = left->substr(4, length);
    left->erase(0, 4 + length);
    return taken;
}

static std::string WithoutZeros(const std::string& bytes) {
    const size_t first = bytes.find_first_not_of('\0');
    return first == std::string::npos ? "" : bytes.substr(first);
}

static int BitsOf(const std::string& number) {
    int bits = static_cast<int>(number.size()) * 8;
    for (int top = 128; !number.empty() && !(number[0] & top); top /= 2) --bits;
    return bits;
}

// p, q, g and y without leading zeros; nothing if the blob holds no key.
static std::vector<std::string> NumbersOf(std::string blob) {
    const std::optional<std::string> name = TakeString(&blob);
    if (!name || !name->starts_with("ssh-dss")) return {};
    std::vector<std::string> numbers;
    for (int i = 0; i < 4; ++i) {
        const std::optional<std::string> number = TakeString(&blob);
        if (!number) return {};
        numbers.push_back(WithoutZeros(*number));
    }
    const int p = BitsOf(numbers[0]), q = BitsOf(numbers[1]);
    const bool good = p > 0 && p <= kDssMaxPrimeBits && q > 0 && q <= kDssMaxOrderBits;
    return good ? numbers : std::vector<std::string>();
}

static std::string BytesOf(ConstBignum number) {
    std::string bytes;
    for (int i = (BignumBitLength(number) + 7) / 8; i-- > 0;)
        bytes += static_cast<char>(BignumByte(number, i));
    return bytes;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static const uint8_t kData[20] = {1, 2, 3};
    static const uint8_t kSignature[40] = {
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1,  // r
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3,  // s
    };
    const std::vector<std::string> numbers =
        NumbersOf(std::string(reinterpret_cast<const char*>(bytes), size));
    DssKey* key = DssParseKey(bytes, static_cast<int>(size));
    Require((key != nullptr) == !numbers.empty(), "a key is taken or refused");
    if (!key) return 0;
    Require(BytesOf(key->p) == numbers[0] && BytesOf(key->q) == numbers[1] &&
                BytesOf(key->g) == numbers[2] && BytesOf(key->y) == numbers[3],
            "the numbers are the blob's");
    if (BignumBitLength(key->p) <= kMaxBits) {
        uint8_t digest[kSha1Size];
        Sha1(kData, sizeof(kData), digest);
        Require(DssVerify(key, kSignature, sizeof(kSignature), kData, sizeof(kData)) ==
                    IsSignature(*key, kSignature, digest),
                "the verdict");
    }
    DssFreeKey(key);
    return 0;
}

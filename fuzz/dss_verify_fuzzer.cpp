// SPDX-License-Identifier: MIT
// DssVerify on any signature. The first byte chooses a valid key (of 256 bits, for speed) or one of
// small odd numbers, with which many more signatures pass the range checks. The rest is the blob.
// GMP judges the same signature.
#include <cstddef>
#include <cstdint>
#include <string>

#include "crypto/hashes.h"
#include "fuzz/judged_powers.h"

static DssKey* KeyOf(const char* p, const char* q, const char* g, const char* y);

// The 40 bytes of r and s in either form of a signature, or nothing.
static std::string SignatureOf(const std::string& blob) {
    static const std::string kName("\0\0\0\7ssh-dss", 11);
    if (blob.size() == 40) return blob;
    return blob.starts_with(kName) && blob.size() >= 55 ? blob.substr(15, 40) : std::string();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static DssKey* const kKeys[] = {
        KeyOf("8283313bf77efc347bea7c1eba6b079603bcc42514feae97aa545a687b494df3",
              "8bf7a4bdc458272f498dbfa8af06bcf7e91457db",
              "30722d02f7b11621af0df5399491e1b5d0786d55336d9a4c039117865d385f8f",
              "827179206c9902a45a62e1f516c887dc65e45697e2db475d054e262e43480616"),
        KeyOf("2b", "0f", "05", "07"),
        KeyOf("10001", "fffe", "03", "1234"),
    };
    static const uint8_t kData[20] = {1, 2, 3};
    if (size == 0) return 0;
    const DssKey& key = *kKeys[bytes[0] % 3];
    uint8_t digest[kSha1Size];
    Sha1(kData, sizeof(kData), digest);
    const std::string signature =
        SignatureOf(std::string(reinterpret_cast<const char*>(bytes) + 1, size - 1));
    const bool good = !signature.empty() &&
                      IsSignature(key, reinterpret_cast<const uint8_t*>(signature.data()), digest);
    Require(DssVerify(&key, bytes + 1, static_cast<int>(size - 1), kData, sizeof(kData)) == good,
            "the verdict");
    return 0;
}

static Bignum FromHex(const char* digits) {
    Bignum a = BignumNew(16);
    int count = 0;
    while (digits[count] != 0) count++;
    for (int i = 0; i < count; i++) {
        int digit = digits[count - 1 - i];
        digit = digit <= '9' ? digit - '0' : digit - 'a' + 10;
        for (int bit = 0; bit < 4; bit++) BignumSetBit(a, 4 * i + bit, digit >> bit & 1);
    }
    return a;
}

static DssKey* KeyOf(const char* p, const char* q, const char* g, const char* y) {
    return new DssKey{FromHex(p), FromHex(q), FromHex(g), FromHex(y)};
}

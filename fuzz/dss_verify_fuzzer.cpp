// DssVerify on any signature: the first byte chooses a sound key or one of small odd numbers, which
// takes many more signatures past the range checks; the rest is the blob.
#include <cstdint>

#include "crypto/dss.h"

static DssKey* KeyOf(const char* p, const char* q, const char* g, const char* y);

// FIPS 186-2 vectors of NIST CAVP, SigVer, [mod = 1024], the first.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static DssKey* const kKeys[] = {
        KeyOf("aa9a0d6116807cf74e0ee63cdc6f38110f873affc6db2d9ad854ae27a384230dd904f8a6ceb11bb2"
              "983973c0d819ccf02df04d82cc7926d61be78f5ad92a05b9308aca5a9ecd7461fc1b51da3e9d849f"
              "ce5075d9c027f1afeb0ab7916df4a7b72b3bb00461f43542313c8b82354f88c542a48bfa73bcc1db"
              "4ffed329b2cc5cff",
              "f780e706db7e465dd0eeec3f1b929240157f476f",
              "3b80103191e0b2d6b949e1dbfb621c5c8fb45bb9f9db5a52372728045015b56975b56b3f8b976596"
              "00194442d075a8c5c8c1588ee01d848e7b42905edda807209e1395a130cf7fb2630c2bfcf46cc2f8"
              "cdc2e0a11eed9189b35d92b2619daff95ac18b0c0e2fd1c8e449e225f812b29815efd1d05d7bc1bf"
              "6efaa1766ec2a322",
              "6e021271ddfbd351c2619df1e24afc199b1da21d65f6a4f97e26dcf138375ca4f4749b5a5ffacc26"
              "10f1a308d604eb3a14390104b7d43b056a40d9233d13fe3c79abf6ecaa17cef216d99cec3498e6ec"
              "8cff214ecc5e850b90152f1580687b5e8714e476e1ee56802486d3eca8ef68c62e4764a56da3166d"
              "2d667bbb22776755"),
        KeyOf("2b", "0f", "05", "07"),
        KeyOf("10001", "fffe", "03", "1234"),
    };
    static const uint8_t kData[20] = {1, 2, 3};
    if (size == 0) return 0;
    DssVerify(kKeys[bytes[0] % 3], bytes + 1, static_cast<int>(size - 1), kData, sizeof(kData));
    return 0;
}

static Bignum FromHex(const char* digits) {
    Bignum a = BignumNew(64);
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

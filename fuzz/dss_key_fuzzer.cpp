// DssParseKey on any bytes; what parses is used once, so that a key which makes the check run long
// or read astray is seen too.
#include <cstdint>

#include "crypto/dss.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static const uint8_t kData[20] = {1, 2, 3};
    static const uint8_t kSignature[40] = {
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1,  // r
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3,  // s
    };
    DssKey* key = DssParseKey(bytes, static_cast<int>(size));
    if (key != nullptr) DssVerify(key, kSignature, sizeof(kSignature), kData, sizeof(kData));
    DssFreeKey(key);
    return 0;
}

// CRC-32 as SSH-1 packets carry it: reflected polynomial 0xEDB88320, initial value 0 and no final
// inversion (the common CRC-32 has both, so its results differ).
#ifndef QUILL_CRYPTO_CRC32_H
#define QUILL_CRYPTO_CRC32_H

#include <cstdint>

// The CRC of `length` bytes; 0 for length 0.
uint32_t Crc32(const uint8_t* bytes, int length);

#endif

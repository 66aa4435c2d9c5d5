// CRC-32, one byte at a time through a table.
#include "crypto/crc32.h"

struct CrcTable {
    uint32_t entry[256];
};

static constexpr CrcTable MakeCrcTable() {
    CrcTable table = {};
    for (uint32_t n = 0; n < 256; n++) {
        uint32_t value = n;
        for (int step = 0; step < 8; step++) {
            value = (value & 1) ? (value >> 1) ^ 0xEDB88320u : value >> 1;
        }
        table.entry[n] = value;
    }
    return table;
}

static constexpr CrcTable kCrcTable = MakeCrcTable();
static_assert(kCrcTable.entry[1] == 0x77073096u && kCrcTable.entry[255] == 0x2D02EF8Du);

uint32_t Crc32(const uint8_t* bytes, int length) {
    uint32_t crc = 0;
    for (int i = 0; i < length; i++) {
        crc = kCrcTable.entry[(crc ^ bytes[i]) & 0xFF] ^ (crc >> 8);
    }
    return crc;
}

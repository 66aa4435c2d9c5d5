// The fields of packets.
#include "protocol/ssh/packet_writer.h"

#include "text/bytes.h"

BYTE* PutByte(BYTE* at, BYTE value) {
    *at = value;
    return at + 1;
}

BYTE* PutUint32(BYTE* at, uint32_t value) {
    StoreBig(at, value);
    return at + 4;
}

BYTE* PutBytes(BYTE* at, const void* bytes, int count) {
    if (count > 0) std::memcpy(at, bytes, static_cast<size_t>(count));
    return at + count;
}

BYTE* PutBlock(BYTE* at, const void* bytes, int count) {
    return PutBytes(PutUint32(at, static_cast<uint32_t>(count)), bytes, count);
}

BYTE* PutString(BYTE* at, const char* text) {
    return PutBlock(at, text, static_cast<int>(std::strlen(text)));
}

int StringSize(const char* text) { return 4 + static_cast<int>(std::strlen(text)); }

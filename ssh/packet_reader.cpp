// The bounds-checked reader.
#include "ssh/packet_reader.h"

#include "crypto/byte_order.h"

PacketReader ReaderOf(const uint8_t* bytes, int count) { return {bytes, count > 0 ? count : 0}; }

bool TakeBytes(PacketReader* reader, uint32_t count, const uint8_t** bytes) {
    *bytes = nullptr;
    if (count > static_cast<uint32_t>(reader->left)) return false;
    *bytes = reader->next;
    reader->next += count;
    reader->left -= static_cast<int>(count);
    return true;
}

bool TakeByte(PacketReader* reader, uint8_t* value) {
    const uint8_t* bytes;
    *value = 0;
    if (!TakeBytes(reader, 1, &bytes)) return false;
    *value = *bytes;
    return true;
}

bool TakeUint32(PacketReader* reader, uint32_t* value) {
    const uint8_t* bytes;
    *value = 0;
    if (!TakeBytes(reader, 4, &bytes)) return false;
    *value = LoadBig<uint32_t>(bytes);
    return true;
}

bool TakeString(PacketReader* reader, const uint8_t** bytes, int* length) {
    PacketReader ahead = *reader;
    uint32_t count;
    *bytes = nullptr;
    *length = 0;
    if (!TakeUint32(&ahead, &count) || !TakeBytes(&ahead, count, bytes)) return false;
    *length = static_cast<int>(count);
    *reader = ahead;
    return true;
}

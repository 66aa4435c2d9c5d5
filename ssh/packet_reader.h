// The one reader of bytes that an SSH server sent. It never leads outside the bytes it was set on:
// what they do not hold whole is not taken, and the reader stays where it is.
#ifndef QUILL_SSH_PACKET_READER_H
#define QUILL_SSH_PACKET_READER_H

#include <cstdint>

struct PacketReader {
    const uint8_t* next;
    int left;  // bytes from next on
};

// Set on `count` bytes; a negative count is none.
PacketReader ReaderOf(const uint8_t* bytes, int count);

// Each returns false, with a value of 0 or null, when the bytes are not there.
bool TakeByte(PacketReader* reader, uint8_t* value);
bool TakeUint32(PacketReader* reader, uint32_t* value);  // big-endian
bool TakeBytes(PacketReader* reader, uint32_t count, const uint8_t** bytes);
// A uint32 length and so many bytes, of which *bytes is the first (RFC 4251, 5; SSH-1 has the
// same).
bool TakeString(PacketReader* reader, const uint8_t** bytes, int* length);

#endif

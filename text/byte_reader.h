// The one reader of bytes that an SSH server sent, in packets and in keys. It never leads outside
// the bytes it was set on: what they do not hold whole is not taken, and the reader stays where it
// is.
#ifndef QUILL_TEXT_BYTE_READER_H
#define QUILL_TEXT_BYTE_READER_H

#include <cstdint>

struct ByteReader {
    const uint8_t* next;
    int left;  // bytes from next on
};

// Set on `count` bytes; a negative count is none.
ByteReader ReaderOf(const uint8_t* bytes, int count);

// Each returns false, with a value of 0 or null, when the bytes are not there.
bool TakeByte(ByteReader* reader, uint8_t* value);
bool TakeUint32(ByteReader* reader, uint32_t* value);  // big-endian
bool TakeBytes(ByteReader* reader, uint32_t count, const uint8_t** bytes);
// A uint32 length and so many bytes, of which *bytes is the first (RFC 4251, 5; SSH-1 has the
// same).
bool TakeString(ByteReader* reader, const uint8_t** bytes, int* length);

#endif

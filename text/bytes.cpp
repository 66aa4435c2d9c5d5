// SPDX-License-Identifier: MIT
// The bounds-checked reader, and the wiping of secrets.
#include "text/bytes.h"

#include <cstdlib>
#include <cstring>

ByteReader ReaderOf(const uint8_t* bytes, int count) { return {bytes, count > 0 ? count : 0}; }

bool TakeBytes(ByteReader* reader, uint32_t count, const uint8_t** bytes) {
    *bytes = nullptr;
    if (count > static_cast<uint32_t>(reader->left)) return false;
    *bytes = reader->next;
    reader->next += count;
    reader->left -= static_cast<int>(count);
    return true;
}

bool TakeByte(ByteReader* reader, uint8_t* value) {
    const uint8_t* bytes;
    *value = 0;
    if (!TakeBytes(reader, 1, &bytes)) return false;
    *value = *bytes;
    return true;
}

bool TakeUint32(ByteReader* reader, uint32_t* value) {
    const uint8_t* bytes;
    *value = 0;
    if (!TakeBytes(reader, 4, &bytes)) return false;
    *value = LoadBig<uint32_t>(bytes);
    return true;
}

bool TakeString(ByteReader* reader, const uint8_t** bytes, int* length) {
    ByteReader ahead = *reader;
    uint32_t count;
    *bytes = nullptr;
    *length = 0;
    if (!TakeUint32(&ahead, &count) || !TakeBytes(&ahead, count, bytes)) return false;
    *length = static_cast<int>(count);
    *reader = ahead;
    return true;
}

// ---------------------------------------------------------------- wiping

// The pointer is volatile: the compiler cannot know what is called and so cannot remove the call.
static void* (*const volatile kSetMemory)(void*, int, size_t) = memset;

void Wipe(void* memory, size_t size) {
    if (size != 0) kSetMemory(memory, 0, size);
}

void WipeAndFree(void* memory, size_t size) {
    if (memory == nullptr) return;
    Wipe(memory, size);
    free(memory);
}

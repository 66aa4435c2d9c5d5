// SPDX-License-Identifier: MIT
// Bytes in memory: words to and from them in either byte order, a reader that stays within its
// bounds, and wiping.
#ifndef QUILL_TEXT_BYTES_H
#define QUILL_TEXT_BYTES_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Words to and from bytes, big-endian and little-endian, at any address.

inline uint16_t SwapBytes(uint16_t word) { return __builtin_bswap16(word); }

inline uint32_t SwapBytes(uint32_t word) { return __builtin_bswap32(word); }

inline uint64_t SwapBytes(uint64_t word) { return __builtin_bswap64(word); }

template <typename Word>
inline Word LoadBig(const uint8_t* bytes) {
    Word word;
    memcpy(&word, bytes, sizeof(word));
    return std::endian::native == std::endian::big ? word : SwapBytes(word);
}

template <typename Word>
inline void StoreBig(uint8_t* bytes, Word word) {
    if (std::endian::native != std::endian::big) word = SwapBytes(word);
    memcpy(bytes, &word, sizeof(word));
}

template <typename Word>
inline Word LoadLittle(const uint8_t* bytes) {
    Word word;
    memcpy(&word, bytes, sizeof(word));
    return std::endian::native == std::endian::little ? word : SwapBytes(word);
}

template <typename Word>
inline void StoreLittle(uint8_t* bytes, Word word) {
    if (std::endian::native != std::endian::little) word = SwapBytes(word);
    memcpy(bytes, &word, sizeof(word));
}

// ---------------------------------------------------------------- the reader

// The one reader of bytes that an SSH server sent, in packets and in keys. It never leads outside
// the bytes it was set on: what they do not hold whole is not taken, and the reader stays where it
// is.

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

// ---------------------------------------------------------------- wiping

// Wiping of memory that held a key, a secret number or anything that would give one away.

// Sets `size` bytes to zero, and does so even when nothing reads them again.
void Wipe(void* memory, size_t size);

// Wipes a block of malloc or calloc and releases it. Null is allowed.
void WipeAndFree(void* memory, size_t size);

#endif

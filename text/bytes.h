// SPDX-License-Identifier: MIT
// Bytes in memory: loading and storing words in either byte order, a reader that stays within its
// bounds, and wiping secrets.
#ifndef QUILL_TEXT_BYTES_H
#define QUILL_TEXT_BYTES_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Loading and storing words, big-endian and little-endian. The address needs no alignment.

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

// Reads the bytes that an SSH server sent, in packets and in keys. It never reads outside its
// bytes: if a field is not completely there, the reader does not move.

struct ByteReader {
    const uint8_t* next;
    int left;  // bytes from `next` on
};

// Returns a reader of `count` bytes. A negative count means 0.
ByteReader ReaderOf(const uint8_t* bytes, int count);

// Each returns false, and sets the value to 0 or null, if the bytes are not there.
bool TakeByte(ByteReader* reader, uint8_t* value);
bool TakeUint32(ByteReader* reader, uint32_t* value);  // big-endian
bool TakeBytes(ByteReader* reader, uint32_t count, const uint8_t** bytes);
// Takes a uint32 length and that many bytes; *bytes is the first of them (RFC 4251, 5; SSH-1 has
// the same).
bool TakeString(ByteReader* reader, const uint8_t** bytes, int* length);

// ---------------------------------------------------------------- wiping

// Wiping memory that held a key, a secret number or anything that would reveal one.

// Sets `size` bytes to zero. The compiler cannot leave this out, even if nothing reads the bytes
// again.
void Wipe(void* memory, size_t size);

// Wipes and frees a block from malloc or calloc. Null is allowed.
void WipeAndFree(void* memory, size_t size);

#endif

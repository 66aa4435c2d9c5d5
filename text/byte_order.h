// Words to and from bytes, big-endian and little-endian, at any address.
#ifndef QUILL_TEXT_BYTE_ORDER_H
#define QUILL_TEXT_BYTE_ORDER_H

#include <bit>
#include <cstdint>
#include <cstring>

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

#endif

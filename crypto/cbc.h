// Cipher block chaining (FIPS 81) over any cipher whose block is two 32-bit words.
//
// Both procedures work on ceil(length / 8) blocks (callers pass whole ones), may have output and
// input the same, and leave the chaining value in `iv`, so that calls in a row are one stream.
#ifndef QUILL_CRYPTO_CBC_H
#define QUILL_CRYPTO_CBC_H

#include <cstdint>

#include "text/bytes.h"

inline constexpr int kCipherBlockSize = 8;  // bytes, for DES and for Blowfish

struct CipherBlock {
    uint32_t left;
    uint32_t right;
};

inline CipherBlock operator^(CipherBlock a, CipherBlock b) {
    return {a.left ^ b.left, a.right ^ b.right};
}

// The byte orders of a block: byte 0 is the highest, or the lowest, byte of `left`.
inline CipherBlock LoadBigBlock(const uint8_t* bytes) {
    return {LoadBig<uint32_t>(bytes), LoadBig<uint32_t>(bytes + 4)};
}

inline void StoreBigBlock(uint8_t* bytes, CipherBlock block) {
    StoreBig<uint32_t>(bytes, block.left);
    StoreBig<uint32_t>(bytes + 4, block.right);
}

inline CipherBlock LoadLittleBlock(const uint8_t* bytes) {
    return {LoadLittle<uint32_t>(bytes), LoadLittle<uint32_t>(bytes + 4)};
}

inline void StoreLittleBlock(uint8_t* bytes, CipherBlock block) {
    StoreLittle<uint32_t>(bytes, block.left);
    StoreLittle<uint32_t>(bytes + 4, block.right);
}

typedef CipherBlock (*LoadBlock)(const uint8_t* bytes);
typedef void (*StoreBlock)(uint8_t* bytes, CipherBlock block);

// A cipher is a procedure that changes an array of blocks in place, whatever its size: each block
// by itself, side by side where there are several.
template <LoadBlock load, StoreBlock store, typename Cipher>
inline void CbcEncrypt(uint8_t* output, const uint8_t* input, int length, uint32_t iv[2],
                       Cipher encrypt) {
    CipherBlock chain[1] = {{iv[0], iv[1]}};
    for (; length > 0; length -= kCipherBlockSize) {
        chain[0] = chain[0] ^ load(input);
        encrypt(chain);
        store(output, chain[0]);
        input += kCipherBlockSize;
        output += kCipherBlockSize;
    }
    iv[0] = chain[0].left;
    iv[1] = chain[0].right;
}

// The next `count` blocks; returns the last of the input, which is the next chaining value.
template <int count, LoadBlock load, StoreBlock store, typename Cipher>
inline CipherBlock CbcDecryptGroup(uint8_t* output, const uint8_t* input, CipherBlock chain,
                                   Cipher decrypt) {
    CipherBlock given[count], blocks[count];
    for (int i = 0; i < count; i++) blocks[i] = given[i] = load(input + i * kCipherBlockSize);
    decrypt(blocks);
    for (int i = 0; i < count; i++) {
        store(output + i * kCipherBlockSize, blocks[i] ^ chain);
        chain = given[i];
    }
    return chain;
}

// An encryption waits for each block before the next one. A decryption does not: it is given
// kCbcGroup blocks at a time, which a processor works on side by side.
inline constexpr int kCbcGroup = 4;

template <LoadBlock load, StoreBlock store, typename Cipher>
inline void CbcDecrypt(uint8_t* output, const uint8_t* input, int length, uint32_t iv[2],
                       Cipher decrypt) {
    static constexpr int kGroupSize = kCbcGroup * kCipherBlockSize;
    CipherBlock chain = {iv[0], iv[1]};
    for (; length > kGroupSize - kCipherBlockSize; length -= kGroupSize) {
        chain = CbcDecryptGroup<kCbcGroup, load, store>(output, input, chain, decrypt);
        input += kGroupSize;
        output += kGroupSize;
    }
    for (; length > 0; length -= kCipherBlockSize) {
        chain = CbcDecryptGroup<1, load, store>(output, input, chain, decrypt);
        input += kCipherBlockSize;
        output += kCipherBlockSize;
    }
    iv[0] = chain.left;
    iv[1] = chain.right;
}

#endif

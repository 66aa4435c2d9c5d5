// SPDX-License-Identifier: MIT
// The block ciphers of SSH: DES, triple DES and Blowfish, on single blocks and in CBC mode.
#ifndef QUILL_CRYPTO_BLOCK_CIPHERS_H
#define QUILL_CRYPTO_BLOCK_CIPHERS_H

#include <cstdint>

#include "text/bytes.h"

// Cipher block chaining (FIPS 81) over any cipher whose block is two 32-bit words.
//
// Both procedures work on ceil(length / 8) blocks; callers pass whole blocks. Output and input may
// be the same buffer. They leave the chaining value in `iv`, so consecutive calls process one
// stream.

inline constexpr int kCipherBlockSize = 8;  // bytes, for DES and for Blowfish

struct CipherBlock {
    uint32_t left;
    uint32_t right;
};

inline CipherBlock operator^(CipherBlock a, CipherBlock b) {
    return {a.left ^ b.left, a.right ^ b.right};
}

// The byte orders of a block: byte 0 is the highest (Big) or the lowest (Little) byte of `left`.
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

using LoadBlock = CipherBlock (*)(const uint8_t* bytes);
using StoreBlock = void (*)(uint8_t* bytes, CipherBlock block);

// A cipher is a procedure that changes an array of blocks in place. It takes an array of any size
// and treats each block independently, so the processor can work on several at once.
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

// Decrypts the next `count` blocks. Returns the last input block, which is the next chaining value.
template <int count, LoadBlock load, StoreBlock store, typename Cipher>
inline CipherBlock CbcDecryptGroup(uint8_t* output, const uint8_t* input, CipherBlock chain,
                                   Cipher decrypt) {
    CipherBlock given[count], blocks[count];
    for (int i = 0; i < count; ++i) blocks[i] = given[i] = load(input + i * kCipherBlockSize);
    decrypt(blocks);
    for (int i = 0; i < count; ++i) {
        store(output + i * kCipherBlockSize, blocks[i] ^ chain);
        chain = given[i];
    }
    return chain;
}

// CBC encryption needs each block's result for the next block. Decryption does not, so it processes
// kCbcGroup blocks at a time, which the processor can overlap.
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

// ---------------------------------------------------------------- DES

// DES (FIPS 46-3) and triple DES, on single blocks and in CBC mode.
//
// A block is two 32-bit words, left and right, big-endian: byte 0 is the top byte of left. Lengths
// and buffers are as for CbcEncrypt; the chaining value is in the context.
//
// The S-boxes are tables. The time for a block depends on which parts of them are in the
// processor's cache, and so slightly on key and text.

// The sixteen round keys, six bits in each byte. `subkeysOdd` is for S-boxes 1, 3, 5 and 7 (1 in
// the top byte), `subkeysEven` for 2, 4, 6 and 8. Each direction has its own chaining value, left
// and right, so one context can serve an encryption stream and a decryption stream.
struct DesContext {
    uint32_t subkeysOdd[16];
    uint32_t subkeysEven[16];
    uint32_t encryptIv[2];
    uint32_t decryptIv[2];
};

// Takes the eight key bytes as two big-endian words and clears both chaining values. It ignores the
// parity bits.
void DesSetKey(uint32_t leftWord, uint32_t rightWord, DesContext* context);
// One block; output[0] is left, output[1] right.
void DesEncryptBlock(uint32_t left, uint32_t right, uint32_t output[2], const DesContext* context);
void DesDecryptBlock(uint32_t left, uint32_t right, uint32_t output[2], const DesContext* context);

// DES in CBC mode, chained through encryptIv and decryptIv.
void DesCbcEncrypt(uint8_t* output, const uint8_t* input, int length, DesContext* context);
void DesCbcDecrypt(uint8_t* output, const uint8_t* input, int length, DesContext* context);

// Triple DES (encrypt K1, decrypt K2, encrypt K3) as one block function inside one CBC chain. This
// is the "3des-cbc" of SSH-2 (RFC 4253, 6.3). The first context holds the chaining value.
void TripleDesCbcEncrypt(uint8_t* output, const uint8_t* input, int length, DesContext contexts[3]);
void TripleDesCbcDecrypt(uint8_t* output, const uint8_t* input, int length, DesContext contexts[3]);

// Three whole CBC passes, one for each key, each with its own chaining value. This is the triple
// DES of SSH-1. Encryption uses K1's encryptIv, K2's decryptIv and K3's encryptIv; decryption uses
// the other three.
void TripleDesPassesEncrypt(uint8_t* output, const uint8_t* input, int length,
                            DesContext contexts[3]);
void TripleDesPassesDecrypt(uint8_t* output, const uint8_t* input, int length,
                            DesContext contexts[3]);

// ---------------------------------------------------------------- Blowfish

// Blowfish (B. Schneier, "Description of a New Variable-Length Key, 64-Bit Block Cipher", 1993):
// sixteen rounds, on single blocks and in CBC mode with big-endian or little-endian blocks.
//
// Lengths and buffers are as for CbcEncrypt; the chaining value is in the context.
//
// The S-boxes are tables. The time for a block depends on which parts of them are in the
// processor's cache, and so slightly on key and text.

struct BlowfishContext {
    uint32_t boxes[4][256];
    uint32_t p[18];
    uint32_t iv[2];  // chaining value, left and right; a context serves one direction
};

// Sets up the context with a key of 1 to 72 bytes. With no bytes the context does not change. `iv`
// never changes.
void BlowfishSetKey(BlowfishContext* context, const uint8_t* key, int keyLength);
// One block; output[0] is left, output[1] right.
void BlowfishEncryptBlock(uint32_t left, uint32_t right, uint32_t output[2],
                          const BlowfishContext* context);
void BlowfishDecryptBlock(uint32_t left, uint32_t right, uint32_t output[2],
                          const BlowfishContext* context);

// CBC with big-endian blocks: the "blowfish-cbc" of SSH-2 (RFC 4253, 6.3).
void BlowfishCbcEncrypt(uint8_t* output, const uint8_t* input, int length,
                        BlowfishContext* context);
void BlowfishCbcDecrypt(uint8_t* output, const uint8_t* input, int length,
                        BlowfishContext* context);

// CBC with little-endian blocks (byte 0 is the lowest byte of left), as SSH-1 peers use it.
void BlowfishLittleCbcEncrypt(uint8_t* output, const uint8_t* input, int length,
                              BlowfishContext* context);
void BlowfishLittleCbcDecrypt(uint8_t* output, const uint8_t* input, int length,
                              BlowfishContext* context);

#endif

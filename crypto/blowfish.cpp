// SPDX-License-Identifier: MIT
// Blowfish: the key schedule, the block function and the CBC modes.
#include "crypto/block_ciphers.h"

#include <cstring>

#include "text/bytes.h"

static inline uint32_t RoundFunction(uint32_t half, const BlowfishContext* context) {
    uint32_t sum = context->boxes[0][half >> 24] + context->boxes[1][half >> 16 & 0xFF];
    return (sum ^ context->boxes[2][half >> 8 & 0xFF]) + context->boxes[3][half & 0xFF];
}

// Each round key is XOR-ed into the half that waits, so that this runs in parallel with the table
// look-ups of the other half.
template <size_t count>
static inline void Encrypt(CipherBlock (&blocks)[count], const BlowfishContext* context) {
    for (CipherBlock& block : blocks) block.left ^= context->p[0];
    for (int i = 1; i <= 16; i += 2) {
        for (CipherBlock& block : blocks)
            block.right = (block.right ^ context->p[i]) ^ RoundFunction(block.left, context);
        for (CipherBlock& block : blocks)
            block.left = (block.left ^ context->p[i + 1]) ^ RoundFunction(block.right, context);
    }
    for (CipherBlock& block : blocks) block = {block.right ^ context->p[17], block.left};
}

template <size_t count>
static inline void Decrypt(CipherBlock (&blocks)[count], const BlowfishContext* context) {
    for (CipherBlock& block : blocks) block.left ^= context->p[17];
    for (int i = 16; i >= 1; i -= 2) {
        for (CipherBlock& block : blocks)
            block.right = (block.right ^ context->p[i]) ^ RoundFunction(block.left, context);
        for (CipherBlock& block : blocks)
            block.left = (block.left ^ context->p[i - 1]) ^ RoundFunction(block.right, context);
    }
    for (CipherBlock& block : blocks) block = {block.right ^ context->p[0], block.left};
}

void BlowfishSetKey(BlowfishContext* context, const uint8_t* key, int keyLength) {
    if (keyLength <= 0) return;
    int index = 0;
    for (int i = 0; i < 18; ++i) {
        uint32_t word = 0;
        for (int byte = 0; byte < 4; ++byte, ++index) word = word << 8 | key[index % keyLength];
        context->p[i] = kBlowfishP[i] ^ word;
    }
    memcpy(context->boxes, kBlowfishBoxes, sizeof(context->boxes));
    CipherBlock chain[1] = {};
    for (int i = 0; i < 18; i += 2) {
        Encrypt(chain, context);
        context->p[i] = chain[0].left;
        context->p[i + 1] = chain[0].right;
    }
    for (auto& box : context->boxes) {
        for (int i = 0; i < 256; i += 2) {
            Encrypt(chain, context);
            box[i] = chain[0].left;
            box[i + 1] = chain[0].right;
        }
    }
}

void BlowfishEncryptBlock(uint32_t left, uint32_t right, uint32_t output[2],
                          const BlowfishContext* context) {
    CipherBlock block[1] = {{left, right}};
    Encrypt(block, context);
    output[0] = block[0].left;
    output[1] = block[0].right;
}

void BlowfishDecryptBlock(uint32_t left, uint32_t right, uint32_t output[2],
                          const BlowfishContext* context) {
    CipherBlock block[1] = {{left, right}};
    Decrypt(block, context);
    output[0] = block[0].left;
    output[1] = block[0].right;
}

void BlowfishCbcEncrypt(uint8_t* output, const uint8_t* input, int length,
                        BlowfishContext* context) {
    CbcEncrypt<LoadBigBlock, StoreBigBlock>(output, input, length, context->iv,
                                            [=](auto& blocks) { Encrypt(blocks, context); });
}

void BlowfishCbcDecrypt(uint8_t* output, const uint8_t* input, int length,
                        BlowfishContext* context) {
    CbcDecrypt<LoadBigBlock, StoreBigBlock>(output, input, length, context->iv,
                                            [=](auto& blocks) { Decrypt(blocks, context); });
}

void BlowfishLittleCbcEncrypt(uint8_t* output, const uint8_t* input, int length,
                              BlowfishContext* context) {
    CbcEncrypt<LoadLittleBlock, StoreLittleBlock>(output, input, length, context->iv,
                                                  [=](auto& blocks) { Encrypt(blocks, context); });
}

void BlowfishLittleCbcDecrypt(uint8_t* output, const uint8_t* input, int length,
                              BlowfishContext* context) {
    CbcDecrypt<LoadLittleBlock, StoreLittleBlock>(output, input, length, context->iv,
                                                  [=](auto& blocks) { Decrypt(blocks, context); });
}

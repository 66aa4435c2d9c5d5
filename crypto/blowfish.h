// Blowfish (B. Schneier, "Description of a New Variable-Length Key, 64-Bit Block Cipher", 1993):
// sixteen rounds, as a block function and in CBC with big-endian and with little-endian blocks.
//
// Every mode takes lengths and buffers as crypto/cbc.h says, its chaining value in the context.
//
// The S-boxes are tables: how long a block takes depends on what the processor holds of them, and
// so a little on key and text.
#ifndef QUILL_CRYPTO_BLOWFISH_H
#define QUILL_CRYPTO_BLOWFISH_H

#include <cstdint>

struct BlowfishContext {
    uint32_t boxes[4][256];
    uint32_t p[18];
    uint32_t iv[2];  // chaining value, left and right; one direction a context
};

// The hexadecimal digits of pi behind the point: first the P-array, then the boxes.
extern const uint32_t kBlowfishP[18];
extern const uint32_t kBlowfishBoxes[4][256];

// Schedules keyLength bytes of key (1 to 72; none leaves the context untouched). `iv` stays.
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

// CBC with little-endian blocks (byte 0 is the lowest byte of left): what SSH-1 peers use.
void BlowfishLittleCbcEncrypt(uint8_t* output, const uint8_t* input, int length,
                              BlowfishContext* context);
void BlowfishLittleCbcDecrypt(uint8_t* output, const uint8_t* input, int length,
                              BlowfishContext* context);

#endif

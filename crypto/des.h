// DES (FIPS 46-3) and triple DES, as blocks and in CBC.
//
// A block is two 32-bit words, left and right, big-endian: byte 0 is the top byte of left. Every
// mode takes lengths and buffers as crypto/cbc.h says, its chaining value in the context.
//
// The S-boxes are tables: how long a block takes depends on what the processor holds of them, and
// so a little on key and text.
#ifndef QUILL_CRYPTO_DES_H
#define QUILL_CRYPTO_DES_H

#include <cstdint>

// The sixteen round keys, six bits a byte: in `subkeysOdd` for S-boxes 1, 3, 5 and 7 (1 in the top
// byte), in `subkeysEven` for 2, 4, 6 and 8. Each direction has its chaining value, left and right,
// so one context can carry an encryption and a decryption stream at once.
struct DesContext {
    uint32_t subkeysOdd[16];
    uint32_t subkeysEven[16];
    uint32_t encryptIv[2];
    uint32_t decryptIv[2];
};

// Takes the eight key bytes as two big-endian words (parity bits are not looked at) and clears
// both chaining values.
void DesSetKey(uint32_t leftWord, uint32_t rightWord, DesContext* context);
// One block; output[0] is left, output[1] right.
void DesEncryptBlock(uint32_t left, uint32_t right, uint32_t output[2], const DesContext* context);
void DesDecryptBlock(uint32_t left, uint32_t right, uint32_t output[2], const DesContext* context);

// DES in CBC, chained through encryptIv and decryptIv.
void DesCbcEncrypt(uint8_t* output, const uint8_t* input, int length, DesContext* context);
void DesCbcDecrypt(uint8_t* output, const uint8_t* input, int length, DesContext* context);

// Triple DES (encrypt K1, decrypt K2, encrypt K3) as one block function inside one CBC chain, kept
// in the first context: the "3des-cbc" of SSH-2 (RFC 4253, 6.3).
void TripleDesCbcEncrypt(uint8_t* output, const uint8_t* input, int length, DesContext contexts[3]);
void TripleDesCbcDecrypt(uint8_t* output, const uint8_t* input, int length, DesContext contexts[3]);

// Three whole CBC passes, one a key, each with its own chaining value: the triple DES of SSH-1.
// Encryption goes through K1's encryptIv, K2's decryptIv and K3's encryptIv, decryption through
// the other three.
void TripleDesPassesEncrypt(uint8_t* output, const uint8_t* input, int length,
                            DesContext contexts[3]);
void TripleDesPassesDecrypt(uint8_t* output, const uint8_t* input, int length,
                            DesContext contexts[3]);

#endif

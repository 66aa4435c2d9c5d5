// Blowfish.
#include "crypto/blowfish.h"

#include <cstring>

#include "text/byte_order.h"

static inline uint32_t RoundFunction(uint32_t half, const BlowfishContext* context) {
    uint32_t sum = context->boxes[0][half >> 24] + context->boxes[1][half >> 16 & 0xFF];
    return (sum ^ context->boxes[2][half >> 8 & 0xFF]) + context->boxes[3][half & 0xFF];
}

// The key words join the half that waits, beside the look-ups of the other.
static inline void Encrypt(uint32_t& left, uint32_t& right, const BlowfishContext* context) {
    uint32_t l = left ^ context->p[0], r = right;
    for (int i = 1; i <= 16; i += 2) {
        r = (r ^ context->p[i]) ^ RoundFunction(l, context);
        l = (l ^ context->p[i + 1]) ^ RoundFunction(r, context);
    }
    left = r ^ context->p[17];
    right = l;
}

static inline void Decrypt(uint32_t& left, uint32_t& right, const BlowfishContext* context) {
    uint32_t l = left ^ context->p[17], r = right;
    for (int i = 16; i >= 1; i -= 2) {
        r = (r ^ context->p[i]) ^ RoundFunction(l, context);
        l = (l ^ context->p[i - 1]) ^ RoundFunction(r, context);
    }
    left = r ^ context->p[0];
    right = l;
}

void BlowfishSetKey(BlowfishContext* context, const uint8_t* key, int keyLength) {
    if (keyLength <= 0) return;
    int index = 0;
    for (int i = 0; i < 18; i++) {
        uint32_t word = 0;
        for (int byte = 0; byte < 4; byte++, index++) word = word << 8 | key[index % keyLength];
        context->p[i] = kBlowfishP[i] ^ word;
    }
    memcpy(context->boxes, kBlowfishBoxes, sizeof(context->boxes));
    uint32_t left = 0, right = 0;
    for (int i = 0; i < 18; i += 2) {
        Encrypt(left, right, context);
        context->p[i] = left;
        context->p[i + 1] = right;
    }
    for (auto& box : context->boxes) {
        for (int i = 0; i < 256; i += 2) {
            Encrypt(left, right, context);
            box[i] = left;
            box[i + 1] = right;
        }
    }
}

void BlowfishEncryptBlock(uint32_t left, uint32_t right, uint32_t output[2],
                          const BlowfishContext* context) {
    Encrypt(left, right, context);
    output[0] = left;
    output[1] = right;
}

void BlowfishDecryptBlock(uint32_t left, uint32_t right, uint32_t output[2],
                          const BlowfishContext* context) {
    Decrypt(left, right, context);
    output[0] = left;
    output[1] = right;
}

// The two CBC loops, for either byte order.
typedef uint32_t (*LoadWord)(const uint8_t* bytes);
typedef void (*StoreWord)(uint8_t* bytes, uint32_t word);

template <LoadWord load, StoreWord store>
static void ChainEncrypt(uint8_t* output, const uint8_t* input, int length,
                         BlowfishContext* context) {
    uint32_t left = context->iv[0], right = context->iv[1];
    for (; length > 0; length -= 8, input += 8, output += 8) {
        left ^= load(input);
        right ^= load(input + 4);
        Encrypt(left, right, context);
        store(output, left);
        store(output + 4, right);
    }
    context->iv[0] = left;
    context->iv[1] = right;
}

template <LoadWord load, StoreWord store>
static void ChainDecrypt(uint8_t* output, const uint8_t* input, int length,
                         BlowfishContext* context) {
    uint32_t before_left = context->iv[0], before_right = context->iv[1];
    for (; length > 0; length -= 8, input += 8, output += 8) {
        const uint32_t cipher_left = load(input), cipher_right = load(input + 4);
        uint32_t left = cipher_left, right = cipher_right;
        Decrypt(left, right, context);
        store(output, left ^ before_left);
        store(output + 4, right ^ before_right);
        before_left = cipher_left;
        before_right = cipher_right;
    }
    context->iv[0] = before_left;
    context->iv[1] = before_right;
}

void BlowfishCbcEncrypt(uint8_t* output, const uint8_t* input, int length,
                        BlowfishContext* context) {
    ChainEncrypt<LoadBig<uint32_t>, StoreBig<uint32_t>>(output, input, length, context);
}

void BlowfishCbcDecrypt(uint8_t* output, const uint8_t* input, int length,
                        BlowfishContext* context) {
    ChainDecrypt<LoadBig<uint32_t>, StoreBig<uint32_t>>(output, input, length, context);
}

void BlowfishLittleCbcEncrypt(uint8_t* output, const uint8_t* input, int length,
                              BlowfishContext* context) {
    ChainEncrypt<LoadLittle<uint32_t>, StoreLittle<uint32_t>>(output, input, length, context);
}

void BlowfishLittleCbcDecrypt(uint8_t* output, const uint8_t* input, int length,
                              BlowfishContext* context) {
    ChainDecrypt<LoadLittle<uint32_t>, StoreLittle<uint32_t>>(output, input, length, context);
}

// SPDX-License-Identifier: MIT
// The hash function MD5. The names F, G, H, I, the shift amounts and the constants are those of RFC
// 1321.
#include "crypto/hashes.h"

#include <bit>
#include <cstring>

#include "text/bytes.h"

static inline uint32_t F(uint32_t x, uint32_t y, uint32_t z) { return ((y ^ z) & x) ^ z; }

// The two terms of G have no bit in common, so they can be added separately. The term that does
// not use the newest word then does not wait for it.
#define MD5_STEP(mix, a, b, c, d, word, shift, constant)    \
    a += LoadLittle<uint32_t>(bytes + 4 * word) + constant; \
    a = mix;                                                \
    a = std::rotl(a, shift) + b;

#define STEP_F(a, b, c, d, w, s, t) MD5_STEP(a + F(b, c, d), a, b, c, d, w, s, t)
#define STEP_G(a, b, c, d, w, s, t) MD5_STEP((a + (c & ~d)) + (b & d), a, b, c, d, w, s, t)
#define STEP_H(a, b, c, d, w, s, t) MD5_STEP(a + ((c ^ d) ^ b), a, b, c, d, w, s, t)
#define STEP_I(a, b, c, d, w, s, t) MD5_STEP(a + (c ^ (b | ~d)), a, b, c, d, w, s, t)

// clang-format off
static void Compress(uint32_t state[4], const uint8_t* bytes, int count) {
    uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
    for (; count > 0; --count, bytes += 64) {
        const uint32_t a_before = a, b_before = b, c_before = c, d_before = d;

        STEP_F(a, b, c, d,  0,  7, 0xd76aa478)
        STEP_F(d, a, b, c,  1, 12, 0xe8c7b756)
        STEP_F(c, d, a, b,  2, 17, 0x242070db)
        STEP_F(b, c, d, a,  3, 22, 0xc1bdceee)
        STEP_F(a, b, c, d,  4,  7, 0xf57c0faf)
        STEP_F(d, a, b, c,  5, 12, 0x4787c62a)
        STEP_F(c, d, a, b,  6, 17, 0xa8304613)
        STEP_F(b, c, d, a,  7, 22, 0xfd469501)
        STEP_F(a, b, c, d,  8,  7, 0x698098d8)
        STEP_F(d, a, b, c,  9, 12, 0x8b44f7af)
        STEP_F(c, d, a, b, 10, 17, 0xffff5bb1)
        STEP_F(b, c, d, a, 11, 22, 0x895cd7be)
        STEP_F(a, b, c, d, 12,  7, 0x6b901122)
        STEP_F(d, a, b, c, 13, 12, 0xfd987193)
        STEP_F(c, d, a, b, 14, 17, 0xa679438e)
        STEP_F(b, c, d, a, 15, 22, 0x49b40821)

        STEP_G(a, b, c, d,  1,  5, 0xf61e2562)
        STEP_G(d, a, b, c,  6,  9, 0xc040b340)
        STEP_G(c, d, a, b, 11, 14, 0x265e5a51)
        STEP_G(b, c, d, a,  0, 20, 0xe9b6c7aa)
        STEP_G(a, b, c, d,  5,  5, 0xd62f105d)
        STEP_G(d, a, b, c, 10,  9, 0x02441453)
        STEP_G(c, d, a, b, 15, 14, 0xd8a1e681)
        STEP_G(b, c, d, a,  4, 20, 0xe7d3fbc8)
        STEP_G(a, b, c, d,  9,  5, 0x21e1cde6)
        STEP_G(d, a, b, c, 14,  9, 0xc33707d6)
        STEP_G(c, d, a, b,  3, 14, 0xf4d50d87)
        STEP_G(b, c, d, a,  8, 20, 0x455a14ed)
        STEP_G(a, b, c, d, 13,  5, 0xa9e3e905)
        STEP_G(d, a, b, c,  2,  9, 0xfcefa3f8)
        STEP_G(c, d, a, b,  7, 14, 0x676f02d9)
        STEP_G(b, c, d, a, 12, 20, 0x8d2a4c8a)

        STEP_H(a, b, c, d,  5,  4, 0xfffa3942)
        STEP_H(d, a, b, c,  8, 11, 0x8771f681)
        STEP_H(c, d, a, b, 11, 16, 0x6d9d6122)
        STEP_H(b, c, d, a, 14, 23, 0xfde5380c)
        STEP_H(a, b, c, d,  1,  4, 0xa4beea44)
        STEP_H(d, a, b, c,  4, 11, 0x4bdecfa9)
        STEP_H(c, d, a, b,  7, 16, 0xf6bb4b60)
        STEP_H(b, c, d, a, 10, 23, 0xbebfbc70)
        STEP_H(a, b, c, d, 13,  4, 0x289b7ec6)
        STEP_H(d, a, b, c,  0, 11, 0xeaa127fa)
        STEP_H(c, d, a, b,  3, 16, 0xd4ef3085)
        STEP_H(b, c, d, a,  6, 23, 0x04881d05)
        STEP_H(a, b, c, d,  9,  4, 0xd9d4d039)
        STEP_H(d, a, b, c, 12, 11, 0xe6db99e5)
        STEP_H(c, d, a, b, 15, 16, 0x1fa27cf8)
        STEP_H(b, c, d, a,  2, 23, 0xc4ac5665)

        STEP_I(a, b, c, d,  0,  6, 0xf4292244)
        STEP_I(d, a, b, c,  7, 10, 0x432aff97)
        STEP_I(c, d, a, b, 14, 15, 0xab9423a7)
        STEP_I(b, c, d, a,  5, 21, 0xfc93a039)
        STEP_I(a, b, c, d, 12,  6, 0x655b59c3)
        STEP_I(d, a, b, c,  3, 10, 0x8f0ccc92)
        STEP_I(c, d, a, b, 10, 15, 0xffeff47d)
        STEP_I(b, c, d, a,  1, 21, 0x85845dd1)
        STEP_I(a, b, c, d,  8,  6, 0x6fa87e4f)
        STEP_I(d, a, b, c, 15, 10, 0xfe2ce6e0)
        STEP_I(c, d, a, b,  6, 15, 0xa3014314)
        STEP_I(b, c, d, a, 13, 21, 0x4e0811a1)
        STEP_I(a, b, c, d,  4,  6, 0xf7537e82)
        STEP_I(d, a, b, c, 11, 10, 0xbd3af235)
        STEP_I(c, d, a, b,  2, 15, 0x2ad7d2bb)
        STEP_I(b, c, d, a,  9, 21, 0xeb86d391)
        a += a_before;
        b += b_before;
        c += c_before;
        d += d_before;
    }
    state[0] = a;
    state[1] = b;
    state[2] = c;
    state[3] = d;
}
// clang-format on

void Md5Init(Md5Context* context) {
    static const uint32_t kInitial[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    memcpy(context->state, kInitial, sizeof(kInitial));
    context->bitCount = 0;
}

void Md5Update(Md5Context* context, const uint8_t* bytes, int length) {
    if (length <= 0) return;
    int used = static_cast<int>(context->bitCount / 8 % 64);
    context->bitCount += static_cast<uint64_t>(length) * 8;
    if (used != 0) {
        int taken = length < 64 - used ? length : 64 - used;
        memcpy(context->buffer + used, bytes, static_cast<size_t>(taken));
        if (used + taken < 64) return;
        Compress(context->state, context->buffer, 1);
        bytes += taken;
        length -= taken;
    }
    if (length >= 64) Compress(context->state, bytes, length / 64);
    memcpy(context->buffer, bytes + (length - length % 64), static_cast<size_t>(length % 64));
}

void Md5Final(Md5Context* context, uint8_t digest[kMd5Size]) {
    static const uint8_t kPadding[64] = {0x80};
    uint8_t count[8];
    StoreLittle<uint64_t>(count, context->bitCount);
    int used = static_cast<int>(context->bitCount / 8 % 64);
    Md5Update(context, kPadding, used < 56 ? 56 - used : 120 - used);
    Md5Update(context, count, sizeof(count));
    for (int i = 0; i < 4; ++i) StoreLittle<uint32_t>(digest + 4 * i, context->state[i]);
    Wipe(context, sizeof(*context));
}

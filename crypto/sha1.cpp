// SPDX-License-Identifier: MIT
// The hash function SHA-1: buffering, padding, and two implementations of the compression function.
#include "crypto/hashes.h"

#include <bit>
#include <cstdlib>
#include <cstring>

#include "text/bytes.h"

static Sha1Compressor BestCompressor() {
    Sha1Compressor fast = Sha1CompressWithInstructions();
    return fast != nullptr ? fast : Sha1CompressPortable;
}

Sha1Compressor sha1_compressor = BestCompressor();

static inline uint32_t Choose(uint32_t x, uint32_t y, uint32_t z) { return ((y ^ z) & x) ^ z; }

static inline uint32_t Parity(uint32_t x, uint32_t y, uint32_t z) { return x ^ y ^ z; }

static inline uint32_t Majority(uint32_t x, uint32_t y, uint32_t z) {
    return (x & y) + (z & (x ^ y));
}

// w is a circular buffer with the last 16 words of the message schedule.
static inline uint32_t Schedule(uint32_t w[16], int t) {
    uint32_t word = w[(t + 13) & 15] ^ w[(t + 8) & 15] ^ w[(t + 2) & 15] ^ w[t & 15];
    return w[t & 15] = std::rotl(word, 1);
}

#define SHA1_ROUND(f, k, a, b, c, d, e, word)     \
    e += std::rotl(a, 5) + f(b, c, d) + k + word; \
    b = std::rotl(b, 30);

#define SHA1_FIVE(f, k, t, word)                  \
    SHA1_ROUND(f, k, a, b, c, d, e, word(t));     \
    SHA1_ROUND(f, k, e, a, b, c, d, word(t + 1)); \
    SHA1_ROUND(f, k, d, e, a, b, c, word(t + 2)); \
    SHA1_ROUND(f, k, c, d, e, a, b, word(t + 3)); \
    SHA1_ROUND(f, k, b, c, d, e, a, word(t + 4));

static void CompressBlock(uint32_t state[5], const uint8_t* block, uint32_t w[16]) {
    for (int t = 0; t < 16; ++t) w[t] = LoadBig<uint32_t>(block + 4 * t);
    auto word = [w](int t) { return t < 16 ? w[t] : Schedule(w, t); };
    uint32_t a = state[0], b = state[1], c = state[2], d = state[3], e = state[4];
#pragma GCC unroll 4
    for (int t = 0; t < 20; t += 5) {
        SHA1_FIVE(Choose, 0x5a827999u, t, word)
    }
#pragma GCC unroll 4
    for (int t = 20; t < 40; t += 5) {
        SHA1_FIVE(Parity, 0x6ed9eba1u, t, word)
    }
#pragma GCC unroll 4
    for (int t = 40; t < 60; t += 5) {
        SHA1_FIVE(Majority, 0x8f1bbcdcu, t, word)
    }
#pragma GCC unroll 4
    for (int t = 60; t < 80; t += 5) {
        SHA1_FIVE(Parity, 0xca62c1d6u, t, word)
    }
    // Volatile, because a compiler with few registers would keep copies of the state on the stack.
    const volatile uint32_t* before = state;
    state[0] = before[0] + a;
    state[1] = before[1] + b;
    state[2] = before[2] + c;
    state[3] = before[3] + d;
    state[4] = before[4] + e;
}

void Sha1CompressPortable(uint32_t state[5], const uint8_t* blocks, int count) {
    uint32_t w[16];
    for (; count > 0; --count, blocks += 64) CompressBlock(state, blocks, w);
    Wipe(w, sizeof(w));
}

void Sha1Init(Sha1Context* context) {
    static const uint32_t kInitial[5] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476,
                                         0xc3d2e1f0};
    memcpy(context->state, kInitial, sizeof(kInitial));
    context->blockUsed = 0;
    context->bytesHigh = 0;
    context->bytesLow = 0;
}

void Sha1Update(Sha1Context* context, const uint8_t* bytes, int length) {
    if (length <= 0) return;
    uint32_t left = static_cast<uint32_t>(length);
    context->bytesLow += left;
    if (context->bytesLow < left) ++context->bytesHigh;
    if (context->blockUsed != 0) {
        uint32_t taken = left < 64 - context->blockUsed ? left : 64 - context->blockUsed;
        memcpy(context->block + context->blockUsed, bytes, taken);
        context->blockUsed += taken;
        if (context->blockUsed < 64) return;
        sha1_compressor(context->state, context->block, 1);
        bytes += taken;
        left -= taken;
    }
    if (left >= 64) sha1_compressor(context->state, bytes, static_cast<int>(left / 64));
    context->blockUsed = left % 64;
    memcpy(context->block, bytes + (left - left % 64), left % 64);
}

// The padding is 0x80, zeros up to the last eight bytes of a block, and the length in bits in these
// eight bytes. If the input already reaches into them, the padding continues in one more block.
void Sha1Final(Sha1Context* context, uint8_t digest[kSha1Size]) {
    uint8_t* block = context->block;
    uint32_t used = context->blockUsed;
    block[used++] = 0x80;
    memset(block + used, 0, 64 - used);
    if (used > 56) {
        sha1_compressor(context->state, block, 1);
        memset(block, 0, 56);
    }
    StoreBig<uint32_t>(block + 56, context->bytesHigh << 3 | context->bytesLow >> 29);
    StoreBig<uint32_t>(block + 60, context->bytesLow << 3);
    sha1_compressor(context->state, block, 1);
    for (int i = 0; i < 5; ++i) StoreBig<uint32_t>(digest + 4 * i, context->state[i]);
    Wipe(context, sizeof(*context));
}

void Sha1(const uint8_t* bytes, int length, uint8_t digest[kSha1Size]) {
    Sha1Context context;
    Sha1Init(&context);
    Sha1Update(&context, bytes, length);
    Sha1Final(&context, digest);
}

void Sha1UpdateString(Sha1Context* context, const uint8_t* bytes, int length) {
    uint8_t size[4];
    if (length < 0) length = 0;
    StoreBig<uint32_t>(size, static_cast<uint32_t>(length));
    Sha1Update(context, size, sizeof(size));
    Sha1Update(context, bytes, length);
}

void Sha1UpdateMpint(Sha1Context* context, ConstBignum integer) {
    int bits = BignumBitLength(integer);
    int count = bits == 0 ? 0 : (bits + 8) / 8;
    uint8_t size[4], byte = 0;
    StoreBig<uint32_t>(size, static_cast<uint32_t>(count));
    Sha1Update(context, size, sizeof(size));
    for (int i = count - 1; i >= 0; --i) {
        byte = BignumByte(integer, i);
        Sha1Update(context, &byte, 1);
    }
    Wipe(&byte, 1);
}

// ---------------------------------------------------------------- with SHA instructions

// SHA-1 with the SHA instructions of x86 processors, which are much faster than portable code. The
// program checks once, at its start, whether the processor has them.

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))

#include <cpuid.h>
#include <immintrin.h>

#define SHA_TARGET __attribute__((target("sha,sse4.1,ssse3")))

// Four rounds. The state is abcd, and `e` holds what the next value of e is made of. Each group of
// four words of the schedule is computed while the rounds of earlier groups run.
#define FOUR_ROUNDS(group, e, e_next, w0, w1, w2, w3) \
    e = _mm_sha1nexte_epu32(e, w0);                   \
    e_next = abcd;                                    \
    abcd = _mm_sha1rnds4_epu32(abcd, e, (group) / 5); \
    w1 = _mm_sha1msg2_epu32(w1, w0);                  \
    w3 = _mm_sha1msg1_epu32(w3, w0);                  \
    w2 = _mm_xor_si128(w2, w0);

SHA_TARGET static inline __m128i LoadWords(const uint8_t* bytes) {
    const __m128i reverse = _mm_set_epi64x(0x0001020304050607, 0x08090a0b0c0d0e0f);
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), reverse);
}

SHA_TARGET static void CompressWithInstructions(uint32_t state[5], const uint8_t* blocks,
                                                int count) {
    __m128i* low = reinterpret_cast<__m128i*>(state);
    __m128i abcd = _mm_shuffle_epi32(_mm_loadu_si128(low), 0x1b);
    __m128i e0 = _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0);
    __m128i e1;
    for (; count > 0; --count, blocks += 64) {
        const __m128i abcd_before = abcd, e_before = e0;
        __m128i m0 = LoadWords(blocks), m1 = LoadWords(blocks + 16);
        __m128i m2 = LoadWords(blocks + 32), m3 = LoadWords(blocks + 48);

        e0 = _mm_add_epi32(e0, m0);
        e1 = abcd;
        abcd = _mm_sha1rnds4_epu32(abcd, e0, 0);

        e1 = _mm_sha1nexte_epu32(e1, m1);
        e0 = abcd;
        abcd = _mm_sha1rnds4_epu32(abcd, e1, 0);
        m0 = _mm_sha1msg1_epu32(m0, m1);

        e0 = _mm_sha1nexte_epu32(e0, m2);
        e1 = abcd;
        abcd = _mm_sha1rnds4_epu32(abcd, e0, 0);
        m1 = _mm_sha1msg1_epu32(m1, m2);
        m0 = _mm_xor_si128(m0, m2);

        FOUR_ROUNDS(3, e1, e0, m3, m0, m1, m2)
        FOUR_ROUNDS(4, e0, e1, m0, m1, m2, m3)
        FOUR_ROUNDS(5, e1, e0, m1, m2, m3, m0)
        FOUR_ROUNDS(6, e0, e1, m2, m3, m0, m1)
        FOUR_ROUNDS(7, e1, e0, m3, m0, m1, m2)
        FOUR_ROUNDS(8, e0, e1, m0, m1, m2, m3)
        FOUR_ROUNDS(9, e1, e0, m1, m2, m3, m0)
        FOUR_ROUNDS(10, e0, e1, m2, m3, m0, m1)
        FOUR_ROUNDS(11, e1, e0, m3, m0, m1, m2)
        FOUR_ROUNDS(12, e0, e1, m0, m1, m2, m3)
        FOUR_ROUNDS(13, e1, e0, m1, m2, m3, m0)
        FOUR_ROUNDS(14, e0, e1, m2, m3, m0, m1)
        FOUR_ROUNDS(15, e1, e0, m3, m0, m1, m2)
        FOUR_ROUNDS(16, e0, e1, m0, m1, m2, m3)

        e1 = _mm_sha1nexte_epu32(e1, m1);
        e0 = abcd;
        m2 = _mm_sha1msg2_epu32(m2, m1);
        abcd = _mm_sha1rnds4_epu32(abcd, e1, 3);
        m3 = _mm_xor_si128(m3, m1);

        e0 = _mm_sha1nexte_epu32(e0, m2);
        e1 = abcd;
        m3 = _mm_sha1msg2_epu32(m3, m2);
        abcd = _mm_sha1rnds4_epu32(abcd, e0, 3);

        e1 = _mm_sha1nexte_epu32(e1, m3);
        e0 = abcd;
        abcd = _mm_sha1rnds4_epu32(abcd, e1, 3);

        e0 = _mm_sha1nexte_epu32(e0, e_before);
        abcd = _mm_add_epi32(abcd, abcd_before);
    }
    _mm_storeu_si128(low, _mm_shuffle_epi32(abcd, 0x1b));
    state[4] = static_cast<uint32_t>(_mm_extract_epi32(e0, 3));
}

static bool ProcessorHasSha() {
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid(1, &a, &b, &c, &d)) return false;
    if ((c & bit_SSSE3) == 0 || (c & bit_SSE4_1) == 0) return false;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) && (b & (1u << 29)) != 0;
}

Sha1Compressor Sha1CompressWithInstructions() {
    return ProcessorHasSha() ? CompressWithInstructions : nullptr;
}

#else

Sha1Compressor Sha1CompressWithInstructions() { return nullptr; }

#endif

// SPDX-License-Identifier: MIT
// The hash function SHA-512: buffering, padding, and two implementations of the compression
// function.
#include "crypto/hashes.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "text/bytes.h"

// The rounds of SHA-512 (FIPS 180-2, 6.3.2), for both implementations. They are macros so that each
// implementation compiles them for its own processor.

// A sum that the compiler evaluates in the written order, if it supports that. The speed of a round
// depends on this order: the term that depends on the newest value is added last.
#if defined(__has_builtin) && __has_builtin(__builtin_assoc_barrier)
#define SHA512_AS_WRITTEN(sum) __builtin_assoc_barrier(sum)
#else
#define SHA512_AS_WRITTEN(sum) (sum)
#endif

// `ab` is a ^ b of this round, which is b ^ c of the next round. The `sigma0` of the previous round
// is added to its sum here, in parallel with the first steps of this round.
#define SHA512_ROUND(a, b, c, d, e, f, g, h, bc, ab, word) \
    {                                                      \
        uint64_t sigma1 = std::rotr(e, 41);                \
        h = SHA512_AS_WRITTEN(h + (word));                 \
        a = SHA512_AS_WRITTEN(a + sigma0);                 \
        uint64_t chosen = e & f;                           \
        chosen = SHA512_AS_WRITTEN(chosen + (~e & g));     \
        sigma1 ^= std::rotr(e, 18);                        \
        h = SHA512_AS_WRITTEN(h + chosen);                 \
        sigma1 ^= std::rotr(e, 14);                        \
        sigma0 = std::rotr(a, 39);                         \
        ab = a ^ b;                                        \
        h = SHA512_AS_WRITTEN(h + sigma1);                 \
        d = SHA512_AS_WRITTEN(d + h);                      \
        sigma0 ^= std::rotr(a, 34);                        \
        bc &= ab;                                          \
        bc ^= b;                                           \
        sigma0 ^= std::rotr(a, 28);                        \
        h = SHA512_AS_WRITTEN(h + bc);                     \
    }

// Eight rounds over words w[0] to w[7], to which the round constants are already added. `between`
// is expanded with 0 to 3 after every second round.
// clang-format off
#define SHA512_EIGHT_ROUNDS(w, between)                \
    SHA512_ROUND(a, b, c, d, e, f, g, h, bc, ab, w[0]) \
    SHA512_ROUND(h, a, b, c, d, e, f, g, ab, bc, w[1]) \
    between(0)                                         \
    SHA512_ROUND(g, h, a, b, c, d, e, f, bc, ab, w[2]) \
    SHA512_ROUND(f, g, h, a, b, c, d, e, ab, bc, w[3]) \
    between(1)                                         \
    SHA512_ROUND(e, f, g, h, a, b, c, d, bc, ab, w[4]) \
    SHA512_ROUND(d, e, f, g, h, a, b, c, ab, bc, w[5]) \
    between(2)                                         \
    SHA512_ROUND(c, d, e, f, g, h, a, b, bc, ab, w[6]) \
    SHA512_ROUND(b, c, d, e, f, g, h, a, ab, bc, w[7]) \
    between(3)
// clang-format on

// Loads the working variables, and adds them to the state at the end of a block.
#define SHA512_LOAD_STATE                                            \
    uint64_t a = state[0], b = state[1], c = state[2], d = state[3]; \
    uint64_t e = state[4], f = state[5], g = state[6], h = state[7]; \
    uint64_t ab, bc = b ^ c, sigma0 = 0

#define SHA512_ADD_STATE    \
    state[0] += a + sigma0; \
    state[1] += b;          \
    state[2] += c;          \
    state[3] += d;          \
    state[4] += e;          \
    state[5] += f;          \
    state[6] += g;          \
    state[7] += h

#define SHA512_NOTHING(i)

// ---------------------------------------------------------------- the portable implementation

// clang-format off
const uint64_t kSha512Constants[80] = {
    0x428a2f98d728ae22, 0x7137449123ef65cd, 0xb5c0fbcfec4d3b2f, 0xe9b5dba58189dbbc,
    0x3956c25bf348b538, 0x59f111f1b605d019, 0x923f82a4af194f9b, 0xab1c5ed5da6d8118,
    0xd807aa98a3030242, 0x12835b0145706fbe, 0x243185be4ee4b28c, 0x550c7dc3d5ffb4e2,
    0x72be5d74f27b896f, 0x80deb1fe3b1696b1, 0x9bdc06a725c71235, 0xc19bf174cf692694,
    0xe49b69c19ef14ad2, 0xefbe4786384f25e3, 0x0fc19dc68b8cd5b5, 0x240ca1cc77ac9c65,
    0x2de92c6f592b0275, 0x4a7484aa6ea6e483, 0x5cb0a9dcbd41fbd4, 0x76f988da831153b5,
    0x983e5152ee66dfab, 0xa831c66d2db43210, 0xb00327c898fb213f, 0xbf597fc7beef0ee4,
    0xc6e00bf33da88fc2, 0xd5a79147930aa725, 0x06ca6351e003826f, 0x142929670a0e6e70,
    0x27b70a8546d22ffc, 0x2e1b21385c26c926, 0x4d2c6dfc5ac42aed, 0x53380d139d95b3df,
    0x650a73548baf63de, 0x766a0abb3c77b2a8, 0x81c2c92e47edaee6, 0x92722c851482353b,
    0xa2bfe8a14cf10364, 0xa81a664bbc423001, 0xc24b8b70d0f89791, 0xc76c51a30654be30,
    0xd192e819d6ef5218, 0xd69906245565a910, 0xf40e35855771202a, 0x106aa07032bbd1b8,
    0x19a4c116b8d2d0c8, 0x1e376c085141ab53, 0x2748774cdf8eeb99, 0x34b0bcb5e19b48a8,
    0x391c0cb3c5c95a63, 0x4ed8aa4ae3418acb, 0x5b9cca4f7763e373, 0x682e6ff3d6b2b8a3,
    0x748f82ee5defb2fc, 0x78a5636f43172f60, 0x84c87814a1f0ab72, 0x8cc702081a6439ec,
    0x90befffa23631e28, 0xa4506cebde82bde9, 0xbef9a3f7b2c67915, 0xc67178f2e372532b,
    0xca273eceea26619c, 0xd186b8c721c0c207, 0xeada7dd6cde0eb1e, 0xf57d4f7fee6ed178,
    0x06f067aa72176fba, 0x0a637dc5a2c898a6, 0x113f9804bef90dae, 0x1b710b35131c471b,
    0x28db77f523047d84, 0x32caab7b40c72493, 0x3c9ebe0a15c9bebc, 0x431d67c49c100d4c,
    0x4cc5d4becb3e42b6, 0x597f299cfc657e2a, 0x5fcb6fab3ad6faec, 0x6c44198c4a475817,
};

static const uint64_t kInitial[8] = {
    0x6a09e667f3bcc908, 0xbb67ae8584caa73b, 0x3c6ef372fe94f82b, 0xa54ff53a5f1d36f1,
    0x510e527fade682d1, 0x9b05688c2b3e6c1f, 0x1f83d9abfb41bd6b, 0x5be0cd19137e2179,
};
// clang-format on

static Sha512Compressor BestCompressor() {
    Sha512Compressor wide = Sha512CompressWide();
    return wide != nullptr ? wide : Sha512CompressPortable;
}

Sha512Compressor sha512_compressor = BestCompressor();

static inline uint64_t SmallSigma0(uint64_t x) {
    return std::rotr(x, 1) ^ std::rotr(x, 8) ^ (x >> 7);
}

static inline uint64_t SmallSigma1(uint64_t x) {
    return std::rotr(x, 19) ^ std::rotr(x, 61) ^ (x >> 6);
}

// Computes the next sixteen words of the schedule.
static inline void NextWords(uint64_t w[16]) {
    for (int i = 0; i < 16; ++i) {
        w[i] += SmallSigma1(w[(i + 14) & 15]) + w[(i + 9) & 15] + SmallSigma0(w[(i + 1) & 15]);
    }
}

// w and sums are working memory. The caller provides it, so that it is wiped only once.
static void CompressBlock(uint64_t state[8], const uint8_t* block, uint64_t w[16],
                          uint64_t sums[16]) {
    for (int t = 0; t < 16; ++t) w[t] = LoadBig<uint64_t>(block + 8 * t);
    SHA512_LOAD_STATE;
    for (int t = 0; t < 80; t += 16) {
        if (t > 0) NextWords(w);
        for (int i = 0; i < 16; ++i) sums[i] = w[i] + kSha512Constants[t + i];
        SHA512_EIGHT_ROUNDS(sums, SHA512_NOTHING);
        SHA512_EIGHT_ROUNDS((sums + 8), SHA512_NOTHING);
    }
    SHA512_ADD_STATE;
}

void Sha512CompressPortable(uint64_t state[8], const uint8_t* blocks, int count) {
    uint64_t w[16], sums[16];
    for (; count > 0; --count, blocks += 128) CompressBlock(state, blocks, w, sums);
    Wipe(w, sizeof(w));
    Wipe(sums, sizeof(sums));
}

void Sha512Init(Sha512Context* context) {
    memcpy(context->state, kInitial, sizeof(kInitial));
    context->bytesHigh = 0;
    context->bytesLow = 0;
}

void Sha512Update(Sha512Context* context, const uint8_t* bytes, int length) {
    if (length <= 0) return;
    size_t left = static_cast<size_t>(length);
    size_t used = static_cast<size_t>(context->bytesLow % 128);
    context->bytesLow += left;
    if (context->bytesLow < left) ++context->bytesHigh;
    if (used != 0) {
        size_t taken = left < 128 - used ? left : 128 - used;
        memcpy(context->block + used, bytes, taken);
        if (used + taken < 128) return;
        sha512_compressor(context->state, context->block, 1);
        bytes += taken;
        left -= taken;
    }
    if (left >= 128) sha512_compressor(context->state, bytes, static_cast<int>(left / 128));
    memcpy(context->block, bytes + (left - left % 128), left % 128);
}

void Sha512Final(Sha512Context* context, uint8_t digest[kSha512Size]) {
    static const uint8_t kPadding[128] = {0x80};
    uint8_t bits[16];
    StoreBig<uint64_t>(bits, context->bytesHigh << 3 | context->bytesLow >> 61);
    StoreBig<uint64_t>(bits + 8, context->bytesLow << 3);
    int used = static_cast<int>(context->bytesLow % 128);
    Sha512Update(context, kPadding, used < 112 ? 112 - used : 240 - used);
    Sha512Update(context, bits, sizeof(bits));
    for (int i = 0; i < 8; ++i) StoreBig<uint64_t>(digest + 8 * i, context->state[i]);
    Wipe(context, sizeof(*context));
}

void Sha512(const uint8_t* bytes, int length, uint8_t digest[kSha512Size]) {
    Sha512Context context;
    Sha512Init(&context);
    Sha512Update(&context, bytes, length);
    Sha512Final(&context, digest);
}

// ---------------------------------------------------------------- two lanes

// SHA-512 for processors with wide vectors and three-operand rotates (x86: AVX2 and BMI2).
//
// The message schedules of two blocks are computed together, in vectors, while the rounds of the
// first block run. The rounds themselves are scalar. The code is plain C++ with vector types,
// compiled for these instructions; it is faster than the portable implementation.

#if defined(__x86_64__) && defined(__GNUC__)

#define WIDE_TARGET __attribute__((target("avx2,bmi,bmi2")))

// Words 2i and 2i + 1 of the first block, then the same of the second.
using Words [[gnu::vector_size(32)]] = uint64_t;
using Bytes [[gnu::vector_size(32)]] = uint8_t;
using HalfBytes [[gnu::vector_size(16)]] = uint8_t;

// The 80 words of each block, with the round constants added.
struct Schedule {
    alignas(32) uint64_t words[2][80];
};

WIDE_TARGET static inline Words LoadPair(const uint8_t* first, const uint8_t* second) {
    HalfBytes halves[2];
    memcpy(&halves[0], first, sizeof(HalfBytes));
    memcpy(&halves[1], second, sizeof(HalfBytes));
    const Bytes raw = __builtin_shufflevector(halves[0], halves[1], 0, 1, 2, 3, 4, 5, 6, 7, 8, 9,
                                              10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22,
                                              23, 24, 25, 26, 27, 28, 29, 30, 31);
    return reinterpret_cast<Words>(
        __builtin_shufflevector(raw, raw, 7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8, 23,
                                22, 21, 20, 19, 18, 17, 16, 31, 30, 29, 28, 27, 26, 25, 24));
}

// Returns the words one position later: the second of `low` and the first of `high`, for both
// blocks.
WIDE_TARGET static inline Words Between(Words low, Words high) {
    return __builtin_shufflevector(low, high, 1, 4, 3, 6);
}

WIDE_TARGET static inline Words SmallSigma0(Words x) {
    const Bytes bytes = reinterpret_cast<Bytes>(x);
    const Words by_8 = reinterpret_cast<Words>(
        __builtin_shufflevector(bytes, bytes, 1, 2, 3, 4, 5, 6, 7, 0, 9, 10, 11, 12, 13, 14, 15, 8,
                                17, 18, 19, 20, 21, 22, 23, 16, 25, 26, 27, 28, 29, 30, 31, 24));
    return ((x >> 1) | (x << 63)) ^ by_8 ^ (x >> 7);
}

WIDE_TARGET static inline Words SmallSigma1(Words x) {
    return ((x >> 19) | (x << 45)) ^ ((x >> 61) | (x << 3)) ^ (x >> 6);
}

WIDE_TARGET static inline void StorePair(Schedule* schedule, int t, Words words) {
    const uint64_t k0 = kSha512Constants[t], k1 = kSha512Constants[t + 1];
    const Words sums = words + Words{k0, k1, k0, k1};
    memcpy(&schedule->words[0][t], &sums, 16);
    memcpy(&schedule->words[1][t], reinterpret_cast<const uint8_t*>(&sums) + 16, 16);
}

// Computes the pair sixteen words later from the pairs 0, 1, 4, 5 and 7 after this one, and stores
// it, with the round constants added, at word t.
#define NEXT_PAIR(t, x0, x1, x4, x5, x7)                                    \
    x0 += SmallSigma0(Between(x0, x1)) + Between(x4, x5) + SmallSigma1(x7); \
    StorePair(schedule, t, x0);

// clang-format off
#define SCHEDULE_LOW(i) SCHEDULE_LOW_##i
#define SCHEDULE_HIGH(i) SCHEDULE_HIGH_##i
#define SCHEDULE_LOW_0 NEXT_PAIR(t + 16, x0, x1, x4, x5, x7)
#define SCHEDULE_LOW_1 NEXT_PAIR(t + 18, x1, x2, x5, x6, x0)
#define SCHEDULE_LOW_2 NEXT_PAIR(t + 20, x2, x3, x6, x7, x1)
#define SCHEDULE_LOW_3 NEXT_PAIR(t + 22, x3, x4, x7, x0, x2)
#define SCHEDULE_HIGH_0 NEXT_PAIR(t + 24, x4, x5, x0, x1, x3)
#define SCHEDULE_HIGH_1 NEXT_PAIR(t + 26, x5, x6, x1, x2, x4)
#define SCHEDULE_HIGH_2 NEXT_PAIR(t + 28, x6, x7, x2, x3, x5)
#define SCHEDULE_HIGH_3 NEXT_PAIR(t + 30, x7, x0, x3, x4, x6)
// clang-format on

// Loads pair i of both blocks.
#define FIRST_PAIR(i)                                       \
    Words x##i = LoadPair(first + 16 * i, second + 16 * i); \
    StorePair(schedule, 2 * i, x##i)

// Runs the first block and computes the schedules of both blocks; `second` may be equal to `first`.
// The loops for the first and second block are separate functions, because each needs all
// registers.
[[gnu::noinline]] WIDE_TARGET static void CompressFirst(uint64_t state[8], const uint8_t* first,
                                                        const uint8_t* second, Schedule* schedule) {
    FIRST_PAIR(0);
    FIRST_PAIR(1);
    FIRST_PAIR(2);
    FIRST_PAIR(3);
    FIRST_PAIR(4);
    FIRST_PAIR(5);
    FIRST_PAIR(6);
    FIRST_PAIR(7);
    SHA512_LOAD_STATE;
    const uint64_t* w = schedule->words[0];
    int t = 0;
    for (; t < 64; t += 16) {
        SHA512_EIGHT_ROUNDS((w + t), SCHEDULE_LOW);
        SHA512_EIGHT_ROUNDS((w + t + 8), SCHEDULE_HIGH);
    }
    SHA512_EIGHT_ROUNDS((w + t), SHA512_NOTHING);
    SHA512_EIGHT_ROUNDS((w + t + 8), SHA512_NOTHING);
    SHA512_ADD_STATE;
}

[[gnu::noinline]] WIDE_TARGET static void CompressSecond(uint64_t state[8],
                                                         const Schedule* schedule) {
    SHA512_LOAD_STATE;
    const uint64_t* w = schedule->words[1];
#pragma GCC unroll 5
    for (int t = 0; t < 80; t += 16, w += 16) {
        SHA512_EIGHT_ROUNDS(w, SHA512_NOTHING);
        SHA512_EIGHT_ROUNDS((w + 8), SHA512_NOTHING);
    }
    SHA512_ADD_STATE;
}

static void CompressWide(uint64_t state[8], const uint8_t* blocks, int count) {
    Schedule schedule;
    for (; count >= 2; count -= 2, blocks += 256) {
        CompressFirst(state, blocks, blocks + 128, &schedule);
        CompressSecond(state, &schedule);
    }
    if (count == 1) CompressFirst(state, blocks, blocks, &schedule);
    Wipe(&schedule, sizeof(schedule));
}

Sha512Compressor Sha512CompressWide() {
    bool can = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
               __builtin_cpu_supports("bmi2");
    return can ? CompressWide : nullptr;
}

#else

Sha512Compressor Sha512CompressWide() { return nullptr; }

#endif

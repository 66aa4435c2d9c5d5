// SHA-512 for processors with wide vectors and three-operand rotates (x86: AVX2 and BMI2).
//
// The message schedules of two blocks are made side by side, while the rounds of the first run;
// the rounds themselves stay scalar. It is plain C++ over vectors, translated for more of the
// processor: without it, the speed of other libraries is out of reach on such a machine.
#include "crypto/hashes.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <bit>
#include <cstring>

#include "crypto/sha512_rounds.h"
#include "text/bytes.h"

#define WIDE_TARGET __attribute__((target("avx2,bmi,bmi2")))

// Words 2i and 2i + 1 of the first block, then the same of the second.
typedef uint64_t Words __attribute__((vector_size(32)));
typedef uint8_t Bytes __attribute__((vector_size(32)));
typedef uint8_t HalfBytes __attribute__((vector_size(16)));

// For each block its 80 words, the round constants added.
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

// The words one further on: the second of `low` and the first of `high`, in both blocks.
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

// The pair sixteen words on, out of the pairs 0, 1, 4, 5 and 7 from here, and its sums to word t.
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

// The first block, and the schedules of both; the second may be the first again. The two loops stay
// functions of their own: each needs all registers there are.
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

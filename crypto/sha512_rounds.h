// The rounds of SHA-512 (FIPS 180-2, 6.3.2), for every form of its compression function. Macros,
// so that each form translates them for its own processor.
#ifndef QUILL_CRYPTO_SHA512_ROUNDS_H
#define QUILL_CRYPTO_SHA512_ROUNDS_H

#include <bit>
#include <cstdint>

// A sum that the compiler leaves in the order written, where it can be told so. The order is what
// the speed of a round hangs on: what waits for the newest value is added last.
#if defined(__has_builtin) && __has_builtin(__builtin_assoc_barrier)
#define SHA512_AS_WRITTEN(sum) __builtin_assoc_barrier(sum)
#else
#define SHA512_AS_WRITTEN(sum) (sum)
#endif

// `ab` is a ^ b of this round, which is b ^ c of the next; `sigma0` of the last round is added to
// its sum here, beside the first steps of this one.
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

// Eight rounds over words w[0] to w[7], the round constants added; `between` is expanded with 0 to
// 3 after every second.
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

// The working variables, and the sum of them and the state that ends a block.
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

#endif

// SHA-1 with the SHA instructions of x86 processors. Only these reach the speed of other
// libraries on a processor that has them; whether it has is asked once, at start.
#include "crypto/hashes.h"

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))

#include <cpuid.h>
#include <immintrin.h>

#define SHA_TARGET __attribute__((target("sha,sse4.1,ssse3")))

// Four rounds. The state is abcd and the words of e that wait in `e`; each group of four words of
// the schedule is made while the rounds of earlier groups run.
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
    for (; count > 0; count--, blocks += 64) {
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

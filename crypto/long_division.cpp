// SPDX-License-Identifier: MIT
// Schoolbook multiplication and long division in base 2^16, with carries that are resolved late.
#include "crypto/long_division.h"

#include <cstring>

// A column can add this many rows of either sign, twice, without overflow: once for a product and
// once for its division.
constexpr int kRowsBeforeSettle = 2048;

void ColumnsPlace(Columns* columns, int count, void* memory) {
    columns->count = count;
    columns->low = static_cast<int32_t*>(memory);
    columns->high = columns->low + count + 1;
}

static void Clear(Columns* columns) {
    memset(columns->low, 0, static_cast<size_t>(ColumnsSize(columns->count)));
}

// The two row loops. The least significant word is at position first + count - 1. They are not
// inlined: if compilers know nothing about `factor`, they use the vector unit's 16-bit
// multiplications.
using RowLoop = void (*)(Columns* columns, int first, const uint16_t* words, int count,
                         uint16_t factor);

[[gnu::always_inline]] static inline void AddRowBody(Columns* columns, int first,
                                                     const uint16_t* words, int count,
                                                     uint16_t factor) {
    int32_t* __restrict low = columns->low + first;
    int32_t* __restrict high = columns->high + first;
    for (int i = 0; i < count; ++i) {
        uint32_t product = uint32_t{words[i]} * factor;
        low[i] += static_cast<uint16_t>(product);
        high[i] += static_cast<uint16_t>(product >> 16);
    }
}

[[gnu::always_inline]] static inline void SubtractRowBody(Columns* columns, int first,
                                                          const uint16_t* words, int count,
                                                          uint16_t factor) {
    int32_t* __restrict low = columns->low + first;
    int32_t* __restrict high = columns->high + first;
    for (int i = 0; i < count; ++i) {
        uint32_t product = uint32_t{words[i]} * factor;
        low[i] -= static_cast<uint16_t>(product);
        high[i] -= static_cast<uint16_t>(product >> 16);
    }
}

[[gnu::noinline]] static void AddRowPortable(Columns* columns, int first, const uint16_t* words,
                                             int count, uint16_t factor) {
    AddRowBody(columns, first, words, count, factor);
}

[[gnu::noinline]] static void SubtractRowPortable(Columns* columns, int first,
                                                  const uint16_t* words, int count,
                                                  uint16_t factor) {
    SubtractRowBody(columns, first, words, count, factor);
}

static RowLoop AddRow = AddRowPortable;
static RowLoop SubtractRow = SubtractRowPortable;

#if defined(__x86_64__) && defined(__GNUC__)

// The same loops, compiled again for vectors of twice the width.
__attribute__((target("avx2"))) static void AddRowWide(Columns* columns, int first,
                                                       const uint16_t* words, int count,
                                                       uint16_t factor) {
    AddRowBody(columns, first, words, count, factor);
}

__attribute__((target("avx2"))) static void SubtractRowWide(Columns* columns, int first,
                                                            const uint16_t* words, int count,
                                                            uint16_t factor) {
    SubtractRowBody(columns, first, words, count, factor);
}

bool LongDivisionUseWide(bool wide) {
    wide = wide && __builtin_cpu_supports("avx2");
    AddRow = wide ? AddRowWide : AddRowPortable;
    SubtractRow = wide ? SubtractRowWide : SubtractRowPortable;
    return wide;
}

#else

bool LongDivisionUseWide(bool) { return false; }

#endif

static const bool kWideAtStart = LongDivisionUseWide(true);

void ColumnsMultiply(Columns* columns, const uint16_t* a, int aCount, const uint16_t* b,
                     int bCount) {
    Clear(columns);
    for (int row = 0; row < bCount; ++row) {
        if (row % kRowsBeforeSettle == kRowsBeforeSettle - 1) ColumnsSettle(columns);
        AddRow(columns, columns->count - aCount - row, a, aCount, b[bCount - 1 - row]);
    }
}

// In a square each product of two different words occurs twice. So each is added once, everything
// is doubled, and then the squares of the single words are added.
void ColumnsSquare(Columns* columns, const uint16_t* a, int count) {
    Clear(columns);
    for (int row = 1; row < count; ++row) {
        if (row % kRowsBeforeSettle == kRowsBeforeSettle - 1) ColumnsSettle(columns);
        AddRow(columns, columns->count - count - row + 1, a, count - row, a[count - row]);
    }
    for (int k = 0; k <= columns->count; ++k) {
        columns->low[k] *= 2;
        columns->high[k] *= 2;
    }
    for (int i = 0; i < count; ++i) {
        uint32_t square = uint32_t{a[count - 1 - i]} * a[count - 1 - i];
        columns->low[columns->count - 1 - 2 * i] += static_cast<uint16_t>(square);
        columns->high[columns->count - 1 - 2 * i] += static_cast<uint16_t>(square >> 16);
    }
}

void ColumnsLoad(Columns* columns, const uint16_t* words, int count, int shift) {
    Clear(columns);
    int32_t* low = columns->low + (columns->count - count);
    for (int i = 0; i < count; ++i) {
        uint32_t shifted = uint32_t{words[i]} << shift;
        low[i - 1] |= static_cast<int32_t>(shifted >> 16);
        low[i] = static_cast<int32_t>(shifted & 0xFFFF);
    }
}

void ColumnsSettle(Columns* columns) {
    int32_t carry = 0;
    for (int k = columns->count - 1; k >= 0; --k) {
        int32_t sum = columns->low[k] + columns->high[k + 1] + carry;
        columns->low[k] = sum & 0xFFFF;
        carry = sum >> 16;
    }
    memset(columns->high, 0, (static_cast<size_t>(columns->count) + 1) * sizeof(int32_t));
}

static inline int64_t Column(const Columns* columns, int k) {
    return k < columns->count ? int64_t{columns->low[k]} + columns->high[k + 1] : 0;
}

// Estimates the quotient word at a position: the dividend's words there divided by the divisor's
// top two words. All rounding is downward, so the result is exact or slightly too small, never too
// large. `above` is everything that is left at and above position k - 1, in units of that position.
// The columns to the right that are not looked at can subtract at most one unit of position k + 1.
// `reciprocal` comes from DivisorReciprocal.
static inline uint32_t EstimateQuotient(const Columns* columns, int k, int64_t above,
                                        uint64_t reciprocal) {
    int64_t top = (above * 65536 + Column(columns, k)) * 65536 + Column(columns, k + 1) +
                  (Column(columns, k + 2) >> 16) - 1;
    if (top <= 0) return 0;
    return static_cast<uint32_t>((static_cast<uint64_t>(top) >> 17) * reciprocal >> 46);
}

// Returns 2^63 divided by (the divisor's top two words + 1). With it no quotient word needs a
// division.
static uint64_t DivisorReciprocal(const uint16_t* divisor, int count) {
    uint64_t top = uint64_t{divisor[0]} << 16 | (count > 1 ? divisor[1] : 0u);
    return (uint64_t{1} << 63) / (top + 1);
}

// Adds a quotient word at its position and propagates the carry.
static void AddToQuotient(uint16_t* quotient, int position, uint32_t word) {
    for (; word != 0 && position >= 0; --position) {
        word += quotient[position];
        quotient[position] = static_cast<uint16_t>(word);
        word >>= 16;
    }
}

// Resolves the carries of the last divisorCount columns into the column before them. That column
// then holds everything that is left there and above.
static void SettleRemainder(Columns* columns, int divisorCount, int64_t above) {
    int first = columns->count - divisorCount;
    int32_t carry = 0;
    for (int k = columns->count - 1; k >= first; --k) {
        int32_t sum = columns->low[k] + columns->high[k + 1] + carry;
        columns->low[k] = sum & 0xFFFF;
        columns->high[k + 1] = 0;
        carry = sum >> 16;
    }
    columns->low[first - 1] = static_cast<int32_t>(above) + carry;
}

// Subtracts the divisor once more if the remainder is not less than it: the estimates are sometimes
// slightly too small.
static void SubtractLast(Columns* columns, const uint16_t* divisor, int divisorCount,
                         uint16_t* quotient) {
    int first = columns->count - divisorCount;
    int32_t above = columns->low[first - 1];
    for (int i = 0; above == 0 && i < divisorCount; ++i) {
        if (columns->low[first + i] < divisor[i]) return;
        if (columns->low[first + i] > divisor[i]) break;
    }
    SubtractRow(columns, first, divisor, divisorCount, 1);
    SettleRemainder(columns, divisorCount, above);
    if (quotient != nullptr) AddToQuotient(quotient, columns->count - 1, 1);
}

void ColumnsDivide(Columns* columns, const uint16_t* divisor, int divisorCount,
                   uint16_t* quotient) {
    uint64_t reciprocal = DivisorReciprocal(divisor, divisorCount);
    int64_t higher = 0;  // left above position k - 1, in its units
    int64_t above = 0;   // left at and above it
    for (int k = 1; k + divisorCount <= columns->count; ++k) {
        if (k % kRowsBeforeSettle == 0) {
            ColumnsSettle(columns);
            higher = Column(columns, k - 2) * 65536;
        }
        uint32_t estimate;
        do {
            estimate = EstimateQuotient(columns, k, higher + Column(columns, k - 1), reciprocal);
            uint16_t word = static_cast<uint16_t>(estimate < 0xFFFF ? estimate : 0xFFFF);
            SubtractRow(columns, k, divisor, divisorCount, word);
            if (quotient != nullptr) AddToQuotient(quotient, k + divisorCount - 1, word);
        } while (estimate > 0xFFFF);
        above = higher + Column(columns, k - 1);
        higher = above * 65536;
    }
    SettleRemainder(columns, divisorCount, above);
    SubtractLast(columns, divisor, divisorCount, quotient);
}

void ColumnsStore(const Columns* columns, uint16_t* words, int count, int shift) {
    const int32_t* low = columns->low + (columns->count - count);
    uint32_t above = 0;
    for (int i = 0; i < count; ++i) {
        uint32_t word = static_cast<uint32_t>(low[i]);
        words[i] = static_cast<uint16_t>((above << 16 | word) >> shift);
        above = word;
    }
}

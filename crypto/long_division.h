// SPDX-License-Identifier: MIT
// Schoolbook multiplication and long division in base 2^16: the core under the arithmetic of
// bignum.h, on plain word arrays, most significant word first. It does not use the Bignum type.
//
// Both add word products without resolving the carries at once. For each word position, Columns
// keeps the sum of the low halves and the sum of the high halves of the products at that position.
// The carries are resolved ("settled") only at the end, from right to left. So the sums of a row
// are independent of each other, and the compiler can vectorise them.
#ifndef QUILL_CRYPTO_LONG_DIVISION_H
#define QUILL_CRYPTO_LONG_DIVISION_H

#include <cstdint>

struct Columns {
    int count;
    // Each has `count` + 1 entries; position 0 is the most significant. The value at position k is
    // low[k] + high[k + 1]. Sums may be negative until they are settled.
    int32_t* low;
    int32_t* high;
};

// Returns the size in bytes of both arrays for `count` columns.
inline constexpr int ColumnsSize(int count) {
    return 2 * (count + 1) * static_cast<int>(sizeof(int32_t));
}
// Places the arrays in `memory`, which has ColumnsSize(count) bytes and is aligned for int32_t.
void ColumnsPlace(Columns* columns, int count, void* memory);

// Sets the columns to the product of a (aCount words) and b (bCount words). The product is in the
// last aCount + bCount columns and is not settled; the columns before it are zero.
void ColumnsMultiply(Columns* columns, const uint16_t* a, int aCount, const uint16_t* b,
                     int bCount);
// The same for a times a.
void ColumnsSquare(Columns* columns, const uint16_t* a, int count);

// Sets the last columns to the `count` words, shifted left by `shift` bits (0 to 15). There must be
// at least one more column than words.
void ColumnsLoad(Columns* columns, const uint16_t* words, int count, int shift);

// Resolves all carries, so that each position is one word. The value must not be negative and must
// fit.
void ColumnsSettle(Columns* columns);

// Divides by `divisor`, which has divisorCount words with bit 15 of the first one set. The columns
// must be settled, there must be more of them than words of the divisor, and the first column must
// be less than the divisor's first word. The settled remainder is then in the last divisorCount
// columns. `quotient` may be null; otherwise it has `count` words, which must be zero before the
// call.
void ColumnsDivide(Columns* columns, const uint16_t* divisor, int divisorCount, uint16_t* quotient);

// Copies the last `count` columns, which must be settled, to `words`, shifted right by `shift` bits
// (0 to 15).
void ColumnsStore(const Columns* columns, uint16_t* words, int count, int shift);

// Chooses between the row loops for wide vectors (x86: AVX2) and the portable ones. By default the
// wide ones are used if the processor has AVX2. Returns true if the wide ones are used now. This is
// for the tests and benchmarks that compare the two.
bool LongDivisionUseWide(bool wide);

#endif

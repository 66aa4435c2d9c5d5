// SPDX-License-Identifier: MIT
// Schoolbook multiplication and long division in base 2^16: the core under the arithmetic of
// bignum.h, on plain word arrays, most significant word first. Knows nothing of Bignum.
//
// Both add up word products without carrying at once. A Columns area keeps, for each word
// position, the sum of the low halves and the sum of the high halves of the products that fall
// there, and only at the end the carries are taken from the right to the left. Sums of a row do
// not wait for each other this way, so the compiler can do many side by side.
#ifndef QUILL_CRYPTO_LONG_DIVISION_H
#define QUILL_CRYPTO_LONG_DIVISION_H

#include <cstdint>

struct Columns {
    int count;
    // Each `count` + 1 entries, position 0 the most significant. Position k is worth
    // low[k] + high[k + 1]; sums may be negative until they are settled.
    int32_t* low;
    int32_t* high;
};

// The bytes of both arrays of `count` columns.
inline constexpr int ColumnsSize(int count) {
    return 2 * (count + 1) * static_cast<int>(sizeof(int32_t));
}
// Lays the arrays into `memory`, ColumnsSize(count) bytes aligned for int32_t.
void ColumnsPlace(Columns* columns, int count, void* memory);

// Makes the columns the product of a (aCount words) and b (bCount words). The product takes the
// last aCount + bCount columns, not settled; the ones before are zero.
void ColumnsMultiply(Columns* columns, const uint16_t* a, int aCount, const uint16_t* b,
                     int bCount);
// The same for a times a.
void ColumnsSquare(Columns* columns, const uint16_t* a, int count);

// Makes the columns the `count` words, in the last positions, shifted left by `shift` bits (0 to
// 15). There is at least one column more than words.
void ColumnsLoad(Columns* columns, const uint16_t* words, int count, int shift);

// Takes all carries, so that each position is one word; the value is not negative and fits.
void ColumnsSettle(Columns* columns);

// Divides by `divisor`, of divisorCount words with bit 15 of the first set. The columns have been
// settled, there are more of them than words of the divisor, and the first column is less than the
// divisor's first word. The remainder is left in the last divisorCount columns,
// settled, the columns before it zero. `quotient`, unless null, has count words, all zero before.
void ColumnsDivide(Columns* columns, const uint16_t* divisor, int divisorCount, uint16_t* quotient);

// Copies the last `count` columns, settled, to words, shifted right by `shift` bits (0 to 15).
void ColumnsStore(const Columns* columns, uint16_t* words, int count, int shift);

// Chooses between the row loops for wide vectors (x86: AVX2) and the portable ones; at start the
// wide ones are in use where the processor has them. Returns whether they now are. For the tests
// and benchmarks that compare the two.
bool LongDivisionUseWide(bool wide);

#endif

// SPDX-License-Identifier: MIT
// Multiprecision integers: making and freeing them, bits and wire forms; then the arithmetic, with
// schoolbook multiplication and long division.
#include "crypto/bignum.h"

#include <bit>
#include <cstdlib>
#include <cstring>

#include "crypto/long_division.h"
#include "text/bytes.h"

static const uint16_t kOne[] = {1, 1};
static const uint16_t kZero[] = {1, 0};
const ConstBignum BignumOne = kOne;
const ConstBignum BignumZero = kZero;

Bignum BignumNew(int words) {
    if (words < 0 || words > kBignumMaxWords) return nullptr;
    Bignum a = static_cast<Bignum>(calloc(static_cast<size_t>(words) + 1, sizeof(uint16_t)));
    if (a != nullptr) a[0] = static_cast<uint16_t>(words);
    return a;
}

Bignum BignumFromUint32(uint32_t value) {
    Bignum a = BignumNew(value > 0xFFFF ? 2 : 1);
    if (a == nullptr) return nullptr;
    a[1] = static_cast<uint16_t>(value & 0xFFFF);
    if (value > 0xFFFF) a[2] = static_cast<uint16_t>(value >> 16);
    return a;
}

Bignum BignumPowerOfTwo(int bit) {
    Bignum a = BignumNew(bit / 16 + 1);
    if (a != nullptr) BignumSetBit(a, bit, 1);
    return a;
}

Bignum BignumCopy(ConstBignum a) {
    if (a == nullptr) return nullptr;
    Bignum copy = BignumNew(a[0]);
    if (copy != nullptr) memcpy(copy, a, (size_t{a[0]} + 1) * sizeof(uint16_t));
    return copy;
}

static int WordCount(ConstBignum a) { return a == nullptr ? 0 : a[0]; }

// The words that BignumNormalise removed are zero, so it is enough to wipe the remaining ones.
void BignumFree(Bignum a) {
    if (a != nullptr) WipeAndFree(a, (size_t{a[0]} + 1) * sizeof(uint16_t));
}

void BignumNormalise(Bignum a) {
    while (WordCount(a) > 1 && a[a[0]] == 0) --a[0];
}

int BignumBitLength(ConstBignum a) {
    int words = WordCount(a);
    while (words > 0 && a[words] == 0) --words;
    return words == 0 ? 0 : 16 * (words - 1) + static_cast<int>(std::bit_width(a[words]));
}

uint8_t BignumByte(ConstBignum a, int index) {
    if (index < 0 || index >= 2 * WordCount(a)) return 0;
    return static_cast<uint8_t>(a[1 + index / 2] >> (index % 2 * 8));
}

int BignumBit(ConstBignum a, int bit) {
    if (bit < 0 || bit >= 16 * WordCount(a)) return 0;
    return (a[1 + bit / 16] >> (bit % 16)) & 1;
}

void BignumSetBit(Bignum a, int bit, int value) {
    if (bit < 0 || bit >= 16 * WordCount(a)) return;
    uint16_t mask = static_cast<uint16_t>(1 << (bit % 16));
    uint16_t& word = a[1 + bit / 16];
    word = static_cast<uint16_t>(value != 0 ? word | mask : word & ~mask);
}

int BignumCompare(ConstBignum a, ConstBignum b) {
    int a_words = WordCount(a), b_words = WordCount(b);
    for (int i = a_words > b_words ? a_words : b_words; i > 0; --i) {
        uint16_t left = i <= a_words ? a[i] : uint16_t{0};
        uint16_t right = i <= b_words ? b[i] : uint16_t{0};
        if (left != right) return left < right ? -1 : 1;
    }
    return 0;
}

Bignum BignumShiftRight(ConstBignum a, int bits) {
    if (a == nullptr) return nullptr;
    int left = BignumBitLength(a) - bits;
    Bignum result = BignumNew(left > 0 ? (left + 15) / 16 : 0);
    if (result == nullptr) return nullptr;
    int skipped = bits / 16;
    for (int i = 1; i <= result[0]; ++i) {
        uint32_t pair = a[i + skipped];
        if (i + skipped < a[0]) pair |= uint32_t{a[i + skipped + 1]} << 16;
        result[i] = static_cast<uint16_t>(pair >> (bits % 16));
    }
    return result;
}

uint16_t BignumModSmall(ConstBignum a, uint16_t modulus) {
    uint32_t remainder = 0;
    for (int i = WordCount(a); i > 0; --i) remainder = (remainder << 16 | a[i]) % modulus;
    return static_cast<uint16_t>(remainder);
}

Bignum BignumFromBytes(const uint8_t* bytes, int count) {
    if (count < 0 || count > 2 * kBignumMaxWords) return nullptr;
    Bignum a = BignumNew((count + 1) / 2);
    if (a == nullptr) return nullptr;
    for (int i = 0; i < count; ++i) {
        uint16_t& word = a[1 + i / 2];
        word = static_cast<uint16_t>(word | bytes[count - 1 - i] << (i % 2 * 8));
    }
    return a;
}

void BignumToBytes(uint8_t* bytes, int count, ConstBignum a) {
    for (int i = 0; i < count; ++i) bytes[i] = BignumByte(a, count - 1 - i);
}

int BignumSsh1Size(ConstBignum a) { return (BignumBitLength(a) + 7) / 8 + 2; }

void BignumToSsh1Bytes(uint8_t* buffer, ConstBignum a) {
    int bits = BignumBitLength(a);
    StoreBig<uint16_t>(buffer, static_cast<uint16_t>(bits));
    BignumToBytes(buffer + 2, (bits + 7) / 8, a);
}

Bignum BignumFromSsh1Bytes(const uint8_t* buffer, int length) {
    if (length < 2) return nullptr;
    int count = (LoadBig<uint16_t>(buffer) + 7) / 8;
    return length - 2 < count ? nullptr : BignumFromBytes(buffer + 2, count);
}

int BignumSsh2Size(ConstBignum a) { return (BignumBitLength(a) + 8) / 8 + 4; }

uint8_t* EncodeMpint(ConstBignum a, int* length) {
    *length = 0;
    if (a == nullptr) return nullptr;
    int bits = BignumBitLength(a);
    int count = bits == 0 ? 0 : (bits + 8) / 8;
    uint8_t* body = static_cast<uint8_t*>(calloc(static_cast<size_t>(count) + 1, 1));
    if (body == nullptr) return nullptr;
    *length = count;
    BignumToBytes(body, count, a);
    return body;
}

// ---------------------------------------------------------------- arithmetic

// The working memory of one operation, in a single allocation. It holds a divisor, shifted left so
// that its top bit is bit 15 of its first word, three word arrays, most significant word first, and
// columns.
struct Scratch {
    void* memory;
    size_t size;
    Columns columns;
    uint16_t* divisor;
    int divisorCount;
    int shift;
    uint16_t* left;
    uint16_t* right;
    uint16_t* quotient;
};

static int SignificantWords(ConstBignum a) { return (BignumBitLength(a) + 15) / 16; }

// Copies the lowest `count` words of a, most significant first.
static void ToWords(uint16_t* words, int count, ConstBignum a) {
    for (int i = 0; i < count; ++i) words[i] = count - i <= a[0] ? a[count - i] : uint16_t{0};
}

static void FromWords(Bignum a, const uint16_t* words, int count) {
    for (int i = 1; i <= a[0]; ++i) a[i] = i <= count ? words[count - i] : uint16_t{0};
}

// `columns`, `left` and `right` are the sizes to make room for. The quotient has one word for each
// column.
static bool ScratchOpen(Scratch* scratch, ConstBignum divisor, int columns, int left, int right) {
    int count = SignificantWords(divisor);
    if (columns < count + 1) columns = count + 1;
    int words = count + left + right + columns;
    scratch->size =
        static_cast<size_t>(ColumnsSize(columns)) + static_cast<size_t>(words) * sizeof(uint16_t);
    scratch->memory = calloc(1, scratch->size);
    if (scratch->memory == nullptr) return false;
    ColumnsPlace(&scratch->columns, columns, scratch->memory);
    scratch->divisor =
        reinterpret_cast<uint16_t*>(static_cast<uint8_t*>(scratch->memory) + ColumnsSize(columns));
    scratch->left = scratch->divisor + count;
    scratch->right = scratch->left + left;
    scratch->quotient = scratch->right + right;
    scratch->divisorCount = count;
    scratch->shift = count == 0 ? 0 : std::countl_zero(divisor[count]);
    ToWords(scratch->divisor, count, divisor);
    for (int i = 0; i < count; ++i) {
        uint32_t pair = uint32_t{scratch->divisor[i]} << 16;
        if (i + 1 < count) pair |= scratch->divisor[i + 1];
        scratch->divisor[i] = static_cast<uint16_t>(pair << scratch->shift >> 16);
    }
    return true;
}

static void ScratchClose(Scratch* scratch) { WipeAndFree(scratch->memory, scratch->size); }

// left = the columns modulo the shifted divisor.
static void ReduceToLeft(Scratch* scratch) {
    ColumnsDivide(&scratch->columns, scratch->divisor, scratch->divisorCount, nullptr);
    ColumnsStore(&scratch->columns, scratch->left, scratch->divisorCount, 0);
}

// Reduces `words`, which is less than the shifted divisor, modulo the divisor itself.
static void ReduceToDivisor(Scratch* scratch, uint16_t* words) {
    int count = scratch->divisorCount;
    ColumnsLoad(&scratch->columns, words, count, scratch->shift);
    ColumnsDivide(&scratch->columns, scratch->divisor, count, nullptr);
    ColumnsStore(&scratch->columns, words, count, scratch->shift);
}

// words = a modulo the shifted divisor. The columns must have room for a.
static void LoadReduced(Scratch* scratch, uint16_t* words, ConstBignum a) {
    int count = SignificantWords(a);
    ToWords(scratch->quotient, count, a);  // the quotient's memory is free: use it for a's words
    ColumnsLoad(&scratch->columns, scratch->quotient, count, 0);
    ColumnsDivide(&scratch->columns, scratch->divisor, scratch->divisorCount, nullptr);
    ColumnsStore(&scratch->columns, words, scratch->divisorCount, 0);
}

static Bignum NormalisedFromWords(const uint16_t* words, int count) {
    Bignum result = BignumNew(count > 0 ? count : 1);
    if (result == nullptr) return nullptr;
    FromWords(result, words, count);
    BignumNormalise(result);
    return result;
}

// Computes quotient and remainder; either may be null. Returns false if there is no memory.
static bool Divide(ConstBignum a, ConstBignum divisor, Bignum quotient, Bignum remainder) {
    int count = SignificantWords(a);
    Scratch scratch;
    if (!ScratchOpen(&scratch, divisor, count + 1, count, 0)) return false;
    if (scratch.divisorCount > 0) {
        ToWords(scratch.left, count, a);
        ColumnsLoad(&scratch.columns, scratch.left, count, scratch.shift);
        ColumnsDivide(&scratch.columns, scratch.divisor, scratch.divisorCount, scratch.quotient);
        if (quotient != nullptr) FromWords(quotient, scratch.quotient, scratch.columns.count);
        ColumnsStore(&scratch.columns, scratch.divisor, scratch.divisorCount, scratch.shift);
        if (remainder != nullptr) FromWords(remainder, scratch.divisor, scratch.divisorCount);
    }
    ScratchClose(&scratch);
    return true;
}

Bignum BignumMod(ConstBignum a, ConstBignum modulus) {
    if (a == nullptr || modulus == nullptr) return nullptr;
    Bignum result = BignumNew(modulus[0]);
    if (result == nullptr || Divide(a, modulus, nullptr, result)) return result;
    BignumFree(result);
    return nullptr;
}

Bignum BignumDiv(ConstBignum a, ConstBignum divisor) {
    if (a == nullptr || divisor == nullptr) return nullptr;
    Bignum result = BignumNew(a[0]);
    if (result == nullptr || Divide(a, divisor, result, nullptr)) return result;
    BignumFree(result);
    return nullptr;
}

// Adds c to the product before the carries are resolved.
Bignum BignumMulAdd(ConstBignum a, ConstBignum b, ConstBignum c) {
    if (a == nullptr || b == nullptr || c == nullptr) return nullptr;
    int aCount = SignificantWords(a), bCount = SignificantWords(b), cCount = SignificantWords(c);
    int count = (aCount + bCount > cCount ? aCount + bCount : cCount) + 1;
    Scratch scratch;
    if (!ScratchOpen(&scratch, BignumZero, count, aCount, bCount)) return nullptr;
    ToWords(scratch.left, aCount, a);
    ToWords(scratch.right, bCount, b);
    ColumnsMultiply(&scratch.columns, scratch.left, aCount, scratch.right, bCount);
    for (int i = 1; i <= cCount; ++i) scratch.columns.low[count - i] += c[i];
    ColumnsSettle(&scratch.columns);
    ColumnsStore(&scratch.columns, scratch.quotient, count, 0);
    int leading = 0;
    while (leading < count && scratch.quotient[leading] == 0) ++leading;
    Bignum result = NormalisedFromWords(scratch.quotient + leading, count - leading);
    ScratchClose(&scratch);
    return result;
}

Bignum BignumModMul(ConstBignum a, ConstBignum b, ConstBignum modulus) {
    if (a == nullptr || b == nullptr || modulus == nullptr) return nullptr;
    int aCount = SignificantWords(a), bCount = SignificantWords(b);
    Scratch scratch;
    if (!ScratchOpen(&scratch, modulus, aCount + bCount + 1, aCount, bCount)) return nullptr;
    if (scratch.divisorCount > 0) {
        ToWords(scratch.left, aCount, a);
        ToWords(scratch.right, bCount, b);
        ColumnsMultiply(&scratch.columns, scratch.left, aCount, scratch.right, bCount);
        ColumnsDivide(&scratch.columns, scratch.divisor, scratch.divisorCount, nullptr);
        ColumnsStore(&scratch.columns, scratch.quotient, scratch.divisorCount, 0);
        ReduceToDivisor(&scratch, scratch.quotient);
    }
    Bignum result = NormalisedFromWords(scratch.quotient, scratch.divisorCount);
    ScratchClose(&scratch);
    return result;
}

// left = base to the power of exponent, modulo the shifted divisor; right holds the base.
static void SquareAndMultiply(Scratch* scratch, ConstBignum exponent) {
    int count = scratch->divisorCount;
    for (int bit = BignumBitLength(exponent) - 1; bit >= 0; --bit) {
        ColumnsSquare(&scratch->columns, scratch->left, count);
        ReduceToLeft(scratch);
        if (BignumBit(exponent, bit)) {
            ColumnsMultiply(&scratch->columns, scratch->left, count, scratch->right, count);
            ReduceToLeft(scratch);
        }
    }
}

// Computes the power of a base that has no more words than the modulus. It reduces each product
// modulo the shifted modulus, a multiple of the modulus; this does not change the remainder modulo
// the modulus itself. A last reduction then gives that remainder.
static Bignum PowerOfReduced(ConstBignum base, ConstBignum exponent, ConstBignum modulus) {
    int count = SignificantWords(modulus);
    Scratch scratch;
    if (!ScratchOpen(&scratch, modulus, 2 * count + 1, count, count)) return nullptr;
    if (count > 0) {
        LoadReduced(&scratch, scratch.left, BignumOne);
        LoadReduced(&scratch, scratch.right, base);
        SquareAndMultiply(&scratch, exponent);
        ReduceToDivisor(&scratch, scratch.left);
    }
    Bignum result = NormalisedFromWords(scratch.left, count);
    ScratchClose(&scratch);
    return result;
}

// Each step works on all columns, so a base longer than the modulus is reduced first.
Bignum BignumModPow(ConstBignum base, ConstBignum exponent, ConstBignum modulus) {
    if (base == nullptr || exponent == nullptr || modulus == nullptr) return nullptr;
    if (SignificantWords(base) <= SignificantWords(modulus))
        return PowerOfReduced(base, exponent, modulus);
    Bignum reduced = BignumMod(base, modulus);
    if (reduced == nullptr) return nullptr;
    Bignum result = PowerOfReduced(reduced, exponent, modulus);
    BignumFree(reduced);
    return result;
}

// The state of Euclid's algorithm: the pair (first, second) and the coefficients of a in them. The
// signs alternate and are not stored.
struct Euclid {
    Bignum first;
    Bignum second;
    Bignum coefficient_first;
    Bignum coefficient_second;
};

static bool EuclidStep(Euclid* state) {
    Bignum quotient = BignumNew(state->first[0]);
    Bignum remainder = BignumNew(state->second[0]);
    Bignum coefficient = nullptr;
    if (quotient != nullptr && remainder != nullptr &&
        Divide(state->first, state->second, quotient, remainder)) {
        BignumNormalise(remainder);
        coefficient = BignumMulAdd(quotient, state->coefficient_second, state->coefficient_first);
    }
    BignumFree(quotient);
    BignumFree(state->first);
    BignumFree(state->coefficient_first);
    *state = {state->second, remainder, state->coefficient_second, coefficient};
    return remainder != nullptr && coefficient != nullptr;
}

// a - b, for b <= a. The result has no leading zero words.
static Bignum Subtract(ConstBignum a, ConstBignum b) {
    Bignum result = BignumCopy(a);
    if (result == nullptr) return nullptr;
    int32_t borrow = 0;
    for (int i = 1; i <= result[0]; ++i) {
        int32_t word = result[i] - (i <= b[0] ? b[i] : 0) + borrow;
        result[i] = static_cast<uint16_t>(word & 0xFFFF);
        borrow = word >> 16;
    }
    BignumNormalise(result);
    return result;
}

// Euclid's algorithm ends at 1 if the numbers have no common factor, and else at 0.
Bignum BignumModInverse(ConstBignum a, ConstBignum modulus) {
    Euclid state = {BignumCopy(modulus), BignumCopy(a), BignumFromUint32(0), BignumFromUint32(1)};
    int sign = 1;
    bool whole = state.first != nullptr && state.second != nullptr &&
                 state.coefficient_first != nullptr && state.coefficient_second != nullptr;
    while (whole && BignumCompare(state.second, BignumOne) > 0) {
        whole = EuclidStep(&state);
        sign = -sign;
    }
    Bignum result = nullptr;
    if (whole && BignumCompare(state.second, BignumOne) == 0) {
        result = sign > 0 ? BignumCopy(state.coefficient_second)
                          : Subtract(modulus, state.coefficient_second);
    }
    BignumFree(state.first);
    BignumFree(state.second);
    BignumFree(state.coefficient_first);
    BignumFree(state.coefficient_second);
    return result;
}

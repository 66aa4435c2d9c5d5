// SPDX-License-Identifier: MIT
// Compares multiprecision integers with GMP: every result, every size from 1 to 2,100 bits, random
// operands and operands that provoke carries and corrections, in both forms of the row loops.
#include <gtest/gtest.h>

#include <cstring>

#include "crypto/bignum.h"
#include "crypto/long_division.h"
#include "crypto_test_support.h"
#include "gmp_bridge.h"
#include "text/bytes.h"

static const int kMaxBits = 2100;

// Runs the rest of a test with the portable row loops or with the fastest ones.
class BignumOracle : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        if (LongDivisionUseWide(GetParam()) != GetParam()) GTEST_SKIP() << "no wide vectors here";
    }
    void TearDown() override { LongDivisionUseWide(true); }
};
INSTANTIATE_TEST_SUITE_P(Rows, BignumOracle, testing::Values(false, true),
                         [](const auto& info) { return info.param ? "wide" : "portable"; });

static void ExpectEqual(Bignum result, const Mpz& wanted, const char* what) {
    Number owned(result);
    ASSERT_EQ(NumberHex(result), wanted.Hex()) << what;
}

static void CheckDivision(ConstBignum a, ConstBignum m) {
    Mpz za(a), zm(m), quotient, remainder;
    mpz_fdiv_qr(quotient.value, remainder.value, za.value, zm.value);
    Number r(BignumMod(a, m)), q(BignumDiv(a, m));
    ASSERT_EQ(r.get()[0], m[0]);
    ASSERT_EQ(q.get()[0], a[0]);
    ASSERT_EQ(NumberHex(r.get()), remainder.Hex()) << za.Hex() << " mod " << zm.Hex();
    ASSERT_EQ(NumberHex(q.get()), quotient.Hex()) << za.Hex() << " div " << zm.Hex();
}

static void CheckProducts(ConstBignum a, ConstBignum b, ConstBignum m) {
    Mpz za(a), zb(b), zm(m), wanted;
    mpz_mul(wanted.value, za.value, zb.value);
    mpz_add(wanted.value, wanted.value, zm.value);
    ExpectEqual(BignumMulAdd(a, b, m), wanted, "a*b + c");
    mpz_mul(wanted.value, za.value, zb.value);
    mpz_mod(wanted.value, wanted.value, zm.value);
    ExpectEqual(BignumModMul(a, b, m), wanted, "a*b mod m");
}

static void CheckPower(ConstBignum a, ConstBignum exponent, ConstBignum m) {
    Mpz za(a), ze(exponent), zm(m), wanted;
    mpz_powm(wanted.value, za.value, ze.value, zm.value);
    ExpectEqual(BignumModPow(a, exponent, m), wanted, "a^e mod m");
}

static void CheckInverse(ConstBignum a, ConstBignum m) {
    Mpz za(a), zm(m), wanted;
    Number result(BignumModInverse(a, m));
    if (mpz_cmp_ui(zm.value, 1) <= 0 || mpz_sgn(za.value) == 0) return;
    bool coprime = mpz_invert(wanted.value, za.value, zm.value) != 0;
    ASSERT_EQ(result != nullptr, coprime);
    if (!coprime) return;
    ASSERT_EQ(NumberHex(result.get()), wanted.Hex());
}

static void CheckOrder(ConstBignum a, ConstBignum b) {
    Mpz za(a), zb(b);
    int wanted = mpz_cmp(za.value, zb.value);
    ASSERT_EQ(BignumCompare(a, b), (wanted > 0) - (wanted < 0));
    ASSERT_EQ(BignumBitLength(a),
              mpz_sgn(za.value) == 0 ? 0 : static_cast<int>(mpz_sizeinbase(za.value, 2)));
    uint16_t small = static_cast<uint16_t>(1 + RandomBelow(65535));
    ASSERT_EQ(BignumModSmall(a, small), mpz_fdiv_ui(za.value, small));
}

static Number RandomOperand(int max_bits) {
    return RandomNumber(RandomBelow(max_bits + 1), RandomBelow(6));
}

TEST_P(BignumOracle, EverySizeMultipliesAndDividesExactly) {
    for (int bits = 1; bits <= kMaxBits && !HasFatalFailure(); bits++) {
        for (int shape = 0; shape < 3; shape++) {
            Number a = RandomNumber(bits, shape), b = RandomOperand(kMaxBits);
            Number m = RandomNumber(1 + RandomBelow(bits), RandomBelow(6));
            CheckProducts(a.get(), b.get(), m.get());
            CheckProducts(b.get(), m.get(), a.get());
            CheckDivision(a.get(), m.get());
            CheckDivision(b.get(), a.get());
            CheckOrder(a.get(), b.get());
        }
    }
}

TEST_P(BignumOracle, EverySizeRaisesToAShortPower) {
    for (int bits = 1; bits <= kMaxBits && !HasFatalFailure(); bits++) {
        Number a = RandomOperand(kMaxBits), m = RandomNumber(bits, bits % 7 == 0 ? 1 : 0);
        CheckPower(a.get(), RandomNumber(1 + RandomBelow(17), 0).get(), m.get());
    }
}

TEST_P(BignumOracle, EverySizeInverts) {
    for (int bits = 1; bits <= kMaxBits && !HasFatalFailure(); bits++) {
        Number m = RandomNumber(bits, RandomBelow(6));
        CheckInverse(RandomOperand(bits).get(), m.get());
    }
}

TEST_P(BignumOracle, LongExponentsOfAnyShapeAreExact) {
    for (int round = 0; round < 60 && !HasFatalFailure(); round++) {
        Number a = RandomOperand(kMaxBits), m = RandomNumber(1 + RandomBelow(1100), round % 6);
        CheckPower(a.get(), RandomNumber(RandomBelow(300), RandomBelow(6)).get(), m.get());
    }
}

TEST_P(BignumOracle, EqualOperandsZeroOneAllOnesAndPowersOfTwoAreCombined) {
    std::vector<Number> numbers;
    for (int bits : {0, 1, 2, 15, 16, 17, 31, 32, 33, 64, 160, 1023, 1024, 1025, 2100}) {
        for (int shape = 1; shape < 6; shape++) numbers.push_back(RandomNumber(bits, shape));
    }
    for (const Number& a : numbers) {
        for (const Number& b : numbers) {
            if (BignumBitLength(b.get()) == 0) continue;
            CheckDivision(a.get(), b.get());
            CheckProducts(a.get(), a.get(), b.get());
            CheckOrder(a.get(), b.get());
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(BignumOracle, OneNumberMayBeEveryOperand) {
    for (int bits = 1; bits <= kMaxBits && !HasFatalFailure(); bits++) {
        Number a = RandomNumber(bits, bits % 6);
        CheckProducts(a.get(), a.get(), a.get());
        CheckDivision(a.get(), a.get());
        CheckOrder(a.get(), a.get());
        CheckInverse(a.get(), a.get());
        if (bits <= 200) CheckPower(a.get(), a.get(), a.get());
    }
}

TEST_P(BignumOracle, EverySizeInvertsNumbersFarAboveTheModulus) {
    for (int bits = 2; bits <= 400 && !HasFatalFailure(); bits++) {
        CheckInverse(RandomOperand(kMaxBits).get(), RandomNumber(bits, RandomBelow(6)).get());
    }
}

// Quotient estimates that have to be corrected: dividends just below, at and above multiples.
TEST_P(BignumOracle, DividendsNextToAMultipleOfTheDivisorAreExact) {
    for (int round = 0; round < 3000 && !HasFatalFailure(); round++) {
        Number m = RandomNumber(17 + RandomBelow(300), RandomBelow(6));
        Number q = RandomNumber(1 + RandomBelow(300), RandomBelow(6));
        Mpz product(m.get()), zq(q.get());
        mpz_mul(product.value, product.value, zq.value);
        for (int offset = -1; offset <= 1; offset++) {
            Mpz dividend;
            offset < 0 ? mpz_sub_ui(dividend.value, product.value, 1)
                       : mpz_add_ui(dividend.value, product.value, static_cast<unsigned>(offset));
            CheckDivision(FromMpz(dividend).get(), m.get());
        }
    }
}

// More words than rows that a column can add without a carry.
TEST_P(BignumOracle, NumbersOfThousandsOfWordsAreExact) {
    for (int shape : {0, 1}) {
        Number a = RandomNumber(16 * 5000, shape), b = RandomNumber(16 * 4500, shape);
        CheckProducts(a.get(), b.get(), a.get());
        Number m = RandomNumber(16 * 2100 + 3, shape);
        CheckProducts(a.get(), b.get(), m.get());
        CheckDivision(a.get(), m.get());
        CheckDivision(a.get(), RandomNumber(40, 0).get());
    }
}

static Number Repeated(int words, uint16_t word) {
    Number a(BignumNew(words));
    for (int i = 1; i <= words; i++) a.get()[i] = word;
    return a;
}

// Both halves of the product of these words are close to 65,535. At this size their sums in a
// column would no longer fit one of 32 bits, were carries never taken on the way.
TEST(BignumSizes, ProductsAndQuotientsOfMoreThan16384WordsAreExact) {
    const Number a = Repeated(16600, 0xFF01), b = Repeated(16590, 0xFEFF);
    const Number product(BignumMulAdd(a.get(), b.get(), b.get()));
    Mpz wanted(a.get()), zb(b.get());
    mpz_mul(wanted.value, wanted.value, zb.value);
    mpz_add(wanted.value, wanted.value, zb.value);
    EXPECT_EQ(NumberHex(product.get()), wanted.Hex());
    CheckOrder(product.get(), a.get());
    mpz_mod(wanted.value, wanted.value, Mpz(a.get()).value);
    ExpectEqual(BignumMod(product.get(), a.get()), wanted, "the remainder");
}

TEST(BignumSizes, NumbersOfTheMaximumWordsCombineWithShorterOnes) {
    const Number largest = RandomNumber(16 * kBignumMaxWords, 0);
    CheckDivision(largest.get(), RandomNumber(16 * (kBignumMaxWords - 40) - 7, 1).get());
    CheckDivision(largest.get(), RandomNumber(50, 0).get());
    CheckOrder(largest.get(), RandomNumber(16 * 40000, 1).get());
    CheckProducts(RandomNumber(16 * 40000, 1).get(), RandomNumber(400, 0).get(),
                  RandomNumber(16 * 39990 - 3, 0).get());
    ExpectEqual(BignumMulAdd(largest.get(), BignumOne, BignumZero), Mpz(largest.get()), "a*1");
}

TEST(BignumWire, NumbersOfMoreThan16384WordsReadBack) {
    for (int words : {16385, 32768, kBignumMaxWords}) {
        const Number a = RandomNumber(16 * words - 3, 0);
        ByteString bytes(2 * static_cast<size_t>(words));
        BignumToBytes(bytes.data(), Size(bytes), a.get());
        Number back(BignumFromBytes(bytes.data(), Size(bytes)));
        ASSERT_EQ(BignumCompare(a.get(), back.get()), 0) << words;
        ASSERT_EQ(NumberHex(a.get()), NumberHex(back.get()));
        Mpz wanted(a.get());
        mpz_fdiv_q_2exp(wanted.value, wanted.value, 200001);
        Number shifted(BignumShiftRight(a.get(), 200001));
        EXPECT_EQ(NumberHex(shifted.get()), wanted.Hex());
        int length = -1;
        uint8_t* body = EncodeMpint(a.get(), &length);
        EXPECT_EQ(ToHex(body, static_cast<size_t>(length)), ToHex(bytes));
        WipeAndFree(body, static_cast<size_t>(length));
        BignumSetBit(back.get(), 16 * words - 1, 1);
        EXPECT_EQ(BignumBit(back.get(), 16 * words - 1), 1);
        EXPECT_EQ(BignumByte(back.get(), 2 * words - 1) & 0x80, 0x80);
        EXPECT_EQ(BignumBitLength(back.get()), 16 * words);
    }
}

TEST(BignumWire, EveryFormOfRandomNumbersReadsBack) {
    for (int bits = 0; bits <= kMaxBits; bits++) {
        Number a = RandomNumber(bits, RandomBelow(6));
        ByteString form(static_cast<size_t>(BignumSsh1Size(a.get())));
        BignumToSsh1Bytes(form.data(), a.get());
        Number back(BignumFromSsh1Bytes(form.data(), Size(form)));
        ASSERT_EQ(BignumCompare(a.get(), back.get()), 0) << bits;
        Mpz za(a.get());
        for (int i = 0; i < bits + 20; i++) {
            ASSERT_EQ(BignumBit(a.get(), i), mpz_tstbit(za.value, static_cast<mp_bitcnt_t>(i)));
            ASSERT_EQ(BignumByte(a.get(), i / 8) >> (i % 8) & 1, BignumBit(a.get(), i));
        }
    }
}

// The same value with that many more zero words on top.
static Number Padded(const Number& a, int words) {
    Number padded(BignumNew(a.get()[0] + words));
    memcpy(padded.get() + 1, a.get() + 1, size_t{a.get()[0]} * sizeof(uint16_t));
    return padded;
}

TEST(BignumSizes, EverySizeShiftsByAnyCount) {
    for (int bits = 0; bits <= kMaxBits; bits++) {
        Number a = Padded(RandomNumber(bits, RandomBelow(6)), RandomBelow(3));
        for (int count : {0, 1, 15, 16, 17, RandomBelow(bits + 40), bits - 1, bits, bits + 1}) {
            if (count < 0) continue;
            Number shifted(BignumShiftRight(a.get(), count));
            Mpz wanted(a.get());
            mpz_fdiv_q_2exp(wanted.value, wanted.value, static_cast<mp_bitcnt_t>(count));
            ASSERT_EQ(NumberHex(shifted.get()), wanted.Hex()) << bits << " >> " << count;
            ASSERT_EQ(shifted.get()[0], std::max(0, bits - count + 15) / 16);
        }
    }
}

TEST(BignumSizes, EveryPowerOfTwoHasOneBitAndItsWords) {
    for (int bit = 0; bit <= kMaxBits; bit++) {
        Number a(BignumPowerOfTwo(bit));
        Mpz wanted;
        mpz_setbit(wanted.value, static_cast<mp_bitcnt_t>(bit));
        ASSERT_EQ(NumberHex(a.get()), wanted.Hex());
        ASSERT_EQ(a.get()[0], bit / 16 + 1);
    }
}

TEST(BignumSizes, EverySizeSetsAndClearsEachBit) {
    for (int bits = 1; bits <= kMaxBits; bits += bits < 70 ? 1 : 29) {
        Number a = RandomNumber(bits, 0);
        Mpz wanted(a.get());
        for (int i = 0; i < 16 * a.get()[0]; i++) {
            bool set = RandomBelow(2) == 1;
            BignumSetBit(a.get(), i, set);
            set ? mpz_setbit(wanted.value, static_cast<mp_bitcnt_t>(i))
                : mpz_clrbit(wanted.value, static_cast<mp_bitcnt_t>(i));
            ASSERT_EQ(BignumBit(a.get(), i), set);
        }
        ASSERT_EQ(NumberHex(a.get()), wanted.Hex()) << bits;
    }
}

TEST(BignumSizes, EverySizeIsCopiedNormalisedAndComparedWithAnyWordCount) {
    for (int bits = 0; bits <= kMaxBits; bits++) {
        Number a = RandomNumber(bits, RandomBelow(6)), padded = Padded(a, 1 + RandomBelow(4));
        Number copy(BignumCopy(padded.get()));
        ASSERT_EQ(copy.get()[0], padded.get()[0]);
        ASSERT_EQ(memcmp(copy.get(), padded.get(), 2 * (size_t{copy.get()[0]} + 1)), 0);
        ASSERT_EQ(BignumCompare(a.get(), padded.get()), 0);
        ASSERT_EQ(BignumBitLength(padded.get()), bits);
        BignumNormalise(copy.get());
        ASSERT_EQ(copy.get()[0], std::max(1, (bits + 15) / 16));
        ASSERT_EQ(NumberHex(copy.get()), NumberHex(a.get()));
    }
}

// Checks the sizes, and that the mpint equals the one made from GMP's bytes.
TEST(BignumSizes, EverySizeGoesToBytesAndBackAndToAnMpint) {
    for (int bits = 0; bits <= kMaxBits; bits++) {
        Number a = Padded(RandomNumber(bits, RandomBelow(6)), RandomBelow(3));
        const std::string digits = bits == 0 ? "" : NumberHex(a.get());
        const ByteString magnitude = FromHex(digits);
        ByteString bytes(magnitude.size() + 3, 0xEE);
        BignumToBytes(bytes.data(), Size(bytes), a.get());
        ASSERT_EQ(ToHex(bytes), "000000" + ToHex(magnitude));
        Number back(BignumFromBytes(bytes.data(), Size(bytes)));
        ASSERT_EQ(back.get()[0], (Size(bytes) + 1) / 2);
        ASSERT_EQ(BignumCompare(back.get(), a.get()), 0);
        int length = -1;
        uint8_t* body = EncodeMpint(a.get(), &length);
        ASSERT_EQ(ToHex(body, static_cast<size_t>(length)),
                  (bits > 0 && bits % 8 == 0 ? "00" : "") + ToHex(magnitude));
        ASSERT_LE(length + 4, BignumSsh2Size(a.get()));
        ASSERT_EQ(BignumSsh2Size(a.get()), (bits + 8) / 8 + 4);
        ASSERT_EQ(BignumSsh1Size(a.get()), Size(magnitude) + 2);
        WipeAndFree(body, static_cast<size_t>(length));
    }
}

TEST(BignumSizes, From32BitNumbersOfEverySizeAreTheirValues) {
    for (int round = 0; round < 5000; round++) {
        uint32_t value = static_cast<uint32_t>(random_engine() >> 32) >> RandomBelow(32);
        Number a(BignumFromUint32(value));
        ASSERT_EQ(a.get()[0], value > 0xFFFF ? 2 : 1);
        ASSERT_EQ(mpz_get_ui(Mpz(a.get()).value), value);
    }
}

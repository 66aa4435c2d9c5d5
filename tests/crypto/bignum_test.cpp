// SPDX-License-Identifier: MIT
// Multiprecision integers: the edge cases, by name.
#include "crypto/bignum.h"

#include <gtest/gtest.h>

#include "crypto/long_division.h"
#include "crypto_test_support.h"
#include "gmp_bridge.h"
#include "text/bytes.h"

static Number Make(int words, std::initializer_list<int> values) {
    Number a(BignumNew(words));
    int at = 1;
    for (int value : values) a.get()[at++] = static_cast<uint16_t>(value);
    return a;
}

TEST(Bignum, NewIsZeroFilledWithItsWordCountFirst) {
    Number a(BignumNew(5));
    for (int i = 0; i <= 5; i++) EXPECT_EQ(a.get()[i], i == 0 ? 5 : 0);
}

TEST(Bignum, NewRefusesWordCountsThatDoNotFitTheCountWord) {
    EXPECT_EQ(BignumNew(65536), nullptr);
    EXPECT_EQ(BignumNew(-1), nullptr);
    EXPECT_NE(Number(BignumNew(65535)), nullptr);
}

TEST(Bignum, FromUint32TakesTwoWordsAbove65535) {
    Number small(BignumFromUint32(65535)), large(BignumFromUint32(65536));
    EXPECT_EQ(small.get()[0], 1);
    EXPECT_EQ(small.get()[1], 0xFFFF);
    EXPECT_EQ(large.get()[0], 2);
    EXPECT_EQ(large.get()[1], 0);
    EXPECT_EQ(large.get()[2], 1);
}

TEST(Bignum, PowerOfTwoHasBitOverSixteenPlusOneWords) {
    for (int bit : {0, 1, 15, 16, 17, 31, 32, 1023, 1024}) {
        Number a(BignumPowerOfTwo(bit));
        EXPECT_EQ(a.get()[0], bit / 16 + 1);
        EXPECT_EQ(BignumBitLength(a.get()), bit + 1);
        EXPECT_EQ(BignumBit(a.get(), bit), 1);
    }
}

TEST(Bignum, ConstantsHoldOneAndZero) {
    EXPECT_EQ(BignumOne[0], 1);
    EXPECT_EQ(BignumOne[1], 1);
    EXPECT_EQ(BignumBitLength(BignumZero), 0);
}

TEST(Bignum, CopyKeepsLeadingZeroWords) {
    Number a = Make(3, {7, 0, 0});
    Number copy(BignumCopy(a.get()));
    EXPECT_EQ(copy.get()[0], 3);
    EXPECT_EQ(BignumCompare(a.get(), copy.get()), 0);
}

TEST(Bignum, FreeAcceptsNull) {
    BignumFree(nullptr);
    WipeAndFree(nullptr, 10);
}

TEST(Bignum, NormaliseStopsAtOneWord) {
    Number a = Make(4, {5, 6, 0, 0}), zero = Make(4, {0, 0, 0, 0});
    BignumNormalise(a.get());
    BignumNormalise(zero.get());
    EXPECT_EQ(a.get()[0], 2);
    EXPECT_EQ(zero.get()[0], 1);
}

TEST(Bignum, FromBytesOfAnOddCountPutsOnlyTheFirstByteInTheTopWord) {
    const uint8_t bytes[5] = {0x12, 0x34, 0x56, 0x78, 0x9A};
    Number a(BignumFromBytes(bytes, 5));
    EXPECT_EQ(a.get()[0], 3);
    EXPECT_EQ(a.get()[3], 0x0012);
    EXPECT_EQ(a.get()[2], 0x3456);
    EXPECT_EQ(a.get()[1], 0x789A);
}

TEST(Bignum, FromNoBytesIsZeroWithoutWords) {
    Number a(BignumFromBytes(nullptr, 0));
    EXPECT_EQ(a.get()[0], 0);
    EXPECT_EQ(BignumBitLength(a.get()), 0);
    EXPECT_EQ(BignumCompare(a.get(), BignumZero), 0);
}

TEST(Bignum, BitLengthIgnoresLeadingZeroWords) {
    EXPECT_EQ(BignumBitLength(Make(4, {0, 0x10, 0, 0}).get()), 21);
}

TEST(Bignum, BitLengthOfZeroIsZeroWithAnyWordCount) {
    for (int words : {0, 1, 2, 64}) EXPECT_EQ(BignumBitLength(Number(BignumNew(words)).get()), 0);
}

TEST(Bignum, Ssh1SizeAndSsh2SizeFollowTheBitLength) {
    const struct {
        int bits, ssh1, ssh2;
    } kRows[] = {{0, 2, 5}, {1, 3, 5}, {7, 3, 5}, {8, 3, 6}, {9, 4, 6}, {1024, 130, 133}};
    for (const auto& row : kRows) {
        Number a = RandomNumber(row.bits, 0);
        EXPECT_EQ(BignumSsh1Size(a.get()), row.ssh1) << row.bits;
        EXPECT_EQ(BignumSsh2Size(a.get()), row.ssh2) << row.bits;
    }
}

TEST(Bignum, ByteBeyondTheLengthIsZero) {
    Number a = Make(2, {0x2211, 0x4433});
    const int wanted[] = {0x11, 0x22, 0x33, 0x44, 0, 0};
    for (int i = 0; i < 6; i++) EXPECT_EQ(BignumByte(a.get(), i), wanted[i]);
    EXPECT_EQ(BignumByte(a.get(), 1000000), 0);
    EXPECT_EQ(BignumByte(a.get(), -1), 0);
}

TEST(Bignum, BitBeyondTheLengthIsZeroAndCannotBeSet) {
    Number a = Make(2, {0xFFFF, 0x7FFF});
    EXPECT_EQ(BignumBit(a.get(), 30), 1);
    EXPECT_EQ(BignumBit(a.get(), 31), 0);
    EXPECT_EQ(BignumBit(a.get(), 32), 0);
    EXPECT_EQ(BignumBit(a.get(), -1), 0);
    BignumSetBit(a.get(), 32, 1);
    BignumSetBit(a.get(), -1, 0);
    EXPECT_EQ(NumberHex(a.get()), "7fffffff");
}

TEST(Bignum, SetBitSetsAndClears) {
    Number a = Make(1, {0});
    BignumSetBit(a.get(), 15, 1);
    EXPECT_EQ(a.get()[1], 0x8000);
    BignumSetBit(a.get(), 0, 2);
    EXPECT_EQ(a.get()[1], 0x8001);
    BignumSetBit(a.get(), 15, 0);
    EXPECT_EQ(a.get()[1], 0x0001);
}

TEST(Bignum, CompareOfDifferentWordCountsUsesOnlyTheValue) {
    Number a = Make(1, {7}), b = Make(3, {7, 0, 0}), c = Make(3, {7, 0, 1});
    EXPECT_EQ(BignumCompare(a.get(), b.get()), 0);
    EXPECT_EQ(BignumCompare(b.get(), a.get()), 0);
    EXPECT_EQ(BignumCompare(a.get(), c.get()), -1);
    EXPECT_EQ(BignumCompare(c.get(), b.get()), 1);
}

TEST(Bignum, ShiftRightHasTheWordsOfTheBitsThatAreLeft) {
    Number a = FromHexNumber("123456789abcdef0123456789abcdef");
    for (int bits = 0; bits <= 140; bits++) {
        Number shifted(BignumShiftRight(a.get(), bits));
        int left = BignumBitLength(a.get()) - bits;
        EXPECT_EQ(shifted.get()[0], left > 0 ? (left + 15) / 16 : 0);
        Mpz wanted(a.get());
        mpz_fdiv_q_2exp(wanted.value, wanted.value, static_cast<mp_bitcnt_t>(bits));
        EXPECT_EQ(NumberHex(shifted.get()), wanted.Hex()) << bits;
    }
}

TEST(Bignum, Ssh1FormIsABitCountAndTheMagnitude) {
    Number a = FromHexNumber("1ff");
    uint8_t buffer[8] = {};
    BignumToSsh1Bytes(buffer, a.get());
    EXPECT_EQ(ToHex(buffer, 5), "000901ff00");
    Number back(BignumFromSsh1Bytes(buffer, 4));
    EXPECT_EQ(NumberHex(back.get()), "1ff");
}

TEST(Bignum, Ssh1FormOfZeroIsTwoZeroBytes) {
    uint8_t buffer[2] = {0xFF, 0xFF};
    BignumToSsh1Bytes(buffer, BignumZero);
    EXPECT_EQ(ToHex(buffer, 2), "0000");
    Number back(BignumFromSsh1Bytes(buffer, 2));
    EXPECT_EQ(BignumBitLength(back.get()), 0);
}

TEST(Bignum, Ssh1FormThatIsCutShortIsRefused) {
    ByteString form = FromHex("0011010203");
    for (int length = 0; length < 5; length++) {
        // Exactly its size, so that the sanitizer sees a read past its end.
        ByteString exact(form.begin(), form.begin() + length);
        EXPECT_EQ(BignumFromSsh1Bytes(exact.data(), length), nullptr) << length;
    }
    EXPECT_EQ(NumberHex(Number(BignumFromSsh1Bytes(form.data(), 5)).get()), "10203");
}

static std::string Mpint(const std::string& digits) {
    int length = -1;
    uint8_t* body = EncodeMpint(FromHexNumber(digits).get(), &length);
    std::string text = ToHex(body, static_cast<size_t>(length));
    WipeAndFree(body, static_cast<size_t>(length));
    return text;
}

// The examples of RFC 4251, section 5.
TEST(Bignum, MpintHasNoLeadingZerosButOneBeforeASetTopBit) {
    EXPECT_EQ(Mpint("0"), "");
    EXPECT_EQ(Mpint("9a378f9b2e332a7"), "09a378f9b2e332a7");
    EXPECT_EQ(Mpint("80"), "0080");
    EXPECT_EQ(Mpint("7f"), "7f");
    EXPECT_EQ(Mpint("000000ff"), "00ff");
    EXPECT_EQ(Mpint("1"), "01");
}

TEST(Bignum, ToBytesKeepsLeadingZeroBytes) {
    uint8_t bytes[4];
    BignumToBytes(bytes, 4, FromHexNumber("abcd").get());
    EXPECT_EQ(ToHex(bytes, 4), "0000abcd");
}

TEST(Bignum, ModSmallIsTheRemainder) {
    Number a = FromHexNumber("ffffffffffffffffffffffffffffffff");
    EXPECT_EQ(BignumModSmall(a.get(), 10), 5);
    EXPECT_EQ(BignumModSmall(a.get(), 0xFFFF), 0);
    EXPECT_EQ(BignumModSmall(a.get(), 1), 0);
}

TEST(Bignum, RemainderHasTheModulusWordCountAndQuotientTheDividends) {
    Number a = FromHexNumber("123456789abc"), m = Make(4, {0x100, 0, 0, 0});
    Number remainder(BignumMod(a.get(), m.get())), quotient(BignumDiv(a.get(), m.get()));
    EXPECT_EQ(remainder.get()[0], 4);
    EXPECT_EQ(quotient.get()[0], 3);
    EXPECT_EQ(NumberHex(remainder.get()), "bc");
    EXPECT_EQ(NumberHex(quotient.get()), "123456789a");
}

TEST(Bignum, DividendShorterThanTheDivisorIsItsOwnRemainder) {
    Number a = FromHexNumber("1234"), m = FromHexNumber("ffffffffffffffff");
    EXPECT_EQ(NumberHex(Number(BignumMod(a.get(), m.get())).get()), "1234");
    EXPECT_EQ(NumberHex(Number(BignumDiv(a.get(), m.get())).get()), "0");
}

// A top word with bit 15 set needs no shift; with bit 0 alone, one of 15.
TEST(Bignum, ModulusIsShiftedByNothingWhenItsTopBitIsSetAndBy15AtMost) {
    Number base = FromHexNumber("fedcba9876543210fedcba9876543211"), e = FromHexNumber("10001");
    for (const char* digits : {"8000000000000001", "10000000000000f", "ffff", "1ffff"}) {
        Number m = FromHexNumber(digits);
        Mpz b(base.get()), x(e.get()), modulus(m.get());
        mpz_powm(b.value, b.value, x.value, modulus.value);
        EXPECT_EQ(NumberHex(Number(BignumModPow(base.get(), e.get(), m.get())).get()), b.Hex());
    }
}

TEST(Bignum, ResultsOfTheMaximumWordsFitAndLargerOnesAreNull) {
    Number largest = RandomNumber(16 * kBignumMaxWords, 1), two(BignumFromUint32(2));
    Number same(BignumMulAdd(largest.get(), BignumOne, BignumZero));
    ASSERT_NE(same, nullptr);
    EXPECT_EQ(BignumCompare(same.get(), largest.get()), 0);
    EXPECT_EQ(BignumMulAdd(largest.get(), BignumOne, BignumOne), nullptr);
    EXPECT_EQ(BignumMulAdd(largest.get(), two.get(), BignumZero), nullptr);
    EXPECT_EQ(NumberHex(Number(BignumMod(largest.get(), two.get())).get()), "1");
}

TEST(Bignum, PowerOfZeroIsOneButZeroModuloOne) {
    Number five = FromHexNumber("5"), seven = FromHexNumber("7");
    EXPECT_EQ(NumberHex(Number(BignumModPow(five.get(), BignumZero, seven.get())).get()), "1");
    EXPECT_EQ(NumberHex(Number(BignumModPow(BignumZero, BignumZero, seven.get())).get()), "1");
    EXPECT_EQ(NumberHex(Number(BignumModPow(five.get(), BignumZero, BignumOne)).get()), "0");
    EXPECT_EQ(NumberHex(Number(BignumModPow(five.get(), seven.get(), BignumOne)).get()), "0");
}

// The linker redirects each squaring of a power to this function (--wrap).
static int widest_square = 0;
void RealSquare(Columns* columns, const uint16_t* words,
                int count) __asm__("__real__Z13ColumnsSquareP7ColumnsPKti");
void SeeSquare(Columns* columns, const uint16_t* words,
               int count) __asm__("__wrap__Z13ColumnsSquareP7ColumnsPKti");
void SeeSquare(Columns* columns, const uint16_t* words, int count) {
    widest_square = std::max(widest_square, columns->count);
    RealSquare(columns, words, count);
}

TEST(Bignum, StepsOfAPowerAreAsWideAsTheModulusHoweverLongTheBaseIs) {
    const Number e = FromHexNumber("10001"), m = RandomNumber(1000, 0);
    for (int bits : {10, 1000, 1009, 2000, 2100, 500000}) {
        const Number base = RandomNumber(bits, 0);
        widest_square = 0;
        Mpz b(base.get()), x(e.get()), modulus(m.get());
        mpz_powm(b.value, b.value, x.value, modulus.value);
        EXPECT_EQ(NumberHex(Number(BignumModPow(base.get(), e.get(), m.get())).get()), b.Hex());
        EXPECT_EQ(widest_square, 2 * m.get()[0] + 1) << bits;
    }
}

TEST(Bignum, NothingDividesByZero) {
    Number a = FromHexNumber("123456789a");
    EXPECT_EQ(NumberHex(Number(BignumMod(a.get(), BignumZero)).get()), "0");
    EXPECT_EQ(NumberHex(Number(BignumDiv(a.get(), BignumZero)).get()), "0");
    EXPECT_EQ(NumberHex(Number(BignumModMul(a.get(), a.get(), BignumZero)).get()), "0");
    EXPECT_EQ(NumberHex(Number(BignumModPow(a.get(), a.get(), BignumZero)).get()), "0");
}

TEST(Bignum, InverseOfACommonFactorIsRefusedAndDoesNotRunForever) {
    Number six = FromHexNumber("6"), nine = FromHexNumber("9");
    EXPECT_EQ(BignumModInverse(six.get(), nine.get()), nullptr);
    EXPECT_EQ(BignumModInverse(BignumZero, nine.get()), nullptr);
    EXPECT_EQ(BignumModInverse(six.get(), BignumZero), nullptr);
}

TEST(Bignum, InverseOfOneIsOneAndOfTheModulusLessOneItself) {
    Number m = FromHexNumber("e956602b83d195dbe945b3ac702fc61f81571f1d");
    Number last = FromHexNumber("e956602b83d195dbe945b3ac702fc61f81571f1c");
    EXPECT_EQ(NumberHex(Number(BignumModInverse(BignumOne, m.get())).get()), "1");
    EXPECT_EQ(NumberHex(Number(BignumModInverse(last.get(), m.get())).get()),
              NumberHex(last.get()));
}

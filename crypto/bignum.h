// SPDX-License-Identifier: MIT
// Unsigned multiprecision integers.
//
// A Bignum is a heap array of 16-bit words: word 0 is the number n of value words, words 1 to n
// hold the value, least significant first. Zero may have any n. Byte i of a value, counted from
// the least significant, is the low byte of word 1 + i/2 for even i and its high byte for odd i.
//
// Whoever receives a new Bignum owns it and releases it with BignumFree, which wipes it. A value
// has at most 65,535 words; what would need more, or finds no memory, is null. Only BignumFree
// takes a null integer, here and in all of crypto/. Where a peer decides the size of a result, the
// caller looks at it before it computes with it; where only memory could be short, it does not.
#ifndef QUILL_CRYPTO_BIGNUM_H
#define QUILL_CRYPTO_BIGNUM_H

#include <cstdint>

typedef uint16_t* Bignum;
typedef const uint16_t* ConstBignum;

inline constexpr int kBignumMaxWords = 65535;

extern const ConstBignum BignumOne;   // n = 1
extern const ConstBignum BignumZero;  // n = 1

// ---------------------------------------------------------------- life

Bignum BignumNew(int words);              // zero, n = words
Bignum BignumFromUint32(uint32_t value);  // n = 2 above 65,535, else 1
Bignum BignumPowerOfTwo(int bit);         // 2^bit, n = bit/16 + 1
Bignum BignumCopy(ConstBignum a);         // same n and words
void BignumFree(Bignum a);
void BignumNormalise(Bignum a);  // drops most significant zero words while n > 1

// ---------------------------------------------------------------- bits, bytes, order

int BignumBitLength(ConstBignum a);                // index of the highest set bit + 1; 0 for zero
uint8_t BignumByte(ConstBignum a, int index);      // 0 beyond the words
int BignumBit(ConstBignum a, int bit);             // 0 or 1; 0 beyond the words
void BignumSetBit(Bignum a, int bit, int value);   // ignored beyond the words
int BignumCompare(ConstBignum a, ConstBignum b);   // -1, 0, 1; missing words count as 0
Bignum BignumShiftRight(ConstBignum a, int bits);  // n = (bit length - bits + 15)/16, at least 0
uint16_t BignumModSmall(ConstBignum a, uint16_t modulus);  // the remainder; modulus above 0

// ---------------------------------------------------------------- wire forms

// From `count` big-endian bytes, n = (count + 1)/2.
Bignum BignumFromBytes(const uint8_t* bytes, int count);
// The lowest `count` bytes, big-endian, with leading zero bytes where the value is shorter.
void BignumToBytes(uint8_t* bytes, int count, ConstBignum a);

// The SSH-1 form: the bit count as a big-endian 16-bit number, then (bits + 7)/8 bytes,
// big-endian. Values of more than 65,535 bits do not fit it.
int BignumSsh1Size(ConstBignum a);  // bytes of it
void BignumToSsh1Bytes(uint8_t* buffer, ConstBignum a);
// Null when `length` bytes do not hold all of it. It takes 2 + (stated bits + 7)/8 bytes; leading
// zeros are no error.
Bignum BignumFromSsh1Bytes(const uint8_t* buffer, int length);

// The SSH-2 form is an `mpint` (RFC 4251, 5).
int BignumSsh2Size(ConstBignum a);  // at most so many bytes with its length field
// The body of the mpint without its length field, in a new block of *length bytes: no redundant
// leading zero bytes, a zero byte before a set top bit, nothing at all for zero. The caller
// releases it with WipeAndFree (text/bytes.h).
uint8_t* EncodeMpint(ConstBignum a, int* length);

// ---------------------------------------------------------------- arithmetic

// A modulus or divisor is never zero; should one be, remainder and quotient are zero. No operation
// takes the same time for all values: how long it runs tells of the size and of the bits of its
// operands, above all of an exponent.
Bignum BignumMulAdd(ConstBignum a, ConstBignum b, ConstBignum c);        // a*b + c, normalised
Bignum BignumMod(ConstBignum a, ConstBignum modulus);                    // a mod m, n that of m
Bignum BignumDiv(ConstBignum a, ConstBignum divisor);                    // a div m, n that of a
Bignum BignumModMul(ConstBignum a, ConstBignum b, ConstBignum modulus);  // a*b mod m, normalised
// base^exponent mod m, normalised: a squaring for each bit of the exponent and a product for each
// bit that is 1, whose cost grows with the square of the modulus. A longer base costs one division.
Bignum BignumModPow(ConstBignum base, ConstBignum exponent, ConstBignum modulus);
// The inverse of a modulo m, 0 < a; null when a and m have a common factor.
Bignum BignumModInverse(ConstBignum a, ConstBignum modulus);

#endif

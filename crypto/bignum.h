// SPDX-License-Identifier: MIT
// Unsigned multiprecision integers, for the public-key operations.
//
// A Bignum is a heap array of 16-bit words: word 0 is the number n of value words, words 1 to n
// hold the value, least significant first. Zero may have any n. Byte i of a value, counted from the
// least significant, is the low byte of word 1 + i/2 if i is even, and its high byte if i is odd.
//
// The caller owns each new Bignum and releases it with BignumFree, which wipes it. A value has at
// most 65,535 words. A result that needs more, or for which there is no memory, is null. Every
// operation accepts null integers: an integer made from one is null too, and every other operation
// takes it for a zero without words. So callers need to check only the last result of a
// calculation for null.
#ifndef QUILL_CRYPTO_BIGNUM_H
#define QUILL_CRYPTO_BIGNUM_H

#include <cstdint>

using Bignum = uint16_t*;
using ConstBignum = const uint16_t*;

inline constexpr int kBignumMaxWords = 65535;

extern const ConstBignum BignumOne;   // n = 1
extern const ConstBignum BignumZero;  // n = 1

// ---------------------------------------------------------------- making and freeing

Bignum BignumNew(int words);              // zero, n = words
Bignum BignumFromUint32(uint32_t value);  // n = 2 above 65,535, else 1
Bignum BignumPowerOfTwo(int bit);         // 2^bit, n = bit/16 + 1
Bignum BignumCopy(ConstBignum a);         // same n and words
void BignumFree(Bignum a);
void BignumNormalise(Bignum a);  // removes most significant zero words while n > 1

// ---------------------------------------------------------------- bits, bytes, order

int BignumBitLength(ConstBignum a);                // index of the highest set bit + 1; 0 for zero
uint8_t BignumByte(ConstBignum a, int index);      // 0 after the last word
int BignumBit(ConstBignum a, int bit);             // 0 or 1; 0 after the last word
void BignumSetBit(Bignum a, int bit, int value);   // does nothing after the last word
int BignumCompare(ConstBignum a, ConstBignum b);   // -1, 0, 1; missing words count as 0
Bignum BignumShiftRight(ConstBignum a, int bits);  // n = (bit length - bits + 15)/16, at least 0
uint16_t BignumModSmall(ConstBignum a, uint16_t modulus);  // the remainder; modulus above 0

// ---------------------------------------------------------------- wire forms

// Makes a number of `count` big-endian bytes, n = (count + 1)/2.
Bignum BignumFromBytes(const uint8_t* bytes, int count);
// Writes the lowest `count` bytes, big-endian, with leading zero bytes if the value is shorter.
void BignumToBytes(uint8_t* bytes, int count, ConstBignum a);

// The SSH-1 form: the bit count as a big-endian 16-bit number, then (bits + 7)/8 bytes,
// big-endian. It cannot hold values of more than 65,535 bits.
int BignumSsh1Size(ConstBignum a);  // the form's size in bytes
void BignumToSsh1Bytes(uint8_t* buffer, ConstBignum a);
// Returns null if `length` bytes do not hold all of it. It reads 2 + (stated bits + 7)/8 bytes.
// Leading zeros are allowed.
Bignum BignumFromSsh1Bytes(const uint8_t* buffer, int length);

// The SSH-2 form is an `mpint` (RFC 4251, 5).
int BignumSsh2Size(ConstBignum a);  // an upper bound of its bytes, length field included
// Returns the body of the mpint, without its length field, in a new block of *length bytes. It has
// no redundant leading zero bytes, but a zero byte before a set top bit; for zero it has no bytes.
// The caller releases it with WipeAndFree (text/bytes.h). Null, with *length 0, if the number is
// null or there is no memory.
uint8_t* EncodeMpint(ConstBignum a, int* length);

// ---------------------------------------------------------------- arithmetic

// A modulus or divisor should not be zero; if it is, remainder and quotient are zero. No operation
// runs in constant time: its duration reveals something about the size and the bits of its
// operands, most of all of an exponent.
Bignum BignumMulAdd(ConstBignum a, ConstBignum b, ConstBignum c);        // a*b + c, normalised
Bignum BignumMod(ConstBignum a, ConstBignum modulus);                    // a mod m, n that of m
Bignum BignumDiv(ConstBignum a, ConstBignum divisor);                    // a div m, n that of a
Bignum BignumModMul(ConstBignum a, ConstBignum b, ConstBignum modulus);  // a*b mod m, normalised
// base^exponent mod m, normalised. It takes a squaring for each bit of the exponent and a
// multiplication for each bit that is 1; the cost of each grows with the square of the modulus
// size. A base longer than the modulus costs one division more.
Bignum BignumModPow(ConstBignum base, ConstBignum exponent, ConstBignum modulus);
// The inverse of a modulo m, for a > 0; null if a and m have a common factor.
Bignum BignumModInverse(ConstBignum a, ConstBignum modulus);

#endif

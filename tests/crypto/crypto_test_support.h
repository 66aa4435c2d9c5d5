// SPDX-License-Identifier: MIT
// What the tests of crypto/ share: random input with a fixed seed, short forms for byte strings
// and integers, and the clock behind SeedRandom.
#ifndef QUILL_TESTS_CRYPTO_CRYPTO_TEST_SUPPORT_H
#define QUILL_TESTS_CRYPTO_CRYPTO_TEST_SUPPORT_H

#include <deque>
#include <memory>
#include <random>
#include <string>

#include "crypto/bignum.h"
#include "vector_file.h"

extern std::mt19937_64 random_engine;  // the same numbers in every run

int RandomBelow(int limit);  // 0 .. limit - 1
ByteString RandomBytes(int count);
inline int Size(const ByteString& bytes) { return static_cast<int>(bytes.size()); }

extern int clock_milliseconds;  // what GetSystemTime reports since midnight

// The next results of rand (redirected by the linker); after them come the library's own.
extern std::deque<int> scripted_draws;

// Owns a Bignum and releases it.
struct BignumRelease {
    void operator()(Bignum a) const { BignumFree(a); }
};
typedef std::unique_ptr<uint16_t, BignumRelease> Number;

Number FromHexNumber(const std::string& digits);
std::string NumberHex(ConstBignum a);  // without leading zeros; "0" for zero, "null" for null

// A number of exactly `bits` bits (0: zero). `shape` 0 to 5 selects random bits or a shape that
// provokes carries and corrections, such as all ones or a power of two.
Number RandomNumber(int bits, int shape);

#endif

// SPDX-License-Identifier: MIT
// The one source of random numbers: the runtime library's rand, seeded from the clock.
//
// There are only 37 different seeds, so the numbers can be guessed. This simplicity is intended.
// The whole process has one generator state, which every other caller of rand shares.
#ifndef QUILL_CRYPTO_RANDOM_H
#define QUILL_CRYPTO_RANDOM_H

#include <cstdint>

// Seeds the generator with the clock's milliseconds (GetSystemTime, wMilliseconds) modulo 37.
void SeedRandom();

// Returns the next value of rand that is not 0.
int RandomNonZero();

// Returns the low 8 bits of one RandomNonZero. The result can be 0.
uint8_t RandomByte();

#endif

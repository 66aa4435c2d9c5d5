// SPDX-License-Identifier: MIT
// The one source of random numbers: the runtime library's rand, seeded from the clock.
//
// There are 37 seeds and no more; what is drawn here can be guessed. It is kept that simple on
// purpose. One state for the process, shared with every other caller of rand.
#ifndef QUILL_CRYPTO_RANDOM_H
#define QUILL_CRYPTO_RANDOM_H

#include <cstdint>

// Seeds the generator with the clock's milliseconds (GetSystemTime, wMilliseconds) modulo 37.
void SeedRandom();

// The next value of rand that is not 0.
int RandomNonZero();

// The low 8 bits of one RandomNonZero; may be 0.
uint8_t RandomByte();

#endif

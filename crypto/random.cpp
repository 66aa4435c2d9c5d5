// SPDX-License-Identifier: MIT
// Random numbers from the runtime library's rand. This is a separate file so that a fuzz target can
// replace it.
#include "crypto/random.h"

#include <cstdlib>

#include "windows_ce.h"

constexpr unsigned kSeeds = 37;

void SeedRandom() {
    SYSTEMTIME now = {};
    GetSystemTime(&now);
    srand(now.wMilliseconds % kSeeds);
}

int RandomNonZero() {
    int value = rand();
    while (value == 0) value = rand();
    return value;
}

uint8_t RandomByte() { return static_cast<uint8_t>(RandomNonZero() & 0xFF); }

// SPDX-License-Identifier: MIT
// GMP judges the product's numbers.
#ifndef QUILL_FUZZ_JUDGED_POWERS_H
#define QUILL_FUZZ_JUDGED_POWERS_H

#include <string>

#include "crypto/public_key.h"

void Require(bool holds, const char* what);

// The linker redirects the product's modular powers (--wrap): each is compared with GMP's. The last
// one's base, in as many bytes as asked for.
std::string LastBase(int bytes);

// Whether the 40 bytes of r and s are a signature of that SHA-1 digest, by the rules of FIPS 186-2.
bool IsSignature(const DssKey& key, const uint8_t* signature, const uint8_t* digest);

#endif

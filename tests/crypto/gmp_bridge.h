// SPDX-License-Identifier: MIT
// Converts integers of crypto/ to GMP and back.
#ifndef QUILL_TESTS_CRYPTO_GMP_BRIDGE_H
#define QUILL_TESTS_CRYPTO_GMP_BRIDGE_H

#include <gmp.h>

#include "crypto_test_support.h"

// Owns an mpz_t and clears it.
struct Mpz {
    mpz_t value;
    Mpz() { mpz_init(value); }
    explicit Mpz(ConstBignum a);
    Mpz(const Mpz&) = delete;
    Mpz& operator=(const Mpz&) = delete;
    ~Mpz() { mpz_clear(value); }
    std::string Hex() const;
};
Number FromMpz(const Mpz& a);

#endif

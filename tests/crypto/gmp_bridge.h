// SPDX-License-Identifier: MIT
// Integers of GMP beside those of crypto/.
#ifndef QUILL_TESTS_CRYPTO_GMP_BRIDGE_H
#define QUILL_TESTS_CRYPTO_GMP_BRIDGE_H

#include <gmp.h>

#include "crypto_test_support.h"

// An mpz_t that clears itself.
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

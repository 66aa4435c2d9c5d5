// SPDX-License-Identifier: MIT
// Converts integers of crypto/ to GMP and back.
#include "gmp_bridge.h"

Mpz::Mpz(ConstBignum a) {
    mpz_init(value);
    mpz_import(value, a[0], -1, sizeof(uint16_t), 0, 0, a + 1);
}

std::string Mpz::Hex() const {
    std::string text(mpz_sizeinbase(value, 16) + 2, '\0');
    mpz_get_str(text.data(), 16, value);
    text.resize(text.find('\0'));
    return text;
}

Number FromMpz(const Mpz& a) { return FromHexNumber(a.Hex()); }

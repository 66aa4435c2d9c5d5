// SPDX-License-Identifier: MIT
#include "fuzz/judged_powers.h"

#include <gmpxx.h>
#include <cstdio>
#include <cstdlib>

static mpz_class last_base;

void Require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "broken: %s\n", what);
    abort();
}

static mpz_class NumberOf(ConstBignum a) {
    mpz_class number;
    mpz_import(number.get_mpz_t(), a[0], -1, sizeof(uint16_t), 0, 0, a + 1);
    return number;
}

static mpz_class NumberOf(const uint8_t* bytes, size_t count) {
    mpz_class number;
    mpz_import(number.get_mpz_t(), count, 1, 1, 0, 0, bytes);
    return number;
}

static mpz_class Power(const mpz_class& base, const mpz_class& exponent, const mpz_class& modulus) {
    mpz_class power;
    mpz_powm(power.get_mpz_t(), base.get_mpz_t(), exponent.get_mpz_t(), modulus.get_mpz_t());
    return power;
}

std::string LastBase(int bytes) {
    std::string all(static_cast<size_t>(bytes), '\0');
    for (size_t i = 0; i < all.size(); ++i) {
        const mpz_class byte = last_base >> 8 * i & 255;
        all[all.size() - 1 - i] = static_cast<char>(byte.get_ui());
    }
    return all;
}

Bignum RealPower(ConstBignum base, ConstBignum exponent,
                 ConstBignum modulus) __asm__("__real__Z12BignumModPowPKtS0_S0_");
Bignum JudgedPower(ConstBignum base, ConstBignum exponent,
                   ConstBignum modulus) __asm__("__wrap__Z12BignumModPowPKtS0_S0_");

Bignum JudgedPower(ConstBignum base, ConstBignum exponent, ConstBignum modulus) {
    last_base = NumberOf(base);
    const Bignum power = RealPower(base, exponent, modulus);
    Require(power && NumberOf(power) == Power(last_base, NumberOf(exponent), NumberOf(modulus)),
            "a power is GMP's");
    return power;
}

bool IsSignature(const DssKey& key, const uint8_t* signature, const uint8_t* digest) {
    const mpz_class p = NumberOf(key.p), q = NumberOf(key.q);
    const mpz_class r = NumberOf(signature, 20), s = NumberOf(signature + 20, 20);
    if (r == 0 || r >= q || s == 0 || s >= q) return false;
    mpz_class w;
    if (!mpz_invert(w.get_mpz_t(), s.get_mpz_t(), q.get_mpz_t())) return false;
    const mpz_class u1 = NumberOf(digest, 20) * w % q, u2 = r * w % q;
    const mpz_class v = Power(NumberOf(key.g), u1, p) * Power(NumberOf(key.y), u2, p) % p % q;
    return v == r;
}

// SPDX-License-Identifier: MIT
// What the tests of crypto/ share.
#include "crypto_test_support.h"

#include "windows_ce.h"

std::mt19937_64 random_engine(20240229);
int clock_milliseconds = 0;

void GetSystemTime(SYSTEMTIME* time) {
    *time = {};
    time->wHour = static_cast<WORD>(clock_milliseconds / 3600000 % 24);
    time->wMinute = static_cast<WORD>(clock_milliseconds / 60000 % 60);
    time->wSecond = static_cast<WORD>(clock_milliseconds / 1000 % 60);
    time->wMilliseconds = static_cast<WORD>(clock_milliseconds % 1000);
}

std::deque<int> scripted_draws;

int RealRand() __asm__("__real_rand");
int ScriptedRand() __asm__("__wrap_rand");
int ScriptedRand() {
    if (scripted_draws.empty()) return RealRand();
    const int value = scripted_draws.front();
    scripted_draws.pop_front();
    return value;
}

int RandomBelow(int limit) {
    return static_cast<int>(random_engine() % static_cast<uint64_t>(limit));
}

ByteString RandomBytes(int count) {
    ByteString bytes(static_cast<size_t>(count));
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random_engine());
    return bytes;
}

Number FromHexNumber(const std::string& digits) {
    ByteString bytes = FromHex(digits);
    return Number(BignumFromBytes(bytes.data(), Size(bytes)));
}

std::string NumberHex(ConstBignum a) { return a == nullptr ? "null" : Mpz(a).Hex(); }

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

static void Shape(Mpz* a, int bits, int shape) {
    mp_bitcnt_t top = static_cast<mp_bitcnt_t>(bits - 1);
    if (shape == 1) {  // all ones
        mpz_set_ui(a->value, 0);
        mpz_setbit(a->value, top + 1);
        mpz_sub_ui(a->value, a->value, 1);
    } else if (shape == 2) {  // a power of two
        mpz_set_ui(a->value, 0);
    } else if (shape == 3) {  // long runs of ones and zeros
        for (mp_bitcnt_t i = 0; i < top; i++) {
            (i / 24) % 2 ? mpz_setbit(a->value, i) : mpz_clrbit(a->value, i);
        }
    } else if (shape == 4) {  // a small number on top of zeros
        mpz_fdiv_q_2exp(a->value, a->value, top - top / 8);
        mpz_mul_2exp(a->value, a->value, top - top / 8);
    } else if (shape == 5) {  // almost a power of two
        mpz_set_ui(a->value, 3);
    }
}

Number RandomNumber(int bits, int shape) {
    Mpz a;
    if (bits > 0) {
        ByteString bytes = RandomBytes((bits + 7) / 8);
        mpz_import(a.value, bytes.size(), 1, 1, 1, 0, bytes.data());
        mpz_fdiv_r_2exp(a.value, a.value, static_cast<mp_bitcnt_t>(bits - 1));
        Shape(&a, bits, shape);
        mpz_fdiv_r_2exp(a.value, a.value, static_cast<mp_bitcnt_t>(bits));
        mpz_setbit(a.value, static_cast<mp_bitcnt_t>(bits - 1));
    }
    return FromMpz(a);
}

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

std::string NumberHex(ConstBignum a) {
    if (a == nullptr) return "null";
    ByteString bytes;
    for (int i = 2 * a[0]; i-- > 0;) bytes.push_back(BignumByte(a, i));
    const std::string digits = ToHex(bytes);
    const size_t first = digits.find_first_not_of('0');
    return first == std::string::npos ? "0" : digits.substr(first);
}

// A bit of such a shape below the highest bit, which is always set.
static bool ShapedBit(int bit, int top, int shape, bool random) {
    switch (shape) {
        case 1:
            return true;  // all ones
        case 2:
            return false;  // a power of two
        case 3:
            return bit / 24 % 2 != 0;  // long runs of ones and zeros
        case 4:
            return bit >= top - top / 8 && random;  // a small number on top of zeros
        case 5:
            return bit < 2;  // almost a power of two
        default:
            return random;
    }
}

Number RandomNumber(int bits, int shape) {
    if (bits <= 0) return FromHexNumber("00");
    const int top = bits - 1;
    const ByteString random = RandomBytes((bits + 7) / 8);
    ByteString bytes(random.size());
    for (int bit = 0; bit < bits; bit++) {
        const size_t at = bytes.size() - 1 - static_cast<size_t>(bit / 8);
        const int mask = 1 << bit % 8;
        if (bit == top || ShapedBit(bit, top, shape, random[at] & mask))
            bytes[at] = static_cast<uint8_t>(bytes[at] | mask);
    }
    return FromHexNumber(ToHex(bytes));
}

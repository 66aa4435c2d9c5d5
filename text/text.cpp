// SPDX-License-Identifier: MIT
// Bounded conversions between UTF-16 and the ANSI code page, and the expansion of escape text.
#include "text/text.h"

template <typename Unit>
static int BoundedLength(const Unit* text, int most) {
    int length = 0;
    while (length < most && text[length]) ++length;
    return length;
}

int AnsiFromWide(LPCWSTR text, char* bytes, int capacity) {
    const int units = BoundedLength(text, capacity - 1);
    const int length =
        WideCharToMultiByte(CP_ACP, 0, text, units, bytes, capacity - 1, nullptr, nullptr);
    bytes[length] = 0;
    return length;
}

int WideFromAnsi(const char* bytes, LPWSTR text, int capacity) {
    const int count = BoundedLength(bytes, capacity - 1);
    const int length = MultiByteToWideChar(CP_ACP, 0, bytes, count, text, capacity - 1);
    text[length] = 0;
    return length;
}

void CopyBounded(LPWSTR to, LPCWSTR from, int capacity) {
    for (; capacity > 1 && *from; --capacity) *to++ = *from++;
    if (capacity > 0) *to = 0;
}

// ---------------------------------------------------------------- escape text

constexpr int kMostDigits = 3;

namespace {

struct Output {
    BYTE* bytes;
    int capacity;
    int count;
};

}  // namespace

static void Emit(Output* output, int value) {
    if (output->count < output->capacity) output->bytes[output->count++] = static_cast<BYTE>(value);
}

static bool IsOctalDigit(char c) { return c >= '0' && c <= '7'; }

// Returns the value of the octal digits at *text and moves *text past them.
static int TakeValue(const char** text) {
    int value = 0;
    for (int digits = 0; digits < kMostDigits && IsOctalDigit(**text); ++digits)
        value = value * 8 + (*(*text)++ - '0');
    return value;
}

int ExpandEscapeText(const char* text, BYTE* bytes, int capacity) {
    Output output = {bytes, capacity, 0};
    while (*text) {
        const char c = *text++;
        Emit(&output, c == '\\' ? TakeValue(&text) : c);
    }
    return output.count;
}

// Bounded conversions between UTF-16 and the ANSI code page.
#include "text/ansi_text.h"

template <typename Unit>
static int BoundedLength(const Unit* text, int most) {
    int length = 0;
    while (length < most && text[length]) length++;
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

// The expansion of escape text.
#include "text/escape_text.h"

namespace {

constexpr int kMostDigits = 3;

struct Output {
    BYTE* bytes;
    int capacity;
    int count;
};

void Emit(Output* output, int value) {
    if (output->count < output->capacity) output->bytes[output->count++] = static_cast<BYTE>(value);
}

bool IsOctalDigit(char c) { return c >= '0' && c <= '7'; }

// The digits at `text` as a value; moves past them.
int TakeValue(const char** text) {
    int value = 0;
    for (int digits = 0; digits < kMostDigits && IsOctalDigit(**text); digits++)
        value = value * 8 + (*(*text)++ - '0');
    return value;
}

}  // namespace

int ExpandEscapeText(const char* text, BYTE* bytes, int capacity) {
    Output output = {bytes, capacity, 0};
    while (*text) {
        const char c = *text++;
        Emit(&output, c == '\\' ? TakeValue(&text) : c);
    }
    return output.count;
}

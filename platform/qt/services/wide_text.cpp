// UTF-16 and UTF-8, and case without a locale.
#include "platform/qt/services/wide_text.h"

#include <QChar>
#include <QString>

namespace {

bool IsHigh(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLow(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUtf8(std::string* bytes, char32_t point) {
    const auto tail = [&](int shift) {
        bytes->push_back(static_cast<char>(0x80 | ((point >> shift) & 0x3F)));
    };
    if (point < 0x80) {
        bytes->push_back(static_cast<char>(point));
    } else if (point < 0x800) {
        bytes->push_back(static_cast<char>(0xC0 | (point >> 6)));
        tail(0);
    } else if (point < 0x10000) {
        bytes->push_back(static_cast<char>(0xE0 | (point >> 12)));
        tail(6), tail(0);
    } else {
        bytes->push_back(static_cast<char>(0xF0 | (point >> 18)));
        tail(12), tail(6), tail(0);
    }
}

char16_t KeepOutOfAscii(char16_t from, char32_t to) {
    if (to > 0xFFFF || (from > 0x7F && to <= 0x7F)) return from;
    return static_cast<char16_t>(to);
}

}  // namespace

std::string Utf8FromWide(std::u16string_view text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); i++) {
        char32_t point = text[i];
        if (IsHigh(point) && i + 1 < text.size() && IsLow(text[i + 1]))
            point = 0x10000 + ((point - 0xD800) << 10) + (text[++i] - 0xDC00u);
        AppendUtf8(&bytes, point);
    }
    return bytes;
}

std::u16string WideFromUtf8(std::string_view bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())).toStdU16String();
}

char16_t UpperUnit(char16_t unit) {
    return KeepOutOfAscii(unit, QChar::toUpper(static_cast<char32_t>(unit)));
}

char16_t LowerUnit(char16_t unit) {
    return KeepOutOfAscii(unit, QChar::toLower(static_cast<char32_t>(unit)));
}

int CompareWithoutCase(const char16_t* a, const char16_t* b) {
    while (*a && LowerUnit(*a) == LowerUnit(*b)) a++, b++;
    return LowerUnit(*a) - LowerUnit(*b);
}

void CopyUnits(char16_t* to, const char16_t* from, int capacity) {
    for (; capacity > 1 && *from; --capacity) *to++ = *from++;
    if (capacity > 0) *to = 0;
}

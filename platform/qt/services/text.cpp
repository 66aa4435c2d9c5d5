// SPDX-License-Identifier: MIT
// Text: UTF-16 and UTF-8, code page 1252, case without a locale, the plain string calls, wsprintfW.
#include "platform/qt/services/services.h"

#include <cstdarg>
#include <QChar>
#include <QString>

#include "windows_ce.h"

// The surrogates of UTF-16, and where they end.
constexpr char32_t kFirstHigh = 0xD800, kFirstLow = 0xDC00, kAfterLow = 0xE000;

static bool IsHigh(char32_t unit) { return unit >= kFirstHigh && unit < kFirstLow; }
static bool IsLow(char32_t unit) { return unit >= kFirstLow && unit < kAfterLow; }

static void AppendUtf8(std::string* bytes, char32_t point) {
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

static char16_t KeepOutOfAscii(char16_t from, char32_t to) {
    if (to > 0xFFFF || (from > 0x7F && to <= 0x7F)) return from;
    return static_cast<char16_t>(to);
}

// Takes one character, or half of one that is not whole.
static char32_t TakePoint(std::u16string_view text, size_t* at) {
    const char32_t first = text[(*at)++];
    if (!IsHigh(first) || *at == text.size() || !IsLow(text[*at])) return first;
    return 0x10000 + ((first - kFirstHigh) << 10) + (text[(*at)++] - kFirstLow);
}

std::string Utf8FromWide(std::u16string_view text) {
    std::string bytes;
    for (size_t i = 0; i < text.size();) AppendUtf8(&bytes, TakePoint(text, &i));
    return bytes;
}

std::u16string WideFromUtf8(std::string_view bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())).toStdU16String();
}

std::string Printable(std::string_view text) {
    constexpr char32_t kNotUtf8 = 0xFFFD;
    const std::u16string wide = WideFromUtf8(text);
    std::string shown;
    for (size_t i = 0; i < wide.size();) {
        const char32_t point = TakePoint(wide, &i);
        AppendUtf8(&shown, QChar::isPrint(point) && point != kNotUtf8 ? point : U'?');
    }
    return shown;
}

char16_t UpperUnit(char16_t unit) {
    return KeepOutOfAscii(unit, QChar::toUpper(static_cast<char32_t>(unit)));
}

char16_t LowerUnit(char16_t unit) {
    return KeepOutOfAscii(unit, QChar::toLower(static_cast<char32_t>(unit)));
}

int CompareWithoutCase(const char16_t* a, const char16_t* b) {
    while (*a && LowerUnit(*a) == LowerUnit(*b)) ++a, ++b;
    return LowerUnit(*a) - LowerUnit(*b);
}

void CopyUnits(char16_t* to, const char16_t* from, int capacity) {
    for (; capacity > 1 && *from; --capacity) *to++ = *from++;
    if (capacity > 0) *to = 0;
}

constexpr UINT kCodePage1252 = 1252;

// 0x80 to 0x9F. The five bytes that the code page does not define keep their value.
// clang-format off
static const WCHAR kUpperControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
// clang-format on

constexpr WCHAR kAfterUpperControls = 0xA0;

static WCHAR WideOf(char byte) {
    const BYTE value = static_cast<BYTE>(byte);
    return value >= 0x80 && value < kAfterUpperControls ? kUpperControls[value - 0x80] : value;
}

static bool ByteOf(WCHAR unit, char* byte) {
    int value = -1;
    if (unit < 0x80 || (unit >= kAfterUpperControls && unit <= 0xFF)) value = unit;
    for (int i = 0; i < 32 && value < 0; ++i)
        if (kUpperControls[i] == unit) value = 0x80 + i;
    *byte = static_cast<char>(value);
    return value >= 0;
}

static bool IsAnsi(UINT code_page) { return code_page == CP_ACP || code_page == kCodePage1252; }

// Returns the number of units to convert; 0 if the call must fail.
static size_t UnitsGiven(int size, size_t terminated_length) {
    if (size == -1) return terminated_length + 1;
    return size > 0 ? static_cast<size_t>(size) : 0;
}

int MultiByteToWideChar(UINT code_page, DWORD, LPCSTR bytes, int size, LPWSTR text, int capacity) {
    if (!IsAnsi(code_page) || !bytes || capacity < 0 || (capacity > 0 && !text)) return 0;
    const size_t count = UnitsGiven(size, size == -1 ? strlen(bytes) : 0);
    if (count > INT32_MAX) return 0;
    if (capacity == 0) return static_cast<int>(count);
    for (size_t i = 0; i < count; ++i) {
        if (i == static_cast<size_t>(capacity)) return 0;
        text[i] = WideOf(bytes[i]);
    }
    return static_cast<int>(count);
}

// Encodes the first `room` units, and returns how many those are. `bytes` may be null. The unit
// after them still counts for `used_fallback`.
static size_t Encode(std::u16string_view text, char instead, size_t room, char* bytes,
                     BOOL* used_fallback) {
    for (size_t i = 0; i < text.size(); ++i) {
        char byte = 0;
        const bool known = ByteOf(text[i], &byte);
        if (!known && used_fallback) *used_fallback = TRUE;
        if (i == room) return i;
        if (bytes) bytes[i] = known ? byte : instead;
    }
    return text.size();
}

int WideCharToMultiByte(UINT code_page, DWORD, LPCWSTR text, int length, LPSTR bytes, int capacity,
                        LPCSTR fallback, BOOL* used_fallback) {
    if (used_fallback) *used_fallback = FALSE;
    if (!IsAnsi(code_page) || !text || capacity < 0 || (capacity > 0 && !bytes)) return 0;
    const size_t count = UnitsGiven(length, static_cast<size_t>(length == -1 ? lstrlenW(text) : 0));
    if (count > INT32_MAX) return 0;
    const char instead = fallback ? *fallback : '?';
    const size_t room = capacity == 0 ? count : static_cast<size_t>(capacity);
    const size_t written =
        Encode({text, count}, instead, room, capacity ? bytes : nullptr, used_fallback);
    return written < count ? 0 : static_cast<int>(count);
}

int lstrlenW(LPCWSTR text) {
    int length = 0;
    while (text && text[length]) ++length;
    return length;
}

LPWSTR lstrcpyW(LPWSTR to, LPCWSTR from) {
    if (!to || !from) return nullptr;
    LPWSTR end = to;
    while ((*end++ = *from++) != 0) {
    }
    return to;
}

int lstrcmpW(LPCWSTR a, LPCWSTR b) {
    if (!a || !b) return (a != nullptr) - (b != nullptr);
    while (*a && *a == *b) ++a, ++b;
    return (*a > *b) - (*a < *b);
}

int lstrcmpiW(LPCWSTR a, LPCWSTR b) {
    if (!a || !b) return (a != nullptr) - (b != nullptr);
    const int order = CompareWithoutCase(a, b);
    return (order > 0) - (order < 0);
}

constexpr int kRoom = 1024;  // units, terminator included

namespace {

struct Output {
    LPWSTR text;
    int length = 0;

    void Put(WCHAR unit) {
        if (length < kRoom - 1) text[length++] = unit;
    }
    void Repeat(WCHAR unit, int count) {
        for (int i = 0; i < count && length < kRoom - 1; ++i) Put(unit);
    }
};

struct Conversion {
    bool left = false;
    bool zeros = false;
    bool prefix = false;  // '#'
    int width = 0;
    int precision = -1;
    WCHAR size = 0;  // 'h', 'l' or 0
    WCHAR letter = 0;
};

}  // namespace

static int TakeNumber(LPCWSTR* format) {
    int number = 0;
    for (; **format >= u'0' && **format <= u'9'; ++*format)
        if (number < kRoom) number = number * 10 + (**format - u'0');
    return number < kRoom ? number : kRoom;
}

static void TakeFlags(LPCWSTR* format, Conversion* conversion) {
    for (;; ++*format) {
        if (**format == u'-')
            conversion->left = true;
        else if (**format == u'0')
            conversion->zeros = true;
        else if (**format == u'#')
            conversion->prefix = true;
        else
            return;
    }
}

static Conversion TakeConversion(LPCWSTR* format) {
    Conversion conversion;
    TakeFlags(format, &conversion);
    conversion.width = TakeNumber(format);
    if (**format == u'.') {
        ++*format;
        conversion.precision = TakeNumber(format);
    }
    if (**format == u'h' || **format == u'l') conversion.size = *(*format)++;
    if (**format) conversion.letter = *(*format)++;
    return conversion;
}

static void PutPadded(Output* output, const Conversion& conversion, LPCWSTR units, int count) {
    const int padding = conversion.width - count;
    if (!conversion.left) output->Repeat(conversion.zeros ? u'0' : u' ', padding);
    for (int i = 0; i < count; ++i) output->Put(units[i]);
    if (conversion.left) output->Repeat(u' ', padding);
}

// `digits` holds the number without its sign; zeros go between the sign and the digits.
static void PutNumber(Output* output, const Conversion& conversion, LPCWSTR sign, LPCWSTR digits) {
    const int count = lstrlenW(digits), before = lstrlenW(sign);
    int zeros = conversion.precision - count;
    if (conversion.precision < 0 && conversion.zeros && !conversion.left)
        zeros = conversion.width - count - before;
    if (zeros < 0) zeros = 0;
    const int padding = conversion.width - before - zeros - count;
    if (!conversion.left) output->Repeat(u' ', padding);
    for (LPCWSTR unit = sign; *unit; ++unit) output->Put(*unit);
    output->Repeat(u'0', zeros);
    for (LPCWSTR unit = digits; *unit; ++unit) output->Put(*unit);
    if (conversion.left) output->Repeat(u' ', padding);
}

// Writes the digits of `value` to the end of `room`, most significant first; returns their start.
static LPCWSTR Digits(DWORD value, DWORD base, bool upper, WCHAR (&room)[12]) {
    LPWSTR first = std::end(room) - 1;
    *first = 0;
    do {
        const DWORD digit = value % base;
        const DWORD letters = upper ? u'A' : u'a';
        *--first = static_cast<WCHAR>(digit < 10 ? u'0' + digit : letters + digit - 10);
        value /= base;
    } while (value);
    return first;
}

static int TextLength(LPCWSTR text, int limit) {
    int length = 0;
    while ((limit < 0 || length < limit) && length < kRoom && text[length]) ++length;
    return length;
}

static void PutWide(Output* output, const Conversion& conversion, LPCWSTR text) {
    if (!text) text = u"(null)";
    PutPadded(output, conversion, text, TextLength(text, conversion.precision));
}

static void PutNarrow(Output* output, const Conversion& conversion, LPCSTR text) {
    if (!text) text = "(null)";
    WCHAR units[kRoom] = {};
    const int limit = conversion.precision < 0 ? kRoom : conversion.precision;
    const int count = static_cast<int>(strnlen(text, static_cast<size_t>(limit)));
    MultiByteToWideChar(CP_ACP, 0, text, count, units, kRoom);
    PutPadded(output, conversion, units, count);
}

static void PutText(Output* output, const Conversion& conversion, va_list* arguments) {
    const bool narrow =
        conversion.letter == u's' ? conversion.size == u'h' : conversion.size != u'l';
    if (narrow)
        PutNarrow(output, conversion, va_arg(*arguments, LPCSTR));
    else
        PutWide(output, conversion, va_arg(*arguments, LPCWSTR));
}

static void PutSigned(Output* output, const Conversion& conversion, va_list* arguments) {
    const int value = va_arg(*arguments, int);
    WCHAR room[12];
    const DWORD size = value < 0 ? 0u - static_cast<DWORD>(value) : static_cast<DWORD>(value);
    PutNumber(output, conversion, value < 0 ? u"-" : u"", Digits(size, 10, false, room));
}

static void PutUnsigned(Output* output, const Conversion& conversion, va_list* arguments) {
    WCHAR room[12];
    PutNumber(output, conversion, u"", Digits(va_arg(*arguments, DWORD), 10, false, room));
}

static void PutHexadecimal(Output* output, const Conversion& conversion, va_list* arguments) {
    WCHAR room[12];
    const bool upper = conversion.letter == u'X';
    LPCWSTR sign = !conversion.prefix ? u"" : upper ? u"0X" : u"0x";
    PutNumber(output, conversion, sign, Digits(va_arg(*arguments, DWORD), 16, upper, room));
}

static void PutCharacter(Output* output, const Conversion& conversion, va_list* arguments) {
    const WCHAR unit = static_cast<WCHAR>(va_arg(*arguments, int));
    PutPadded(output, conversion, &unit, 1);
}

namespace {

struct ConversionRow {
    WCHAR letter;
    void (*put)(Output* output, const Conversion& conversion, va_list* arguments);
};

}  // namespace

static const ConversionRow kConversions[] = {
    {u'd', PutSigned},      {u'i', PutSigned},    {u'u', PutUnsigned}, {u'x', PutHexadecimal},
    {u'X', PutHexadecimal}, {u'c', PutCharacter}, {u's', PutText},     {u'S', PutText},
};

// A letter that is not a conversion, such as the second one of %%, is copied as it is.
static void Put(Output* output, const Conversion& conversion, va_list* arguments) {
    for (const ConversionRow& row : kConversions)
        if (row.letter == conversion.letter) return row.put(output, conversion, arguments);
    if (conversion.letter) output->Put(conversion.letter);
}

int wsprintfW(LPWSTR text, LPCWSTR format, ...) {
    Output output{text};
    va_list arguments;
    va_start(arguments, format);
    while (*format) {
        if (*format != u'%') {
            output.Put(*format++);
            continue;
        }
        ++format;
        Put(&output, TakeConversion(&format), &arguments);
    }
    va_end(arguments);
    text[output.length] = 0;
    return output.length;
}

// wsprintfW.
#include <cstdarg>

#include "windows_ce.h"

namespace {

constexpr int kRoom = 1024;  // units, terminator included

struct Output {
    LPWSTR text;
    int length = 0;

    void Put(WCHAR unit) {
        if (length < kRoom - 1) text[length++] = unit;
    }
    void Repeat(WCHAR unit, int count) {
        for (int i = 0; i < count && length < kRoom - 1; i++) Put(unit);
    }
};

struct Conversion {
    bool left = false;
    bool zeros = false;
    bool prefix = false;  // '#'
    int width = 0;
    int precision = -1;
    WCHAR size = 0;  // 'h', 'l' or none
    WCHAR letter = 0;
};

int TakeNumber(LPCWSTR* format) {
    int number = 0;
    for (; **format >= u'0' && **format <= u'9'; ++*format)
        if (number < kRoom) number = number * 10 + (**format - u'0');
    return number < kRoom ? number : kRoom;
}

void TakeFlags(LPCWSTR* format, Conversion* conversion) {
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

Conversion TakeConversion(LPCWSTR* format) {
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

void PutPadded(Output* output, const Conversion& conversion, LPCWSTR units, int count) {
    const int padding = conversion.width - count;
    if (!conversion.left) output->Repeat(conversion.zeros ? u'0' : u' ', padding);
    for (int i = 0; i < count; i++) output->Put(units[i]);
    if (conversion.left) output->Repeat(u' ', padding);
}

// `digits` holds the number without sign; zeros stand between the sign and it.
void PutNumber(Output* output, const Conversion& conversion, LPCWSTR sign, LPCWSTR digits) {
    const int count = lstrlenW(digits), before = lstrlenW(sign);
    int zeros = conversion.precision - count;
    if (conversion.precision < 0 && conversion.zeros && !conversion.left)
        zeros = conversion.width - count - before;
    if (zeros < 0) zeros = 0;
    const int padding = conversion.width - before - zeros - count;
    if (!conversion.left) output->Repeat(u' ', padding);
    for (LPCWSTR unit = sign; *unit; unit++) output->Put(*unit);
    output->Repeat(u'0', zeros);
    for (LPCWSTR unit = digits; *unit; unit++) output->Put(*unit);
    if (conversion.left) output->Repeat(u' ', padding);
}

// The digits of `value`, most significant first, within `room`.
LPCWSTR Digits(DWORD value, DWORD base, bool upper, WCHAR (&room)[12]) {
    LPWSTR first = room + 11;
    *first = 0;
    do {
        const DWORD digit = value % base;
        const DWORD letters = upper ? u'A' : u'a';
        *--first = static_cast<WCHAR>(digit < 10 ? u'0' + digit : letters + digit - 10);
        value /= base;
    } while (value);
    return first;
}

int TextLength(LPCWSTR text, int limit) {
    int length = 0;
    while ((limit < 0 || length < limit) && length < kRoom && text[length]) length++;
    return length;
}

void PutWide(Output* output, const Conversion& conversion, LPCWSTR text) {
    if (!text) text = u"(null)";
    PutPadded(output, conversion, text, TextLength(text, conversion.precision));
}

void PutNarrow(Output* output, const Conversion& conversion, LPCSTR text) {
    if (!text) text = "(null)";
    WCHAR units[kRoom] = {};
    const int limit = conversion.precision < 0 ? kRoom : conversion.precision;
    const int count = static_cast<int>(strnlen(text, static_cast<size_t>(limit)));
    MultiByteToWideChar(CP_ACP, 0, text, count, units, kRoom);
    PutPadded(output, conversion, units, count);
}

void PutText(Output* output, const Conversion& conversion, va_list* arguments) {
    const bool narrow =
        conversion.letter == u's' ? conversion.size == u'h' : conversion.size != u'l';
    if (narrow)
        PutNarrow(output, conversion, va_arg(*arguments, LPCSTR));
    else
        PutWide(output, conversion, va_arg(*arguments, LPCWSTR));
}

void PutSigned(Output* output, const Conversion& conversion, va_list* arguments) {
    const int value = va_arg(*arguments, int);
    WCHAR room[12];
    const DWORD size = value < 0 ? 0u - static_cast<DWORD>(value) : static_cast<DWORD>(value);
    PutNumber(output, conversion, value < 0 ? u"-" : u"", Digits(size, 10, false, room));
}

void PutUnsigned(Output* output, const Conversion& conversion, va_list* arguments) {
    WCHAR room[12];
    PutNumber(output, conversion, u"", Digits(va_arg(*arguments, DWORD), 10, false, room));
}

void PutHexadecimal(Output* output, const Conversion& conversion, va_list* arguments) {
    WCHAR room[12];
    const bool upper = conversion.letter == u'X';
    LPCWSTR sign = !conversion.prefix ? u"" : upper ? u"0X" : u"0x";
    PutNumber(output, conversion, sign, Digits(va_arg(*arguments, DWORD), 16, upper, room));
}

void PutCharacter(Output* output, const Conversion& conversion, va_list* arguments) {
    const WCHAR unit = static_cast<WCHAR>(va_arg(*arguments, int));
    PutPadded(output, conversion, &unit, 1);
}

struct ConversionRow {
    WCHAR letter;
    void (*put)(Output* output, const Conversion& conversion, va_list* arguments);
};

const ConversionRow kConversions[] = {
    {u'd', PutSigned},      {u'i', PutSigned},    {u'u', PutUnsigned}, {u'x', PutHexadecimal},
    {u'X', PutHexadecimal}, {u'c', PutCharacter}, {u's', PutText},     {u'S', PutText},
};

// What is no conversion, %% among it, stands for its letter.
void Put(Output* output, const Conversion& conversion, va_list* arguments) {
    for (const ConversionRow& row : kConversions)
        if (row.letter == conversion.letter) return row.put(output, conversion, arguments);
    if (conversion.letter) output->Put(conversion.letter);
}

}  // namespace

int wsprintfW(LPWSTR text, LPCWSTR format, ...) {
    Output output{text};
    va_list arguments;
    va_start(arguments, format);
    while (*format) {
        if (*format != u'%') {
            output.Put(*format++);
            continue;
        }
        format++;
        Put(&output, TakeConversion(&format), &arguments);
    }
    va_end(arguments);
    text[output.length] = 0;
    return output.length;
}

// SPDX-License-Identifier: MIT
// Simple text calls for fuzz targets that do not link the slice: each byte is the character of the
// same number.
#include <cstdarg>
#include <cstdio>
#include <string>

#include "windows_ce.h"

int lstrlenW(LPCWSTR text) {
    int length = 0;
    while (text[length]) length++;
    return length;
}

LPWSTR lstrcpyW(LPWSTR to, LPCWSTR from) {
    for (int i = 0; i <= lstrlenW(from); i++) to[i] = from[i];
    return to;
}

int MultiByteToWideChar(UINT, DWORD, LPCSTR bytes, int size, LPWSTR text, int capacity) {
    const int count = size == -1 ? static_cast<int>(strlen(bytes)) + 1 : size;
    for (int i = 0; i < count && i < capacity; i++) text[i] = static_cast<BYTE>(bytes[i]);
    return count <= capacity ? count : 0;
}

int WideCharToMultiByte(UINT, DWORD, LPCWSTR text, int length, LPSTR bytes, int capacity, LPCSTR,
                        BOOL*) {
    const int count = length == -1 ? lstrlenW(text) + 1 : length;
    for (int i = 0; i < count && i < capacity; i++) bytes[i] = static_cast<char>(text[i]);
    return count <= capacity ? count : 0;
}

// %d, %s and %S (narrow).
int wsprintfW(LPWSTR text, LPCWSTR format, ...) {
    std::u16string out;
    va_list arguments;
    va_start(arguments, format);
    for (; *format; format++) {
        if (*format != '%') {
            out += *format;
        } else if (*++format == 'd') {
            for (char c : std::to_string(va_arg(arguments, int))) out += static_cast<WCHAR>(c);
        } else if (*format == 's') {
            out += va_arg(arguments, LPCWSTR);
        } else {
            const char* narrow = va_arg(arguments, const char*);
            while (*narrow) out += static_cast<BYTE>(*narrow++);
        }
    }
    va_end(arguments);
    lstrcpyW(text, out.c_str());
    return static_cast<int>(out.size());
}

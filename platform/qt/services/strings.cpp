// Code page 1252 and the plain string calls.
#include "platform/qt/services/wide_text.h"
#include "windows_ce.h"

namespace {

constexpr UINT kCodePage1252 = 1252;

// 0x80 to 0x9F; the five bytes that the code page leaves open stay what they are.
// clang-format off
const WCHAR kUpperControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
// clang-format on

WCHAR WideOf(char byte) {
    const BYTE value = static_cast<BYTE>(byte);
    return value >= 0x80 && value < 0xA0 ? kUpperControls[value - 0x80] : value;
}

bool ByteOf(WCHAR unit, char* byte) {
    int value = -1;
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) value = unit;
    for (int i = 0; i < 32 && value < 0; i++)
        if (kUpperControls[i] == unit) value = 0x80 + i;
    *byte = static_cast<char>(value);
    return value >= 0;
}

bool IsAnsi(UINT code_page) { return code_page == CP_ACP || code_page == kCodePage1252; }

// The units to convert; 0 where the call cannot be carried out.
size_t UnitsGiven(int size, size_t terminated_length) {
    if (size == -1) return terminated_length + 1;
    return size > 0 ? static_cast<size_t>(size) : 0;
}

}  // namespace

int MultiByteToWideChar(UINT code_page, DWORD, LPCSTR bytes, int size, LPWSTR text, int capacity) {
    if (!IsAnsi(code_page) || !bytes || capacity < 0 || (capacity > 0 && !text)) return 0;
    const size_t count = UnitsGiven(size, size == -1 ? strlen(bytes) : 0);
    if (count > INT32_MAX) return 0;
    if (capacity == 0) return static_cast<int>(count);
    for (size_t i = 0; i < count; i++) {
        if (i == static_cast<size_t>(capacity)) return 0;
        text[i] = WideOf(bytes[i]);
    }
    return static_cast<int>(count);
}

int WideCharToMultiByte(UINT code_page, DWORD, LPCWSTR text, int length, LPSTR bytes, int capacity,
                        LPCSTR fallback, BOOL* used_fallback) {
    if (used_fallback) *used_fallback = FALSE;
    if (!IsAnsi(code_page) || !text || capacity < 0 || (capacity > 0 && !bytes)) return 0;
    const size_t count = UnitsGiven(length, static_cast<size_t>(length == -1 ? lstrlenW(text) : 0));
    if (count > INT32_MAX) return 0;
    const char instead = fallback ? *fallback : '?';
    for (size_t i = 0; i < count; i++) {
        char byte = 0;
        const bool known = ByteOf(text[i], &byte);
        if (!known && used_fallback) *used_fallback = TRUE;
        if (capacity == 0) continue;
        if (i == static_cast<size_t>(capacity)) return 0;
        bytes[i] = known ? byte : instead;
    }
    return static_cast<int>(count);
}

int lstrlenW(LPCWSTR text) {
    int length = 0;
    while (text && text[length]) length++;
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
    while (*a && *a == *b) a++, b++;
    return (*a > *b) - (*a < *b);
}

int lstrcmpiW(LPCWSTR a, LPCWSTR b) {
    if (!a || !b) return (a != nullptr) - (b != nullptr);
    const int order = CompareWithoutCase(a, b);
    return (order > 0) - (order < 0);
}

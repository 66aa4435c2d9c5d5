// SPDX-License-Identifier: MIT
// Reading and writing the settings' registry values, and importing "\mconfig.cfg" into them.
#include "settings/settings.h"

#include <algorithm>

#include "session/settings_types.h"
#include "text/text.h"

constexpr LPCWSTR kSettingsKey = TEXT("Software\\QUILLWARE\\TELNET");
constexpr int kNameSize = 16;  // of a numbered value

// Both are not inlined, so that numbers and strings share their code.
[[gnu::noinline]] static bool QueryValue(LPCWSTR name, LPVOID data, DWORD size) {
    HKEY key;
    if (OpenSettings(KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return false;
    const LONG error =
        RegQueryValueExW(key, name, nullptr, nullptr, static_cast<BYTE*>(data), &size);
    RegCloseKey(key);
    return error == ERROR_SUCCESS;
}

[[gnu::noinline]] static void WriteValue(LPCWSTR name, DWORD type, LPCVOID data, DWORD size) {
    HKEY key;
    const LONG error =
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, kSettingsKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_SET_VALUE, nullptr, &key, nullptr);
    if (error != ERROR_SUCCESS) return;
    RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
    RegFlushKey(key);
    RegCloseKey(key);
}

LONG OpenSettings(DWORD access, HKEY* key) {
    return RegOpenKeyExW(HKEY_LOCAL_MACHINE, kSettingsKey, 0, access, key);
}

DWORD ReadNumber(LPCWSTR name, DWORD fallback) {
    DWORD value = 0;
    return QueryValue(name, &value, sizeof(value)) ? value : fallback;
}

LPCWSTR ReadString(LPCWSTR name, LPCWSTR fallback) {
    static WCHAR text[kSettingUnits];
    memset(text, 0, sizeof(text));
    if (!QueryValue(name, text, sizeof(text))) return fallback;
    text[kSettingUnits - 1] = 0;
    return text;
}

void WriteNumber(LPCWSTR name, DWORD value) { WriteValue(name, REG_DWORD, &value, sizeof(value)); }

void WriteString(LPCWSTR name, LPCWSTR text) {
    const DWORD units = static_cast<DWORD>(lstrlenW(text)) + 1;
    WriteValue(name, REG_SZ, text, units * static_cast<DWORD>(sizeof(*text)));
}

void DeleteNumberedValues(LPCWSTR format, int count) {
    HKEY key;
    if (OpenSettings(KEY_SET_VALUE, &key) != ERROR_SUCCESS) return;
    for (int i = 0; i < count; ++i) {
        WCHAR name[kNameSize];
        wsprintfW(name, format, i);
        RegDeleteValueW(key, name);
    }
    RegFlushKey(key);
    RegCloseKey(key);
}

// ---------------------------------------------------------------- the configuration file

constexpr LPCWSTR kFileName = TEXT("\\mconfig.cfg");
constexpr int kLineSize = 80;  // a line's 79 characters and the terminator

// Returns the text between the first two double quotes of the line, and cuts the line there.
// Returns null if there are no two quotes or nothing between them.
static const char* QuotedText(char* line) {
    char* first = strchr(line, '"');
    char* last = first ? strchr(first + 1, '"') : nullptr;
    if (!last || last == first + 1) return nullptr;
    *last = 0;
    return first + 1;
}

// The result is limited to the range from INT32_MIN to UINT32_MAX. A second sign makes it 0.
static DWORD NumberOf(const char* token) {
    const bool negative = token[0] == '-';
    const char* digits = negative || token[0] == '+' ? token + 1 : token;
    if (digits[0] == '-' || digits[0] == '+') return 0;
    const unsigned long size = strtoul(digits, nullptr, 0);
    if (!negative) return static_cast<DWORD>(std::min<unsigned long>(size, UINT32_MAX));
    return 0 - static_cast<DWORD>(std::min<unsigned long>(size, 0x80000000u));
}

static void ImportString(LPCWSTR name, char* line) {
    const char* quoted = QuotedText(line);
    if (!quoted) return;
    WCHAR text[kLineSize];
    WideFromAnsi(quoted, text, kLineSize);
    WriteString(name, text);
}

static void ImportLine(char* line) {
    if (line[0] == '#') return;
    char name[kLineSize], value[kLineSize];
    if (sscanf(line, "%79s = %79s", name, value) != 2) return;
    WCHAR value_name[kLineSize];
    WideFromAnsi(name, value_name, kLineSize);
    if (value[0] == '"')
        ImportString(value_name, line);
    else
        WriteNumber(value_name, NumberOf(value));
}

void ImportConfigFile(HWND owner) {
    FILE* file = _wfopen(kFileName, TEXT("r"));
    if (!file) return;
    MessageBoxW(owner, TEXT("Installing configuration from file \\mconfig.cfg "),
                TEXT("Quill Telnet"), MB_OK | MB_ICONINFORMATION);
    char line[kLineSize];
    while (fgets(line, kLineSize, file)) ImportLine(line);
    fclose(file);
    DeleteFileW(kFileName);
}

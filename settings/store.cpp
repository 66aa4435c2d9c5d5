// Reading and writing single values.
#include "settings/store.h"

#include "session/settings_types.h"

namespace {

constexpr LPCWSTR kSettingsKey = TEXT("Software\\QUILLWARE\\TELNET");
constexpr int kNameSize = 16;  // of a numbered value

bool QueryValue(LPCWSTR name, LPVOID data, DWORD size) {
    HKEY key;
    if (OpenSettings(KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return false;
    const LONG error =
        RegQueryValueExW(key, name, nullptr, nullptr, static_cast<BYTE*>(data), &size);
    RegCloseKey(key);
    return error == ERROR_SUCCESS;
}

void WriteValue(LPCWSTR name, DWORD type, LPCVOID data, DWORD size) {
    HKEY key;
    const LONG error =
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, kSettingsKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_SET_VALUE, nullptr, &key, nullptr);
    if (error != ERROR_SUCCESS) return;
    RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
    RegFlushKey(key);
    RegCloseKey(key);
}

}  // namespace

LONG OpenSettings(DWORD access, HKEY* key) {
    return RegOpenKeyExW(HKEY_LOCAL_MACHINE, kSettingsKey, 0, access, key);
}

DWORD ReadNumber(LPCWSTR name, DWORD fallback) {
    DWORD value = 0;
    return QueryValue(name, &value, sizeof value) ? value : fallback;
}

LPCWSTR ReadString(LPCWSTR name, LPCWSTR fallback) {
    static WCHAR text[kSettingUnits];
    memset(text, 0, sizeof text);
    if (!QueryValue(name, text, sizeof text)) return fallback;
    text[kSettingUnits - 1] = 0;
    return text;
}

void WriteNumber(LPCWSTR name, DWORD value) { WriteValue(name, REG_DWORD, &value, sizeof value); }

void WriteString(LPCWSTR name, LPCWSTR text) {
    const DWORD units = static_cast<DWORD>(lstrlenW(text)) + 1;
    WriteValue(name, REG_SZ, text, units * static_cast<DWORD>(sizeof *text));
}

void DeleteNumberedValues(LPCWSTR format, int count) {
    HKEY key;
    if (OpenSettings(KEY_SET_VALUE, &key) != ERROR_SUCCESS) return;
    for (int i = 0; i < count; i++) {
        WCHAR name[kNameSize];
        wsprintfW(name, format, i);
        RegDeleteValueW(key, name);
    }
    RegFlushKey(key);
    RegCloseKey(key);
}

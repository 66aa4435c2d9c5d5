// SPDX-License-Identifier: MIT
// The linker redirects the program's calls of the registry to these functions (--wrap).
#include "tests/settings/registry_log.h"

#include "windows_ce.h"

// clang-format off
LONG RealQuery(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size)
    asm("__real__Z16RegQueryValueExWP8SliceKeyPKDsPjS3_PhS3_");
LONG LoggedQuery(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size)
    asm("__wrap__Z16RegQueryValueExWP8SliceKeyPKDsPjS3_PhS3_");
LONG RealSet(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size)
    asm("__real__Z14RegSetValueExWP8SliceKeyPKDsjjPKhj");
LONG LoggedSet(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size)
    asm("__wrap__Z14RegSetValueExWP8SliceKeyPKDsjjPKhj");
LONG RealDelete(HKEY key, LPCWSTR name)
    asm("__real__Z15RegDeleteValueWP8SliceKeyPKDs");
LONG LoggedDelete(HKEY key, LPCWSTR name)
    asm("__wrap__Z15RegDeleteValueWP8SliceKeyPKDs");
LONG RealFlush(HKEY key)
    asm("__real__Z11RegFlushKeyP8SliceKey");
LONG LoggedFlush(HKEY key)
    asm("__wrap__Z11RegFlushKeyP8SliceKey");
LONG RealClose(HKEY key)
    asm("__real__Z11RegCloseKeyP8SliceKey");
LONG LoggedClose(HKEY key)
    asm("__wrap__Z11RegCloseKeyP8SliceKey");
// clang-format on

std::vector<RegistryCall> registry_log;

static void Log(const char* call, LPCWSTR name) {
    std::string text;
    while (*name) text.push_back(static_cast<char>(*name++));
    registry_log.push_back({call, text});
}

LONG LoggedQuery(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size) {
    Log("read", name);
    return RealQuery(key, name, reserved, type, data, size);
}

LONG LoggedSet(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
    Log("write", name);
    return RealSet(key, name, reserved, type, data, size);
}

LONG LoggedDelete(HKEY key, LPCWSTR name) {
    Log("delete", name);
    return RealDelete(key, name);
}

LONG LoggedFlush(HKEY key) {
    Log("flush", TEXT(""));
    return RealFlush(key);
}

LONG LoggedClose(HKEY key) {
    Log("close", TEXT(""));
    return RealClose(key);
}

std::vector<std::string> LoggedNames(const std::string& call) {
    std::vector<std::string> names;
    for (const RegistryCall& logged : registry_log)
        if (logged.call == call) names.push_back(logged.name);
    return names;
}

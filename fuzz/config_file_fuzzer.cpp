// SPDX-License-Identifier: MIT
// Imports any bytes as the configuration file into a registry that records the writes. Checks that
// every write is well formed, that there are at most as many writes as lines and one message, and
// that the file is read, closed and deleted once. The same file behind a comment writes the same.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "settings/settings.h"

static const int kLineBytes = 79;

struct Value {
    std::u16string name;
    DWORD type;
    std::string data;
    bool operator==(const Value&) const = default;
};

static std::string contents;
static std::vector<Value> values;
static int opened, told, deleted, keys_open;

static void Require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "broken: %s\n", what);
    abort();
}

// ---------------------------------------------------------------- the device

FILE* _wfopen(LPCWSTR, LPCWSTR) {
    opened++;
    return contents.empty() ? tmpfile() : fmemopen(contents.data(), contents.size(), "r");
}

BOOL DeleteFileW(LPCWSTR) {
    deleted++;
    return TRUE;
}

int MessageBoxW(HWND, LPCWSTR, LPCWSTR, UINT) {
    told++;
    return IDOK;
}

LONG RegOpenKeyExW(HKEY key, LPCWSTR, DWORD, DWORD, HKEY* result) {
    keys_open++;
    *result = key;
    return ERROR_SUCCESS;
}

LONG RegCreateKeyExW(HKEY key, LPCWSTR, DWORD, LPWSTR, DWORD, DWORD, LPVOID, HKEY* result,
                     DWORD* disposition) {
    keys_open++;
    *result = key;
    if (disposition) *disposition = 0;
    return ERROR_SUCCESS;
}

LONG RegSetValueExW(HKEY, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    values.push_back({name, type, std::string(reinterpret_cast<const char*>(data), size)});
    return ERROR_SUCCESS;
}

LONG RegQueryValueExW(HKEY, LPCWSTR, DWORD*, DWORD*, BYTE*, DWORD*) { return 2; }
LONG RegDeleteValueW(HKEY, LPCWSTR) { return 2; }
LONG RegFlushKey(HKEY) { return ERROR_SUCCESS; }

LONG RegCloseKey(HKEY) {
    keys_open--;
    return ERROR_SUCCESS;
}

SHORT GetKeyState(int) { return 0; }

// ---------------------------------------------------------------- the run

static std::vector<Value> Import(const std::string& file) {
    contents = file;
    values.clear();
    opened = told = deleted = keys_open = 0;
    ImportConfigFile(nullptr);
    Require(opened == 1 && told == 1 && deleted == 1, "read, told and deleted once");
    Require(keys_open == 0, "every key is closed");
    return values;
}

static size_t MostLines(const std::string& file) {
    const auto ends = static_cast<size_t>(std::count(file.begin(), file.end(), '\n'));
    return ends + file.size() / kLineBytes + 1;
}

static void CheckString(const Value& value) {
    Require(value.data.size() >= 2 * sizeof(WCHAR) && value.data.size() % sizeof(WCHAR) == 0,
            "a string is not empty");
    Require(value.data.size() <= (kLineBytes + 1) * sizeof(WCHAR), "a string is of one line");
    const std::string end(value.data.end() - sizeof(WCHAR), value.data.end());
    Require(end == std::string(sizeof(WCHAR), '\0'), "a string ends");
}

static void CheckValue(const Value& value) {
    Require(!value.name.empty() && value.name.size() <= kLineBytes, "the name's length");
    Require(value.type == REG_SZ || value.type == REG_DWORD, "the type");
    if (value.type == REG_SZ) return CheckString(value);
    Require(value.data.size() == sizeof(DWORD), "a number's size");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string file(reinterpret_cast<const char*>(data), size);
    const std::vector<Value> written = Import(file);
    Require(written.size() <= MostLines(file), "one write a line");
    for (const Value& value : written) CheckValue(value);
    Require(Import("# a comment\n" + file) == written, "a comment changes nothing");
    return 0;
}

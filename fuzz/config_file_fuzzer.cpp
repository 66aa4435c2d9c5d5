// SPDX-License-Identifier: MIT
// Imports any bytes as the configuration file into a registry that records the writes. Checks that
// every write is well formed, that there are at most as many writes as lines and one message, and
// that the file is read, closed and deleted once. The same file behind a comment writes the same,
// and a second reading of the lines gives the same values.
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

// ---------------------------------------------------------------- a second reading

static bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

static std::string TakeWord(const std::string& line, size_t* at) {
    while (*at < line.size() && IsBlank(line[*at])) ++*at;
    const size_t first = *at;
    while (*at < line.size() && !IsBlank(line[*at])) ++*at;
    return line.substr(first, *at - first);
}

// The text of each line of at most 79 bytes, up to a zero byte.
static std::vector<std::string> LinesOf(const std::string& file) {
    std::vector<std::string> lines;
    for (size_t at = 0; at < file.size();) {
        const size_t end = std::min(file.find('\n', at), file.size() - 1) + 1;
        const std::string line = file.substr(at, std::min<size_t>(end - at, kLineBytes));
        at += line.size();
        lines.emplace_back(line.c_str());
    }
    return lines;
}

static int DigitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = static_cast<char>(c | 32);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

// Decimal, hexadecimal or octal, up to the first other character; at most 2^32 - 1, at least -2^31.
static DWORD NumberOf(std::string word) {
    const bool negative = word[0] == '-';
    if (negative || word[0] == '+') word.erase(0, 1);
    const bool hexadecimal =
        word.size() > 2 && word[0] == '0' && (word[1] | 32) == 'x' && DigitOf(word[2]) < 16;
    const int base = hexadecimal ? 16 : word[0] == '0' ? 8 : 10;
    const uint64_t most = negative ? 0x80000000u : 0xFFFFFFFFu;
    uint64_t number = 0;
    for (size_t i = hexadecimal ? 2 : 0; i < word.size() && DigitOf(word[i]) < base; ++i)
        number = std::min(
            number * static_cast<uint64_t>(base) + static_cast<uint64_t>(DigitOf(word[i])), most);
    return static_cast<DWORD>(negative ? 0 - number : number);
}

static std::u16string Wide(const std::string& bytes) {
    std::u16string text;
    for (const char c : bytes) text += static_cast<char16_t>(static_cast<uint8_t>(c));
    return text;
}

static void AddLine(const std::string& line, std::vector<Value>* read) {
    if (line.starts_with('#')) return;
    size_t at = 0;
    const std::string name = TakeWord(line, &at);
    while (at < line.size() && IsBlank(line[at])) ++at;
    if (name.empty() || at == line.size() || line[at++] != '=') return;
    const std::string word = TakeWord(line, &at);
    if (word.empty()) return;
    if (word[0] != '"') {
        const DWORD number = NumberOf(word);
        const auto* bytes = reinterpret_cast<const char*>(&number);
        return read->push_back({Wide(name), REG_DWORD, std::string(bytes, sizeof(number))});
    }
    const size_t first = line.find('"') + 1, last = line.find('"', first);
    if (last == std::string::npos || last == first) return;
    const std::u16string text = Wide(line.substr(first, last - first)) + u'\0';
    const auto* bytes = reinterpret_cast<const char*>(text.data());
    read->push_back({Wide(name), REG_SZ, std::string(bytes, text.size() * sizeof(WCHAR))});
}

static std::vector<Value> ValuesOf(const std::string& file) {
    std::vector<Value> read;
    for (const std::string& line : LinesOf(file)) AddLine(line, &read);
    return read;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string file(reinterpret_cast<const char*>(data), size);
    const std::vector<Value> written = Import(file);
    Require(written.size() <= MostLines(file), "one write a line");
    for (const Value& value : written) CheckValue(value);
    Require(written == ValuesOf(file), "the values of the lines");
    Require(Import("# a comment\n" + file) == written, "a comment changes nothing");
    return 0;
}

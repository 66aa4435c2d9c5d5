// SPDX-License-Identifier: MIT
// Makes a configuration file from the registry's file.
#include "platform/qt/services/registry.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>

#include "platform/qt/services/services.h"
#include "windows_ce.h"

constexpr size_t kLongestLine = 78;   // the program reads 79 with the line's end
constexpr size_t kLongestValue = 80;  // the program reads at most as many bytes
constexpr int kBusyMilliseconds = 3000;

static const char kHeading[] =
    "# The settings of one device. As mconfig.cfg in the settings folder of\n"
    "# another one it is read at the next start, and then deleted.\n";

static const char* const kPasswords[] = {"ssh_p", "resp1", "resp2"};
static const char* const kEmptyAtFirst[] = {
    "host",  "hist0a", "hist1a", "hist2a", "hist3a", "hist4a", "sear2", "resp1",
    "resp2", "ssh_u",  "ssh_p",  "ras",    "key28",  "key29",  "key30", "key31"};

namespace {

struct Value {
    std::string name;  // UTF-8
    uint32_t type;
    std::string data;
};

}  // namespace

template <size_t count>
static bool IsOneOf(const char* const (&names)[count], const std::string& name) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

static Value TakeRow(sqlite3_stmt* statement) {
    Value value;
    value.name = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    value.type = static_cast<uint32_t>(sqlite3_column_int64(statement, 1));
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, 2));
    const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, 2));
    value.data.assign(bytes ? bytes : "", bytes ? size : 0);
    return value;
}

static int ReadRows(sqlite3* database, std::vector<Value>* values) {
    sqlite3_stmt* statement = nullptr;
    const char kQuery[] =
        "SELECT name, type, data FROM registry WHERE key = ?1 AND name IS NOT NULL";
    int result = sqlite3_prepare_v2(database, kQuery, -1, &statement, nullptr);
    if (result == SQLITE_OK) {
        sqlite3_bind_text(statement, 1, kSettingsKeyPath, -1, SQLITE_STATIC);
        while ((result = sqlite3_step(statement)) == SQLITE_ROW)
            values->push_back(TakeRow(statement));
    }
    sqlite3_finalize(statement);
    return result;
}

static int ReadFile(const std::string& name, int flags, std::vector<Value>* values) {
    values->clear();
    sqlite3* database = nullptr;
    int result = sqlite3_open_v2(name.c_str(), &database, flags, nullptr);
    if (result == SQLITE_OK) {
        sqlite3_busy_timeout(database, kBusyMilliseconds);
        result = ReadRows(database, values);
    }
    sqlite3_close(database);
    return result;
}

// Opens the file for writing, because a reader alone may not open another program's log.
static bool ReadValues(const std::string& path, std::vector<Value>* values) {
    int result = ReadFile(path, SQLITE_OPEN_READWRITE, values);
    if (result == SQLITE_DONE || IsBusy(result)) return result == SQLITE_DONE;
    const std::string immutable = ImmutableName(path);
    if (!immutable.empty())
        result = ReadFile(immutable, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, values);
    return result == SQLITE_DONE;
}

// Sorts "key2" before "key10", and numbered names after all others.
static bool ComesBefore(const Value& a, const Value& b) {
    const auto split = [](const std::string& name) {
        return std::min(name.find_last_not_of("0123456789") + 1, name.size());
    };
    const size_t end_a = split(a.name), end_b = split(b.name);
    const bool numbered_a = end_a < a.name.size(), numbered_b = end_b < b.name.size();
    if (numbered_a != numbered_b) return numbered_b;
    const int heads = a.name.substr(0, end_a).compare(b.name.substr(0, end_b));
    if (heads != 0) return heads < 0;
    const size_t digits_a = a.name.size() - end_a, digits_b = b.name.size() - end_b;
    return digits_a != digits_b ? digits_a < digits_b : a.name < b.name;
}

// The name is the first word of its line, so it has no blanks and does not begin a comment.
static bool IsSayableName(const std::string& name) {
    if (name.empty() || name[0] == '#') return false;
    return std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c < 0x7F; });
}

// Returns the text as the program reads it: up to its terminator, or cut at the longest value.
static std::u16string TextOf(const std::string& data) {
    std::u16string text(data.size() / sizeof(char16_t), 0);
    std::memcpy(text.data(), data.data(), text.size() * sizeof(char16_t));
    text.resize(std::min(text.size(), kLongestValue / sizeof(char16_t) - 1));
    return text.substr(0, text.find(u'\0'));
}

// False if the code page does not have all of its letters. The text has room: see TextOf.
static bool AnsiOf(const std::u16string& text, std::string* bytes) {
    char ansi[kLongestValue] = {};
    WCHAR back[kLongestValue] = {};
    const int count = static_cast<int>(text.size()) + 1;
    const int size =
        WideCharToMultiByte(CP_ACP, 0, text.c_str(), count, ansi, sizeof(ansi), nullptr, nullptr);
    MultiByteToWideChar(CP_ACP, 0, ansi, size, back, kLongestValue);
    *bytes = ansi;
    return text == back;
}

constexpr char16_t kEndOfText = 0x1A;  // SUB, as on the device

// Returns why a line cannot hold the text, or null.
const char* TextTrouble(const std::u16string& text, std::string* bytes) {
    if (text.find(u'"') != text.npos) return "has a double quote in it";
    for (const char16_t unit : text)
        if (unit == u'\n' || unit == u'\r' || unit == kEndOfText) return "has a line's end in it";
    return AnsiOf(text, bytes) ? nullptr : "has letters that are not in code page 1252";
}

std::string NumberLine(const Value& value) {
    DWORD number = 0;
    std::memcpy(&number, value.data.data(), std::min(value.data.size(), sizeof(number)));
    return value.name + " = " + std::to_string(number);
}

// Returns what is wrong with a value, or null and its line. The line is empty if a new device has
// that value anyway.
const char* SayText(const Value& value, std::string* line) {
    if (value.data.size() > kLongestValue) return "is longer than the program reads";
    const std::u16string text = TextOf(value.data);
    std::string bytes;
    if (text.empty()) {
        line->clear();
        return IsEmptyAtFirst(value.name) ? nullptr
                                          : "is empty, so a device keeps its own or the default";
    }
    if (const char* trouble = TextTrouble(text, &bytes)) return trouble;
    *line = value.name + " = \"" + bytes + '"';
    return nullptr;
}

const char* Say(const Value& value, std::string* line) {
    if (!IsSayableName(value.name)) return "is a name that a line cannot hold";
    if (value.type == REG_SZ) {
        if (const char* trouble = SayText(value, line)) return trouble;
    } else if (value.type == REG_DWORD && value.data.size() <= sizeof(DWORD)) {
        *line = NumberLine(value);
    } else {
        return "is neither a number nor a text";
    }
    return line->size() > kLongestLine ? "is longer than a line" : nullptr;
}

void AddValue(const Value& value, bool with_passwords, SettingsExport* result) {
    std::string line;
    const char* trouble = Say(value, &line);
    if (!trouble && line.empty()) return;
    if (!with_passwords && IsOneOf(kPasswords, value.name)) {
        result->left_out.push_back(value.name);
    } else if (trouble) {
        result->unsaid.push_back(value.name + " " + trouble);
    } else {
        result->file += line + '\n';
    }
}

bool IsEmptyAtFirst(const std::string& name) { return IsOneOf(kEmptyAtFirst, name); }

bool ExportSettings(const std::string& root, bool with_passwords, SettingsExport* result) {
    std::vector<Value> values;
    if (!ReadValues(root + kRegistryFile, &values)) return false;
    std::sort(values.begin(), values.end(), ComesBefore);
    *result = {kHeading, {}, {}};
    for (const Value& value : values) AddValue(value, with_passwords, result);
    return true;
}

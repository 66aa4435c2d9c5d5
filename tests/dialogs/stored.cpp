// SPDX-License-Identifier: MIT
// Reads ROOT/registry.db while the program runs, or after it.
#include "tests/dialogs/stored.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace {

const char kQuery[] =
    "SELECT name, type, data FROM registry "
    "WHERE key = 'HKEY_LOCAL_MACHINE\\Software\\QUILLWARE\\TELNET' AND name IS NOT NULL";

// Calls `row` for each row of the query; false if the query fails.
template <typename Row>
bool Query(const std::string& root, const char* query, Row row) {
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    const std::string file = root + "/registry.db";
    int result = sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr);
    sqlite3_busy_timeout(database, 5000);
    if (result == SQLITE_OK) result = sqlite3_prepare_v2(database, query, -1, &statement, nullptr);
    if (result == SQLITE_OK)
        while ((result = sqlite3_step(statement)) == SQLITE_ROW) row(statement);
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return result == SQLITE_DONE;
}

std::string Blob(sqlite3_stmt* statement, int column) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
    const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, column));
    return bytes ? std::string(bytes, size) : std::string();
}

}  // namespace

std::map<std::string, StoredSetting> StoredSettings(const std::string& root) {
    std::map<std::string, StoredSetting> settings;
    EXPECT_TRUE(Query(root, kQuery, [&](sqlite3_stmt* statement) {
        const auto type = static_cast<uint32_t>(sqlite3_column_int64(statement, 1));
        settings[Blob(statement, 0)] = {type, Blob(statement, 2)};
    })) << "the registry's file cannot be read";
    return settings;
}

uint32_t StoredNumber(const std::string& root, const std::string& name) {
    const StoredSetting setting = StoredSettings(root)[name];
    if (setting.type != 4 || setting.data.size() != 4) return kNotStored;
    uint32_t value = 0;
    for (int i = 3; i >= 0; i--)
        value = value << 8 | static_cast<unsigned char>(setting.data[static_cast<size_t>(i)]);
    return value;
}

std::u16string StoredText(const std::string& root, const std::string& name) {
    const StoredSetting setting = StoredSettings(root)[name];
    const size_t size = setting.data.size();
    if (setting.type != 1 || size < 2 || size % 2 != 0) return u"(not stored)";
    std::u16string text;
    for (size_t i = 0; i < size; i += 2)
        text.push_back(static_cast<char16_t>(static_cast<unsigned char>(setting.data[i]) |
                                             static_cast<unsigned char>(setting.data[i + 1]) << 8));
    EXPECT_EQ(text.back(), u'\0') << name << " is stored without its terminator";
    text.pop_back();
    return text;
}

std::string Integrity(const std::string& root) {
    std::string answer;
    if (!Query(root, "PRAGMA integrity_check", [&](sqlite3_stmt* s) { answer += Blob(s, 0); }))
        answer += " (the check did not end)";
    return answer;
}

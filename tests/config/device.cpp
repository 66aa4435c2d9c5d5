// SPDX-License-Identifier: MIT
// The device of a test, and what its registry file holds.
#include "tests/config/device.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/qt/services/device_root.h"
#include "platform/qt/services/registry.h"
#include "session/session_state.h"
#include "tests/config/registry_log.h"
#include "tests/config/settings_rows.h"
#include "tests/config/window_doubles.h"

namespace {

constexpr LPCWSTR kKey = TEXT("Software\\QUILLWARE\\TELNET");
const char kQuery[] =
    "SELECT name, type, data FROM registry "
    "WHERE key = 'HKEY_LOCAL_MACHINE\\Software\\QUILLWARE\\TELNET' AND name IS NOT NULL "
    "ORDER BY rowid";
constexpr uid_t kSomebodyElse = 65534;

RegistryValue ValueOfRow(sqlite3_stmt* statement) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, 2));
    const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, 2));
    return {reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)),
            static_cast<DWORD>(sqlite3_column_int64(statement, 1)),
            bytes ? std::string(bytes, size) : std::string()};
}

}  // namespace

void DeviceTest::SetUp() {
    root_ = std::filesystem::temp_directory_path().string() + "/quill-config-XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(root_.data()));
    CloseRegistry();
    SetDeviceRoot(root_);
    session.settings = {};
    session.narrow_screen = 0;
    ForgetWindowCalls();
    registry_log.clear();
}

void DeviceTest::TearDown() {
    CloseRegistry();
    chmod(root_.c_str(), 0700);
    std::filesystem::remove_all(root_);
}

std::vector<RegistryValue> StoredValues() {
    std::vector<RegistryValue> values;
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    const std::string file = DeviceRoot() + "/registry.db";
    if (sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(database, kQuery, -1, &statement, nullptr) == SQLITE_OK)
        while (sqlite3_step(statement) == SQLITE_ROW) values.push_back(ValueOfRow(statement));
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return values;
}

RegistryValue Stored(const std::string& name) {
    for (const RegistryValue& value : StoredValues())
        if (value.name == name) return value;
    return {name, 0, ""};
}

std::vector<std::string> StoredNames() {
    std::vector<std::string> names;
    for (const RegistryValue& value : StoredValues()) names.push_back(value.name);
    return names;
}

std::vector<std::string> NumberedNames(const std::string& prefix, int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; i++) names.push_back(prefix + std::to_string(i));
    return names;
}

std::vector<std::string> AllValueNames() {
    std::vector<std::string> names;
    for (const NumberSetting& row : number_settings) names.push_back(row.name);
    for (const TextSetting& row : text_settings) names.push_back(row.name);
    for (const std::string& name : NumberedNames("tbar", 27)) names.push_back(name);
    for (const std::string& name : NumberedNames("key", 66)) names.push_back(name);
    return names;
}

void Store(const std::string& name, DWORD type, const std::string& data) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0, KEY_SET_VALUE,
                                             nullptr, &key, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(key, Wide(name).c_str(), 0, type,
                                            reinterpret_cast<const BYTE*>(data.data()),
                                            static_cast<DWORD>(data.size())));
    RegCloseKey(key);
    registry_log.clear();
}

void StoreNumber(const std::string& name, DWORD value) {
    Store(name, REG_DWORD, NumberBytes(value));
}

void StoreText(const std::string& name, const std::u16string& text) {
    Store(name, REG_SZ, TerminatedBytes(text));
}

std::u16string Wide(const std::string& latin) {
    std::u16string text;
    for (const char c : latin) text.push_back(static_cast<unsigned char>(c));
    return text;
}

std::string NumberBytes(DWORD value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(value >> shift));
    return bytes;
}

std::string TextBytes(const std::u16string& text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

std::string TerminatedBytes(const std::u16string& text) {
    return TextBytes(text) + std::string(2, '\0');
}

void WriteDeviceFile(const std::string& name, const std::string& content) {
    std::ofstream(DeviceRoot() + "/" + name, std::ios::binary) << content;
}

bool DeviceFileExists(const std::string& name) {
    return std::filesystem::exists(DeviceRoot() + "/" + name);
}

WithoutRights::WithoutRights() {
    CloseRegistry();
    EXPECT_EQ(0, chmod(DeviceRoot().c_str(), 0555));
    if (getuid() == 0) {
        EXPECT_EQ(0, seteuid(kSomebodyElse));
    }
}

WithoutRights::~WithoutRights() {
    if (getuid() == 0) {
        EXPECT_EQ(0, seteuid(0));
    }
    CloseRegistry();
    chmod(DeviceRoot().c_str(), 0700);
}

// SPDX-License-Identifier: MIT
// Creates the device of a test and writes values and files to it.
#include "tests/settings/device.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/qt/services/registry.h"
#include "platform/qt/services/services.h"
#include "session/session_state.h"
#include "tests/settings/registry_log.h"
#include "tests/settings/settings_rows.h"
#include "tests/settings/window_doubles.h"

namespace {

constexpr LPCWSTR kKey = TEXT("Software\\QUILLWARE\\TELNET");
constexpr uid_t kSomebodyElse = 65534;

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
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string TextBytes(const std::u16string& text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
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

// SPDX-License-Identifier: MIT
// A new device for each test: an empty root folder with an empty registry. The tests read its
// registry file with SQLite, not with the registry's calls.
#ifndef QUILL_TESTS_SETTINGS_DEVICE_H
#define QUILL_TESTS_SETTINGS_DEVICE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "windows_ce.h"

class DeviceTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

  private:
    std::string root_;
};

struct RegistryValue {
    std::string name;
    DWORD type;
    std::string data;
};

// The values under the settings key in the order in which they were first written.
std::vector<RegistryValue> StoredValues();
// The value of that name; type 0 and no data if there is none.
RegistryValue Stored(const std::string& name);
std::vector<std::string> StoredNames();

// The names of all values after a save of everything, in the order of writing.
std::vector<std::string> AllValueNames();
std::vector<std::string> NumberedNames(const std::string& prefix, int count);

void Store(const std::string& name, DWORD type, const std::string& data);
void StoreNumber(const std::string& name, DWORD value);
void StoreText(const std::string& name, const std::u16string& text);

std::u16string Wide(const std::string& latin);
std::string NumberBytes(DWORD value);                     // as in a REG_DWORD
std::string TextBytes(const std::u16string& text);        // without a terminator
std::string TerminatedBytes(const std::u16string& text);  // as in a REG_SZ

void WriteDeviceFile(const std::string& name, const std::string& content);
bool DeviceFileExists(const std::string& name);

// While it exists, the process cannot write in the device's root or read files without permission.
// A process of the root user continues as another user.
class WithoutRights {
  public:
    WithoutRights();
    ~WithoutRights();
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;
};

#endif

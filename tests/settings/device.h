// SPDX-License-Identifier: MIT
// A device of each test's own: an empty root folder with an empty registry. Its registry file is
// read back with SQLite itself, without the registry's calls.
#ifndef QUILL_TESTS_CONFIG_DEVICE_H
#define QUILL_TESTS_CONFIG_DEVICE_H

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
// Type 0 and no data if there is none of the name.
RegistryValue Stored(const std::string& name);
std::vector<std::string> StoredNames();

// The names of all values that a save of everything leaves, in the order of writing.
std::vector<std::string> AllValueNames();
std::vector<std::string> NumberedNames(const std::string& prefix, int count);

void Store(const std::string& name, DWORD type, const std::string& data);
void StoreNumber(const std::string& name, DWORD value);
void StoreText(const std::string& name, const std::u16string& text);

std::u16string Wide(const std::string& latin);
std::string NumberBytes(DWORD value);                     // as a REG_DWORD holds it
std::string TextBytes(const std::u16string& text);        // without a terminator
std::string TerminatedBytes(const std::u16string& text);  // as a REG_SZ holds it

void WriteDeviceFile(const std::string& name, const std::string& content);
bool DeviceFileExists(const std::string& name);

// From here to its end nobody may write in the root, nor read files without rights. Also for root,
// who goes on as somebody else.
class WithoutRights {
  public:
    WithoutRights();
    ~WithoutRights();
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;
};

#endif

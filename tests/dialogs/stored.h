// SPDX-License-Identifier: MIT
// Reads the registry file of a device with SQLite, without the program's registry calls.
#ifndef QUILL_TESTS_DIALOGS_STORED_H
#define QUILL_TESTS_DIALOGS_STORED_H

#include <cstdint>
#include <map>
#include <string>

struct StoredSetting {
    uint32_t type = 0;  // 0: there is no such value
    std::string data;
};

// All values under the settings key. A damaged or missing file fails the test.
std::map<std::string, StoredSetting> StoredSettings(const std::string& root);

constexpr uint32_t kNotStored = 0xFFFFFFFF;
uint32_t StoredNumber(const std::string& root, const std::string& name);      // or kNotStored
std::u16string StoredText(const std::string& root, const std::string& name);  // or u"(not stored)"

// The result of `PRAGMA integrity_check`: "ok" for an intact file.
std::string Integrity(const std::string& root);

#endif

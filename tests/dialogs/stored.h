// SPDX-License-Identifier: MIT
// The registry's file of a device, read by SQLite itself, without the program's registry calls.
#ifndef QUILL_TESTS_DIALOGS_STORED_H
#define QUILL_TESTS_DIALOGS_STORED_H

#include <cstdint>
#include <map>
#include <string>

struct StoredSetting {
    uint32_t type = 0;  // 0: there is no such value
    std::string data;
};

// Everything under the settings key. A damaged or missing file is a failure of the test.
std::map<std::string, StoredSetting> StoredSettings(const std::string& root);

constexpr uint32_t kNotStored = 0xFFFFFFFF;
uint32_t StoredNumber(const std::string& root, const std::string& name);      // or kNotStored
std::u16string StoredText(const std::string& root, const std::string& name);  // or u"(not stored)"

// What `PRAGMA integrity_check` says: "ok" for a sound file.
std::string Integrity(const std::string& root);

#endif

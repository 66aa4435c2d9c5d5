// SPDX-License-Identifier: MIT
// The registry's file on a processor without SQLite: all rows in the order in which they were first
// written.
#ifndef QUILL_TESTS_DEVICES_FLAT_REGISTRY_H
#define QUILL_TESTS_DEVICES_FLAT_REGISTRY_H

#include <cstdint>
#include <string>
#include <vector>

struct FlatRow {
    std::string key;
    bool is_value;  // otherwise the row says that the key exists
    std::string name;
    uint32_t type;
    std::string data;
};

// False if the file cannot be read and written, or created.
bool ReadFlatRegistry(const std::string& path, std::vector<FlatRow>* rows);
bool WriteFlatRegistry(const std::string& path, const std::vector<FlatRow>& rows);

#endif

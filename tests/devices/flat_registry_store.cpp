// SPDX-License-Identifier: MIT
// The registry's store without SQLite: each change writes the whole file.
#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>

#include "flat_registry.h"
#include "platform/qt/services/registry.h"
#include "platform/qt/services/services.h"

namespace {

std::vector<FlatRow> g_rows;
std::string g_path;  // empty: the rows are not read yet

void AddNumber(std::string* bytes, size_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        *bytes += static_cast<char>(static_cast<uint32_t>(value) >> shift);
}

void AddText(std::string* bytes, const std::string& text) {
    AddNumber(bytes, text.size());
    *bytes += text;
}

uint32_t TakeNumber(const std::string& bytes, size_t* at) {
    uint32_t value = 0;
    for (int i = 0; i < 4; i++)
        value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes.at((*at)++))) << (8 * i);
    return value;
}

std::string TakeText(const std::string& bytes, size_t* at) {
    const uint32_t size = TakeNumber(bytes, at);
    *at += size;
    return bytes.substr(*at - size, size);
}

bool Same(const std::string& a, const std::string& b) {
    return strcasecmp(a.c_str(), b.c_str()) == 0;
}

FlatRow* FindValue(const std::string& key, const std::string& name) {
    const auto found = std::find_if(g_rows.begin(), g_rows.end(), [&](const FlatRow& row) {
        return row.is_value && Same(row.key, key) && Same(row.name, name);
    });
    return found == g_rows.end() ? nullptr : &*found;
}

bool IsKey(const std::string& key) {
    return std::any_of(g_rows.begin(), g_rows.end(),
                       [&](const FlatRow& row) { return Same(row.key, key); });
}

StoreResult Save() {
    return WriteFlatRegistry(g_path, g_rows) ? StoreResult::kOk : StoreResult::kFailed;
}

}  // namespace

bool ReadFlatRegistry(const std::string& path, std::vector<FlatRow>* rows) {
    rows->clear();
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0) return false;
    std::string bytes;
    char block[4096];
    for (ssize_t count; (count = read(file, block, sizeof block)) > 0;)
        bytes.append(block, static_cast<size_t>(count));
    close(file);
    for (size_t at = 0; at < bytes.size();) {
        FlatRow row;
        row.key = TakeText(bytes, &at);
        row.is_value = TakeNumber(bytes, &at) != 0;
        row.name = TakeText(bytes, &at);
        row.type = TakeNumber(bytes, &at);
        row.data = TakeText(bytes, &at);
        rows->push_back(row);
    }
    return true;
}

bool WriteFlatRegistry(const std::string& path, const std::vector<FlatRow>& rows) {
    std::string bytes;
    for (const FlatRow& row : rows) {
        AddText(&bytes, row.key);
        AddNumber(&bytes, row.is_value);
        AddText(&bytes, row.name);
        AddNumber(&bytes, row.type);
        AddText(&bytes, row.data);
    }
    const int file = open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (file < 0) return false;
    const bool whole =
        write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    return close(file) == 0 && whole;
}

bool RegistryStore::Ready() {
    if (!g_path.empty()) return true;
    const std::string path = DeviceRoot() + "/registry.db";
    if (!ReadFlatRegistry(path, &g_rows)) return false;
    g_path = path;
    return true;
}

bool RegistryStore::IsUsable() { return Ready(); }

StoreResult RegistryStore::HasKey(const std::string& key) {
    if (!Ready()) return StoreResult::kFailed;
    return IsKey(key) ? StoreResult::kOk : StoreResult::kNotFound;
}

StoreResult RegistryStore::MakeKey(const std::string& key, bool* created) {
    if (!Ready()) return StoreResult::kFailed;
    *created = !IsKey(key);
    if (!*created) return StoreResult::kOk;
    g_rows.push_back({key, false, "", 0, ""});
    return Save();
}

StoreResult RegistryStore::Read(const std::string& key, const std::string& name,
                                StoredValue* value) {
    if (!Ready()) return StoreResult::kFailed;
    const FlatRow* row = FindValue(key, name);
    if (!row) return StoreResult::kNotFound;
    *value = {row->type, row->data};
    return StoreResult::kOk;
}

StoreResult RegistryStore::Write(const std::string& key, const std::string& name,
                                 const StoredValue& value) {
    if (!Ready()) return StoreResult::kFailed;
    FlatRow* row = FindValue(key, name);
    if (row && row->type == value.type && row->data == value.data) return StoreResult::kOk;
    if (!row) row = &g_rows.emplace_back(FlatRow{key, true, name, 0, ""});
    row->type = value.type;
    row->data = value.data;
    return Save();
}

StoreResult RegistryStore::Delete(const std::string& key, const std::string& name) {
    if (!Ready()) return StoreResult::kFailed;
    const FlatRow* row = FindValue(key, name);
    if (!row) return StoreResult::kNotFound;
    g_rows.erase(g_rows.begin() + (row - g_rows.data()));
    return Save();
}

void RegistryStore::Close() {
    g_path.clear();
    g_rows.clear();
}

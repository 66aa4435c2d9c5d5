// SPDX-License-Identifier: MIT
// The registry's calls, on top of its store. A run never uses the same HKEY number twice.
#include "platform/qt/services/registry.h"

#include <map>
#include <mutex>
#include <set>

#include "platform/qt/services/services.h"
#include "windows_ce.h"

constexpr LONG kErrorBadPathname = 161;
constexpr LONG kErrorRegistryFailed = 1016;
constexpr DWORD kCreatedNewKey = 1;
constexpr DWORD kOpenedExistingKey = 2;
constexpr size_t kLongestKeyName = 255;
constexpr size_t kLongestValueName = 16383;
static const char kLocalMachine[] = "HKEY_LOCAL_MACHINE";

namespace {

struct OpenKey {
    std::string path;
    DWORD access;
};

struct Registry {
    std::mutex mutex;
    RegistryStore store;
    std::map<HKEY, OpenKey> open;
    bool unread = false;          // the file failed to give a key or a value
    std::set<std::string> known;  // values that were read, set or deleted
    UINT_PTR last = 0;
    std::u16string walked;  // the last path that was opened below the root, as the caller wrote it
    std::string reached;    // the same path as the file stores it
};

}  // namespace

// Never destroyed; CloseRegistry closes the store.
static Registry& TheRegistry() {
    static Registry* registry = new Registry;
    return *registry;
}

// The file compares only ASCII letters without case, so all other letters are stored in upper case.
static std::string StoredName(std::u16string name) {
    for (char16_t& unit : name)
        if (unit > 0x7F) unit = UpperUnit(unit);
    return Utf8FromWide(name);
}

static LONG ErrorOf(StoreResult result) {
    if (result == StoreResult::kOk) return ERROR_SUCCESS;
    return result == StoreResult::kNotFound ? ERROR_FILE_NOT_FOUND : kErrorRegistryFailed;
}

static LONG FindKey(Registry& registry, HKEY key, DWORD access, std::string* path) {
    if (key == HKEY_LOCAL_MACHINE) return *path = kLocalMachine, ERROR_SUCCESS;
    const auto found = registry.open.find(key);
    if (found == registry.open.end()) return ERROR_INVALID_HANDLE;
    if ((found->second.access & access) != access) return ERROR_ACCESS_DENIED;
    *path = found->second.path;
    return ERROR_SUCCESS;
}

// Takes the next name of the path; false at its end.
static bool TakeName(LPCWSTR* sub_key, std::u16string* name) {
    name->clear();
    while (**sub_key == u'\\') ++*sub_key;
    while (**sub_key && **sub_key != u'\\') name->push_back(*(*sub_key)++);
    return !name->empty();
}

static std::string ValuePlace(const std::string& path, const std::string& value_name) {
    return DeviceRoot() + "\n" + path + "\n" + value_name;
}

static LONG ReadStored(Registry& registry, const std::string& path, const std::string& value_name,
                       StoredValue* value) {
    const LONG error = ErrorOf(registry.store.Read(path, value_name, value));
    if (error == kErrorRegistryFailed)
        registry.unread = true;
    else
        registry.known.insert(ValuePlace(path, value_name));
    return error;
}

// If a value cannot be read, the program uses its default. When the file can be used again, a save
// must not replace the user's value with that default.
static LONG CheckOverwrite(Registry& registry, const std::string& path,
                           const std::string& value_name, const StoredValue& value) {
    const std::string place = ValuePlace(path, value_name);
    if (!registry.unread || registry.known.contains(place)) return ERROR_SUCCESS;
    registry.store.Release();  // what was read before may be old by now
    StoredValue stored;
    const StoreResult read = registry.store.Read(path, value_name, &stored);
    const bool same = stored.type == value.type && stored.data == value.data;
    const bool keeps = read == StoreResult::kNotFound || (read == StoreResult::kOk && same);
    return keeps ? ERROR_SUCCESS : kErrorRegistryFailed;
}

static HKEY AddKey(Registry& registry, const std::string& path, DWORD access) {
    const HKEY key = reinterpret_cast<HKEY>(registry.last += 4);
    registry.open[key] = {path, access};
    return key;
}

// If `created` is given, creates the keys that are missing on the way.
static LONG AddNames(Registry& registry, LPCWSTR sub_key, std::string* path, bool* created) {
    std::u16string name;
    while (TakeName(&sub_key, &name)) {
        if (name.size() > kLongestKeyName) return ERROR_INVALID_PARAMETER;
        path->append("\\").append(StoredName(name));
        const StoreResult made =
            created ? registry.store.MakeKey(*path, created) : StoreResult::kOk;
        if (made != StoreResult::kOk) return ErrorOf(made);
    }
    return ERROR_SUCCESS;
}

// `created` as above. A start walks the same way for each value.
static LONG WalkTo(Registry& registry, LPCWSTR sub_key, std::string* path, bool* created) {
    if (!sub_key) sub_key = u"";
    if (!created && *sub_key && *path == kLocalMachine && registry.walked == sub_key) {
        *path = registry.reached;
        return ErrorOf(registry.store.HasKey(*path));
    }
    if (*sub_key == u'\\') return kErrorBadPathname;
    const std::string start = *path;
    const LONG error = AddNames(registry, sub_key, path, created);
    if (error != ERROR_SUCCESS) return error;
    if (created != nullptr && *path != start)
        return ERROR_SUCCESS;  // the store made it, so it is usable
    if (created != nullptr || *path == kLocalMachine)
        return registry.store.IsUsable() ? ERROR_SUCCESS : kErrorRegistryFailed;
    if (start == kLocalMachine) registry.walked = sub_key, registry.reached = *path;
    return ErrorOf(registry.store.HasKey(*path));
}

static LONG ValueName(LPCWSTR name, std::string* stored) {
    const std::u16string text = name ? name : u"";
    if (text.size() > kLongestValueName) return ERROR_INVALID_PARAMETER;
    *stored = StoredName(text);
    return ERROR_SUCCESS;
}

// The checks that every call on a value starts with.
static LONG FindPlace(Registry& registry, HKEY key, DWORD access, LPCWSTR name, std::string* path,
                      std::string* value_name) {
    const LONG error = FindKey(registry, key, access, path);
    return error == ERROR_SUCCESS ? ValueName(name, value_name) : error;
}

static LONG HandOut(const StoredValue& value, DWORD* type, BYTE* data, DWORD* size) {
    const DWORD room = size ? *size : 0;
    if (type) *type = value.type;
    if (size) *size = static_cast<DWORD>(value.data.size());
    if (!data) return ERROR_SUCCESS;
    if (room < value.data.size()) return ERROR_MORE_DATA;
    memcpy(data, value.data.data(), value.data.size());
    return ERROR_SUCCESS;
}

LONG RegOpenKeyExW(HKEY key, LPCWSTR sub_key, DWORD, DWORD access, HKEY* result) {
    if (!result) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    std::string path;
    LONG error = FindKey(registry, key, 0, &path);
    if (error == ERROR_SUCCESS) error = WalkTo(registry, sub_key, &path, nullptr);
    if ((access & KEY_QUERY_VALUE) && error == kErrorRegistryFailed) registry.unread = true;
    if (error == ERROR_SUCCESS) *result = AddKey(registry, path, access);
    return error;
}

LONG RegCreateKeyExW(HKEY key, LPCWSTR sub_key, DWORD, LPWSTR, DWORD, DWORD access, LPVOID,
                     HKEY* result, DWORD* disposition) {
    if (!result) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    std::string path;
    bool created = false;
    LONG error = FindKey(registry, key, 0, &path);
    if (error == ERROR_SUCCESS) error = WalkTo(registry, sub_key, &path, &created);
    if (error != ERROR_SUCCESS) return error;
    if (disposition) *disposition = created ? kCreatedNewKey : kOpenedExistingKey;
    *result = AddKey(registry, path, access);
    return ERROR_SUCCESS;
}

LONG RegQueryValueExW(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
    if (reserved || (data && !size)) return ERROR_INVALID_PARAMETER;
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    std::string path, value_name;
    LONG error = FindPlace(registry, key, KEY_QUERY_VALUE, name, &path, &value_name);
    if (error != ERROR_SUCCESS) return error;
    StoredValue value;
    if (!ReadRunValue(registry.store, path, value_name, &value))
        error = ReadStored(registry, path, value_name, &value);
    return error == ERROR_SUCCESS ? HandOut(value, type, data, size) : error;
}

LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    if ((!data && size > 0) || size > INT32_MAX) return ERROR_INVALID_PARAMETER;
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    std::string path, value_name;
    LONG error = FindPlace(registry, key, KEY_SET_VALUE, name, &path, &value_name);
    if (error != ERROR_SUCCESS) return error;
    StoredValue value{type, {}};
    if (size > 0) value.data.assign(reinterpret_cast<const char*>(data), size);
    if (KeepRunValue(path, value_name, value)) return ERROR_SUCCESS;
    error = CheckOverwrite(registry, path, value_name, value);
    if (error == ERROR_SUCCESS) error = ErrorOf(registry.store.Write(path, value_name, value));
    if (error == ERROR_SUCCESS) registry.known.insert(ValuePlace(path, value_name));
    return error;
}

LONG RegDeleteValueW(HKEY key, LPCWSTR name) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    std::string path, value_name;
    LONG error = FindPlace(registry, key, KEY_SET_VALUE, name, &path, &value_name);
    if (error == ERROR_SUCCESS) error = ErrorOf(registry.store.Delete(path, value_name));
    if (error == ERROR_SUCCESS) registry.known.insert(ValuePlace(path, value_name));
    return error;
}

void ConnectThisRun(const RunTarget& target) {
    HKEY key;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, kSettingsKeyName, 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_SET_VALUE, nullptr, &key, nullptr) == ERROR_SUCCESS)
        RegCloseKey(key);
    SetRunTarget(target);
}

// Each value is committed when it is set, so there is nothing to flush.
LONG RegFlushKey(HKEY key) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    std::string path;
    const LONG error = FindKey(registry, key, 0, &path);
    if (error != ERROR_SUCCESS) return error;
    const StoreResult usable = registry.store.HasKey(path);
    return usable == StoreResult::kFailed ? kErrorRegistryFailed : ERROR_SUCCESS;
}

LONG RegCloseKey(HKEY key) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    if (key == HKEY_LOCAL_MACHINE || registry.open.erase(key) > 0) return ERROR_SUCCESS;
    return ERROR_INVALID_HANDLE;
}

void HoldRegistry() {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.store.Hold();
}

void ReleaseRegistry() {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.store.Release();
}

void CloseRegistry() {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.store.Release();
    registry.store.Close();
    registry.unread = false;
    registry.known.clear();
}

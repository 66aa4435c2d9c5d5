// SPDX-License-Identifier: MIT
// The registry's file: ROOT/registry.db, an SQLite database with one table (key, name, type, data)
// and mode 0600. It is in WAL mode, so a process that is killed at any moment leaves each value
// either old or new. A row without a name means that its key exists. If the file cannot be read as
// that table, it is renamed to registry.db.damaged (then .damaged-2, ...), and a new one is
// created. Several processes may share a root.
#ifndef QUILL_PLATFORM_QT_SERVICES_REGISTRY_H
#define QUILL_PLATFORM_QT_SERVICES_REGISTRY_H

#include <sys/types.h>
#include <cstdint>
#include <functional>
#include <string>

// Writes everything into the one file and closes it; the next call opens it again. Open keys stay
// open.
void CloseRegistry();

struct sqlite3;
struct sqlite3_stmt;

enum class StoreResult {
    kOk,
    kNotFound,
    kFailed,  // no folder, no permission, no room, or another process keeps it locked
};

struct StoredValue {
    uint32_t type = 0;
    std::string data;
};

// Not thread-safe. Keys and names are compared without the case of ASCII letters.
class RegistryStore {
  public:
    StoreResult HasKey(const std::string& key);
    StoreResult MakeKey(const std::string& key, bool* created);
    StoreResult Read(const std::string& key, const std::string& name, StoredValue* value);
    StoreResult Write(const std::string& key, const std::string& name, const StoredValue& value);
    StoreResult Delete(const std::string& key, const std::string& name);
    void Close();

  private:
    enum Statement { kHasKey, kMakeKey, kRead, kWrite, kDelete, kStatements };
    enum class Opened { kSound, kDamaged, kFailed };

    int Run(Statement which, const std::string& key, const std::string* name,
            const StoredValue* value, const std::function<void(sqlite3_stmt*)>& row);
    int RunOnce(Statement which, const std::string& key, const std::string* name,
                const StoredValue* value, const std::function<void(sqlite3_stmt*)>& row);
    bool Ready();
    bool IsOwnFile() const;  // the open file is still the one with this name
    bool Open(bool damaged);
    Opened OpenFile();
    Opened TakeFile();
    Opened CheckContent(bool* empty);
    Opened Prepare();
    Opened Classify(int result) const;
    void Abandon();  // closes without a write to the file

    std::string path_;
    dev_t device_ = 0;
    ino_t inode_ = 0;
    sqlite3* database_ = nullptr;
    sqlite3_stmt* statements_[kStatements] = {};
};

// ---------------------------------------------------------------- the program's key

// For the host's own access to its values.
inline constexpr char16_t kSettingsKeyName[] = u"Software\\QUILLWARE\\TELNET";
// The same key as the registry's file writes it.
inline constexpr char kSettingsKeyPath[] = "HKEY_LOCAL_MACHINE\\Software\\QUILLWARE\\TELNET";

#endif

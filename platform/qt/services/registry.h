// SPDX-License-Identifier: MIT
// The registry's file: ROOT/registry.db, a SQLite database of one table (key, name, type, data),
// mode 0600, in WAL mode, so that a process killed at any moment leaves each value old or new.
// A row without a name says that its key exists. A file that cannot be read as that table is
// renamed to registry.db.damaged (then .damaged-2, ...), and a fresh one is begun. Several
// processes may share a root.
#ifndef QUILL_PLATFORM_QT_SERVICES_REGISTRY_H
#define QUILL_PLATFORM_QT_SERVICES_REGISTRY_H

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>

// Writes everything into the one file and closes it; the next call opens it again. Keys that are
// open stay open.
void CloseRegistry();

struct sqlite3;
struct sqlite3_stmt;

enum class StoreResult {
    kOk,
    kNotFound,
    kFailed,  // no folder, no right to it, no room, or another process does not let go of it
};

struct StoredValue {
    uint32_t type = 0;
    std::string data;
};

// Not for two threads at once. Keys and names are compared without the case of ASCII letters.
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
    bool IsOwnFile() const;  // the file open here is still the one that bears the name
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

#endif

// SPDX-License-Identifier: MIT
// The registry's file: ROOT/registry.db, an SQLite database with one table (key, name, type, data)
// and mode 0600. It is in WAL mode, so a process that is killed at any moment leaves each value
// either old or new. A row without a name means that its key exists. If the file cannot be read as
// that table, it is renamed to registry.db.damaged (then .damaged-2, ...), and a new one is
// created. If nothing can be written there, it is read as it is, unless it has a log; each write
// tries again. Several processes may share a root. If a value could not be read, the program went
// on with another one: until CloseRegistry, a stored value that this process has not read, set or
// deleted is then not replaced with a different one.
//
// Below: the program's own key in the registry, the values that hold for one run only, and the
// export of the stored settings.
#ifndef QUILL_PLATFORM_QT_SERVICES_REGISTRY_H
#define QUILL_PLATFORM_QT_SERVICES_REGISTRY_H

#include <sys/types.h>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Writes everything into the one file and closes it; the next call opens it again. Open keys stay
// open.
void CloseRegistry();

// Between the two calls, reads are one transaction: they see the registry as it was at the first of
// them, and do not lock the file each. The values of a key are read at once. Other processes may
// write meanwhile. The next write of this process and CloseRegistry release it too.
void HoldRegistry();
void ReleaseRegistry();

struct sqlite3;
struct sqlite3_stmt;

inline constexpr char kRegistryFile[] = "/registry.db";  // in the root

// True for SQLite's results where another process keeps the file locked.
bool IsBusy(int result);
// SQLite's URI of the file where nothing can be written, to open it for reading only. Empty if the
// file has a log: what is in the log could not be read.
std::string ImmutableName(const std::string& path);

enum class StoreResult {
    kOk,
    kNotFound,
    kFailed,  // no folder, no permission, no room, or another process keeps it locked
};

struct StoredValue {
    uint32_t type = 0;
    std::string data;
};

struct NamedValue {
    std::string name;
    StoredValue value;
};

// Not thread-safe. Keys and names are compared without the case of ASCII letters.
class RegistryStore {
  public:
    bool IsUsable();  // opens the file if it is not open
    // Keys are never deleted: once a key was found, it is known as long as the file is open.
    StoreResult HasKey(const std::string& key);
    StoreResult MakeKey(const std::string& key, bool* created);
    StoreResult Read(const std::string& key, const std::string& name, StoredValue* value);
    StoreResult Write(const std::string& key, const std::string& name, const StoredValue& value);
    StoreResult Delete(const std::string& key, const std::string& name);
    void Hold();  // as HoldRegistry
    void Release();
    void Close();

  private:
    enum Statement { kHasKey, kMakeKey, kRead, kReadKey, kWrite, kDelete, kStatements };
    enum class Opened { kSound, kDamaged, kFailed, kBusy };

    int Run(Statement which, const std::string& key, const std::string* name,
            const StoredValue* value, std::vector<NamedValue>* rows);
    int RunOnce(Statement which, const std::string& key, const std::string* name,
                const StoredValue* value, std::vector<NamedValue>* rows);
    static bool Changes(Statement which);
    bool Ready();
    bool IsAtRoot() const;
    bool HoldKey(const std::string& key);
    void ForgetHeld();
    bool IsInTransaction() const;
    bool IsOwnFile() const;  // the open file is still the one with this name
    bool Open(bool damaged);
    Opened OpenFile();
    Opened OpenForReading();  // where nothing can be written
    Opened TakeFile(int flags);
    bool Connect(const std::string& name, int flags);
    bool ReadsOnly() const;
    Opened CheckContent(bool* empty);
    Opened Prepare();
    Opened Classify(int result);
    int Patience() const;  // milliseconds to wait for another process
    void NoteBusy(int result);
    void Abandon();  // closes without a write to the file

    std::string path_;
    dev_t device_ = 0;
    ino_t inode_ = 0;
    sqlite3* database_ = nullptr;
    sqlite3_stmt* statements_[kStatements] = {};
    bool holds_ = false;  // reads begin a transaction and leave it open
    // When another process last kept the file locked. For a second the calls then fail at once,
    // unless one succeeds: a save of all settings waits once, not for each value.
    std::optional<std::chrono::steady_clock::time_point> busy_;
    // While reads are held: the values of a key as the transaction sees them.
    std::optional<std::string> held_key_;
    std::vector<NamedValue> held_;  // in the file's order of names
    std::string known_key_;  // the last one that was found; empty: none since the file was opened
};

// ---------------------------------------------------------------- the program's key

// For the host's own access to its values.
inline constexpr char16_t kSettingsKeyName[] = u"Software\\QUILLWARE\\TELNET";
// The same key as the registry's file writes it.
inline constexpr char kSettingsKeyPath[] = "HKEY_LOCAL_MACHINE\\Software\\QUILLWARE\\TELNET";

// ---------------------------------------------------------------- the values of one run

// Settings that hold for one run only: where the command line wants to connect. The program reads
// them from the registry as if they were stored there; the store keeps the user's own values.
//
// The values that belong to a host (its name, port and protocol, the user, passwords, the automatic
// login) belong to this run from the first time that the program reads one of them. Before that, an
// import still writes to the store. After that, what the program writes is kept in memory until the
// end. Passwords of the stored host never go to another one: unless host, port, protocol and user
// are the stored ones, the run has no password and no response of an automatic login.

enum class RunProtocol { kOfTheStore, kTelnet, kSsh };

struct RunTarget {
    std::string host;  // ASCII, at most 39 characters
    int port = 0;      // 1 to 65535; 0: the protocol's default, 23 or 22
    RunProtocol protocol = RunProtocol::kOfTheStore;
    std::string user;  // ASCII, at most 39 characters; empty: the stored one
};

// Call it before the program starts. Makes the settings key if it is missing, because without it
// the program looks for no value. Defined beside the registry's calls.
void ConnectThisRun(const RunTarget& target);
void ForgetRun();

// For the registry's calls. Sets what the run wants from now on.
void SetRunTarget(const RunTarget& target);
// True if the value is one of this run's. Only the settings key has such values.
bool ReadRunValue(RegistryStore& store, const std::string& key, const std::string& name,
                  StoredValue* value);
bool KeepRunValue(const std::string& key, const std::string& name, const StoredValue& value);

// ---------------------------------------------------------------- export

// Exports the stored settings as an mconfig.cfg, which a device reads at its next start.
struct SettingsExport {
    std::string file;                   // in the ANSI code page, one line per setting
    std::vector<std::string> left_out;  // names of the passwords that are left out
    std::vector<std::string> unsaid;    // UTF-8: what the file cannot hold, one sentence each
};

// Reads ROOT/registry.db without changing it; another program may have it open. False if there is
// no such file, it is damaged or locked, or it has a log where nothing can be written. Passwords
// are `ssh_p` and the responses of the automatic login, because most hosts ask for a password
// there.
bool ExportSettings(const std::string& root, bool with_passwords, SettingsExport* result);

// True for texts whose default is empty: a new device needs no line for an empty one.
bool IsEmptyAtFirst(const std::string& name);

#endif

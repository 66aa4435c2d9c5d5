// SPDX-License-Identifier: MIT
// Keeps the registry in its SQLite file.
#include "platform/qt/services/registry.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include "platform/qt/services/services.h"

constexpr int kBusyMilliseconds = 3000;
constexpr int kBusyStep = 5;  // milliseconds
constexpr std::chrono::seconds kBusyMemory(1);
constexpr mode_t kOwnerAlone = 0600;

// Compared with the schema in the file, letter by letter.
static const char kSchema[] =
    "CREATE TABLE registry ("
    "key TEXT NOT NULL COLLATE NOCASE CHECK (typeof(key) = 'text'), "
    "name TEXT COLLATE NOCASE CHECK (typeof(name) IN ('text', 'null')), "
    "type INTEGER NOT NULL CHECK (typeof(type) = 'integer' AND type BETWEEN 0 AND 4294967295), "
    "data BLOB NOT NULL CHECK (typeof(data) = 'blob'), "
    "UNIQUE (key, name))";

static const char* const kStatementTexts[] = {
    "SELECT 1 FROM registry WHERE key = ?1 LIMIT 1",
    "INSERT INTO registry SELECT ?1, NULL, 0, x'' "
    "WHERE NOT EXISTS (SELECT 1 FROM registry WHERE key = ?1)",
    "SELECT name, type, data FROM registry WHERE key = ?1 AND name = ?2",
    "SELECT name, type, data FROM registry WHERE key = ?1 AND name IS NOT NULL ORDER BY name",
    "INSERT INTO registry VALUES (?1, ?2, ?3, ?4) ON CONFLICT (key, name) "
    "DO UPDATE SET type = excluded.type, data = excluded.data "
    "WHERE type <> excluded.type OR data <> excluded.data",
    "DELETE FROM registry WHERE key = ?1 AND name = ?2",
};

static int Lower(char unit) {
    const int code = static_cast<unsigned char>(unit);
    return code >= 'A' && code <= 'Z' ? code - 'A' + 'a' : code;
}

// The file's order of names, which ignores the case of ASCII letters.
static int Order(const std::string& one, const std::string& other) {
    const size_t both = std::min(one.size(), other.size());
    for (size_t i = 0; i < both; ++i)
        if (const int order = Lower(one[i]) - Lower(other[i])) return order;
    return static_cast<int>(one.size()) - static_cast<int>(other.size());
}

static bool ComesBefore(const NamedValue& one, const std::string& name) {
    return Order(one.name, name) < 0;
}

static bool IsDamage(int result) {
    const int code = result & 0xFF;
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB || code == SQLITE_FORMAT;
}

bool IsBusy(int result) { return (result & 0xFF) == SQLITE_BUSY; }

namespace {

// Only one process at a time opens the file or sets it aside. The lock is on the folder and ends
// with the process.
class FolderLock {
  public:
    FolderLock(const std::string& folder, int patience)
        : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        for (int waited = 0; folder_ >= 0; waited += kBusyStep) {
            held_ = flock(folder_, LOCK_EX | LOCK_NB) == 0;
            busy_ = !held_ && errno == EWOULDBLOCK;
            if (!busy_ || waited >= patience) break;
            usleep(kBusyStep * 1000);
        }
    }
    ~FolderLock() {
        if (folder_ >= 0) close(folder_);
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    bool held() const { return held_; }
    bool busy() const { return busy_; }  // another process kept it

  private:
    int folder_;
    bool held_ = false;
    bool busy_ = false;
};

}  // namespace

static bool Exists(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

static bool HasContent(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && status.st_size > 0;
}

// In SQLite's URI of the file some bytes have a meaning.
static std::string UriPath(const std::string& path) {
    std::string uri;
    for (const char byte : path) {
        const char* const hex = byte == '%' ? "%25" : byte == '?' ? "%3f" : "%23";
        if (byte == '%' || byte == '?' || byte == '#')
            uri += hex;
        else
            uri += byte;
    }
    return uri;
}

// An immutable file needs no lock, log or index, so SQLite writes nothing. It would not read the
// log of such a file.
std::string ImmutableName(const std::string& path) {
    char file[PATH_MAX];  // SQLite's log is beside it, not beside a link to it
    if (!realpath(path.c_str(), file)) return "";
    if (HasContent(std::string(file) + "-wal") || HasContent(std::string(file) + "-journal"))
        return "";
    return "file://" + UriPath(file) + "?immutable=1";
}

static std::string FreeDamagedName(const std::string& path) {
    std::string name = path + ".damaged";
    for (int i = 2; Exists(name) || Exists(name + "-wal") || Exists(name + "-journal"); ++i)
        name = path + ".damaged-" + std::to_string(i);
    return name;
}

// The log moves first, to the name where SQLite finds it; the log's index is only a cache. The
// database moves last: if the process ends in between, the next start repeats the move.
static bool SetAside(const std::string& path) {
    const std::string name = FreeDamagedName(path);
    rename((path + "-wal").c_str(), (name + "-wal").c_str());
    rename((path + "-journal").c_str(), (name + "-journal").c_str());
    unlink((path + "-shm").c_str());
    return rename(path.c_str(), name.c_str()) == 0;
}

// SQLite's file header: its size, and the places of the two versions.
constexpr size_t kHeaderBytes = 100, kWriteVersion = 18, kReadVersion = 19;

// False for versions that SQLite would open for reading only, and for a log without its database.
static bool HasSoundHeader(int file, const struct stat& status, const std::string& path) {
    unsigned char header[kHeaderBytes] = {};
    if (status.st_size == 0) return !HasContent(path + "-wal");
    if (pread(file, header, sizeof(header), 0) != sizeof(header)) return false;
    return header[kWriteVersion] <= 2 && header[kReadVersion] <= 2;
}

static int Execute(sqlite3* database, const char* text) {
    return sqlite3_exec(database, text, nullptr, nullptr, nullptr);
}

// Reads the first column of the first row.
static int QueryText(sqlite3* database, const char* query, std::string* text) {
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(database, query, -1, &statement, nullptr);
    if (result == SQLITE_OK) result = sqlite3_step(statement);
    text->clear();
    if (result == SQLITE_ROW) {
        const unsigned char* bytes = sqlite3_column_text(statement, 0);
        if (bytes) *text = reinterpret_cast<const char*>(bytes);
        result = SQLITE_OK;
    }
    sqlite3_finalize(statement);
    return result == SQLITE_DONE ? SQLITE_OK : result;
}

static void BindText(sqlite3_stmt* statement, int place, const std::string& text) {
    sqlite3_bind_text64(statement, place, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

int RegistryStore::Patience() const {
    const bool busy = busy_ && std::chrono::steady_clock::now() - *busy_ < kBusyMemory;
    return busy ? 0 : kBusyMilliseconds;
}

void RegistryStore::NoteBusy(int result) {
    if (IsBusy(result)) busy_ = std::chrono::steady_clock::now();
}

RegistryStore::Opened RegistryStore::Classify(int result) {
    NoteBusy(result);
    if (result == SQLITE_OK) return Opened::kSound;
    if (IsBusy(result)) return Opened::kBusy;
    // SQLITE_ERROR means that another program made the file: the table is missing, or the format
    // differs.
    const bool damaged = IsDamage(result) || (result & 0xFF) == SQLITE_ERROR;
    return damaged ? Opened::kDamaged : Opened::kFailed;
}

// With O_RDWR | O_CREAT, the file exists afterwards, and only its owner can read it. SQLite must
// not have it open in this process: closing any descriptor of it would release SQLite's locks.
RegistryStore::Opened RegistryStore::TakeFile(int flags) {
    const int file = open(path_.c_str(), flags | O_CLOEXEC | O_NONBLOCK, kOwnerAlone);
    if (file < 0) return errno == EISDIR || errno == ENXIO ? Opened::kDamaged : Opened::kFailed;
    struct stat status;
    Opened opened = Opened::kDamaged;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
        HasSoundHeader(file, status, path_)) {
        if ((flags & O_RDWR) && (status.st_mode & 077)) fchmod(file, kOwnerAlone);
        device_ = status.st_dev;
        inode_ = status.st_ino;
        opened = Opened::kSound;
    }
    close(file);
    return opened;
}

// Only reads, because a file of another program must not change.
RegistryStore::Opened RegistryStore::CheckContent(bool* empty) {
    std::string schema, check;
    int result = QueryText(database_,
                           "SELECT group_concat(coalesce(sql, tbl_name), ';') FROM "
                           "(SELECT * FROM sqlite_master ORDER BY type DESC)",
                           &schema);
    *empty = schema.empty();
    if (result == SQLITE_OK && !*empty && schema != std::string(kSchema).append(";registry"))
        return Opened::kDamaged;
    if (result == SQLITE_OK) result = QueryText(database_, "PRAGMA integrity_check(1)", &check);
    if (result == SQLITE_OK && check != "ok") return Opened::kDamaged;
    return Classify(result);
}

RegistryStore::Opened RegistryStore::Prepare() {
    for (int i = 0; i < kStatements; ++i) {
        const int result = sqlite3_prepare_v3(database_, kStatementTexts[i], -1,
                                              SQLITE_PREPARE_PERSISTENT, &statements_[i], nullptr);
        if (result != SQLITE_OK) return Classify(result);
    }
    return Opened::kSound;
}

bool RegistryStore::Connect(const std::string& name, int flags) {
    const int all_flags = flags | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(name.c_str(), &database_, all_flags, nullptr) != SQLITE_OK) return false;
    sqlite3_extended_result_codes(database_, 1);
    sqlite3_busy_timeout(database_, Patience());
    sqlite3_db_config(database_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    return true;
}

RegistryStore::Opened RegistryStore::OpenFile() {
    const Opened file = TakeFile(O_RDWR | O_CREAT);
    if (file != Opened::kSound) return file;
    if (!Connect(path_, SQLITE_OPEN_READWRITE)) return Opened::kFailed;
    bool empty = false;
    const Opened content = CheckContent(&empty);
    if (content != Opened::kSound) return content;
    // NORMAL: a killed process loses nothing. A power cut may lose the last values, but never
    // damages the file.
    int result = Execute(database_, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;");
    if (result == SQLITE_OK && empty) result = Execute(database_, kSchema);
    return result == SQLITE_OK ? Prepare() : Classify(result);
}

RegistryStore::Opened RegistryStore::OpenForReading() {
    const std::string name = ImmutableName(path_);
    if (name.empty()) return Opened::kFailed;
    const Opened file = TakeFile(O_RDONLY);
    if (file != Opened::kSound) return file;
    if (!Connect(name, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI)) return Opened::kFailed;
    bool empty = false;
    const Opened content = CheckContent(&empty);
    return content == Opened::kSound ? Prepare() : content;
}

bool RegistryStore::ReadsOnly() const { return sqlite3_db_readonly(database_, "main") == 1; }

bool RegistryStore::Open(bool damaged) {
    path_ = DeviceRoot() + kRegistryFile;
    const FolderLock lock(DeviceRoot(), Patience());
    if (lock.busy()) NoteBusy(SQLITE_BUSY);
    if (!lock.held()) return false;
    // Another process may already have set the file aside.
    if (damaged && IsOwnFile() && !SetAside(path_)) return false;
    for (int attempt = 0; attempt < 2; ++attempt) {
        const Opened opened = OpenFile();
        if (opened == Opened::kSound) return busy_.reset(), true;
        Abandon();
        if (opened == Opened::kFailed && OpenForReading() == Opened::kSound) return true;
        if (opened != Opened::kDamaged || !SetAside(path_)) break;
    }
    Abandon();
    return false;
}

bool RegistryStore::IsOwnFile() const {
    struct stat status;
    return stat(path_.c_str(), &status) == 0 && status.st_dev == device_ && status.st_ino == inode_;
}

bool RegistryStore::IsInTransaction() const {
    return database_ && !sqlite3_get_autocommit(database_);
}

bool RegistryStore::IsAtRoot() const {
    const std::string_view root = DeviceRoot(), path = path_;
    return path.starts_with(root) && path.substr(root.size()) == kRegistryFile;
}

bool RegistryStore::Ready() {
    if (database_ && IsAtRoot() && (IsInTransaction() || IsOwnFile())) return true;
    Abandon();
    return Open(false);
}

void RegistryStore::Hold() { holds_ = true; }

void RegistryStore::ForgetHeld() {
    held_key_.reset();
    held_.clear();
}

void RegistryStore::Release() {
    holds_ = false;
    ForgetHeld();
    if (IsInTransaction()) Execute(database_, "COMMIT");
    if (database_ && ReadsOnly()) Abandon();  // by now it may be possible to write
}

void RegistryStore::Close() {
    for (sqlite3_stmt*& statement : statements_) {
        sqlite3_finalize(statement);
        statement = nullptr;
    }
    sqlite3_close(database_);
    database_ = nullptr;
    known_key_.clear();
    ForgetHeld();
}

void RegistryStore::Abandon() {
    if (database_) sqlite3_db_config(database_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    Close();
}

bool RegistryStore::Changes(Statement which) {
    return which == kMakeKey || which == kWrite || which == kDelete;
}

static std::string BytesOf(sqlite3_stmt* statement, int column) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
    const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, column));
    return std::string(bytes ? bytes : "", bytes ? size : 0);
}

static NamedValue RowOf(sqlite3_stmt* statement) {
    const auto type = static_cast<uint32_t>(sqlite3_column_int64(statement, 1));
    sqlite3_column_text(statement, 0);  // turns a name of a file in UTF-16 into UTF-8
    return {BytesOf(statement, 0), {type, BytesOf(statement, 2)}};
}

// With `rows` takes all rows, and the result is SQLITE_DONE. Without it the result is SQLITE_ROW if
// there is one.
int RegistryStore::RunOnce(Statement which, const std::string& key, const std::string* name,
                           const StoredValue* value, std::vector<NamedValue>* rows) {
    sqlite3_stmt* statement = statements_[which];
    sqlite3_busy_timeout(database_, Patience());
    BindText(statement, 1, key);
    if (name) BindText(statement, 2, *name);
    if (value) {
        sqlite3_bind_int64(statement, 3, value->type);
        // data() is never null, or SQLite would bind NULL.
        sqlite3_bind_blob64(statement, 4, value->data.data(), value->data.size(), SQLITE_STATIC);
    }
    int result = sqlite3_step(statement);
    for (; result == SQLITE_ROW && rows; result = sqlite3_step(statement))
        rows->push_back(RowOf(statement));
    const int reset = sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    if (reset != SQLITE_OK) result = reset;
    NoteBusy(result);
    // Reads need no lock while another process writes: they do not say that it has ended.
    if (Changes(which) && result == SQLITE_DONE) busy_.reset();
    return result;
}

int RegistryStore::Run(Statement which, const std::string& key, const std::string* name,
                       const StoredValue* value, std::vector<NamedValue>* rows) {
    if (Changes(which)) Release();
    if (!Ready()) return SQLITE_CANTOPEN;
    if (holds_ && !IsInTransaction()) Execute(database_, "BEGIN");
    const int result = RunOnce(which, key, name, value, rows);
    if (!IsDamage(result)) return result;
    const bool damaged = !ReadsOnly();  // without locks, another process may have changed the file
    Abandon();
    if (rows) rows->clear();  // they are of the file as it was
    return Open(damaged) ? RunOnce(which, key, name, value, rows) : result;
}

static StoreResult FoundOr(int result) {
    if (result == SQLITE_ROW) return StoreResult::kOk;
    return result == SQLITE_DONE ? StoreResult::kNotFound : StoreResult::kFailed;
}

static StoreResult Changed(int result) {
    return result == SQLITE_DONE ? StoreResult::kOk : StoreResult::kFailed;
}

bool RegistryStore::IsUsable() { return Ready(); }

// A start reads all settings, and each read opens the same key.
StoreResult RegistryStore::HasKey(const std::string& key) {
    if (Ready() && !key.empty() && key == known_key_) return StoreResult::kOk;
    const StoreResult found = FoundOr(Run(kHasKey, key, nullptr, nullptr, nullptr));
    if (found == StoreResult::kOk) known_key_ = key;
    return found;
}

StoreResult RegistryStore::MakeKey(const std::string& key, bool* created) {
    *created = false;
    const StoreResult has = HasKey(key);  // usually a read is enough
    if (has != StoreResult::kNotFound) return has;
    const StoreResult result = Changed(Run(kMakeKey, key, nullptr, nullptr, nullptr));
    *created = result == StoreResult::kOk && sqlite3_changes(database_) > 0;
    return result;
}

// False if the values of the key have to be read one by one: reads are not held, or to read all at
// once has failed.
bool RegistryStore::HoldKey(const std::string& key) {
    if (!holds_ || !Ready()) return false;  // nothing is held of a file that was opened just now
    if (held_key_ == key) return true;
    ForgetHeld();
    const int result = Run(kReadKey, key, nullptr, nullptr, &held_);
    if (result == SQLITE_DONE) held_key_ = key;
    return held_key_.has_value();
}

StoreResult RegistryStore::Read(const std::string& key, const std::string& name,
                                StoredValue* value) {
    if (HoldKey(key)) {
        const auto found = std::lower_bound(held_.begin(), held_.end(), name, ComesBefore);
        if (found == held_.end() || Order(found->name, name) != 0) return StoreResult::kNotFound;
        *value = found->value;
        return StoreResult::kOk;
    }
    std::vector<NamedValue> rows;
    if (Run(kRead, key, &name, nullptr, &rows) != SQLITE_DONE) return StoreResult::kFailed;
    if (rows.empty()) return StoreResult::kNotFound;
    *value = std::move(rows.front().value);
    return StoreResult::kOk;
}

StoreResult RegistryStore::Write(const std::string& key, const std::string& name,
                                 const StoredValue& value) {
    return Changed(Run(kWrite, key, &name, &value, nullptr));
}

StoreResult RegistryStore::Delete(const std::string& key, const std::string& name) {
    const StoreResult result = Changed(Run(kDelete, key, &name, nullptr, nullptr));
    if (result != StoreResult::kOk) return result;
    return sqlite3_changes(database_) > 0 ? StoreResult::kOk : StoreResult::kNotFound;
}

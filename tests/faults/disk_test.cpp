// SPDX-License-Identifier: MIT
// The running program with a registry file or a disk that fails: full, read-only, gone, locked by
// another process, or with a file that is not the program's. It starts, holds a session, takes
// settings and ends, without a message; and what can be kept of the user's settings is kept.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>

#include "platform/qt/services/registry.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/dialogs/stored.h"
#include "tests/faults/own_disk.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace fs = std::filesystem;

static constexpr unsigned kLongest = 90;  // seconds of a run that hangs
static constexpr DWORD kKeptPort = 4711;  // what the user has on disk before
static constexpr DWORD kNewPort = 815;    // what the user sets in the run

static std::string File(const std::string& root) { return root + "/registry.db"; }

static std::string Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

static void Write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// ---------------------------------------------------------------- the user

// A session with a host works, and no box is shown.
static void HoldSession() {
    FakeHost host;
    OnWindowThread([] { lstrcpyW(session.settings.host, u"127.0.0.1"); });
    const DWORD port = session.settings.port;
    OnWindowThread([&] { session.settings.port = static_cast<DWORD>(host.port); });
    ConnectLater();
    EXPECT_TRUE(host.Accept());
    host.Send("all is well");
    EXPECT_TRUE(TerminalShows("all is well"));
    TypeText("x");
    EXPECT_NE(host.Read(1).find("x"), std::string::npos);
    Close();
    EXPECT_TRUE(Offline());
    EXPECT_EQ("", AwaitBox(100));
    OnWindowThread([&] { session.settings.port = port; });
}

// The dialog saves all settings.
static void SaveByDialog() {
    PostToMain(WM_COMMAND, IDM_FONT);
    EXPECT_TRUE(Eventually([] { return ShownDialog() != nullptr; }));
    OnWindowThread([] { ClickControl(IDOK); });
    EXPECT_TRUE(Eventually([] { return ShownDialog() == nullptr; }));
    EXPECT_EQ("", AwaitBox(100));
}

static void SetPort(DWORD port) {
    OnWindowThread([=] { session.settings.port = port; });
}

static DWORD Port() {
    DWORD port = 0;
    OnWindowThread([&] { port = session.settings.port; });
    return port;
}

static void UseProgram(const std::string& root, const std::function<void()>& person) {
    const auto when_started = [&] {
        EXPECT_TRUE(Eventually([] { return session.accelerators != nullptr; }));
        person();
    };
    EXPECT_EQ(0, RunProgram({.root = root}, when_started));
}

// Works, sets the port, saves it, and ends.
static void Work() {
    HoldSession();
    SetPort(kNewPort);
    SaveByDialog();
}

static void StoreUsersSettings(const std::string& root) {
    UseProgram(root, [] { SetPort(kKeptPort); });
    ASSERT_EQ(kKeptPort, StoredNumber(root, "port"));
}

// The next run, with everything in order, starts with that port and saves.
static void ExpectNextRun(const std::string& root, DWORD port) {
    EXPECT_EQ("ok", Integrity(root));
    UseProgram(root, [=] {
        EXPECT_EQ(port, Port());
        Work();
    });
    EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
}

class DiskFaults : public testing::Test {
  protected:
    void SetUp() override { alarm(kLongest); }
    void TearDown() override { alarm(0); }
    std::string root = FreshRoot();
};

// ---------------------------------------------------------------- a file that is not the program's

// The program sets the file aside as it is, and starts with its defaults.
static void ExpectSetAside(const std::string& root, const std::string& bytes) {
    for (const auto& entry : fs::directory_iterator(root)) fs::remove_all(entry.path());
    Write(File(root), bytes);
    UseProgram(root, [] {
        EXPECT_EQ(23u, Port());
        Work();
    });
    EXPECT_TRUE(bytes == Read(File(root) + ".damaged"));
    EXPECT_EQ("ok", Integrity(root));
    EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
}

static std::string RandomBytes(size_t count) {
    std::mt19937 random(1);
    std::string bytes(count, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

TEST_F(DiskFaults, RandomBytesAreSetAside) {
    for (const size_t size : {1, 100, 20000}) ExpectSetAside(root, RandomBytes(size));
}

TEST_F(DiskFaults, FileThatEndsEarlyIsSetAside) {
    StoreUsersSettings(root);
    const std::string whole = Read(File(root));
    ASSERT_GT(whole.size(), 8192u);
    for (const size_t size :
         {size_t{50}, size_t{1000}, size_t{4096}, size_t{6000}, whole.size() - 3000})
        ExpectSetAside(root, whole.substr(0, size));
}

static std::string DatabaseWith(const std::string& root, const char* statements) {
    const std::string path = root + "/other.db";
    fs::remove(path);
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    EXPECT_EQ(SQLITE_OK, sqlite3_exec(database, statements, nullptr, nullptr, nullptr));
    sqlite3_close(database);
    return Read(path);
}

TEST_F(DiskFaults, FileOfAnotherVersionIsSetAside) {
    const char* const databases[] = {
        "CREATE TABLE registry (key TEXT, name TEXT, type INTEGER, data BLOB)",
        "CREATE TABLE settings (name TEXT, value TEXT); INSERT INTO settings VALUES ('port', '1')",
        "CREATE TABLE registry (key, name, type, data); INSERT INTO registry VALUES (1, 2, 'x', 3)",
        "CREATE VIEW registry AS SELECT 1 AS key, 2 AS name, 3 AS type, 4 AS data",
        "PRAGMA user_version = 9; CREATE TABLE newer (a)",
    };
    for (const char* statements : databases)
        ExpectSetAside(root, DatabaseWith(FreshRoot(), statements));
}

// A changed bit of a value is not noticed; then the value is another one. Everything else goes on.
TEST_F(DiskFaults, ChangedBitInEachPageDoesNotStopTheProgram) {
    StoreUsersSettings(root);
    const std::string whole = Read(File(root));
    std::mt19937 random(2);
    for (size_t page = 0; page < whole.size(); page += 4096) {
        for (int i = 0; i < 3; ++i) {
            std::string bytes = whole;
            const size_t at = page + random() % 4096;
            bytes[at] = static_cast<char>(bytes[at] ^ 1 << random() % 8);
            SCOPED_TRACE(at);
            for (const auto& entry : fs::directory_iterator(root)) fs::remove_all(entry.path());
            Write(File(root), bytes);
            UseProgram(root, Work);
            EXPECT_EQ("ok", Integrity(root));
            EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
        }
    }
}

// ---------------------------------------------------------------- a file that another process
// locks

namespace {

// A process that holds a lock until Release.
class OtherProcess {
  public:
    explicit OtherProcess(const std::function<bool()>& lock) {
        int locked[2], released[2];
        if (pipe(locked) != 0 || pipe(released) != 0) return;
        child_ = fork();
        if (child_ == 0) {
            char byte = lock() ? 'l' : 'f';
            close(released[1]);
            if (write(locked[1], &byte, 1) == 1 && read(released[0], &byte, 1) >= 0) _exit(0);
            _exit(1);
        }
        close(locked[1]), close(released[0]);
        char byte = 0;
        locked_ = read(locked[0], &byte, 1) == 1 && byte == 'l';
        close(locked[0]);
        end_ = released[1];
    }
    ~OtherProcess() { Release(); }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    bool locked() const { return locked_; }
    void Release() {
        if (end_ < 0) return;
        close(std::exchange(end_, -1));
        waitpid(child_, nullptr, 0);
    }

  private:
    pid_t child_ = -1;
    int end_ = -1;
    bool locked_ = false;
};

}  // namespace

static std::function<bool()> LockBy(const std::string& root, const char* statements) {
    return [=] {
        sqlite3* database = nullptr;
        return sqlite3_open(File(root).c_str(), &database) == SQLITE_OK &&
               sqlite3_exec(database, statements, nullptr, nullptr, nullptr) == SQLITE_OK;
    };
}

static void ForgetStored(const std::string& root, const std::string& name) {
    sqlite3* database = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(File(root).c_str(), &database));
    const std::string statement = "DELETE FROM registry WHERE name = '" + name + "'";
    EXPECT_EQ(SQLITE_OK, sqlite3_exec(database, statement.c_str(), nullptr, nullptr, nullptr));
    sqlite3_close(database);
}

static const char kLockWrites[] = "BEGIN IMMEDIATE";
static const char kLockAll[] =
    "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; "
    "UPDATE registry SET data = data; COMMIT";

// Each write of a save that waits would take minutes; the save waits once.
TEST_F(DiskFaults, FileLockedForWritingKeepsItsSettings) {
    StoreUsersSettings(root);
    OtherProcess other(LockBy(root, kLockWrites));
    ASSERT_TRUE(other.locked());
    UseProgram(root, [] {
        EXPECT_EQ(kKeptPort, Port());
        Work();
    });
    other.Release();
    ExpectNextRun(root, kKeptPort);
}

// After a second without a save, the next one waits for the other process again.
TEST_F(DiskFaults, FileLockedAgainForAMomentGetsTheSettings) {
    StoreUsersSettings(root);
    OtherProcess other(LockBy(root, kLockWrites));
    ASSERT_TRUE(other.locked());
    UseProgram(root, [&] {
        Work();
        Sleep(1100);
        std::thread release([&] {
            Sleep(500);
            other.Release();
        });
        SaveByDialog();
        release.join();
        EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
    });
}

TEST_F(DiskFaults, FileUnlockedInTimeGetsTheSettings) {
    StoreUsersSettings(root);
    OtherProcess other(LockBy(root, kLockWrites));
    ASSERT_TRUE(other.locked());
    UseProgram(root, [&] {
        Work();
        other.Release();
    });
    EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
}

// The program could not read the settings: it must not store its defaults in their place.
TEST_F(DiskFaults, FileLockedAtTheStartKeepsItsSettings) {
    StoreUsersSettings(root);
    OtherProcess other(LockBy(root, kLockAll));
    ASSERT_TRUE(other.locked());
    UseProgram(root, [&] {
        EXPECT_EQ(23u, Port());
        HoldSession();
        other.Release();
        SaveByDialog();
    });
    ExpectNextRun(root, kKeptPort);
}

// A value that the file does not have cannot be lost.
TEST_F(DiskFaults, FileLockedAtTheStartTakesTheValuesThatItLacks) {
    StoreUsersSettings(root);
    ForgetStored(root, "port");
    OtherProcess other(LockBy(root, kLockAll));
    ASSERT_TRUE(other.locked());
    UseProgram(root, [&] {
        HoldSession();
        other.Release();
        SetPort(kNewPort);
        SaveByDialog();
    });
    EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
}

TEST_F(DiskFaults, FolderLockedForLongKeepsItsSettings) {
    StoreUsersSettings(root);
    OtherProcess other([&] {
        const int folder = open(root.c_str(), O_RDONLY | O_DIRECTORY);
        return folder >= 0 && flock(folder, LOCK_EX) == 0;
    });
    ASSERT_TRUE(other.locked());
    UseProgram(root, Work);
    other.Release();
    ExpectNextRun(root, kKeptPort);
}

// ---------------------------------------------------------------- a folder that disappears

TEST_F(DiskFaults, FolderThatIsRemovedDoesNotStopTheProgram) {
    StoreUsersSettings(root);
    UseProgram(root, [&] {
        fs::remove_all(root);
        Work();
    });
    EXPECT_FALSE(fs::exists(root));
}

TEST_F(DiskFaults, FolderThatComesBackInTimeGetsTheSettings) {
    StoreUsersSettings(root);
    UseProgram(root, [&] {
        fs::rename(root, root + ".away");
        Work();
        fs::rename(root + ".away", root);
    });
    EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
}

TEST_F(DiskFaults, FolderThatComesAfterTheStartKeepsItsSettings) {
    StoreUsersSettings(root);
    fs::rename(root, root + ".away");
    UseProgram(root, [&] {
        EXPECT_EQ(23u, Port());
        HoldSession();
        fs::rename(root + ".away", root);
        SaveByDialog();
    });
    ExpectNextRun(root, kKeptPort);
}

// ---------------------------------------------------------------- a small disk

// A small file system of its own at `root`, which can be taken away and put back. Only this
// process sees it. Not every system permits that.
class SmallDisk : public DiskFaults {
  protected:
    void SetUp() override {
        DiskFaults::SetUp();
        if (!MakeOwnMounts() || !MountSmallDisk(disk))
            GTEST_SKIP() << "file systems cannot be mounted here";
        PutBack();
    }
    void TearDown() override {
        Unmount(root);
        Unmount(disk);
        DiskFaults::TearDown();
    }
    void TakeAway() { EXPECT_TRUE(Unmount(root)); }
    // The program could not remove its lock file there. Its process is this one, so the next start
    // would take it for a program that runs.
    void PutBack() {
        fs::remove(disk + "/instance.lock");
        EXPECT_TRUE(BindFolder(disk, root));
    }
    void Fill() {
        for (const size_t piece : {size_t{65536}, size_t{1}}) {
            std::ofstream filler(disk + "/filler", std::ios::binary | std::ios::app);
            while (filler.write(std::string(piece, 'x').data(), piece).flush()) continue;
        }
    }
    void Empty() { fs::remove(disk + "/filler"); }

    std::string disk = FreshRoot();
};

TEST_F(SmallDisk, FullAtTheFirstStart) {
    Fill();
    UseProgram(root, [] {
        EXPECT_EQ(23u, Port());
        Work();
    });
    Empty();
    ExpectNextRun(root, 23);
}

TEST_F(SmallDisk, EmptiedDuringTheFirstRunGetsTheSettings) {
    Fill();
    UseProgram(root, [&] {
        Work();
        Empty();
    });
    EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
}

TEST_F(SmallDisk, FullAtTheStartHasItsSettingsAndGetsTheNewOnes) {
    StoreUsersSettings(root);
    Fill();
    UseProgram(root, [&] {
        EXPECT_EQ(kKeptPort, Port());
        Work();
        Empty();
        SaveByDialog();
        EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
    });
}

TEST_F(SmallDisk, FullForAWholeRunHasItsSettingsAndKeepsThem) {
    StoreUsersSettings(root);
    Fill();
    UseProgram(root, [&] {
        EXPECT_EQ(kKeptPort, Port());
        Work();
    });
    Empty();
    ExpectNextRun(root, kKeptPort);
}

// The exported line of the port; empty if nothing can be exported.
static std::string ExportedPort(const std::string& root) {
    SettingsExport result;
    if (!ExportSettings(root, false, &result)) return "";
    const size_t line = result.file.find("\nport = ") + 1;
    return result.file.substr(line, result.file.find_first_of("\r\n", line) - line);
}

// Leaves the log of a program that was killed, with this port in it.
static void LeaveLog(const std::string& root, DWORD port) {
    sqlite3* database = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(File(root).c_str(), &database));
    sqlite3_db_config(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    char statement[100];
    std::snprintf(statement, sizeof(statement),
                  "UPDATE registry SET data = x'%02X%02X0000' WHERE name = 'port'", port & 0xFF,
                  port >> 8);
    EXPECT_EQ(SQLITE_OK, sqlite3_exec(database, statement, nullptr, nullptr, nullptr));
    sqlite3_close(database);
    fs::remove(File(root) + "-shm");
    ASSERT_GT(fs::file_size(File(root) + "-wal"), 0u);
}

// The newest settings are in the log, so the file alone is not read, and nothing is replaced.
TEST_F(SmallDisk, FullAtTheStartKeepsTheSettingsOfALog) {
    StoreUsersSettings(root);
    LeaveLog(root, kKeptPort + 1);
    Fill();
    UseProgram(root, [&] {
        EXPECT_EQ(23u, Port());
        Work();
        Empty();
        SaveByDialog();
    });
    ExpectNextRun(root, kKeptPort + 1);
}

// A log lies beside the file itself, not beside a link to it.
TEST_F(SmallDisk, FullAtTheStartKeepsTheSettingsOfALogBehindALink) {
    const std::string linked = FreshRoot();
    StoreUsersSettings(root);
    LeaveLog(root, kKeptPort + 1);
    fs::create_symlink(File(root), File(linked));
    Fill();
    EXPECT_EQ("", ExportedPort(linked));
    UseProgram(linked, [&] {
        EXPECT_EQ(23u, Port());
        Work();
        Empty();
        SaveByDialog();
    });
    ExpectNextRun(linked, kKeptPort + 1);
}

TEST_F(SmallDisk, FullFromTheMiddleOnKeepsItsSettings) {
    StoreUsersSettings(root);
    UseProgram(root, [&] {
        EXPECT_EQ(kKeptPort, Port());
        Fill();
        Work();
    });
    Empty();
    EXPECT_EQ("ok", Integrity(root));
    const uint32_t port = StoredNumber(root, "port");
    EXPECT_TRUE(port == kKeptPort || port == kNewPort) << port;
}

TEST_F(SmallDisk, EmptiedInTimeGetsTheSettings) {
    StoreUsersSettings(root);
    UseProgram(root, [&] {
        Fill();
        Work();
        Empty();
    });
    EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
}

TEST_F(SmallDisk, ReadOnlyHasItsSettingsAndKeepsThem) {
    StoreUsersSettings(root);
    ASSERT_TRUE(MakeReadOnly(root));
    UseProgram(root, [] {
        EXPECT_EQ(kKeptPort, Port());
        Work();
    });
    TakeAway();
    PutBack();
    ExpectNextRun(root, kKeptPort);
}

// Characters that mean something in a URI.
TEST_F(SmallDisk, ReadOnlyFolderOfAnyNameHasItsSettings) {
    const std::string named = root + "/50%41?immutable=0#1&mode=rw";
    ASSERT_TRUE(fs::create_directory(named));
    StoreUsersSettings(named);
    ASSERT_TRUE(MakeReadOnly(root));
    UseProgram(named, [] { EXPECT_EQ(kKeptPort, Port()); });
}

TEST_F(SmallDisk, ReadOnlyWithADamagedFileKeepsTheFile) {
    const std::string bytes = RandomBytes(20000);
    Write(File(root), bytes);
    ASSERT_TRUE(MakeReadOnly(root));
    UseProgram(root, [] {
        EXPECT_EQ(23u, Port());
        Work();
    });
    EXPECT_TRUE(bytes == Read(File(root)));
    EXPECT_FALSE(fs::exists(File(root) + ".damaged"));
}

TEST_F(SmallDisk, ReadOnlyWithAFileOfAnotherVersionStartsWithTheDefaults) {
    const char kOther[] =
        "CREATE TABLE registry (key, name, type, data, UNIQUE (key, name)); INSERT INTO registry "
        "VALUES ('HKEY_LOCAL_MACHINE\\Software\\QUILLWARE\\TELNET', 'port', 4, x'67120000')";
    Write(File(root), DatabaseWith(FreshRoot(), kOther));
    ASSERT_TRUE(MakeReadOnly(root));
    UseProgram(root, [] { EXPECT_EQ(23u, Port()); });
}

TEST_F(SmallDisk, ReadOnlyWithoutAFileStartsWithTheDefaults) {
    ASSERT_TRUE(MakeReadOnly(root));
    UseProgram(root, [] {
        EXPECT_EQ(23u, Port());
        Work();
    });
    EXPECT_FALSE(fs::exists(File(root)));
}

// A transaction that was cut off, of another program: the file alone is not sound.
TEST_F(SmallDisk, ReadOnlyWithAJournalStartsWithTheDefaults) {
    StoreUsersSettings(root);
    Write(File(root) + "-journal", RandomBytes(1000));
    ASSERT_TRUE(MakeReadOnly(root));
    UseProgram(root, [] {
        EXPECT_EQ(23u, Port());
        Work();
    });
}

TEST_F(SmallDisk, SettingsAreExportedFromAReadOnlyOrFullDisk) {
    StoreUsersSettings(root);
    Fill();
    EXPECT_EQ("port = 4711", ExportedPort(root));
    ASSERT_TRUE(MakeReadOnly(root));
    EXPECT_EQ("port = 4711", ExportedPort(root));
}

TEST_F(SmallDisk, SettingsAreExportedFromAReadOnlyFolderBelowTheCurrentOne) {
    StoreUsersSettings(root);
    ASSERT_TRUE(MakeReadOnly(root));
    const fs::path before = fs::current_path();
    fs::current_path(fs::path(root).parent_path());
    EXPECT_EQ("port = 4711", ExportedPort(fs::path(root).filename()));
    fs::current_path(before);
}

TEST_F(SmallDisk, SettingsOfALogAreNotExportedFromAFullDisk) {
    StoreUsersSettings(root);
    LeaveLog(root, kKeptPort + 1);
    Fill();
    EXPECT_EQ("", ExportedPort(root));
    Empty();
    EXPECT_EQ("port = 4712", ExportedPort(root));
}

TEST_F(DiskFaults, SettingsAreNotExportedWhileAnotherProcessLocksThem) {
    StoreUsersSettings(root);
    OtherProcess other(LockBy(root, "PRAGMA journal_mode = DELETE; BEGIN EXCLUSIVE"));
    ASSERT_TRUE(other.locked());
    EXPECT_EQ("", ExportedPort(root));
    other.Release();
    EXPECT_EQ("port = 4711", ExportedPort(root));
}

TEST_F(SmallDisk, TakenAwayWhileTheProgramRunsDoesNotStopIt) {
    StoreUsersSettings(root);
    UseProgram(root, [&] {
        TakeAway();
        Work();
    });
    PutBack();
    EXPECT_EQ("ok", Integrity(root));
    ExpectNextRun(root, kKeptPort);
}

TEST_F(SmallDisk, PutBackInTimeGetsTheSettings) {
    StoreUsersSettings(root);
    UseProgram(root, [&] {
        TakeAway();
        Work();
        PutBack();
    });
    EXPECT_EQ(kNewPort, StoredNumber(root, "port"));
}

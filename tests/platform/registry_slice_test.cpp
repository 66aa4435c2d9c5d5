// SPDX-License-Identifier: MIT
// The registry's file: safety against crashes, several processes, permissions.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "platform/qt/services/registry.h"
#include "platform/qt/services/services.h"
#include "windows_ce.h"

static int g_statements = 0;  // that have ended

extern "C" int __real_sqlite3_reset(sqlite3_stmt* statement);
extern "C" int __wrap_sqlite3_reset(sqlite3_stmt* statement);
extern "C" int __wrap_sqlite3_reset(sqlite3_stmt* statement) {
    ++g_statements;
    return __real_sqlite3_reset(statement);
}

namespace {

const LPCWSTR kPath = TEXT("Software\\QUILLWARE\\TELNET");
constexpr int kValues = 130;

std::string RegistryFile() { return DeviceRoot() + "/registry.db"; }

void RemoveRegistry() {
    CloseRegistry();
    for (const auto& entry : std::filesystem::directory_iterator(DeviceRoot()))
        std::filesystem::remove_all(entry.path());
}

LONG Save(LPCWSTR name, DWORD type, const void* data, DWORD size) {
    HKEY key = nullptr;
    LONG error = RegCreateKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                                 &key, nullptr);
    if (error != ERROR_SUCCESS) return error;
    error = RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
    RegFlushKey(key);
    RegCloseKey(key);
    return error;
}

LONG SaveNumber(int index, DWORD number) {
    WCHAR name[20];
    wsprintfW(name, TEXT("key%d"), index);
    return Save(name, REG_DWORD, &number, sizeof(number));
}

bool LoadNumber(int index, DWORD* number) {
    WCHAR name[20];
    wsprintfW(name, TEXT("key%d"), index);
    HKEY key = nullptr;
    DWORD size = sizeof(*number);
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
        return false;
    const LONG error =
        RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(number), &size);
    RegCloseKey(key);
    return error == ERROR_SUCCESS;
}

std::string IntegrityOfFile() {
    sqlite3* database = nullptr;
    sqlite3_open(RegistryFile().c_str(), &database);
    std::string text;
    const auto take = [](void* result, int, char** columns, char**) {
        *static_cast<std::string*>(result) += columns[0];
        return 0;
    };
    sqlite3_exec(database, "PRAGMA integrity_check", take, &text, nullptr);
    sqlite3_close(database);
    return text;
}

// The progress of the saving process: the generation that it writes, and the index of the value
// that it writes next (kValues: all are written). One number, so that a kill cannot separate the
// two.
using Progress = std::atomic<DWORD>;

DWORD ProgressAt(DWORD generation, int index) {
    return generation << 8 | static_cast<DWORD>(index);
}

[[noreturn]] void SaveForEver(Progress* progress) {
    for (DWORD generation = (*progress >> 8) + 1;; generation++) {
        for (int i = 0; i < kValues; i++) {
            *progress = ProgressAt(generation, i);
            if (SaveNumber(i, generation) != ERROR_SUCCESS) _exit(1);
        }
        *progress = ProgressAt(generation, kValues);
    }
}

int WaitFor(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

// Runs the procedure in a child process; its result 0 means success.
template <typename Procedure>
pid_t Fork(Procedure procedure) {
    const pid_t child = fork();
    if (child == 0) _exit(procedure());
    return child;
}

constexpr uid_t kUser = 65534;  // of the tests that root runs

// The result of the process is 100 if it cannot be that user's.
template <typename Procedure>
pid_t ForkAsUser(Procedure procedure) {
    return Fork([&] { return geteuid() == 0 && seteuid(kUser) != 0 ? 100 : procedure(); });
}

// The folder and the file become that user's, and the file gets the mode.
bool GiveToUser(mode_t mode) {
    for (const std::string& path : {DeviceRoot(), RegistryFile()})
        if (geteuid() == 0 && chown(path.c_str(), kUser, kUser) != 0) return false;
    return chmod(RegistryFile().c_str(), mode) == 0;
}

Progress* SharedProgress() {
    void* memory =
        mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return new (memory) Progress{};
}

mode_t ModeOf(const std::string& path) {
    struct stat status = {};
    stat(path.c_str(), &status);
    return status.st_mode & 0777;
}

class RegistryFileOnDisk : public testing::Test {
  protected:
    void SetUp() override { RemoveRegistry(); }
    void TearDown() override { RemoveRegistry(); }
};

}  // namespace

TEST_F(RegistryFileOnDisk, ProcessKilledInTheMiddleOfASaveLeavesEachValueOldOrNew) {
    Progress* progress = SharedProgress();
    std::mt19937 random(7);
    *progress = ProgressAt(0, kValues);
    for (int i = 0; i < kValues; i++) ASSERT_EQ(ERROR_SUCCESS, SaveNumber(i, 0));
    int in_the_middle = 0;
    for (int round = 0; round < 100; round++) {
        CloseRegistry();
        const DWORD before = *progress;
        const pid_t child = fork();
        if (child == 0) SaveForEver(progress);
        while (*progress == before) usleep(50);  // until the child has started to save
        usleep(static_cast<useconds_t>(random() % 15000));
        kill(child, SIGKILL);
        ASSERT_TRUE(WIFSIGNALED(WaitFor(child)));
        const DWORD generation = *progress >> 8;
        const int reached = static_cast<int>(*progress & 0xFF);
        in_the_middle += reached > 0 && reached < kValues;
        for (int i = 0; i < kValues; i++) {
            DWORD number = 0;
            ASSERT_TRUE(LoadNumber(i, &number)) << i;
            ASSERT_TRUE(number == generation || number == generation - 1) << i;
            ASSERT_EQ(i < reached || (i == reached && number == generation), number == generation);
        }
        CloseRegistry();
        ASSERT_EQ("ok", IntegrityOfFile());
        // Gives all values the same generation before the next child starts.
        for (int i = 0; i < kValues; i++) SaveNumber(i, generation);
        *progress = ProgressAt(generation, kValues);
    }
    EXPECT_GT(in_the_middle, 0);
    EXPECT_FALSE(std::filesystem::exists(RegistryFile() + ".damaged"));
    munmap(progress, sizeof(*progress));
}

TEST_F(RegistryFileOnDisk, ProcessKilledWhileCreatingItLeavesAnIntactFile) {
    Progress* progress = SharedProgress();
    std::mt19937 random(8);
    for (int round = 0; round < 100; round++) {
        RemoveRegistry();
        *progress = 0;
        const pid_t child = fork();
        if (child == 0) SaveForEver(progress);
        usleep(static_cast<useconds_t>(random() % 4000));
        kill(child, SIGKILL);
        WaitFor(child);
        ASSERT_EQ(ERROR_SUCCESS, SaveNumber(0, 77));
        DWORD number = 0;
        ASSERT_TRUE(LoadNumber(0, &number));
        ASSERT_EQ(77u, number);
        CloseRegistry();
        ASSERT_EQ("ok", IntegrityOfFile());
        ASSERT_FALSE(std::filesystem::exists(RegistryFile() + ".damaged"));
    }
    munmap(progress, sizeof(*progress));
}

TEST_F(RegistryFileOnDisk, LeavesNoFileOpenOnceItIsClosed) {
    const auto open_files = [] {
        const std::filesystem::directory_iterator list("/proc/self/fd");
        return std::distance(begin(list), end(list));
    };
    CloseRegistry();
    const auto before = open_files();
    DWORD number = 0;
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(ERROR_SUCCESS, SaveNumber(0, 5));
        EXPECT_LT(before, open_files());
        CloseRegistry();
        EXPECT_EQ(before, open_files()) << "after a write";
        EXPECT_TRUE(LoadNumber(0, &number));
        CloseRegistry();
        EXPECT_EQ(before, open_files()) << "after a read";
    }
}

TEST_F(RegistryFileOnDisk, TwoProcessesShareIt) {
    const auto save_from = [](int first) {
        for (int i = 0; i < 200; i++)
            if (SaveNumber(first + i, static_cast<DWORD>(first + i)) != ERROR_SUCCESS) return 1;
        return 0;
    };
    const pid_t one = Fork([&] { return save_from(0); });
    const pid_t other = Fork([&] { return save_from(200); });
    EXPECT_EQ(0, WaitFor(one));
    EXPECT_EQ(0, WaitFor(other));
    for (int i = 0; i < 400; i++) {
        DWORD number = 0;
        ASSERT_TRUE(LoadNumber(i, &number)) << i;
        ASSERT_EQ(static_cast<DWORD>(i), number);
    }
}

TEST_F(RegistryFileOnDisk, OneProcessReadsWhatAnotherJustWrote) {
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1, 10));
    DWORD number = 0;
    sqlite3* database = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(RegistryFile().c_str(), &database));
    EXPECT_EQ(SQLITE_OK,
              sqlite3_exec(database, "UPDATE registry SET data = x'0B000000' WHERE name = 'KEY1'",
                           nullptr, nullptr, nullptr));
    EXPECT_TRUE(LoadNumber(1, &number));
    EXPECT_EQ(11u, number);
    sqlite3_close(database);
}

namespace {

// Writes as another process does, which waits for nobody. False if it is locked out.
bool OtherWrites(int index, DWORD number) {
    sqlite3* database = nullptr;
    sqlite3_open(RegistryFile().c_str(), &database);
    char text[120];
    snprintf(text, sizeof(text), "UPDATE registry SET data = x'%02X000000' WHERE name = 'KEY%d'",
             number, index);
    const int result = sqlite3_exec(database, text, nullptr, nullptr, nullptr);
    sqlite3_close(database);
    return result == SQLITE_OK;
}

// The number of a value; 0: there is no such value.
DWORD Loaded(int index) {
    DWORD number = 0;
    return LoadNumber(index, &number) ? number : 0;
}

class HeldRegistry : public RegistryFileOnDisk {
  protected:
    void SetUp() override {
        RegistryFileOnDisk::SetUp();
        for (int i = 0; i < 3; i++) ASSERT_EQ(ERROR_SUCCESS, SaveNumber(i, 10));
        HoldRegistry();
    }
};

}  // namespace

TEST_F(HeldRegistry, ReadsSeeTheMomentOfTheFirstOne) {
    EXPECT_TRUE(OtherWrites(0, 11)) << "before the first read";
    EXPECT_EQ(11u, Loaded(0));
    EXPECT_TRUE(OtherWrites(1, 12)) << "does not wait for the reader";
    EXPECT_EQ(10u, Loaded(1));
    ReleaseRegistry();
    EXPECT_EQ(12u, Loaded(1));
    EXPECT_TRUE(OtherWrites(1, 13));
    EXPECT_EQ(13u, Loaded(1));
}

TEST_F(HeldRegistry, AllValuesOfAKeyAreReadByOneStatement) {
    g_statements = 0;
    for (int i = 0; i < 3; i++) EXPECT_EQ(10u, Loaded(i));
    EXPECT_EQ(0u, Loaded(3));
    EXPECT_EQ(1, g_statements);
}

TEST_F(HeldRegistry, NamesAreFoundWithoutTheirCaseAndOnlyWhole) {
    const DWORD number = 20;
    ASSERT_EQ(ERROR_SUCCESS, Save(TEXT("Key10"), REG_DWORD, &number, sizeof(number)));
    ASSERT_EQ(ERROR_SUCCESS, Save(TEXT("_key"), REG_DWORD, &number, sizeof(number)));
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, KEY_QUERY_VALUE, &key));
    const auto has = [&](LPCWSTR name) {
        return RegQueryValueExW(key, name, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
    };
    for (const bool held : {false, true}) {
        held ? HoldRegistry() : ReleaseRegistry();
        for (const LPCWSTR name : {u"key0", u"KEY0", u"kEY1", u"key2", u"KEY10", u"_KEY"})
            EXPECT_TRUE(has(name)) << held;
        for (const LPCWSTR name : {u"", u"a", u"key", u"key00", u"key100", u"key3", u"_", u"z"})
            EXPECT_FALSE(has(name)) << held;
    }
    RegCloseKey(key);
}

TEST_F(HeldRegistry, AnotherFolderHasItsOwnValues) {
    EXPECT_EQ(10u, Loaded(0));
    const std::string root = DeviceRoot();
    std::filesystem::create_directory(root + "/other");
    SetDeviceRoot(root + "/other");
    EXPECT_EQ(ERROR_SUCCESS, SaveNumber(0, 20));
    for (const bool held : {false, true}) {
        SetDeviceRoot(root);
        held ? HoldRegistry() : ReleaseRegistry();
        EXPECT_EQ(10u, Loaded(0)) << held;
        SetDeviceRoot(root + "/other");
        EXPECT_EQ(20u, Loaded(0)) << held;
    }
    SetDeviceRoot(root);
}

// The folder is gone for a while, after one value was read and before the next.
TEST_F(HeldRegistry, AValueThatCouldNotBeReadIsNotReplaced) {
    CloseRegistry();
    HoldRegistry();
    EXPECT_EQ(10u, Loaded(0));
    const std::string root = DeviceRoot();
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, KEY_QUERY_VALUE, &key));
    SetDeviceRoot(root + "/gone");
    EXPECT_NE(ERROR_SUCCESS, RegQueryValueExW(key, u"key1", nullptr, nullptr, nullptr, nullptr));
    RegCloseKey(key);
    SetDeviceRoot(root);
    EXPECT_EQ(ERROR_SUCCESS, SaveNumber(0, 11));
    EXPECT_NE(ERROR_SUCCESS, SaveNumber(1, 11));
    EXPECT_NE(ERROR_SUCCESS, SaveNumber(2, 11)) << "nobody has asked for it";
    CloseRegistry();
    EXPECT_EQ(11u, Loaded(0));
    EXPECT_EQ(10u, Loaded(1));
    EXPECT_EQ(10u, Loaded(2));
}

TEST_F(HeldRegistry, IsReleasedByTheNextWrite) {
    const auto removed = [] {
        HKEY key = nullptr;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, KEY_SET_VALUE, &key);
        const LONG error = RegDeleteValueW(key, TEXT("key2"));
        RegCloseKey(key);
        return error;
    };
    const auto made = [] {
        HKEY key = nullptr;
        const LONG error = RegCreateKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\OTHER"), 0, nullptr,
                                           0, KEY_SET_VALUE, nullptr, &key, nullptr);
        RegCloseKey(key);
        return error;
    };
    const std::function<LONG()> writes[] = {[] { return SaveNumber(2, 20); }, removed, made};
    DWORD number = 10;
    for (const auto& write : writes) {
        HoldRegistry();
        EXPECT_EQ(number, Loaded(1));
        EXPECT_TRUE(OtherWrites(1, ++number));
        EXPECT_EQ(ERROR_SUCCESS, write());
        EXPECT_EQ(number, Loaded(1));
        EXPECT_TRUE(OtherWrites(1, ++number));
        EXPECT_EQ(number, Loaded(1)) << "no longer held";
    }
}

TEST_F(HeldRegistry, IsReleasedWhenItCloses) {
    EXPECT_EQ(10u, Loaded(1));
    CloseRegistry();
    EXPECT_FALSE(std::filesystem::exists(RegistryFile() + "-wal"));
    EXPECT_EQ(10u, Loaded(1));
    EXPECT_TRUE(OtherWrites(1, 11));
    EXPECT_EQ(11u, Loaded(1));
}

TEST_F(HeldRegistry, KilledReaderLeavesNothingBehind) {
    CloseRegistry();
    const pid_t child = Fork([] {
        HoldRegistry();
        return Loaded(1) == 10 ? raise(SIGKILL) : 1;
    });
    ASSERT_TRUE(WIFSIGNALED(WaitFor(child)));
    EXPECT_EQ(ERROR_SUCCESS, SaveNumber(1, 11));
    CloseRegistry();
    EXPECT_FALSE(std::filesystem::exists(RegistryFile() + "-wal"));
    EXPECT_EQ("ok", IntegrityOfFile());
    EXPECT_EQ(11u, Loaded(1));
}

TEST_F(RegistryFileOnDisk, OnlyTheUserMayReadIt) {
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1, 10));
    EXPECT_EQ(0600u, ModeOf(RegistryFile()));
    EXPECT_EQ(0600u, ModeOf(RegistryFile() + "-wal"));
    EXPECT_EQ(0600u, ModeOf(RegistryFile() + "-shm"));
    CloseRegistry();
    chmod(RegistryFile().c_str(), 0644);
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1, 11));
    EXPECT_EQ(0600u, ModeOf(RegistryFile()));
    EXPECT_EQ(0600u, ModeOf(RegistryFile() + "-wal"));
}

TEST_F(RegistryFileOnDisk, ClosingKeepsKeysOpen) {
    HKEY key = nullptr;
    DWORD number = 3, size = 4;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, nullptr, 0,
                              KEY_SET_VALUE | KEY_QUERY_VALUE, nullptr, &key, nullptr));
    EXPECT_EQ(ERROR_SUCCESS,
              RegSetValueExW(key, TEXT("a"), 0, REG_DWORD, reinterpret_cast<BYTE*>(&number), 4));
    CloseRegistry();
    EXPECT_FALSE(std::filesystem::exists(RegistryFile() + "-wal"));
    number = 0;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, TEXT("a"), nullptr, nullptr,
                                              reinterpret_cast<BYTE*>(&number), &size));
    EXPECT_EQ(3u, number);
    RegCloseKey(key);
}

// The first call of a process: no other path has been opened before.
TEST_F(RegistryFileOnDisk, TheRootItselfOpens) {
    for (const LPCWSTR way : {static_cast<LPCWSTR>(nullptr), u""}) {
        HKEY key = nullptr;
        EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, way, 0, KEY_QUERY_VALUE, &key));
        EXPECT_NE(nullptr, key);
        RegCloseKey(key);
    }
}

namespace {

// Makes every call on a folder that cannot be used; returns 0 if each call failed.
int CountSuccesses() {
    HKEY key = nullptr;
    DWORD number = 0, size = 4;
    BYTE* bytes = reinterpret_cast<BYTE*>(&number);
    int successes = 0;
    successes += SaveNumber(1, 1) == ERROR_SUCCESS;
    successes += RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, 3, &key) == ERROR_SUCCESS;
    successes += RegOpenKeyExW(HKEY_LOCAL_MACHINE, nullptr, 0, 3, &key) == ERROR_SUCCESS;
    key = HKEY_LOCAL_MACHINE;
    successes += RegQueryValueExW(key, u"a", nullptr, nullptr, bytes, &size) == ERROR_SUCCESS;
    successes += RegSetValueExW(key, u"a", 0, REG_DWORD, bytes, 4) == ERROR_SUCCESS;
    successes += RegDeleteValueW(key, u"a") == ERROR_SUCCESS;
    successes += RegFlushKey(key) == ERROR_SUCCESS;
    return successes;
}

}  // namespace

TEST_F(RegistryFileOnDisk, MissingFolderGivesErrors) {
    const std::string root = DeviceRoot();
    SetDeviceRoot(root + "/gone");
    EXPECT_EQ(0, CountSuccesses());
    EXPECT_FALSE(std::filesystem::exists(root + "/gone"));
    SetDeviceRoot(root);
    EXPECT_EQ(ERROR_SUCCESS, SaveNumber(1, 1));
}

TEST_F(RegistryFileOnDisk, ReadOnlyFolderGivesErrors) {
    chmod(DeviceRoot().c_str(), 0555);
    const pid_t child = ForkAsUser([] { return CountSuccesses(); });
    EXPECT_EQ(0, WEXITSTATUS(WaitFor(child)));
    chmod(DeviceRoot().c_str(), 0700);
}

// In another user's folder, whose file is for reading, or for writing too; then the log cannot be
// made.
TEST_F(RegistryFileOnDisk, FileWithoutALogIsReadAndStays) {
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1, 815));
    CloseRegistry();
    chmod(DeviceRoot().c_str(), 0555);
    for (const mode_t mode : {0444, 0666}) {
        chmod(RegistryFile().c_str(), mode);
        const pid_t child = ForkAsUser([] {
            DWORD number = 0;
            const bool read = LoadNumber(1, &number) && number == 815;
            const bool written =
                SaveNumber(1, 1) == ERROR_SUCCESS || SaveNumber(2, 2) == ERROR_SUCCESS;
            const bool missing = !LoadNumber(2, &number);
            return (read ? 1 : 0) + (written ? 2 : 0) + (missing ? 4 : 0);
        });
        EXPECT_EQ(1 + 4, WEXITSTATUS(WaitFor(child))) << mode;
        EXPECT_FALSE(std::filesystem::exists(RegistryFile() + ".damaged"));
    }
    chmod(DeviceRoot().c_str(), 0700);
}

TEST_F(RegistryFileOnDisk, ReadOnlyFileIsWrittenOnceThatIsPermitted) {
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1, 815));
    CloseRegistry();
    ASSERT_TRUE(GiveToUser(0444));
    const pid_t child = ForkAsUser([] {
        HoldRegistry();
        DWORD number = 0;
        const bool read = LoadNumber(1, &number) && number == 815;
        const bool refused = SaveNumber(1, 1) != ERROR_SUCCESS;
        chmod(RegistryFile().c_str(), 0600);
        const bool written = SaveNumber(1, 816) == ERROR_SUCCESS;
        const bool kept = LoadNumber(1, &number) && number == 816;
        return (read ? 1 : 0) + (refused ? 2 : 0) + (written ? 4 : 0) + (kept ? 8 : 0);
    });
    EXPECT_EQ(15, WEXITSTATUS(WaitFor(child)));
}

namespace {

bool Change(const char* statements) {
    sqlite3* database = nullptr;
    const bool changed = sqlite3_open(RegistryFile().c_str(), &database) == SQLITE_OK &&
                         sqlite3_exec(database, statements, nullptr, nullptr, nullptr) == SQLITE_OK;
    return sqlite3_close(database) == SQLITE_OK && changed;
}

}  // namespace

// A file that is read without locks can change on the way, and then seems to be damaged. It has
// more pages than SQLite keeps in memory.
TEST_F(RegistryFileOnDisk, ReadOnlyFileThatBecomesShorterIsReadAgain) {
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1, 815));
    const std::string large(1'000'000, 'x');
    for (const LPCWSTR name : {u"large1", u"large2", u"large3", u"large4"})
        ASSERT_EQ(ERROR_SUCCESS, Save(name, REG_SZ, large.data(), 1'000'000));
    CloseRegistry();
    ASSERT_TRUE(GiveToUser(0444));
    const pid_t child = ForkAsUser([] {
        DWORD number = 0;
        const bool read = LoadNumber(1, &number) && number == 815;
        chmod(RegistryFile().c_str(), 0600);
        const bool changed = Change("DELETE FROM registry WHERE name LIKE 'large%'; VACUUM");
        HKEY key = nullptr;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, KEY_QUERY_VALUE, &key);
        bool missing = false;
        for (const LPCWSTR name : {u"large1", u"large2", u"large3", u"large4"}) {
            const LONG error = RegQueryValueExW(key, name, nullptr, nullptr, nullptr, nullptr);
            missing = missing || error == ERROR_FILE_NOT_FOUND;
        }
        const bool kept = LoadNumber(1, &number) && number == 815;
        return (read ? 1 : 0) + (changed ? 2 : 0) + (missing ? 4 : 0) + (kept ? 8 : 0);
    });
    EXPECT_EQ(15, WEXITSTATUS(WaitFor(child)));
    EXPECT_FALSE(std::filesystem::exists(RegistryFile() + ".damaged"));
}

// The first save could only read the file, and there it lacked the value.
TEST_F(RegistryFileOnDisk, UnreadValueOfAnotherProcessStaysAfterTheFileCouldOnlyBeRead) {
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1, 815));
    CloseRegistry();
    ASSERT_TRUE(GiveToUser(0));
    const pid_t child = ForkAsUser([] {
        DWORD number = 0;
        const bool unread = !LoadNumber(2, &number);
        chmod(RegistryFile().c_str(), 0444);
        const bool refused = SaveNumber(2, 2) != ERROR_SUCCESS;
        chmod(RegistryFile().c_str(), 0600);
        const bool changed = Change(
            "INSERT INTO registry SELECT key, 'key2', type, x'09000000' "
            "FROM registry WHERE name = 'key1'");
        const bool kept = SaveNumber(2, 2) != ERROR_SUCCESS && LoadNumber(2, &number);
        return (unread ? 1 : 0) + (refused ? 2 : 0) + (changed ? 4 : 0) +
               (kept && number == 9 ? 8 : 0);
    });
    EXPECT_EQ(15, WEXITSTATUS(WaitFor(child)));
}

// To open a pipe for reading waits for its writer.
TEST_F(RegistryFileOnDisk, PipeThatCanOnlyBeReadDoesNotStopTheProgram) {
    ASSERT_EQ(0, mkfifo(RegistryFile().c_str(), 0444));
    chmod(DeviceRoot().c_str(), 0555);
    const pid_t child = ForkAsUser([] {
        alarm(20);
        return CountSuccesses();
    });
    const int status = WaitFor(child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
    chmod(DeviceRoot().c_str(), 0700);
}

TEST_F(RegistryFileOnDisk, DeletedFileIsCreatedAgain) {
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1, 1));
    std::filesystem::rename(RegistryFile(), RegistryFile() + ".kept");
    std::filesystem::remove(RegistryFile() + "-wal");
    std::filesystem::remove(RegistryFile() + "-shm");
    DWORD number = 0;
    EXPECT_FALSE(LoadNumber(1, &number));
    EXPECT_EQ(ERROR_SUCCESS, SaveNumber(1, 2));
    EXPECT_TRUE(LoadNumber(1, &number));
    EXPECT_EQ(2u, number);
}

TEST_F(RegistryFileOnDisk, KeysOfARemovedFileAreUnknown) {
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1, 1));
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, KEY_QUERY_VALUE, &key));
    RegCloseKey(key);
    std::filesystem::rename(RegistryFile(), RegistryFile() + ".kept");
    std::filesystem::remove(RegistryFile() + "-wal");
    std::filesystem::remove(RegistryFile() + "-shm");
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, KEY_QUERY_VALUE, &key));
    DWORD disposition = 0;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, nullptr, 0,
                                             KEY_SET_VALUE, nullptr, &key, &disposition));
    EXPECT_EQ(1u, disposition);  // made new
    RegCloseKey(key);
}

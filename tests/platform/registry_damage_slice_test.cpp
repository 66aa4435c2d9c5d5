// SPDX-License-Identifier: MIT
// Damaged registry files: the slice renames each one and creates a new file.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "platform/qt/services/registry.h"
#include "platform/qt/services/services.h"
#include "windows_ce.h"

namespace {

namespace fs = std::filesystem;

std::string RegistryFile() { return DeviceRoot() + "/registry.db"; }

void EmptyFolder() {
    CloseRegistry();
    for (const auto& entry : fs::directory_iterator(DeviceRoot())) fs::remove_all(entry.path());
}

LONG SaveNumber(int index, DWORD number) {
    WCHAR name[20];
    wsprintfW(name, TEXT("key%d"), index);
    HKEY key = nullptr;
    LONG error = RegCreateKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\TEST"), 0, nullptr, 0,
                                 KEY_SET_VALUE, nullptr, &key, nullptr);
    if (error != ERROR_SUCCESS) return error;
    error = RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<BYTE*>(&number), 4);
    RegCloseKey(key);
    return error;
}

LONG LoadNumber(int index, DWORD* number) {
    WCHAR name[20];
    wsprintfW(name, TEXT("key%d"), index);
    HKEY key = nullptr;
    DWORD size = sizeof(*number);
    LONG error =
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\TEST"), 0, KEY_QUERY_VALUE, &key);
    if (error != ERROR_SUCCESS) return error;
    error = RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(number), &size);
    RegCloseKey(key);
    return error;
}

std::string Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void Write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// The bytes of an intact registry file of several pages.
std::string SoundFile() {
    EmptyFolder();
    for (int i = 0; i < 300; i++) SaveNumber(i, static_cast<DWORD>(i));
    CloseRegistry();
    return Read(RegistryFile());
}

std::string DatabaseWith(const char* statements) {
    EmptyFolder();
    const std::string path = DeviceRoot() + "/other.db";
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    sqlite3_exec(database, statements, nullptr, nullptr, nullptr);
    sqlite3_close(database);
    return Read(path);
}

void ExpectFreshRegistryWorks() {
    DWORD number = 0;
    ASSERT_EQ(ERROR_SUCCESS, SaveNumber(1000, 5));
    ASSERT_EQ(ERROR_SUCCESS, LoadNumber(1000, &number));
    ASSERT_EQ(5u, number);
}

void ExpectSetAside(const std::string& bytes) {
    EmptyFolder();
    Write(RegistryFile(), bytes);
    DWORD number = 0;
    ASSERT_EQ(ERROR_FILE_NOT_FOUND, LoadNumber(1, &number));
    ASSERT_TRUE(bytes == Read(RegistryFile() + ".damaged"));
    ExpectFreshRegistryWorks();
}

class DamagedRegistry : public testing::Test {
  protected:
    void TearDown() override { EmptyFolder(); }
};

}  // namespace

TEST_F(DamagedRegistry, TextIsSetAside) { ExpectSetAside("port = 23\n"); }

TEST_F(DamagedRegistry, OneByteIsSetAside) { ExpectSetAside("S"); }

TEST_F(DamagedRegistry, RandomBytesAreSetAside) {
    std::mt19937 random(1);
    std::string bytes(50000, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    ExpectSetAside(bytes);
}

TEST_F(DamagedRegistry, RandomBytesAfterAHeaderAreSetAside) {
    std::mt19937 random(2);
    std::string bytes = SoundFile();
    for (size_t i = 100; i < bytes.size(); i++) bytes[i] = static_cast<char>(random());
    ExpectSetAside(bytes);
}

TEST_F(DamagedRegistry, TruncatedFileIsSetAside) {
    const std::string sound = SoundFile();
    for (size_t size : {size_t{16}, size_t{99}, size_t{100}, size_t{4095}, size_t{4096},
                        size_t{5000}, sound.size() / 2, sound.size() - 4096})
        ExpectSetAside(sound.substr(0, size));
}

TEST_F(DamagedRegistry, EachPageLostIsNoticed) {
    const std::string sound = SoundFile();
    ASSERT_GE(sound.size(), 5u * 4096);
    for (size_t page = 0; page < sound.size() / 4096; page++) {
        std::string bytes = sound;
        bytes.replace(page * 4096, 4096, std::string(4096, '\xA5'));
        ExpectSetAside(bytes);
    }
}

TEST_F(DamagedRegistry, TableOfAnotherShapeIsSetAside) {
    ExpectSetAside(DatabaseWith("CREATE TABLE registry (key TEXT, name TEXT, value TEXT)"));
    ExpectSetAside(DatabaseWith("CREATE TABLE bookmarks (url TEXT)"));
    ExpectSetAside(DatabaseWith("CREATE VIEW registry AS SELECT 1 AS key, 2 AS name"));
}

TEST_F(DamagedRegistry, TriggerInTheFileIsSetAside) {
    SoundFile();
    fs::copy_file(RegistryFile(), DeviceRoot() + "/copy.db");
    sqlite3* database = nullptr;
    sqlite3_open((DeviceRoot() + "/copy.db").c_str(), &database);
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(database,
                                      "CREATE TRIGGER t AFTER INSERT ON registry "
                                      "BEGIN DELETE FROM registry; END; PRAGMA journal_mode=DELETE",
                                      nullptr, nullptr, nullptr));
    sqlite3_close(database);
    ExpectSetAside(Read(DeviceRoot() + "/copy.db"));
}

TEST_F(DamagedRegistry, RowsOfTheWrongKindAreSetAside) {
    SoundFile();
    sqlite3* database = nullptr;
    sqlite3_open(RegistryFile().c_str(), &database);
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(database,
                                      "PRAGMA ignore_check_constraints = 1;"
                                      "UPDATE registry SET data = 7 WHERE name = 'key3';"
                                      "PRAGMA journal_mode=DELETE",
                                      nullptr, nullptr, nullptr));
    sqlite3_close(database);
    ExpectSetAside(Read(RegistryFile()));
}

TEST_F(DamagedRegistry, FormatOfALaterVersionIsSetAside) {
    std::string bytes = SoundFile();
    bytes[18] = bytes[19] = 9;
    ExpectSetAside(bytes);
}

TEST_F(DamagedRegistry, EachChangedByteOfTheFirstPageIsHandled) {
    const std::string sound = SoundFile();
    for (size_t i = 0; i < 4096; i += i < 200 ? 1 : 37) {
        EmptyFolder();
        std::string bytes = sound;
        bytes[i] = static_cast<char>(~bytes[i]);
        Write(RegistryFile(), bytes);
        DWORD number = 0;
        LoadNumber(1, &number);
        ExpectFreshRegistryWorks();
        if (HasFatalFailure()) FAIL() << "byte " << i;
    }
}

TEST_F(DamagedRegistry, EmptyFileIsAFreshOne) {
    EmptyFolder();
    Write(RegistryFile(), "");
    ExpectFreshRegistryWorks();
    EXPECT_FALSE(fs::exists(RegistryFile() + ".damaged"));
}

TEST_F(DamagedRegistry, FolderInItsPlaceIsSetAside) {
    EmptyFolder();
    fs::create_directory(RegistryFile());
    ExpectFreshRegistryWorks();
    EXPECT_TRUE(fs::is_directory(RegistryFile() + ".damaged"));
}

TEST_F(DamagedRegistry, PipeInItsPlaceIsSetAside) {
    EmptyFolder();
    ASSERT_EQ(0, mkfifo(RegistryFile().c_str(), 0600));
    ExpectFreshRegistryWorks();
    EXPECT_TRUE(fs::is_fifo(RegistryFile() + ".damaged"));
}

TEST_F(DamagedRegistry, LogWithoutItsDatabaseIsSetAside) {
    EmptyFolder();
    Write(RegistryFile() + "-wal", "values that were not copied yet");
    ExpectFreshRegistryWorks();
    EXPECT_EQ("values that were not copied yet", Read(RegistryFile() + ".damaged-wal"));
}

TEST_F(DamagedRegistry, DamagedLogIsHandled) {
    const std::string sound = SoundFile();
    std::mt19937 random(3);
    std::string log(20000, '\0');
    for (char& byte : log) byte = static_cast<char>(random());
    Write(RegistryFile() + "-wal", log);
    ExpectFreshRegistryWorks();
    DWORD number = 0;
    EXPECT_EQ(ERROR_SUCCESS, LoadNumber(7, &number));
    EXPECT_EQ(7u, number);
}

TEST_F(DamagedRegistry, EachDamagedFileGetsAUniqueName) {
    EmptyFolder();
    for (const char* bytes : {"first", "second", "third"}) {
        CloseRegistry();
        Write(RegistryFile(), bytes);
        ExpectFreshRegistryWorks();
    }
    EXPECT_EQ("first", Read(RegistryFile() + ".damaged"));
    EXPECT_EQ("second", Read(RegistryFile() + ".damaged-2"));
    EXPECT_EQ("third", Read(RegistryFile() + ".damaged-3"));
}

TEST_F(DamagedRegistry, DamageWhileOpenIsSetAsideToo) {
    for (const bool held : {false, true}) {
        EmptyFolder();
        SoundFile();
        ExpectFreshRegistryWorks();
        CloseRegistry();
        if (held) HoldRegistry();
        DWORD number = 0;
        ASSERT_EQ(ERROR_SUCCESS, LoadNumber(1, &number));
        {
            std::fstream file(RegistryFile(), std::ios::in | std::ios::out | std::ios::binary);
            file.seekp(4096);
            file << std::string(static_cast<size_t>(fs::file_size(RegistryFile())) - 4096, '\x5A');
        }
        // After a change by another connection this one reads the pages again.
        sqlite3* database = nullptr;
        sqlite3_open(RegistryFile().c_str(), &database);
        sqlite3_exec(database, "PRAGMA user_version = 3", nullptr, nullptr, nullptr);
        sqlite3_close(database);
        if (held) ReleaseRegistry(), HoldRegistry();
        EXPECT_EQ(ERROR_FILE_NOT_FOUND, LoadNumber(1, &number)) << held;
        EXPECT_TRUE(fs::exists(RegistryFile() + ".damaged"));
        ExpectFreshRegistryWorks();
    }
}

TEST_F(DamagedRegistry, ProcessesThatFindItTogetherSetItAsideOnce) {
    for (int round = 0; round < 10; round++) {
        EmptyFolder();
        Write(RegistryFile(), "no database");
        std::vector<pid_t> children;
        for (int i = 0; i < 6; i++) {
            const pid_t child = fork();
            if (child == 0) _exit(SaveNumber(i, static_cast<DWORD>(i)) == ERROR_SUCCESS ? 0 : 1);
            children.push_back(child);
        }
        for (const pid_t child : children) {
            int status = 0;
            waitpid(child, &status, 0);
            ASSERT_EQ(0, status);
        }
        for (int i = 0; i < 6; i++) {
            DWORD number = 99;
            ASSERT_EQ(ERROR_SUCCESS, LoadNumber(i, &number));
            ASSERT_EQ(static_cast<DWORD>(i), number);
        }
        ASSERT_TRUE(fs::exists(RegistryFile() + ".damaged"));
        ASSERT_FALSE(fs::exists(RegistryFile() + ".damaged-2"));
    }
}

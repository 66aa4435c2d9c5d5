// SPDX-License-Identifier: MIT
// Dial-up entries, read from a folder of peers.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "platform/qt/services/services.h"
#include "tests/support/services_test_hooks.h"
#include "windows_ce.h"

namespace {

namespace fs = std::filesystem;

class DialUpEntries : public testing::Test {
  protected:
    void SetUp() override {
        services_test_hooks = ServicesTestHooks();
        services_test_hooks.dial_up_folder = DeviceRoot() + "/peers";
        services_test_hooks.dial_up_program = "/bin/sh";
        fs::create_directory(services_test_hooks.dial_up_folder);
    }
    void TearDown() override {
        fs::remove_all(services_test_hooks.dial_up_folder);
        services_test_hooks = ServicesTestHooks();
    }
    static void Make(const std::string& name) {
        std::ofstream(services_test_hooks.dial_up_folder + "/" + name) << "/dev/ttyS0\n";
    }
    // Lists with a buffer for that many entries.
    DWORD Enumerate(size_t room) {
        entries.assign(room + 1, {});
        entries[0].dwSize = sizeof(RASENTRYNAMEW);
        size = static_cast<DWORD>(room * sizeof(RASENTRYNAMEW));
        return RasEnumEntries(nullptr, nullptr, room ? entries.data() : nullptr, &size, &count);
    }
    static DWORD Fetch(LPCWSTR name) {
        RASDIALPARAMSW parameters = {};
        parameters.dwSize = sizeof(parameters);
        CopyUnits(parameters.szEntryName, name, RAS_MaxEntryName + 1);
        BOOL has_password = TRUE;
        const DWORD error = RasGetEntryDialParams(nullptr, &parameters, &has_password);
        EXPECT_EQ(has_password, FALSE);
        return error;
    }
    std::u16string Name(size_t i) const { return entries[i].szEntryName; }

    std::vector<RASENTRYNAMEW> entries;
    DWORD size = 0;
    DWORD count = 99;
};

}  // namespace

TEST_F(DialUpEntries, ComeInOrder) {
    Make("provider");
    Make("home");
    EXPECT_EQ(0u, Enumerate(10));
    ASSERT_EQ(2u, count);
    EXPECT_EQ(u"home", Name(0));
    EXPECT_EQ(u"provider", Name(1));
    EXPECT_EQ(2 * sizeof(RASENTRYNAMEW), size);
}

TEST_F(DialUpEntries, NoEntriesAreNoError) {
    EXPECT_EQ(0u, Enumerate(5));
    EXPECT_EQ(0u, count);
    fs::remove_all(services_test_hooks.dial_up_folder);
    EXPECT_EQ(0u, Enumerate(5));
    EXPECT_EQ(0u, count);
}

TEST_F(DialUpEntries, WithoutTheDialProgramNothingIsListed) {
    Make("provider");
    services_test_hooks.dial_up_program = services_test_hooks.dial_up_folder + "/pppd";
    EXPECT_EQ(0u, Enumerate(5));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(0u, size);
    Make("pppd");
    EXPECT_EQ(0u, Enumerate(5));
    EXPECT_EQ(2u, count);
}

TEST_F(DialUpEntries, TooSmallABufferGivesTheSizeAndTheFirst) {
    for (const char* name : {"a", "b", "c"}) Make(name);
    EXPECT_EQ(static_cast<DWORD>(ERROR_BUFFER_TOO_SMALL), Enumerate(1));
    EXPECT_EQ(3 * sizeof(RASENTRYNAMEW), size);
    EXPECT_EQ(1u, count);
    EXPECT_EQ(u"a", Name(0));
    EXPECT_EQ(u"", Name(1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_BUFFER_TOO_SMALL), Enumerate(0));
    EXPECT_EQ(3 * sizeof(RASENTRYNAMEW), size);
}

TEST_F(DialUpEntries, BackupsHiddenFilesAndLongNamesAreNotListed) {
    for (const char* name :
         {".hidden", "peer~", "peer.bak", "peer.dpkg-old", "#peer#", "name-of-21-characters"})
        Make(name);
    Make("name-of-20-character");
    fs::create_directory(services_test_hooks.dial_up_folder + "/folder");
    EXPECT_EQ(0u, Enumerate(20));
    ASSERT_EQ(1u, count);
    EXPECT_EQ(u"name-of-20-character", Name(0));
}

// The slice could not pass its name to the program unchanged.
TEST_F(DialUpEntries, AFileWhoseNameIsNoTextIsNotListed) {
    Make("caf\xe9");
    Make("caf\xc3\xa9");
    EXPECT_EQ(0u, Enumerate(5));
    ASSERT_EQ(1u, count);
    EXPECT_EQ(u"caf\u00e9", Name(0));
    EXPECT_EQ(623u, Fetch(u"caf\ufffd"));
}

TEST_F(DialUpEntries, OddNamesAreTakenLiterally) {
    const std::pair<const char*, const char16_t*> names[] = {
        {"\nline", u"\nline"}, {" ", u" "},       {"%s%n", u"%s%n"}, {"-x", u"-x"},
        {"..x", u"..x"},       {"a..b", u"a..b"}, {"\\", u"\\"},     {"'\"", u"'\""}};
    for (const auto& [file, name] : names) {
        Make(file);
        EXPECT_EQ(file[0] == '.' ? 623u : 0u, Fetch(name)) << file;
    }
}

TEST_F(DialUpEntries, WrongStructureSizeIsRefused) {
    RASENTRYNAMEW entry = {};
    size = sizeof(entry);
    EXPECT_EQ(632u, RasEnumEntries(nullptr, nullptr, &entry, &size, &count));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER),
              RasEnumEntries(nullptr, nullptr, &entry, nullptr, &count));
}

TEST_F(DialUpEntries, ParametersExistForEntriesOnly) {
    Make("provider");
    Make("it's \"home\"; $(x)");
    fs::create_directory(services_test_hooks.dial_up_folder + "/folder");
    Make("folder/inner");
    EXPECT_EQ(0u, Fetch(u"provider"));
    EXPECT_EQ(0u, Fetch(u"it's \"home\"; $(x)"));
    for (const char16_t* name : {u"", u".", u"..", u"folder", u"folder/inner", u"../passwd",
                                 u"./provider", u"provider ", u"PROVIDER", u"missing", u"-x"})
        EXPECT_EQ(623u, Fetch(name)) << fs::path(name);
}

TEST_F(DialUpEntries, ParametersOfAWrongShapeAreRefused) {
    Make("provider");
    RASDIALPARAMSW parameters = {};
    BOOL has_password = TRUE;
    EXPECT_EQ(632u, RasGetEntryDialParams(nullptr, &parameters, &has_password));
    parameters.dwSize = sizeof(parameters);
    for (WCHAR& unit : parameters.szEntryName) unit = u'x';
    EXPECT_EQ(87u, RasGetEntryDialParams(nullptr, &parameters, &has_password));
    EXPECT_EQ(87u, RasGetEntryDialParams(nullptr, &parameters, nullptr));
    EXPECT_EQ(87u, RasGetEntryDialParams(nullptr, nullptr, &has_password));
}

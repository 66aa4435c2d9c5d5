// SPDX-License-Identifier: MIT
// Where the files of the device are on the desktop's file system.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/qt/services/services.h"

namespace {

namespace fs = std::filesystem;

mode_t ModeOf(const std::string& path) {
    struct stat status = {};
    stat(path.c_str(), &status);
    return status.st_mode & 0777;
}

}  // namespace

TEST(DevicePath, IsBelowTheRoot) {
    EXPECT_EQ(DeviceRoot() + "/mconfig.cfg", DevicePath(TEXT("\\mconfig.cfg")));
    EXPECT_EQ(DeviceRoot() + "/a/b.txt", DevicePath(TEXT("\\a\\b.txt")));
    EXPECT_EQ(DeviceRoot() + "/a/b.txt", DevicePath(TEXT("a/b.txt")));
    EXPECT_EQ(DeviceRoot() + "/\xC3\xA4\xE2\x82\xAC", DevicePath(TEXT("\\\u00e4\u20ac")));
    EXPECT_EQ(DeviceRoot(), DevicePath(TEXT("\\")));
    EXPECT_EQ("", DevicePath(nullptr));
}

TEST(DevicePath, NeverLeavesTheRoot) {
    EXPECT_EQ(DeviceRoot() + "/etc/passwd", DevicePath(TEXT("\\..\\..\\etc\\passwd")));
    EXPECT_EQ(DeviceRoot() + "/b", DevicePath(TEXT("\\a\\..\\..\\..\\b")));
    EXPECT_EQ(DeviceRoot() + "/a/b", DevicePath(TEXT("\\\\a\\.\\\\b")));
    EXPECT_EQ(DeviceRoot(), DevicePath(TEXT("..")));
}

TEST(DeviceFiles, AreNotInheritedByOtherPrograms) {
    FILE* file = _wfopen(TEXT("\\x"), TEXT("w"));
    ASSERT_NE(nullptr, file);
    EXPECT_TRUE(fcntl(fileno(file), F_GETFD) & FD_CLOEXEC);
    EXPECT_EQ(0600u, ModeOf(DeviceRoot() + "/x"));
    fclose(file);
    DeleteFileW(TEXT("\\x"));
}

TEST(DeviceFiles, PipeDoesNotHoldTheProgramUp) {
    ASSERT_EQ(0, mkfifo((DeviceRoot() + "/pipe").c_str(), 0600));
    EXPECT_EQ(nullptr, _wfopen(TEXT("\\pipe"), TEXT("r")));
    EXPECT_TRUE(DeleteFileW(TEXT("\\pipe")));
}

TEST(DeviceFiles, InvalidModeIsRefused) {
    EXPECT_EQ(nullptr, _wfopen(TEXT("\\x"), TEXT("")));
    EXPECT_EQ(nullptr, _wfopen(TEXT("\\x"), TEXT("q")));
    EXPECT_EQ(nullptr, _wfopen(TEXT("\\x"), TEXT("w?")));
    EXPECT_EQ(nullptr, _wfopen(TEXT("\\x"), nullptr));
    EXPECT_EQ(nullptr, _wfopen(nullptr, TEXT("r")));
    EXPECT_FALSE(fs::exists(DeviceRoot() + "/x"));
}

TEST(UserRoot, IsCreatedForTheUserOnly) {
    const std::string own = DeviceRoot();
    setenv("XDG_DATA_HOME", (own + "/share").c_str(), 1);
    SetDeviceRoot("");
    EXPECT_EQ(own + "/share/quill", DeviceRoot());
    EXPECT_EQ(0700u, ModeOf(DeviceRoot()));
    unsetenv("XDG_DATA_HOME");
    setenv("HOME", own.c_str(), 1);
    SetDeviceRoot("");
    EXPECT_EQ(own + "/.local/share/quill", DeviceRoot());
    EXPECT_EQ(0700u, ModeOf(DeviceRoot()));
    SetDeviceRoot(own);
}

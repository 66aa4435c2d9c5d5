// SPDX-License-Identifier: MIT
// Files of the device.
#include <gtest/gtest.h>

#include <string>

#include "windows_ce.h"

namespace {

const LPCWSTR kFile = TEXT("\\quill files test.cfg");

std::string ReadAll() {
    FILE* file = _wfopen(kFile, TEXT("rb"));
    if (!file) return "none";
    char bytes[100];
    const size_t count = fread(bytes, 1, sizeof(bytes), file);
    fclose(file);
    return std::string(bytes, count);
}

void Write(LPCWSTR mode, const char* text) {
    FILE* file = _wfopen(kFile, mode);
    ASSERT_NE(nullptr, file);
    fputs(text, file);
    fclose(file);
}

class DeviceFile : public testing::Test {
  protected:
    void TearDown() override { DeleteFileW(kFile); }
};

}  // namespace

TEST_F(DeviceFile, WrittenTextReadsBack) {
    Write(TEXT("wb"), "port = 23\n");
    EXPECT_EQ("port = 23\n", ReadAll());
}

TEST_F(DeviceFile, WritingTruncates) {
    Write(TEXT("wb"), "long text");
    Write(TEXT("wb"), "new");
    EXPECT_EQ("new", ReadAll());
}

TEST_F(DeviceFile, AppendingWritesAtTheEnd) {
    Write(TEXT("wb"), "one");
    Write(TEXT("ab"), "two");
    EXPECT_EQ("onetwo", ReadAll());
}

TEST_F(DeviceFile, UpdatingKeepsTheRest) {
    Write(TEXT("wb"), "abcdef");
    Write(TEXT("r+b"), "XY");
    EXPECT_EQ("XYcdef", ReadAll());
}

TEST_F(DeviceFile, MissingOneDoesNotOpen) {
    EXPECT_EQ(nullptr, _wfopen(kFile, TEXT("r")));
    EXPECT_EQ(nullptr, _wfopen(TEXT("\\no such folder\\file"), TEXT("w")));
    EXPECT_FALSE(DeleteFileW(kFile));
}

TEST_F(DeviceFile, DeletedOneIsGone) {
    Write(TEXT("w"), "x");
    EXPECT_TRUE(DeleteFileW(kFile));
    EXPECT_EQ("none", ReadAll());
}

TEST_F(DeviceFile, FolderDoesNotOpen) {
    EXPECT_EQ(nullptr, _wfopen(TEXT("\\"), TEXT("r")));
    EXPECT_FALSE(DeleteFileW(TEXT("\\")));
}

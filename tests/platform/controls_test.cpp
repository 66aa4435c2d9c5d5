// SPDX-License-Identifier: MIT
// The status window, the command bar, and what the shell reports of the device.
#include "tests/platform/test_windows.h"

namespace {

class Controls : public WindowTest {
  protected:
    HWND Status(HWND parent) {
        return CreateWindowExW(0, STATUSCLASSNAME, TEXT(""), WS_CHILD | WS_VISIBLE, 0, 0, 0, 0,
                               parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(106)), nullptr,
                               nullptr);
    }
    static RECT OuterOf(HWND window) {
        RECT rect = {};
        GetWindowRect(window, &rect);
        return rect;
    }
};

}  // namespace

TEST_F(Controls, StatusWindowTakesTheBottomOfItsParent) {
    HWND parent = Child(1, 0, 0, 0, 200, 100);
    HWND status = Status(parent);
    ASSERT_NE(nullptr, status);
    EXPECT_EQ(OuterOf(parent).bottom, OuterOf(status).bottom);
    EXPECT_EQ(OuterOf(parent).left, OuterOf(status).left);
    EXPECT_EQ(OuterOf(parent).right, OuterOf(status).right);
    EXPECT_GT(OuterOf(status).bottom - OuterOf(status).top, 8);
}

TEST_F(Controls, StatusWindowFollowsItsParentOnASizeMessage) {
    HWND parent = Child(1, 0, 0, 0, 200, 100);
    HWND status = Status(parent);
    const RECT before = OuterOf(status);
    MoveWindow(parent, 0, 0, 150, 80, TRUE);
    SendMessageW(status, WM_SIZE, 0, 0);
    EXPECT_EQ(OuterOf(parent).bottom, OuterOf(status).bottom);
    EXPECT_EQ(OuterOf(parent).right, OuterOf(status).right);
    EXPECT_EQ(before.bottom - before.top, OuterOf(status).bottom - OuterOf(status).top);
}

TEST_F(Controls, StatusWindowKeepsItsText) {
    WCHAR text[40];
    HWND status = Status(top);
    EXPECT_EQ(status, GetDlgItem(top, 106));
    EXPECT_TRUE(SetWindowTextW(status, TEXT("  online")));
    GetWindowTextW(status, text, 40);
    EXPECT_EQ(Text(TEXT("  online")), text);
}

TEST_F(Controls, CommandBarTakesTheTopOfItsWindow) {
    HWND bar = CommandBar_Create(nullptr, top, 1);
    ASSERT_NE(nullptr, bar);
    EXPECT_EQ(bar, GetDlgItem(top, 1));
    RECT room = {};
    GetClientRect(top, &room);
    EXPECT_GT(CommandBar_Height(bar), 0);
    EXPECT_EQ(room.right, OuterOf(bar).right - OuterOf(bar).left);
    EXPECT_EQ(CommandBar_Height(bar), OuterOf(bar).bottom - OuterOf(bar).top);
    CommandBar_Show(bar, FALSE);
    EXPECT_FALSE(IsWindowVisible(bar));
    CommandBar_Show(bar, TRUE);
    EXPECT_TRUE(IsWindowVisible(bar));
    CommandBar_Destroy(bar);
    EXPECT_FALSE(IsWindow(bar));
}

TEST_F(Controls, CommandBarTakesAGivenWidth) {
    HWND bar = CommandBar_Create(nullptr, top, 1);
    const int height = CommandBar_Height(bar);
    EXPECT_TRUE(MoveWindow(bar, 0, 0, 120, height, TRUE));
    EXPECT_EQ(120, OuterOf(bar).right - OuterOf(bar).left);
    EXPECT_EQ(height, CommandBar_Height(bar));
    CommandBar_Destroy(bar);
}

TEST(Shell, ReportsTheVisibleDesktop) {
    SIPINFO sip = {};
    sip.cbSize = sizeof(sip);
    EXPECT_TRUE(SHSipInfo(SPI_GETSIPINFO, 0, &sip, 0));
    EXPECT_FALSE(sip.fdwFlags & SIPF_ON);
    EXPECT_GE(sip.rcVisibleDesktop.right - sip.rcVisibleDesktop.left, 200);
    EXPECT_GE(sip.rcVisibleDesktop.bottom - sip.rcVisibleDesktop.top, 200);
    sip.cbSize = 1;
    EXPECT_FALSE(SHSipInfo(SPI_GETSIPINFO, 0, &sip, 0));
    EXPECT_FALSE(SHSipInfo(SPI_GETSIPINFO, 0, nullptr, 0));
}

TEST(Library, UnknownNameIsNotFound) {
    EXPECT_EQ(nullptr, LoadLibraryW(TEXT("QUILLNONE.DLL")));
    EXPECT_EQ(nullptr, GetProcAddressW(nullptr, TEXT("ChooseColor")));
}

// SPDX-License-Identifier: MIT
// The shell's menu bar, made from the program's resources, and starting other programs.
#include "resources/resource_ids.h"
#include "tests/platform/test_windows.h"

namespace {

class MenuBar : public WindowTest {
  protected:
    BOOL Make(UINT menu, HWND* bar) {
        SHMENUBARINFO info = {};
        info.cbSize = sizeof(info);
        info.hwndParent = top;
        info.dwFlags = SHCMBF_HMENU;
        info.nToolBarId = menu;
        const BOOL made = SHCreateMenuBar(&info);
        *bar = info.hwndMB;
        return made;
    }
};

}  // namespace

TEST_F(MenuBar, IsAWindowThatCanBeDestroyed) {
    HWND bar = nullptr;
    EXPECT_TRUE(Make(IDR_MENU_OFFLINE, &bar));
    EXPECT_TRUE(IsWindow(bar));
    EXPECT_TRUE(DestroyWindow(bar));
    EXPECT_FALSE(IsWindow(bar));
    EXPECT_TRUE(IsWindow(top));
}

TEST_F(MenuBar, ASecondOneReplacesADestroyedOne) {
    HWND offline = nullptr, online = nullptr;
    EXPECT_TRUE(Make(IDR_MENU_OFFLINE, &offline));
    EXPECT_TRUE(DestroyWindow(offline));
    EXPECT_TRUE(Make(IDR_MENU_ONLINE, &online));
    EXPECT_TRUE(IsWindow(online));
}

TEST_F(MenuBar, IsDestroyedWithItsWindow) {
    HWND bar = nullptr;
    EXPECT_TRUE(Make(IDR_MENU_OFFLINE, &bar));
    DestroyWindow(top);
    EXPECT_FALSE(IsWindow(bar));
}

TEST_F(MenuBar, UnknownMenuMakesNoBar) {
    HWND bar = nullptr;
    EXPECT_FALSE(Make(9999, &bar));
    EXPECT_EQ(nullptr, bar);
}

TEST_F(MenuBar, RequestOfAnotherShapeIsRefused) {
    SHMENUBARINFO info = {};
    info.hwndParent = top;
    info.dwFlags = SHCMBF_HMENU;
    info.nToolBarId = IDR_MENU_OFFLINE;
    info.cbSize = 4;
    EXPECT_FALSE(SHCreateMenuBar(&info));
    info.cbSize = sizeof(info);
    info.dwFlags = 0;
    EXPECT_FALSE(SHCreateMenuBar(&info));
    EXPECT_FALSE(SHCreateMenuBar(nullptr));
}

TEST(Processes, MissingProgramDoesNotStart) {
    WCHAR arguments[] = TEXT("telnet.htm");
    PROCESS_INFORMATION process = {};
    EXPECT_FALSE(CreateProcessW(TEXT("QuillNone.exe"), arguments, nullptr, nullptr, FALSE, 0,
                                nullptr, nullptr, nullptr, &process));
    EXPECT_FALSE(CreateProcessW(nullptr, arguments, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                nullptr, &process));
}

TEST(Processes, ViewerOpensOnlyTheProgramsOwnPages) {
    WCHAR arguments[] = TEXT("other.htm");
    PROCESS_INFORMATION process = {};
    EXPECT_FALSE(CreateProcessW(TEXT("PegHelp.exe"), arguments, nullptr, nullptr, FALSE, 0, nullptr,
                                nullptr, nullptr, &process));
}

TEST(Accelerators, OfTheProgramAreFound) {
    EXPECT_NE(nullptr, LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(IDR_ACCELERATORS)));
    EXPECT_EQ(nullptr, LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(9999)));
}

TEST_F(MenuBar, PlainKeyIsNoAccelerator) {
    HACCEL table = LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(IDR_ACCELERATORS));
    MSG message = {};
    message.hwnd = top;
    message.message = WM_KEYDOWN;
    message.wParam = 'N';
    EXPECT_FALSE(TranslateAcceleratorW(top, table, &message));
    EXPECT_TRUE(Of(WM_COMMAND).empty());
}

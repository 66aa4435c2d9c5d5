// SPDX-License-Identifier: MIT
// The adapter: what the program gets on desktop Windows where that differs from the device.
#include "platform/win32/resource_numbers.h"
#include "resources/resource_ids.h"
#include "tests/platform/test_windows.h"

namespace {

class Adapter : public WindowTest {
  protected:
    // The message that DeviceGetMessage returns for a posted one.
    MSG Taken(UINT posted, WPARAM key, LPARAM flags) {
        MSG message = {};
        PostMessageW(top, posted, key, flags);
        GetMessageW(&message, top, 0, 0);
        return message;
    }
    // The same for any window, which then handles the message.
    void Handle(HWND window, UINT posted, WPARAM wparam, LPARAM lparam) {
        MSG message = {};
        PostMessageW(window, posted, wparam, lparam);
        GetMessageW(&message, window, posted, posted);
        DispatchMessageW(&message);
    }
};

constexpr LPARAM kAltDown = 1 << 29;

std::wstring Below(LPCWSTR name) { return DeviceRoot() + name; }

bool IsFile(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Sets the state of one key, like a press of it.
void SetKeyByte(int key, BYTE state) {
    BYTE states[256];
    GetKeyboardState(states);
    states[key] = state;
    SetKeyboardState(states);
}

}  // namespace

TEST(DeviceFolder, IsBelowTheUsersData) {
    wchar_t data[MAX_PATH];
    ASSERT_NE(0u, GetEnvironmentVariableW(L"APPDATA", data, MAX_PATH));
    EXPECT_EQ(std::wstring(data) + L"\\Quill", DeviceRoot());
    EXPECT_EQ(Below(L"\\mconfig.cfg"), DevicePath(TEXT("\\mconfig.cfg")));
    EXPECT_EQ(Below(L"\\a\\b.txt"), DevicePath(TEXT("a/b.txt")));
    EXPECT_EQ(L"", DevicePath(nullptr));
}

TEST(DeviceFolder, CannotBeLeft) {
    EXPECT_EQ(Below(L"\\system.ini"), DevicePath(TEXT("\\..\\..\\system.ini")));
    EXPECT_EQ(Below(L"\\b"), DevicePath(TEXT("\\a\\..\\..\\b")));
    EXPECT_EQ(Below(L"\\a\\b"), DevicePath(TEXT("\\\\a\\.\\\\b")));
    EXPECT_EQ(Below(L"\\C\\b"), DevicePath(TEXT("C:\\b")));
    EXPECT_EQ(Below(L"\\filestream"), DevicePath(TEXT("\\file:stream")));
}

TEST(DeviceFolder, HoldsTheFiles) {
    FILE* file = _wfopen(TEXT("\\quill adapter test"), TEXT("w"));
    ASSERT_NE(nullptr, file);
    fclose(file);
    EXPECT_TRUE(IsFile(Below(L"\\quill adapter test")));
    EXPECT_TRUE(DeleteFileW(TEXT("\\quill adapter test")));
    EXPECT_FALSE(IsFile(Below(L"\\quill adapter test")));
    EXPECT_EQ(nullptr, _wfopen(nullptr, TEXT("r")));
    EXPECT_EQ(nullptr, _wfopen(TEXT("\\x"), nullptr));
}

TEST(SettingsRoot, IsTheUsersOwn) {
    HKEY key = nullptr, own = nullptr;
    LPCWSTR path = TEXT("Software\\QUILLWARE\\ADAPTER TEST");
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, path, 0, nullptr, 0, KEY_SET_VALUE,
                                             nullptr, &key, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_QUERY_VALUE, &own));
    RegCloseKey(own);
    RegCloseKey(key);
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_CURRENT_USER, path));
}

TEST_F(Adapter, TopLevelWindowHasTheDesktopsFrameAndAMenuRoundItsSize) {
    SHMENUBARINFO bar = {};
    bar.cbSize = sizeof(bar);
    bar.hwndParent = top;
    bar.dwFlags = SHCMBF_HMENU;
    bar.nToolBarId = IDR_MENU_ONLINE;
    ASSERT_TRUE(SHCreateMenuBar(&bar));
    RECT client = {};
    GetClientRect(top, &client);
    EXPECT_EQ(300, client.right);
    EXPECT_EQ(200, client.bottom);
    const LONG_PTR style = GetWindowLongPtrW(top, GWL_STYLE);
    EXPECT_EQ(WS_OVERLAPPEDWINDOW, style & WS_OVERLAPPEDWINDOW);
    EXPECT_EQ(IDM_CONNECT, static_cast<int>(GetMenuItemID(GetSubMenu(GetMenu(top), 0), 0)));
    DestroyWindow(bar.hwndMB);
    EXPECT_EQ(nullptr, GetMenu(top));
}

TEST_F(Adapter, TopLevelWindowIsNoLargerThanTheMonitor) {
    RECT area = {}, outer = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    HWND large = CreateWindowExW(0, TEXT("QuillTestWindow"), nullptr, 0, CW_USEDEFAULT,
                                 CW_USEDEFAULT, 20000, 20000, nullptr, nullptr, nullptr, nullptr);
    GetWindowRect(large, &outer);
    EXPECT_LE(outer.right - outer.left, area.right - area.left);
    EXPECT_LE(outer.bottom - outer.top, area.bottom - area.top);
    DestroyWindow(large);
}

TEST_F(Adapter, WindowsClipTheirChildren) {
    EXPECT_TRUE(GetWindowLongPtrW(top, GWL_STYLE) & WS_CLIPCHILDREN);
    EXPECT_TRUE(GetWindowLongPtrW(Child(1), GWL_STYLE) & WS_CLIPCHILDREN);
}

TEST_F(Adapter, WindowHasAnArrowAndAnIcon) {
    EXPECT_EQ(reinterpret_cast<ULONG_PTR>(LoadCursorW(nullptr, IDC_ARROW)),
              GetClassLongPtrW(top, GCLP_HCURSOR));
    EXPECT_EQ(reinterpret_cast<ULONG_PTR>(
                  LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_DESKTOP))),
              GetClassLongPtrW(top, GCLP_HICON));
}

TEST(ProgramIcon, ExistsInFullColourUpTo256Pixels) {
    const HMODULE module = GetModuleHandleW(nullptr);
    ASSERT_NE(nullptr, LoadIconW(module, MAKEINTRESOURCEW(IDI_DESKTOP)));
    for (const int side : {16, 24, 32, 48, 256}) {
        const auto icon = static_cast<HICON>(
            LoadImageW(module, MAKEINTRESOURCEW(IDI_DESKTOP), IMAGE_ICON, side, side, 0));
        ICONINFO info = {};
        ASSERT_TRUE(GetIconInfo(icon, &info)) << side;
        BITMAP colors = {};
        GetObjectW(info.hbmColor, sizeof(colors), &colors);
        EXPECT_EQ(side, colors.bmWidth);
        EXPECT_EQ(side, colors.bmHeight);
        EXPECT_EQ(32, colors.bmBitsPixel);
        DeleteObject(info.hbmColor);
        DeleteObject(info.hbmMask);
        DestroyIcon(icon);
    }
}

// Windows refuses data for a clipboard that was opened and emptied without an owner.
TEST_F(Adapter, ClipboardOpenedWithoutAnOwnerBelongsToAWindow) {
    ASSERT_TRUE(OpenClipboard(nullptr));
    EXPECT_TRUE(EmptyClipboard());
    EXPECT_TRUE(IsWindow(GetClipboardOwner()));
    EXPECT_TRUE(CloseClipboard());
    ASSERT_TRUE(OpenClipboard(top));
    EXPECT_TRUE(EmptyClipboard());
    EXPECT_EQ(top, GetClipboardOwner());
    EXPECT_TRUE(CloseClipboard());
}

TEST_F(Adapter, MinimisedWindowComesBackToTheForeground) {
    ShowWindow(top, SW_MINIMIZE);
    ASSERT_TRUE(IsIconic(top));
    SetForegroundWindow(top);
    EXPECT_FALSE(IsIconic(top));
}

TEST_F(Adapter, F10IsAPlainKey) {
    EXPECT_EQ(WM_KEYDOWN, Taken(WM_SYSKEYDOWN, VK_F10, 0).message);
    EXPECT_EQ(WM_KEYUP, Taken(WM_SYSKEYUP, VK_F10, 0).message);
    EXPECT_EQ(WM_SYSKEYDOWN, Taken(WM_SYSKEYDOWN, VK_F10, kAltDown).message);
    EXPECT_EQ(WM_SYSKEYDOWN, Taken(WM_SYSKEYDOWN, VK_F1, 0).message);
}

TEST_F(Adapter, F10ThatAWindowLeavesOpensTheMenu) {
    int opened = 0;
    answer = [&opened](const Heard& now, LRESULT* result) {
        *result = 0;
        if (now.message != WM_SYSCOMMAND) return false;
        opened += (now.wparam & 0xFFF0) == SC_KEYMENU;
        return true;
    };
    SHMENUBARINFO bar = {};
    bar.cbSize = sizeof(bar);
    bar.hwndParent = top;
    bar.dwFlags = SHCMBF_HMENU;
    bar.nToolBarId = IDR_MENU_OFFLINE;
    DefWindowProcW(top, WM_KEYDOWN, VK_F10, 0);
    RunUntilIdle();
    EXPECT_EQ(0, opened);
    ASSERT_TRUE(SHCreateMenuBar(&bar));
    DefWindowProcW(top, WM_KEYDOWN, VK_F10, 0);
    RunUntilIdle();
    EXPECT_EQ(1, opened);
}

TEST_F(Adapter, F1ThatAWindowHandlesOpensNoHelp) {
    answer = [](const Heard& now, LRESULT* result) {
        *result = 0;
        return now.message == WM_KEYDOWN || now.message == WM_HELP;
    };
    SendMessageW(top, WM_KEYDOWN, VK_F1, 0);
    SendMessageW(top, 0x004D, 0, 0);  // the message of Windows for F1
    EXPECT_TRUE(Of(WM_HELP).empty());
    DefWindowProcW(top, WM_KEYDOWN, VK_F1, 0);
    EXPECT_EQ(1u, Of(WM_HELP).size());
}

TEST_F(Adapter, StatesOfADialArriveAsTheDevicesMessage) {
    const UINT told = RegisterWindowMessageA(RASDIALEVENT);
    ASSERT_NE(0u, told);
    ASSERT_NE(static_cast<UINT>(WM_RASDIALEVENT), told);
    SendMessageW(top, told, RASCS_Disconnected, 676);
    PostMessageW(top, told, RASCS_PortOpened, 0);
    RunUntilIdle();
    const auto states = Of(WM_RASDIALEVENT);
    ASSERT_EQ(2u, states.size());
    EXPECT_EQ(static_cast<WPARAM>(RASCS_Disconnected), states[0].wparam);
    EXPECT_EQ(676, states[0].lparam);
    EXPECT_EQ(static_cast<WPARAM>(RASCS_PortOpened), states[1].wparam);
    EXPECT_EQ(0, states[1].lparam);
}

// A new dial discards what the last one has left in the queue.
TEST_F(Adapter, StatesOfADialInTheQueueAreTakenByTheDevicesMessage) {
    const UINT told = RegisterWindowMessageA(RASDIALEVENT);
    MSG message = {};
    PostMessageW(top, told, RASCS_PortOpened, 0);
    PostMessageW(top, told, RASCS_Disconnected, 676);
    EXPECT_FALSE(PeekMessageW(&message, top, WM_USER, WM_USER, PM_REMOVE));
    EXPECT_FALSE(PeekMessageW(&message, top, told + 1, told + 1, PM_REMOVE));
    for (const WPARAM state : {RASCS_PortOpened, RASCS_Disconnected}) {
        ASSERT_TRUE(PeekMessageW(&message, top, WM_RASDIALEVENT, WM_RASDIALEVENT, PM_REMOVE));
        EXPECT_EQ(static_cast<UINT>(WM_RASDIALEVENT), message.message);
        EXPECT_EQ(state, message.wParam);
    }
    EXPECT_EQ(676, message.lParam);
    EXPECT_FALSE(PeekMessageW(&message, top, WM_RASDIALEVENT, WM_RASDIALEVENT, PM_REMOVE));
    RunUntilIdle();
    EXPECT_TRUE(Of(WM_RASDIALEVENT).empty());
}

// F24 has no character, so the queue holds what a layout with dead keys would put there.
TEST_F(Adapter, CharacterOfADeadKeyComesBeforeTheKeyThatItDoesNotCombineWith) {
    MSG dead = {top, WM_DEADCHAR, '^', 0, 0, {}};
    const MSG key = {top, WM_KEYDOWN, VK_F24, 0, 0, {}};
    const auto type = [&](const char* characters) {
        for (const char* each = characters; *each; each++)
            PostMessageW(top, WM_CHAR, static_cast<WPARAM>(*each), 0);
        heard.clear();
        TranslateMessage(&key);
        const size_t early = Of(WM_CHAR).size();
        RunUntilIdle();
        std::string all;
        for (const Heard& each : Of(WM_CHAR)) all.push_back(static_cast<char>(each.wparam));
        EXPECT_EQ(characters, all);
        return early;
    };
    EXPECT_EQ(0u, type("^\033")) << "without a dead key";
    DeviceNoteKey(&dead);
    EXPECT_EQ(0u, type("")) << "a shift key: the dead key goes on waiting";
    EXPECT_EQ(1u, type("^\033"));
    EXPECT_EQ(0u, type("^\033")) << "the dead key waits no longer";
    DeviceNoteKey(&dead);
    EXPECT_EQ(0u, type("o")) << "combined";
    EXPECT_EQ(0u, type("^\033"));
}

TEST_F(Adapter, OnlyLockKeysHaveAToggledBit) {
    SetKeyByte(VK_LSHIFT, 0x01);
    SetKeyByte(VK_CAPITAL, 0x01);
    EXPECT_EQ(0, GetKeyState(VK_LSHIFT));
    EXPECT_EQ(1, GetKeyState(VK_CAPITAL) & 1);
    SetKeyByte(VK_LSHIFT, 0x80);
    EXPECT_LT(GetKeyState(VK_LSHIFT), 0);
    SetKeyByte(VK_LSHIFT, 0);
    SetKeyByte(VK_CAPITAL, 0);
}

// A drag: the button goes down in a window and comes up anywhere.
TEST_F(Adapter, DragContinuesOutsideTheWindow) {
    const HWND child = Child(1);
    for (const UINT touch : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}) {
        Handle(child, touch, MK_LBUTTON, MAKELPARAM(5, 5));
        EXPECT_EQ(child, GetCapture());
        Handle(child, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(-50, 900));
        EXPECT_EQ(child, GetCapture());
        Handle(child, WM_LBUTTONUP, 0, MAKELPARAM(-50, 900));
        EXPECT_EQ(nullptr, GetCapture());
    }
}

TEST_F(Adapter, DragOfASystemControlIsNotCaptured) {
    const HWND text = CreateWindowExW(0, TEXT("STATIC"), nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 50,
                                      20, top, nullptr, nullptr, nullptr);
    Handle(text, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(nullptr, GetCapture());
    DestroyWindow(text);
}

TEST_F(Adapter, SilentKeyReachesNoWindow) {
    SetForegroundWindow(top);
    RunUntilIdle();
    heard.clear();
    keybd_event(VK_F24, 0, KEYEVENTF_SILENT, 0);
    keybd_event(VK_F24, 0, KEYEVENTF_KEYUP | KEYEVENTF_SILENT, 0);
    Sleep(50);
    RunUntilIdle();
    EXPECT_TRUE(Of(WM_KEYDOWN).empty());
    EXPECT_TRUE(Of(WM_KEYUP).empty());
}

TEST(Library, DialogsAreTheDesktopsOwn) {
    const HMODULE library = LoadLibraryW(TEXT("COMMDLG.DLL"));
    ASSERT_NE(nullptr, library);
    EXPECT_NE(nullptr, GetProcAddressW(library, TEXT("ChooseColor")));
    EXPECT_EQ(reinterpret_cast<void*>(ChooseFontW),
              reinterpret_cast<void*>(GetProcAddressW(library, TEXT("ChooseFont"))));
    EXPECT_EQ(nullptr, GetProcAddressW(library, TEXT("QuillNoSuchCall")));
    EXPECT_EQ(nullptr, GetProcAddressW(library, nullptr));
    EXPECT_TRUE(FreeLibrary(library));
}

// An attacker may put a library into the program's folder.
TEST(Library, RemoteAccessIsTheSystemsOwn) {
    EXPECT_EQ(nullptr, GetModuleHandleW(L"rasapi32.dll"));
    DWORD size = 0, count = 9;
    RasEnumEntries(nullptr, nullptr, nullptr, &size, &count);
    const HMODULE library = GetModuleHandleW(L"rasapi32.dll");
    ASSERT_NE(nullptr, library);
    wchar_t path[MAX_PATH] = {}, folder[MAX_PATH] = {};
    GetModuleFileNameW(library, path, MAX_PATH);
    GetSystemDirectoryW(folder, MAX_PATH);
    EXPECT_EQ(0, lstrcmpiW((std::wstring(folder) + L"\\rasapi32.dll").c_str(), path));
}

// The system's libraries load others by their plain names.
TEST(Library, PlainNameIsTheSystemsOwn) {
    KeepToSystemLibraries();
    const HMODULE library = LoadLibraryA("propsys.dll");
    ASSERT_NE(nullptr, library);
    wchar_t path[MAX_PATH] = {}, folder[MAX_PATH] = {};
    GetModuleFileNameW(library, path, MAX_PATH);
    GetSystemDirectoryW(folder, MAX_PATH);
    EXPECT_EQ(0, lstrcmpiW((std::wstring(folder) + L"\\propsys.dll").c_str(), path));
    FreeLibrary(library);
}

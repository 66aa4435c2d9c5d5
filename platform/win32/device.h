// What desktop Windows lacks of the device, or does otherwise. The program calls each procedure by
// the name that it has on the device (windows_ce.h); shapes, results and errors are those of that
// call, and the declaration says what differs from the system's own. Window thread only.
#ifndef QUILL_PLATFORM_WIN32_DEVICE_H
#define QUILL_PLATFORM_WIN32_DEVICE_H

#include <string>

#include "system.h"

// ---------------------------------------------------------------- device_root.cpp, files.cpp

// The device's root folder, without a backslash at its end: "Quill" below the user's roaming
// application data. It is made when it is first asked for. Empty if there is none.
const std::wstring& DeviceRoot();
// A device path ("\mconfig.cfg") below the root; ".." does not leave it. Empty for null.
std::wstring DevicePath(LPCWSTR device_path);

FILE* DeviceOpenFile(LPCWSTR path, LPCWSTR mode);
BOOL DeviceDeleteFile(LPCWSTR path);

// ---------------------------------------------------------------- windows.cpp

// The device's window classes have no cursor and no icon of their own; here the arrow and the
// program's icon (IDI_PROGRAM; without one, the system's) take their place.
ATOM DeviceRegisterClass(const WNDCLASSW* window_class);
// Every window of the device clips its children. A top-level window gets the desktop's frame, with
// room for a menu, round the size that was asked for.
HWND DeviceCreateWindow(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x,
                        int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                        LPVOID parameter);
// A minimised window is restored, as nothing else would make it visible.
BOOL DeviceSetForegroundWindow(HWND window);

// ---------------------------------------------------------------- clipboard.cpp

// Opened without an owner, the clipboard is the adapter's own window's: emptied for nobody, it
// would take nothing afterwards.
BOOL DeviceOpenClipboard(HWND owner);

// ---------------------------------------------------------------- command_bar.cpp

inline constexpr int kCommandBarHeight = 26;  // pixels, empty or with buttons

// A toolbar at the top of the window.
HWND CommandBar_Create(HINSTANCE instance, HWND parent, int id);
BOOL CommandBar_Show(HWND bar, BOOL show);
int CommandBar_Height(HWND bar);
void CommandBar_Destroy(HWND bar);
// Adds the 16x16 pictures of a bitmap resource; returns the index of the first, or -1.
int CommandBar_AddBitmap(HWND bar, HINSTANCE instance, int id, int count, int width, int height);
BOOL CommandBar_InsertButton(HWND bar, int index, const TBBUTTON* button);
// tips[i] belongs to the button at index i, which is there already.
BOOL CommandBar_AddToolTips(HWND bar, UINT count, LPWSTR* tips);

// ---------------------------------------------------------------- fonts.cpp

// A pixel of the device's fonts is two of the desktop's: the 8-pixel font of the first start is
// readable, as it is on the device.
inline constexpr int kFontScale = 2;
HFONT DeviceCreateFontIndirect(const LOGFONTW* font);

// ---------------------------------------------------------------- keyboard.cpp

// F1 and F10 are keys as any other one; a window that leaves them gets WM_HELP, and its menu opens.
// The states of a dial, which the desktop tells by a registered message, come as WM_RASDIALEVENT.
BOOL DeviceGetMessage(MSG* message, HWND window, UINT first, UINT last);
LRESULT DeviceDefWindowProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
// Only the Lock keys have a toggled bit. The left Ctrl is up while the right Alt is down: on many
// layouts that is AltGr, which the desktop tells as both.
SHORT DeviceGetKeyState(int virtual_key);
// With KEYEVENTF_SILENT: counts as activity of the user, and no window hears of it.
void DeviceKeyEvent(BYTE virtual_key, BYTE scan_code, DWORD flags, ULONG_PTR extra);

// ---------------------------------------------------------------- shell.cpp

struct SIPINFO {
    DWORD cbSize;
    DWORD fdwFlags;
    RECT rcVisibleDesktop;
    RECT rcSipRect;
    DWORD dwImDataSize;
    LPVOID pvImData;
};
// There is no input panel. The visible desktop is the size of a device on which the whole
// terminal of the first start fits, or the monitor's if that is smaller.
BOOL SHSipInfo(UINT action, UINT parameter, LPVOID info, UINT flags);

// ---------------------------------------------------------------- menu_bar.cpp

struct SHMENUBARINFO {
    DWORD cbSize;
    HWND hwndParent;
    DWORD dwFlags;
    UINT nToolBarId;
    HINSTANCE hInstRes;
    int nBmpId;
    int cBmpImages;
    HWND hwndMB;  // out: the bar
    COLORREF clrBk;
};
// The bar is the menu of the window `hwndParent`, below its title.
BOOL SHCreateMenuBar(SHMENUBARINFO* info);

// ---------------------------------------------------------------- processes.cpp

// "PegHelp.exe" is the desktop's viewer on the page that lies beside the program, and gives no
// handles; there is no other program.
BOOL DeviceCreateProcess(LPCWSTR program, LPWSTR arguments, LPVOID process_security,
                         LPVOID thread_security, BOOL inherit, DWORD flags, LPVOID environment,
                         LPCWSTR folder, LPVOID start_up, PROCESS_INFORMATION* process);

// ---------------------------------------------------------------- library.cpp

// The device's "COMMDLG.DLL" is the desktop's comdlg32.dll.
HMODULE DeviceLoadLibrary(LPCWSTR name);
// A call that exists in two widths is the wide one.
FARPROC GetProcAddressW(HMODULE library, LPCWSTR name);

#endif

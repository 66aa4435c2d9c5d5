// SPDX-License-Identifier: MIT
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
// program's icon (IDI_DESKTOP; without one, the system's) take their place.
ATOM DeviceRegisterClass(const WNDCLASSW* window_class);
bool HasProgramClass(HWND window);  // registered by the call above
// Every window of the device clips its children. A top-level window gets the desktop's frame, with
// room for a menu, round the size that was asked for.
HWND DeviceCreateWindow(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x,
                        int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                        LPVOID parameter);
// A menu may be higher than the system foretells. A window that nobody sees yet, the last top-level
// one, grows so far that its client area has the height that was asked for.
void MakeRoomForMenu(HWND window);
// A minimised window is restored, as nothing else would make it visible.
BOOL DeviceSetForegroundWindow(HWND window);

// ---------------------------------------------------------------- clipboard.cpp

// Opened without an owner, the clipboard is the adapter's own window's: emptied for nobody, it
// would take nothing afterwards.
BOOL DeviceOpenClipboard(HWND owner);

// ---------------------------------------------------------------- command_bar.cpp

inline constexpr int kCommandBarHeight = 26;  // pixels at 100 %, empty or with buttons

// A toolbar at the top of the window.
HWND CommandBar_Create(HINSTANCE instance, HWND parent, int id);
BOOL CommandBar_Show(HWND bar, BOOL show);
int CommandBar_Height(HWND bar);
void CommandBar_Destroy(HWND bar);
// Adds the 16x16 pictures of a bitmap resource in the monitor's scale, from those of 32x32 pixels
// where it is above 100 %; returns the index of the first, or -1.
int CommandBar_AddBitmap(HWND bar, HINSTANCE instance, int id, int count, int width, int height);
BOOL CommandBar_InsertButton(HWND bar, int index, const TBBUTTON* button);
// tips[i] belongs to the button at index i, which is there already.
BOOL CommandBar_AddToolTips(HWND bar, UINT count, LPWSTR* tips);
void RescaleCommandBar(HWND bar);  // its height and pictures, to the present scale

// ---------------------------------------------------------------- bar_pictures.cpp

int BarPictureSide();  // pixels
// The pictures of a bitmap resource, side by side, with alpha; null without one.
HBITMAP LoadBarPictures(HINSTANCE instance, int id);

// ---------------------------------------------------------------- scale.cpp

// Of the main window's monitor, or of the first one until there is a window: 96 at 100 %.
UINT DeviceDpi();
int DevicePixels(int plain);  // pixels at 100 % to the monitor's
UINT WindowDpi(HWND window);
// The outer size round a client area with a menu.
BOOL FrameRect(RECT* rect, DWORD style, DWORD ex_style);
int DeviceGetSystemMetrics(int index);
// Of the main window, whose bars, fonts and place (if there is one) follow.
void ChangeScale(HWND window, UINT new_dpi, const RECT* place);

// ---------------------------------------------------------------- fonts.cpp

// A pixel of the device's fonts is two of the desktop's at 100 %: the 8-pixel font of the first
// start is readable, as it is on the device. A font follows the monitor's scale when it is next
// selected.
inline constexpr int kFontScale = 2;
HFONT DeviceCreateFontIndirect(const LOGFONTW* font);
HGDIOBJ DeviceSelectObject(HDC dc, HGDIOBJ object);
BOOL DeviceDeleteObject(HGDIOBJ object);

// ---------------------------------------------------------------- messages.cpp

// The message loop's source. A window of the program that the stylus touches gets its moves until
// it is lifted, also from outside.
BOOL DeviceGetMessage(MSG* message, HWND window, UINT first, UINT last);

// ---------------------------------------------------------------- keyboard.cpp

// Each message of the loop goes through this: F10 becomes a plain key, and which Ctrl is down is
// kept.
void DeviceNoteKey(MSG* message);
// A window that leaves F1 or F10 gets WM_HELP, or its menu opens. The states of a dial, which the
// desktop tells by a registered message, come as WM_RASDIALEVENT.
LRESULT DeviceDefWindowProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
// Only the Lock keys have a toggled bit. On many layouts the right Alt is AltGr, along with which
// the desktop presses the left Ctrl: that one is up, unless it is held down as well.
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

// "PegHelp.exe" is the desktop's viewer on the page that the program carries, and gives no
// handles; there is no other program.
BOOL DeviceCreateProcess(LPCWSTR program, LPWSTR arguments, LPVOID process_security,
                         LPVOID thread_security, BOOL inherit, DWORD flags, LPVOID environment,
                         LPCWSTR folder, LPVOID start_up, PROCESS_INFORMATION* process);

// ---------------------------------------------------------------- dialogs.cpp

// WM_QUIT waits in the thread's queue.
bool ProgramEnds();
// What is modal gives the stylus free. When the program ends meanwhile the answer is IDCANCEL, or 0
// from a dialog or a sheet; after that nothing is shown any more.
int DeviceMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type);
INT_PTR DeviceDialogBox(HINSTANCE instance, LPCWSTR name, HWND owner, DLGPROC procedure,
                        LPARAM parameter);
INT_PTR DevicePropertySheet(LPCPROPSHEETHEADERW header);

// ---------------------------------------------------------------- session_end.cpp

// From here on the end of the desktop's session ends the program: the calling thread gets WM_QUIT,
// and the desktop waits until it has come to its end. Nobody is asked.
void WatchSessionEnd();
bool SessionEnds();  // [any thread]

// ---------------------------------------------------------------- ras.cpp

// The calls of remote access, whose library is loaded with the first of them; ERROR_MOD_NOT_FOUND
// without one.
DWORD DeviceRasEnumEntries(LPWSTR reserved, LPWSTR phone_book, RASENTRYNAMEW* entries, DWORD* size,
                           DWORD* count);
DWORD DeviceRasGetEntryDialParams(LPCWSTR phone_book, RASDIALPARAMSW* parameters,
                                  BOOL* has_password);
DWORD DeviceRasDial(RASDIALEXTENSIONS* extensions, LPCWSTR phone_book, RASDIALPARAMSW* parameters,
                    DWORD notifier_type, LPVOID notifier, HRASCONN* connection);
DWORD DeviceRasHangUp(HRASCONN connection);
// Ends the last dial, or the connection that it made, if the program has not.
void HangUpWhatIsLeft();

// ---------------------------------------------------------------- library.cpp

// The device's shape: `hInstance` is the module of the template.
struct DeviceChooseColor {
    DWORD lStructSize;
    HWND hwndOwner;
    HINSTANCE hInstance;
    COLORREF rgbResult;
    COLORREF* lpCustColors;
    DWORD Flags;
    LPARAM lCustData;
    void* lpfnHook;
    LPCWSTR lpTemplateName;
};
// Libraries that the system itself looks for later come from its own folder too, not from the
// program's or the one that it was started in.
void KeepToSystemLibraries();

// The device's "COMMDLG.DLL" is the desktop's comdlg32.dll.
HMODULE DeviceLoadLibrary(LPCWSTR name);
// A call that exists in two widths is the wide one.
FARPROC GetProcAddressW(HMODULE library, LPCWSTR name);

#endif

// SPDX-License-Identifier: MIT
// What desktop Windows lacks of the device, or does differently. The program calls each procedure
// by its name on the device (windows_ce.h maps the names). Shapes, results and errors are those of
// the device's call; the declaration says what differs from the system's own call. Window thread
// only.
#ifndef QUILL_PLATFORM_WIN32_DEVICE_H
#define QUILL_PLATFORM_WIN32_DEVICE_H

#include <string>

#include "system.h"

// ---------------------------------------------------------------- files.cpp

// The device's root folder, without a backslash at its end: "Quill" below the user's roaming
// application data. The first call makes it. Empty if there is no such folder.
const std::wstring& DeviceRoot();
// Translates a device path ("\mconfig.cfg") to a path below the root; ".." does not leave the root.
// Empty for null.
std::wstring DevicePath(LPCWSTR device_path);

FILE* DeviceOpenFile(LPCWSTR path, LPCWSTR mode);
BOOL DeviceDeleteFile(LPCWSTR path);

// ---------------------------------------------------------------- windows.cpp

// The device's window classes have neither cursor nor icon. Here they get the arrow and the
// program's icon (IDI_DESKTOP; if that is missing, the system's).
ATOM DeviceRegisterClass(const WNDCLASSW* window_class);
bool HasProgramClass(HWND window);  // its class was registered by the call above
// Every window clips its children, as on the device. A top-level window gets the desktop's frame,
// with room for a menu, around the size that was asked for.
HWND DeviceCreateWindow(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x,
                        int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                        LPVOID parameter);
// A menu may be higher than the system says beforehand. So the last top-level window, while it is
// still invisible, grows until its client area has the height that was asked for.
void MakeRoomForMenu(HWND window);
// Restores a minimised window, because nothing else would make it visible.
BOOL DeviceSetForegroundWindow(HWND window);

// ---------------------------------------------------------------- shell.cpp: the clipboard

// Without an owner, the clipboard is opened for a window of the adapter: if it is emptied without
// an owner, it accepts nothing afterwards.
BOOL DeviceOpenClipboard(HWND owner);

// ---------------------------------------------------------------- command_bar.cpp

inline constexpr int kCommandBarHeight = 26;  // pixels at 100 %, empty or with buttons

// Makes a toolbar at the top of the window.
HWND CommandBar_Create(HINSTANCE instance, HWND parent, int id);
BOOL CommandBar_Show(HWND bar, BOOL show);
int CommandBar_Height(HWND bar);
void CommandBar_Destroy(HWND bar);
// Adds the 16x16 pictures of a bitmap resource at the monitor's scale; above 100 % they are made
// from those of 32x32 pixels. Returns the index of the first, or -1.
int CommandBar_AddBitmap(HWND bar, HINSTANCE instance, int id, int count, int width, int height);
BOOL CommandBar_InsertButton(HWND bar, int index, const TBBUTTON* button);
// tips[i] belongs to the button at index i, which must already exist.
BOOL CommandBar_AddToolTips(HWND bar, UINT count, LPWSTR* tips);
void RescaleCommandBar(HWND bar);  // adapts its height and pictures to the present scale

// ---------------------------------------------------------------- command_bar.cpp: its pictures

int BarPictureSide();  // pixels
// Returns the pictures of a bitmap resource, side by side, with alpha; null if there are none.
HBITMAP LoadBarPictures(HINSTANCE instance, int id);

// ---------------------------------------------------------------- scale.cpp

// Dots per inch of the main window's monitor, or of the first one until there is a window: 96 at
// 100 %.
UINT DeviceDpi();
int DevicePixels(int plain);  // converts pixels at 100 % to the monitor's
UINT WindowDpi(HWND window);
// Extends a client area to the outer size with frame and menu.
BOOL FrameRect(RECT* rect, DWORD style, DWORD ex_style);
int DeviceGetSystemMetrics(int index);
// Sets the scale of the main window and adapts its bars and fonts; moves it to `place` unless that
// is null.
void ChangeScale(HWND window, UINT new_dpi, const RECT* place);

// ---------------------------------------------------------------- scale.cpp: fonts

// A pixel of the device's fonts is two pixels of the desktop at 100 %, so the 8-pixel font of a
// first start is as readable as on the device. When the monitor's scale changes, a font follows
// when it is next selected.
inline constexpr int kFontScale = 2;
HFONT DeviceCreateFontIndirect(const LOGFONTW* font);
HGDIOBJ DeviceSelectObject(HDC dc, HGDIOBJ object);
BOOL DeviceDeleteObject(HGDIOBJ object);

// ---------------------------------------------------------------- windows.cpp: messages

// Gets the next message for the message loop. A window of the program that the stylus touches gets
// its moves until it is lifted, even outside the window.
BOOL DeviceGetMessage(MSG* message, HWND window, UINT first, UINT last);

// ---------------------------------------------------------------- keyboard.cpp

// Each message of the loop goes through this. It makes F10 an ordinary key, and records whether the
// left Ctrl is held and whether a dead key waits.
void DeviceNoteKey(MSG* message);
// The character of a dead key, if it does not combine with the key after it, goes to the window
// before that key.
BOOL DeviceTranslateMessage(const MSG* message);
// A filter for WM_RASDIALEVENT also takes the states of a dial that are still in the queue.
BOOL DevicePeekMessage(MSG* message, HWND window, UINT first, UINT last, UINT remove);
// If a window does not handle F1 or F10, it gets WM_HELP, or its menu opens. The states of a dial,
// which the desktop sends as a registered message, arrive as WM_RASDIALEVENT.
LRESULT DeviceDefWindowProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
// Only the Lock keys have a toggled bit. On many layouts the right Alt is AltGr, and the desktop
// presses the left Ctrl together with it: that Ctrl counts as up, unless it is held down as well.
SHORT DeviceGetKeyState(int virtual_key);
// With KEYEVENTF_SILENT, the key counts as activity of the user, but no window gets it.
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
// There is no input panel. The visible desktop is the size of a device that has room for the whole
// terminal of a first start.
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
// The bar is the menu of the window `hwndParent`, below its title bar.
BOOL SHCreateMenuBar(SHMENUBARINFO* info);

// ---------------------------------------------------------------- shell.cpp: other programs

// Starts only one program: "PegHelp.exe" opens the desktop's viewer on the help page that the
// program contains. It returns no handles.
BOOL DeviceCreateProcess(LPCWSTR program, LPWSTR arguments, LPVOID process_security,
                         LPVOID thread_security, BOOL inherit, DWORD flags, LPVOID environment,
                         LPCWSTR folder, LPVOID start_up, PROCESS_INFORMATION* process);

// ---------------------------------------------------------------- dialogs.cpp

// True if WM_QUIT waits in the thread's queue.
bool ProgramEnds();
// Modal calls release the stylus. If the program ends meanwhile, they return IDCANCEL, or 0 from a
// dialog or a sheet; after that they show nothing.
int DeviceMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type);
INT_PTR DeviceDialogBox(HINSTANCE instance, LPCWSTR name, HWND owner, DLGPROC procedure,
                        LPARAM parameter);
INT_PTR DevicePropertySheet(LPCPROPSHEETHEADERW header);

// ---------------------------------------------------------------- session_end.cpp

// From now on the end of the desktop's session ends the program: the calling thread gets WM_QUIT,
// and the desktop waits until the program has ended. The user is not asked.
void WatchSessionEnd();
bool SessionEnds();  // [any thread]

// ---------------------------------------------------------------- dial_up.cpp

// The calls of remote access. Their library is loaded by the first of them; they return
// ERROR_MOD_NOT_FOUND if there is none.
DWORD DeviceRasEnumEntries(LPWSTR reserved, LPWSTR phone_book, RASENTRYNAMEW* entries, DWORD* size,
                           DWORD* count);
DWORD DeviceRasGetEntryDialParams(LPCWSTR phone_book, RASDIALPARAMSW* parameters,
                                  BOOL* has_password);
DWORD DeviceRasDial(RASDIALEXTENSIONS* extensions, LPCWSTR phone_book, RASDIALPARAMSW* parameters,
                    DWORD notifier_type, LPVOID notifier, HRASCONN* connection);
// Returns when the modem is free, after 3 seconds at most.
DWORD DeviceRasHangUp(HRASCONN connection);
// Ends the last dial, or the connection that it made, if the program has not done so.
void HangUpWhatIsLeft();

// ---------------------------------------------------------------- dialogs.cpp: choosing a colour

// The device's structure: `hInstance` is the module of the template.
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
// From now on, libraries that the system itself loads come only from its own folder, not from the
// program's or the current one.
void KeepToSystemLibraries();

// The device's "COMMDLG.DLL" is the desktop's comdlg32.dll.
HMODULE DeviceLoadLibrary(LPCWSTR name);
// For a call that exists in a narrow and a wide form, returns the wide one.
FARPROC GetProcAddressW(HMODULE library, LPCWSTR name);

#endif

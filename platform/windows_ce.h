// SPDX-License-Identifier: MIT
// The subset of the Windows CE API that the program is written against: every type, constant and
// function that the program or one of its tests uses, with its real name and value, and nothing
// else.
//
// On Windows, platform/win32/windows_ce.h takes this file's place and includes the system's own
// headers. Everywhere else platform/qt implements these declarations. Shapes, ranges and results
// are those of the real calls. Where this slice of the API does less, the declaration says so;
// docs/platform.md lists the state of each call. All calls belong to the thread that owns the
// windows unless marked [any thread].
#ifndef QUILL_PLATFORM_WINDOWS_CE_H
#define QUILL_PLATFORM_WINDOWS_CE_H

#include <sys/select.h>  // before WinSock's names redefine its fd_set and select

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// ---------------------------------------------------------------- types

typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int BOOL;
typedef int INT;
typedef unsigned int UINT;
typedef int32_t LONG;
typedef char16_t WCHAR;
typedef WCHAR* LPWSTR;
typedef const WCHAR* LPCWSTR;
typedef const char* LPCSTR;
typedef char* LPSTR;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef uintptr_t UINT_PTR;
typedef intptr_t INT_PTR;
typedef intptr_t LONG_PTR;
typedef uintptr_t DWORD_PTR;
typedef UINT_PTR WPARAM;
typedef LONG_PTR LPARAM;
typedef LONG_PTR LRESULT;
typedef WORD ATOM;
typedef DWORD COLORREF;  // 0x00BBGGRR

typedef struct SliceWindow* HWND;
typedef struct SliceMenu* HMENU;
typedef struct SliceModule* HINSTANCE;
typedef HINSTANCE HMODULE;
typedef struct SliceAccelerators* HACCEL;
typedef struct SliceDeviceContext* HDC;
typedef struct SliceGdiObject* HGDIOBJ;
typedef HGDIOBJ HBRUSH;
typedef HGDIOBJ HPEN;
typedef HGDIOBJ HFONT;
typedef struct SliceIcon* HICON;
typedef HICON HCURSOR;
typedef struct SliceKey* HKEY;
typedef struct SliceHandle* HANDLE;

#define TEXT(quote) u##quote
#define CALLBACK
#define WINAPI
#define TRUE 1
#define FALSE 0
#define LOWORD(l) (static_cast<WORD>(static_cast<DWORD_PTR>(l) & 0xffff))
#define HIWORD(l) (static_cast<WORD>((static_cast<DWORD_PTR>(l) >> 16) & 0xffff))
#define MAKELONG(a, b) \
    (static_cast<LONG>(static_cast<WORD>(a) | (static_cast<DWORD>(static_cast<WORD>(b)) << 16)))
#define MAKEWPARAM(l, h) (static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(l, h))))
#define MAKELPARAM(l, h) (static_cast<LPARAM>(static_cast<DWORD>(MAKELONG(l, h))))
#define MAKEINTRESOURCE(i) (reinterpret_cast<LPCWSTR>(static_cast<UINT_PTR>(static_cast<WORD>(i))))
#define RGB(r, g, b)                                                            \
    (static_cast<COLORREF>(static_cast<BYTE>(r) | (static_cast<BYTE>(g) << 8) | \
                           (static_cast<DWORD>(static_cast<BYTE>(b)) << 16)))

struct POINT {
    LONG x, y;
};
struct SIZE {
    LONG cx, cy;
};
struct RECT {
    LONG left, top, right, bottom;
};

// ---------------------------------------------------------------- the program's entry

// The program defines it; the host calls it once on the window thread.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPWSTR command_line, int show);

// ---------------------------------------------------------------- windows

typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);

struct WNDCLASSW {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
};

struct CREATESTRUCTW {
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy, cx, y, x;
    LONG style;
    LPCWSTR lpszName;
    LPCWSTR lpszClass;
    DWORD dwExStyle;
};

#define CS_DBLCLKS 0x0008u
#define CW_USEDEFAULT (static_cast<int>(0x80000000))
#define WS_CHILD 0x40000000u
#define WS_VISIBLE 0x10000000u
#define WS_VSCROLL 0x00200000u
#define WS_HSCROLL 0x00100000u
#define WS_DISABLED 0x08000000u
#define WS_GROUP 0x00020000u
#define WS_TABSTOP 0x00010000u
#define SW_HIDE 0
#define SW_SHOW 5
#define STATUSCLASSNAME TEXT("msctls_statusbar32")  // the common controls' status window

ATOM RegisterClassW(const WNDCLASSW* window_class);
// Child windows pass their id in `menu`. Sends WM_CREATE; if that returns -1, the window is
// destroyed.
HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x, int y,
                     int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                     LPVOID parameter);
BOOL DestroyWindow(HWND window);
BOOL IsWindow(HWND window);
BOOL IsWindowVisible(HWND window);
BOOL ShowWindow(HWND window, int show);
BOOL UpdateWindow(HWND window);
BOOL EnableWindow(HWND window, BOOL enable);
BOOL IsWindowEnabled(HWND window);
BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
#define SWP_NOSIZE 0x0001u
#define SWP_NOMOVE 0x0002u
#define SWP_NOZORDER 0x0004u
#define SWP_NOACTIVATE 0x0010u
// Does not change the order of windows: pass SWP_NOZORDER and SWP_NOACTIVATE.
BOOL SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags);
BOOL GetClientRect(HWND window, RECT* rect);
BOOL GetWindowRect(HWND window, RECT* rect);  // in coordinates of the device's screen
BOOL ClientToScreen(HWND window, POINT* point);
BOOL ScreenToClient(HWND window, POINT* point);
BOOL SetWindowTextW(HWND window, LPCWSTR text);
int GetWindowTextW(HWND window, LPWSTR text, int size);
HWND GetDlgItem(HWND parent, int id);  // any child window by its id
HWND GetParent(HWND window);           // of a dialog: its owner
HWND SetFocus(HWND window);
HWND GetFocus();
HWND GetActiveWindow();
BOOL SetForegroundWindow(HWND window);
// Finds a top-level window by its class, in this program or in another one that runs on the same
// device root. The other program's window accepts SetForegroundWindow, ShowWindow and
// SendMessageW(WM_PAINT).
HWND FindWindowW(LPCWSTR class_name, LPCWSTR title);
BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase);

struct SCROLLINFO {
    UINT cbSize;
    UINT fMask;
    int nMin, nMax;
    UINT nPage;
    int nPos;
    int nTrackPos;
};
#define SB_HORZ 0
#define SB_VERT 1
#define SB_LINEUP 0
#define SB_LINEDOWN 1
#define SB_PAGEUP 2
#define SB_PAGEDOWN 3
#define SB_THUMBPOSITION 4
#define SB_THUMBTRACK 5
#define SB_ENDSCROLL 8
#define SIF_RANGE 0x0001u
#define SIF_PAGE 0x0002u
#define SIF_POS 0x0004u
// A bar whose page covers the whole range is hidden; the client area grows by its room.
int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw);
BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info);

#define SM_CXSCREEN 0
#define SM_CYSCREEN 1
#define SM_CXVSCROLL 2
#define SM_CYHSCROLL 3
int GetSystemMetrics(int index);

// ---------------------------------------------------------------- messages

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};

#define WM_CREATE 0x0001u
#define WM_DESTROY 0x0002u
#define WM_SIZE 0x0005u
#define WM_SETTEXT 0x000Cu
#define WM_GETTEXT 0x000Du
#define WM_GETTEXTLENGTH 0x000Eu
#define WM_PAINT 0x000Fu
#define WM_CLOSE 0x0010u
#define WM_QUIT 0x0012u
#define WM_ERASEBKGND 0x0014u
#define WM_SETTINGCHANGE 0x001Au
#define WM_NOTIFY 0x004Eu
#define WM_HELP 0x0053u
#define WM_KEYDOWN 0x0100u
#define WM_KEYUP 0x0101u
#define WM_CHAR 0x0102u
#define WM_SYSKEYDOWN 0x0104u
#define WM_SYSKEYUP 0x0105u
#define WM_SYSCHAR 0x0106u
#define WM_INITDIALOG 0x0110u
#define WM_COMMAND 0x0111u
#define WM_TIMER 0x0113u
#define WM_HSCROLL 0x0114u
#define WM_VSCROLL 0x0115u
#define WM_MOUSEMOVE 0x0200u
#define WM_LBUTTONDOWN 0x0201u
#define WM_LBUTTONUP 0x0202u
#define WM_LBUTTONDBLCLK 0x0203u
#define MK_LBUTTON 0x0001u  // in wParam of WM_MOUSEMOVE; the slice sends no move without it
#define WM_USER 0x0400u
#define WM_APP 0x8000u
#define WM_RASDIALEVENT 0xCCCDu
#define PM_REMOVE 0x0001u
#define SIZE_RESTORED 0
#define SIZE_MINIMIZED 1

BOOL GetMessageW(MSG* message, HWND window, UINT first, UINT last);
BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT remove);
BOOL TranslateMessage(const MSG* message);
LRESULT DispatchMessageW(const MSG* message);
LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
BOOL PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);  // [any thread]
void PostQuitMessage(int exit_code);

typedef void(CALLBACK* TIMERPROC)(HWND, UINT, UINT_PTR, DWORD);
UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure);
BOOL KillTimer(HWND window, UINT_PTR id);

HACCEL LoadAcceleratorsW(HINSTANCE instance, LPCWSTR table);
int TranslateAcceleratorW(HWND window, HACCEL table, MSG* message);

// ---------------------------------------------------------------- keys

#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_RETURN 0x0D
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_CAPITAL 0x14
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_PRIOR 0x21
#define VK_NEXT 0x22
#define VK_END 0x23
#define VK_HOME 0x24
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_INSERT 0x2D
#define VK_DELETE 0x2E
#define VK_NUMPAD0 0x60
#define VK_MULTIPLY 0x6A
#define VK_ADD 0x6B
#define VK_SUBTRACT 0x6D
#define VK_DECIMAL 0x6E
#define VK_DIVIDE 0x6F
#define VK_F1 0x70
#define VK_F10 0x79
#define VK_F20 0x83
#define VK_F24 0x87
#define VK_LSHIFT 0xA0
#define VK_RSHIFT 0xA1
#define VK_LCONTROL 0xA2
#define VK_RCONTROL 0xA3
#define VK_LMENU 0xA4
#define VK_RMENU 0xA5
#define VK_OEM_PLUS 0xBB
#define VK_OEM_MINUS 0xBD
#define KEYEVENTF_KEYUP 0x0002u
#define KEYEVENTF_SILENT 0x0004u
typedef int16_t SHORT;
SHORT GetKeyState(int virtual_key);  // bit 15: down, bit 0: toggled
// Sends a synthetic key. With KEYEVENTF_SILENT the key only counts as activity of the user.
void keybd_event(BYTE virtual_key, BYTE scan_code, DWORD flags, DWORD_PTR extra);

// ---------------------------------------------------------------- GDI

struct PAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
};

#define LF_FACESIZE 32
struct LOGFONTW {
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    WCHAR lfFaceName[LF_FACESIZE];
};

struct TEXTMETRICW {
    LONG tmHeight;
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    BYTE tmPitchAndFamily;  // TMPF_FIXED_PITCH set means a variable pitch
};
#define TMPF_FIXED_PITCH 0x01
#define DEFAULT_CHARSET 1
#define FW_NORMAL 400
#define FW_BOLD 700
#define FIXED_PITCH 0x01
#define WHITE_BRUSH 0
#define PS_SOLID 0
#define OPAQUE 2
#define TRANSPARENT 1
#define ETO_OPAQUE 0x0002u
#define ETO_CLIPPED 0x0004u
#define DT_NOPREFIX 0x0800u
#define DT_SINGLELINE 0x0020u
#define DT_CALCRECT 0x0400u
#define HORZRES 8
#define VERTRES 10

HDC BeginPaint(HWND window, PAINTSTRUCT* paint);  // sends WM_ERASEBKGND when an erase is due
BOOL EndPaint(HWND window, const PAINTSTRUCT* paint);
HDC GetDC(HWND window);  // for measuring; null gives the screen
int ReleaseDC(HWND window, HDC dc);
HGDIOBJ GetStockObject(int index);
HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
BOOL DeleteObject(HGDIOBJ object);
HFONT CreateFontIndirectW(const LOGFONTW* font);  // a positive height is that of the whole cell
HBRUSH CreateSolidBrush(COLORREF color);
HPEN CreatePen(int style, int width, COLORREF color);
COLORREF SetTextColor(HDC dc, COLORREF color);
COLORREF SetBkColor(HDC dc, COLORREF color);
int SetBkMode(HDC dc, int mode);
int FillRect(HDC dc, const RECT* rect, HBRUSH brush);
// `advances` holds a width for each character: each glyph is drawn at the sum of the widths before
// it, whatever the font's own widths are.
BOOL ExtTextOutW(HDC dc, int x, int y, UINT options, const RECT* rect, LPCWSTR text, UINT count,
                 const INT* advances);
int DrawTextW(HDC dc, LPCWSTR text, int count, RECT* rect, UINT format);  // only DT_CALCRECT
BOOL Polyline(HDC dc, const POINT* points, int count);  // the last point itself is not drawn
BOOL GetTextMetricsW(HDC dc, TEXTMETRICW* metrics);
int GetDeviceCaps(HDC dc, int index);  // HORZRES, VERTRES

typedef int(CALLBACK* FONTENUMPROCW)(const LOGFONTW*, const TEXTMETRICW*, DWORD type, LPARAM);
// Enumerates every fixed-pitch family, the desktop's own monospace font first. Stops when the
// procedure returns 0.
int EnumFontFamiliesW(HDC dc, LPCWSTR family, FONTENUMPROCW procedure, LPARAM parameter);

// ---------------------------------------------------------------- memory and clipboard

typedef HANDLE HLOCAL;
#define LMEM_MOVEABLE 0x0002u
HLOCAL LocalAlloc(UINT flags, size_t bytes);  // null if there is no memory
LPVOID LocalLock(HLOCAL block);
BOOL LocalUnlock(HLOCAL block);
size_t LocalSize(HLOCAL block);  // 0 if `block` is not a block
HLOCAL LocalFree(HLOCAL block);  // returns null after it has freed the block

// The desktop's clipboard, for text only. Lines end with CR LF here, as CF_UNICODETEXT requires,
// and with LF for the desktop's other programs. If the program that owns the clipboard does not
// answer, a read takes seconds and then returns nothing.
#define CF_UNICODETEXT 13u
BOOL OpenClipboard(HWND owner);  // FALSE while it is already open
BOOL CloseClipboard();
BOOL EmptyClipboard();
HANDLE SetClipboardData(UINT format, HANDLE block);  // takes ownership of the block
HANDLE GetClipboardData(UINT format);  // the clipboard's own block, valid until CloseClipboard

// ---------------------------------------------------------------- message boxes and sound

#define MB_OK 0x0000u
#define MB_OKCANCEL 0x0001u
#define MB_ICONERROR 0x0010u
#define MB_ICONQUESTION 0x0020u
#define MB_ICONEXCLAMATION 0x0030u
#define MB_ICONASTERISK 0x0040u
#define MB_ICONINFORMATION MB_ICONASTERISK
#define IDOK 1
#define IDCANCEL 2
int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type);
BOOL MessageBeep(UINT type);

// ---------------------------------------------------------------- dialogs

typedef INT_PTR(CALLBACK* DLGPROC)(HWND, UINT, WPARAM, LPARAM);

// Shows the dialog of a template (DIALOG or DIALOGEX) over its owner until EndDialog, and returns
// the result that EndDialog gets. Returns -1 if the template is missing or damaged, or if the owner
// is not a window; 0 if the program ends meanwhile. The owner gets no input; posted messages and
// timers of every window are still dispatched. If the owner is a child, its top-level window is
// used. A dialog without WS_VISIBLE is shown only after the messages that are already posted.
//
// The procedure returns TRUE for a message that it has handled. If it does not handle WM_CLOSE,
// that becomes WM_COMMAND with IDCANCEL. Esc sends IDCANCEL; Enter presses the default button, or
// sends IDOK. TRUE from WM_INITDIALOG (`lparam` is the parameter) puts the focus on the first
// control with WS_TABSTOP. A dialog is never larger than the device's screen: it scrolls what does
// not fit.
INT_PTR DialogBoxParamW(HINSTANCE instance, LPCWSTR name, HWND owner, DLGPROC procedure,
                        LPARAM parameter);
BOOL EndDialog(HWND dialog, INT_PTR result);  // takes effect when the procedure has returned
BOOL MapDialogRect(HWND dialog, RECT* rect);  // dialog units to pixels

#define DWLP_MSGRESULT 0  // the result of the current message, used if the procedure returns TRUE
#define DWLP_USER 16      // free for the program's use
// Reads and writes these two values of a dialog or page. A value is as wide as a pointer, which on
// the device is a LONG; there, too, the names with "Ptr" are macros.
LONG_PTR SetWindowLongW(HWND dialog, int index, LONG_PTR value);
LONG_PTR GetWindowLongW(HWND dialog, int index);
#define SetWindowLongPtrW SetWindowLongW
#define GetWindowLongPtrW GetWindowLongW

int GetDlgCtrlID(HWND control);
BOOL SetDlgItemTextW(HWND dialog, int id, LPCWSTR text);
UINT GetDlgItemTextW(HWND dialog, int id, LPWSTR text, int size);
BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL is_signed);
// Returns 0, with FALSE in *translated, if the text is not a number or does not fit in 32 bits.
UINT GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL is_signed);
LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam);
BOOL CheckDlgButton(HWND dialog, int id, UINT check);
UINT IsDlgButtonChecked(HWND dialog, int id);
BOOL CheckRadioButton(HWND dialog, int first, int last, int checked);  // clears the others

#define DS_ABSALIGN 0x0001u
#define DS_SETFONT 0x0040u
#define DS_CENTER 0x0800u

// ---------------------------------------------------------------- controls of dialogs

// Each control notifies its dialog by WM_COMMAND with MAKEWPARAM(id, code) and the control's
// handle. Changes that the program makes itself are not notified, except by EN_CHANGE. All texts
// are UTF-16.

// Buttons. The plain kinds only notify; the automatic kinds change their mark first.
#define BS_PUSHBUTTON 0x0000u
#define BS_DEFPUSHBUTTON 0x0001u
#define BS_CHECKBOX 0x0002u
#define BS_AUTOCHECKBOX 0x0003u
#define BS_RADIOBUTTON 0x0004u
#define BS_GROUPBOX 0x0007u
#define BS_AUTORADIOBUTTON 0x0009u  // clears the others up to the next WS_GROUP
#define BST_UNCHECKED 0x0000
#define BST_CHECKED 0x0001
#define BN_CLICKED 0
#define BM_GETCHECK 0x00F0u
#define BM_SETCHECK 0x00F1u
#define BM_CLICK 0x00F5u  // acts like a click of the user

// Static texts. "&" marks the letter that moves the focus to the next control, unless SS_NOPREFIX
// is set.
#define SS_CENTER 0x0001u
#define SS_RIGHT 0x0002u
#define SS_NOPREFIX 0x0080u

// Edits with one line.
#define ES_CENTER 0x0001u
#define ES_RIGHT 0x0002u
#define ES_PASSWORD 0x0020u
#define ES_AUTOHSCROLL 0x0080u  // the slice scrolls every edit
#define ES_READONLY 0x0800u
#define ES_NUMBER 0x2000u  // the user can type only digits
#define EN_CHANGE 0x0300
#define EM_GETSEL 0x00B0u
#define EM_SETSEL 0x00B1u
#define EM_REPLACESEL 0x00C2u
#define EM_LIMITTEXT 0x00C5u  // units that the user can type; 0: no limit

// List boxes with single selection.
#define LBS_NOTIFY 0x0001u
#define LBS_SORT 0x0002u
#define LBS_NOINTEGRALHEIGHT 0x0100u
#define LB_ERR (-1)
#define LBN_SELCHANGE 1
#define LBN_DBLCLK 2
#define LB_ADDSTRING 0x0180u
#define LB_INSERTSTRING 0x0181u  // at a row, never sorted; -1: at the end
#define LB_DELETESTRING 0x0182u  // returns the number of rows that are left
#define LB_RESETCONTENT 0x0184u
#define LB_SETCURSEL 0x0186u
#define LB_GETCURSEL 0x0188u
#define LB_GETTEXT 0x0189u
#define LB_GETTEXTLEN 0x018Au
#define LB_GETCOUNT 0x018Bu
#define LB_SELECTSTRING 0x018Cu  // by its first characters, ignoring case, after row `wparam`
#define LB_GETTOPINDEX 0x018Eu
#define LB_SETHORIZONTALEXTENT 0x0194u  // in pixels; until it is set, WS_HSCROLL has no effect
#define LB_SETTOPINDEX 0x0197u
#define LB_GETITEMDATA 0x0199u
#define LB_SETITEMDATA 0x019Au
#define LB_FINDSTRINGEXACT 0x01A2u  // ignoring case

// Combo boxes.
#define CBS_DROPDOWN 0x0002u  // with an edit
#define CBS_DROPDOWNLIST 0x0003u
#define CBS_AUTOHSCROLL 0x0040u
#define CBS_SORT 0x0100u
#define CB_ERR (-1)
#define CBN_SELCHANGE 1
#define CBN_EDITCHANGE 5
#define CB_LIMITTEXT 0x0141u
#define CB_SETEDITSEL 0x0142u
#define CB_ADDSTRING 0x0143u
#define CB_DELETESTRING 0x0144u
#define CB_GETCOUNT 0x0146u
#define CB_GETCURSEL 0x0147u
#define CB_GETLBTEXT 0x0148u
#define CB_GETLBTEXTLEN 0x0149u
#define CB_INSERTSTRING 0x014Au
#define CB_RESETCONTENT 0x014Bu
#define CB_SELECTSTRING 0x014Du
#define CB_SETCURSEL 0x014Eu
#define CB_GETITEMDATA 0x0150u
#define CB_SETITEMDATA 0x0151u
#define CB_FINDSTRINGEXACT 0x0158u

// ---------------------------------------------------------------- property sheets

struct NMHDR {
    HWND hwndFrom;
    UINT_PTR idFrom;
    UINT code;
};
struct PSHNOTIFY {
    NMHDR hdr;
    LPARAM lParam;
};

// WM_NOTIFY that the sheet (GetParent of the page) sends to a page. The page answers by
// DWLP_MSGRESULT.
#define PSN_FIRST (0U - 200U)
#define PSN_SETACTIVE (PSN_FIRST - 0)
#define PSN_KILLACTIVE (PSN_FIRST - 1)   // TRUE: the page stays. Also sent before PSN_APPLY
#define PSN_APPLY (PSN_FIRST - 2)        // after OK, to every page that has been shown
#define PSN_RESET (PSN_FIRST - 3)        // after Cancel, to the same pages
#define PSN_QUERYCANCEL (PSN_FIRST - 9)  // TRUE: the sheet stays
#define PSNRET_NOERROR 0
#define PSNRET_INVALID 1  // the sheet stays open and shows this page

struct PROPSHEETPAGEW {
    DWORD dwSize;
    DWORD dwFlags;
    HINSTANCE hInstance;
    union {
        LPCWSTR pszTemplate;
        const void* pResource;
    };
    union {
        HICON hIcon;
        LPCWSTR pszIcon;
    };
    LPCWSTR pszTitle;
    DLGPROC pfnDlgProc;
    LPARAM lParam;
    void* pfnCallback;
    UINT* pcRefParent;
};
typedef const PROPSHEETPAGEW* LPCPROPSHEETPAGEW;
#define PSP_USETITLE 0x0008u  // the tab shows pszTitle

struct PROPSHEETHEADERW {
    DWORD dwSize;
    DWORD dwFlags;
    HWND hwndParent;
    HINSTANCE hInstance;
    union {
        HICON hIcon;
        LPCWSTR pszIcon;
    };
    LPCWSTR pszCaption;
    UINT nPages;
    union {
        UINT nStartPage;
        LPCWSTR pStartPage;
    };
    union {
        LPCPROPSHEETPAGEW ppsp;
        void* phpage;
    };
    void* pfnCallback;
};
typedef const PROPSHEETHEADERW* LPCPROPSHEETHEADERW;
#define PSH_PROPSHEETPAGE 0x0008u  // required: ppsp points to the pages
#define PSH_NOAPPLYNOW 0x0080u     // required: there is no Apply button

// Shows a modal sheet. Each page is made when it is first shown; `lparam` of its WM_INITDIALOG is
// its PROPSHEETPAGEW. Returns 1 after OK, 0 after Cancel, -1 if the sheet cannot be shown.
INT_PTR PropertySheetW(LPCPROPSHEETHEADERW header);

#define PSM_SETCURSEL (WM_USER + 101)  // by index; sends PSN_KILLACTIVE and PSN_SETACTIVE
#define PSM_PRESSBUTTON (WM_USER + 113)
#define PSM_GETCURRENTPAGEHWND (WM_USER + 118)
#define PSBTN_OK 3
#define PSBTN_CANCEL 5

// ---------------------------------------------------------------- common dialogs

// Looked up at run time as "ChooseColor" in "COMMDLG.DLL". Returns FALSE after Cancel, and if the
// template that CC_ENABLETEMPLATE names is missing. The slice shows the desktop's own colour
// chooser in place of that template.
struct CHOOSECOLORW {
    DWORD lStructSize;
    HWND hwndOwner;
    HINSTANCE hInstance;  // the module that has the template
    COLORREF rgbResult;
    COLORREF* lpCustColors;  // 16 colours, read and written
    DWORD Flags;
    LPARAM lCustData;
    void* lpfnHook;
    LPCWSTR lpTemplateName;
};
#define CC_RGBINIT 0x00000001u  // rgbResult is the colour that is selected first
#define CC_FULLOPEN 0x00000002u
#define CC_ENABLETEMPLATE 0x00000020u
#define CC_ANYCOLOR 0x00000100u

// ---------------------------------------------------------------- shell and common controls

struct SIPINFO {
    DWORD cbSize;
    DWORD fdwFlags;
    RECT rcVisibleDesktop;
    RECT rcSipRect;
    DWORD dwImDataSize;
    LPVOID pvImData;
};
#define SPI_SETSIPINFO 224
#define SPI_GETSIPINFO 225
#define SIPF_ON 0x00000001u
BOOL SHSipInfo(UINT action, UINT parameter, LPVOID info, UINT flags);

struct TBBUTTON {
    int iBitmap;    // the picture's index, from CommandBar_AddBitmap
    int idCommand;  // a press sends it as WM_COMMAND to the bar's parent
    BYTE fsState;
    BYTE fsStyle;
    BYTE bReserved[sizeof(void*) - 2];
    DWORD_PTR dwData;
    INT_PTR iString;  // -1: no text beside the picture
};
#define TBSTATE_ENABLED 0x04
#define TBSTYLE_BUTTON 0x00
// Makes the menu bar at the bottom of the screen from the menu resource `nToolBarId`. Its entries
// send WM_COMMAND to hwndParent. The bar is a window; DestroyWindow removes it.
struct SHMENUBARINFO {
    DWORD cbSize;
    HWND hwndParent;
    DWORD dwFlags;  // SHCMBF_HMENU
    UINT nToolBarId;
    HINSTANCE hInstRes;
    int nBmpId;
    int cBmpImages;
    HWND hwndMB;  // out: the bar
    COLORREF clrBk;
};
#define SHCMBF_HMENU 0x0010u
BOOL SHCreateMenuBar(SHMENUBARINFO* info);

// Registers the classes of the status window and the command bar.
void InitCommonControls();

HWND CommandBar_Create(HINSTANCE instance, HWND parent, int id);
BOOL CommandBar_Show(HWND bar, BOOL show);
int CommandBar_Height(HWND bar);
void CommandBar_Destroy(HWND bar);
// Adds `count` pictures of 16x16 pixels, which lie side by side in one bitmap resource. Returns the
// index of the first, or -1. Black, dark grey (0x808080) and white are replaced by the colours of
// the desktop's buttons, light grey (0xC0C0C0) by the colour of the bar. If a bitmap `id` + 10000
// exists, it holds the same pictures at 32x32 for screens with more pixels.
int CommandBar_AddBitmap(HWND bar, HINSTANCE instance, int id, int count, int width, int height);
BOOL CommandBar_InsertButton(HWND bar, int index, const TBBUTTON* button);
// tips[i] is the tool tip of the button at index i, and its name for screen readers. The caller
// keeps the texts and the array, which must live as long as the bar.
BOOL CommandBar_AddToolTips(HWND bar, UINT count, LPWSTR* tips);

// ---------------------------------------------------------------- other programs

struct PROCESS_INFORMATION {
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
};
// Starts only one program: "PegHelp.exe" with a page's name opens the desktop's viewer on the
// program's help page. It returns no handles.
BOOL CreateProcessW(LPCWSTR program, LPWSTR arguments, LPVOID process_security,
                    LPVOID thread_security, BOOL inherit, DWORD flags, LPVOID environment,
                    LPCWSTR folder, LPVOID start_up, PROCESS_INFORMATION* process);

// ---------------------------------------------------------------- libraries

HMODULE LoadLibraryW(LPCWSTR name);
typedef INT_PTR (*FARPROC)();  // cast through void (*)(), which compilers accept for any procedure
FARPROC GetProcAddressW(HMODULE library, LPCWSTR name);
BOOL FreeLibrary(HMODULE library);

// ---------------------------------------------------------------- registry

#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<UINT_PTR>(0x80000002u)))
#define REG_SZ 1u
#define REG_DWORD 4u
#define REG_OPTION_NON_VOLATILE 0u
#define KEY_QUERY_VALUE 0x0001u
#define KEY_SET_VALUE 0x0002u
#define ERROR_SUCCESS 0
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_ACCESS_DENIED 5
#define ERROR_INVALID_HANDLE 6
#define ERROR_INVALID_PARAMETER 87
#define ERROR_BUFFER_TOO_SMALL 603
#define ERROR_MORE_DATA 234

LONG RegOpenKeyExW(HKEY key, LPCWSTR sub_key, DWORD options, DWORD access, HKEY* result);
LONG RegCreateKeyExW(HKEY key, LPCWSTR sub_key, DWORD reserved, LPWSTR class_name, DWORD options,
                     DWORD access, LPVOID security, HKEY* result, DWORD* disposition);
LONG RegQueryValueExW(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size);
LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size);
LONG RegDeleteValueW(HKEY key, LPCWSTR name);
LONG RegFlushKey(HKEY key);
LONG RegCloseKey(HKEY key);

// ---------------------------------------------------------------- sockets (WinSock 1.1)

typedef UINT_PTR SOCKET;  // a run never uses the same value twice
#define INVALID_SOCKET (static_cast<SOCKET>(~static_cast<SOCKET>(0)))
#define SOCKET_ERROR (-1)
#undef AF_INET
#define AF_INET 2
#undef SOCK_STREAM
#define SOCK_STREAM 1
#define SD_BOTH 2
#define FIONBIO 0x8004667Eu
#undef INADDR_NONE
#define INADDR_NONE 0xFFFFFFFFu
#define WSAEWOULDBLOCK 10035
#define WSAENOTSOCK 10038
#define WSAEHOSTUNREACH 10065
#define MAKEWORD(low, high) \
    (static_cast<WORD>(static_cast<BYTE>(low) | (static_cast<WORD>(static_cast<BYTE>(high)) << 8)))

typedef unsigned long u_long;  // of ioctlsocket; many hosts define the same
struct WSADATA {
    WORD wVersion;
    WORD wHighVersion;
};
struct IN_ADDR {
    uint32_t s_addr;  // network byte order
};
struct SOCKADDR_IN {
    int16_t sin_family;
    uint16_t sin_port;  // network byte order
    IN_ADDR sin_addr;
    char sin_zero[8];
};
struct SOCKADDR {
    uint16_t sa_family;
    char sa_data[14];
};
struct HOSTENT {
    char* h_name;
    char** h_aliases;
    int16_t h_addrtype;
    int16_t h_length;
    char** h_addr_list;
};
typedef struct timeval TIMEVAL;
struct SliceSocketSet {
    UINT fd_count;
    SOCKET fd_array[64];
};

// Some WinSock names are also names of the host's own socket calls. Where the parameters differ,
// these are overloads. Where they do not, the name is a macro with arguments, which does not touch
// fields of the same name.
int SliceStartup(WORD version, WSADATA* data);
int SliceCleanup();
int SliceLastError();  // [any thread] the calling thread's error
SOCKET SliceSocket(int family, int type, int protocol);
int SliceIoctl(SOCKET socket, unsigned command, u_long* argument);
int SliceConnect(SOCKET socket, const SOCKADDR* address, int size);
int SliceSelect(int ignored, SliceSocketSet* read, SliceSocketSet* write, SliceSocketSet* except,
                const TIMEVAL* timeout);                            // [any thread]
int SliceReceive(SOCKET socket, char* bytes, int size, int flags);  // [any thread]
int SliceSend(SOCKET socket, const char* bytes, int size, int flags);
int SliceShutdown(SOCKET socket, int how);
int SliceCloseSocket(SOCKET socket);
HOSTENT* SliceHostByName(const char* name);
uint32_t SliceDottedAddress(const char* text);
uint16_t SliceNetworkShort(uint16_t value);

#undef FD_ZERO
#undef FD_SET
#undef FD_ISSET
#define fd_set SliceSocketSet
#define FD_ZERO(set) ((set)->fd_count = 0)
#define FD_SET(s, set)                                                      \
    do {                                                                    \
        if ((set)->fd_count < 64) (set)->fd_array[(set)->fd_count++] = (s); \
    } while (0)
inline int SliceSetHolds(const SliceSocketSet* set, SOCKET socket) {
    for (UINT i = 0; i < set->fd_count; ++i)
        if (set->fd_array[i] == socket) return 1;
    return 0;
}
#define FD_ISSET(s, set) SliceSetHolds(set, s)
#define WSAStartup(version, data) SliceStartup(version, data)
#define WSACleanup() SliceCleanup()
#define WSAGetLastError() SliceLastError()
#define socket(family, type, protocol) SliceSocket(family, type, protocol)
#define ioctlsocket(s, command, argument) SliceIoctl(s, command, argument)
#define closesocket(s) SliceCloseSocket(s)
inline int connect(SOCKET s, const SOCKADDR* address, int size) {
    return SliceConnect(s, address, size);
}
inline int select(int ignored, SliceSocketSet* read, SliceSocketSet* write, SliceSocketSet* except,
                  const TIMEVAL* timeout) {
    return SliceSelect(ignored, read, write, except, timeout);
}
inline int recv(SOCKET s, char* bytes, int size, int flags) {
    return SliceReceive(s, bytes, size, flags);
}
inline int send(SOCKET s, const char* bytes, int size, int flags) {
    return SliceSend(s, bytes, size, flags);
}
inline int shutdown(SOCKET s, int how) { return SliceShutdown(s, how); }
#define gethostbyname(name) SliceHostByName(name)
#define inet_addr(text) SliceDottedAddress(text)
#define htons(value) SliceNetworkShort(value)

// ---------------------------------------------------------------- remote access

typedef struct SliceDialUp* HRASCONN;
#define RAS_MaxEntryName 20
struct RASENTRYNAMEW {
    DWORD dwSize;
    WCHAR szEntryName[RAS_MaxEntryName + 1];
};
// The entries are the system's dial-up peers (/etc/ppp/peers); there are no entries if the program
// that dials them is missing. If they do not all fit, returns ERROR_BUFFER_TOO_SMALL and the needed
// size in *size.
DWORD RasEnumEntries(LPWSTR reserved, LPWSTR phone_book, RASENTRYNAMEW* entries, DWORD* size,
                     DWORD* count);

struct RASDIALPARAMSW {
    DWORD dwSize;
    WCHAR szEntryName[RAS_MaxEntryName + 1];
    WCHAR szPhoneNumber[129];
    WCHAR szCallbackNumber[49];
    WCHAR szUserName[257];
    WCHAR szPassword[257];
    WCHAR szDomain[16];
};
#define RASCS_OpenPort 0
#define RASCS_PortOpened 1
#define RASCS_ConnectDevice 2
#define RASCS_DeviceConnected 3
#define RASCS_AllDevicesConnected 4
#define RASCS_Authenticate 5
#define RASCS_AuthProject 10
#define RASCS_Authenticated 14
#define RASCS_Connected 0x2000
#define RASCS_Disconnected 0x2001
#define ERROR_CANNOT_FIND_PHONEBOOK_ENTRY 623
// Reads the stored parameters of the entry that `parameters` names. On the slice an entry does not
// reveal its number, user name and password: those fields come back empty.
DWORD RasGetEntryDialParams(LPCWSTR phone_book, RASDIALPARAMSW* parameters, BOOL* has_password);
// Dials the entry and returns at once. The only notifier type is 0xFFFFFFFF: the window `notifier`
// gets WM_RASDIALEVENT for each state that the dial reaches, with an error code in lParam if it
// fails. RASCS_Connected or RASCS_Disconnected is the last of them.
DWORD RasDial(LPVOID extensions, LPCWSTR phone_book, RASDIALPARAMSW* parameters,
              DWORD notifier_type, LPVOID notifier, HRASCONN* connection);
// Ends the dial, or the connection that it made. From then on the window gets at most
// RASCS_Disconnected without an error. Waits until the modem has hung up, at most 2 seconds; the
// next dial waits for one that takes longer.
DWORD RasHangUp(HRASCONN connection);

// ---------------------------------------------------------------- threads, events, time

typedef DWORD(WINAPI* LPTHREAD_START_ROUTINE)(LPVOID);
#define WAIT_OBJECT_0 0u
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xFFFFFFFFu
#define INFINITE 0xFFFFFFFFu
// All of these: [any thread].
HANDLE CreateThread(LPVOID security, DWORD stack, LPTHREAD_START_ROUTINE procedure, LPVOID argument,
                    DWORD flags, DWORD* id);
HANDLE CreateEventW(LPVOID security, BOOL manual_reset, BOOL signalled, LPCWSTR name);
BOOL SetEvent(HANDLE event);
BOOL ResetEvent(HANDLE event);
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
BOOL CloseHandle(HANDLE handle);
void Sleep(DWORD milliseconds);
DWORD GetTickCount();

struct SYSTEMTIME {
    WORD wYear, wMonth, wDayOfWeek, wDay, wHour, wMinute, wSecond, wMilliseconds;
};
void GetSystemTime(SYSTEMTIME* time);  // UTC

// ---------------------------------------------------------------- files

// Paths are the device's: each starts with a backslash, which is the device's root folder.
FILE* _wfopen(LPCWSTR path, LPCWSTR mode);
BOOL DeleteFileW(LPCWSTR path);

// ---------------------------------------------------------------- text

#define CP_ACP 0u  // the ANSI code page: 1252
int MultiByteToWideChar(UINT code_page, DWORD flags, LPCSTR bytes, int size, LPWSTR text,
                        int capacity);
int WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR text, int length, LPSTR bytes,
                        int capacity, LPCSTR fallback, BOOL* used_fallback);
// Knows %d %i %u %x %X %c %s (wide) %S (narrow) %%, with -, 0, width and precision. Writes at most
// 1023 characters and the terminator. Returns the number of characters without the terminator.
int wsprintfW(LPWSTR text, LPCWSTR format, ...);
int lstrlenW(LPCWSTR text);
LPWSTR lstrcpyW(LPWSTR to, LPCWSTR from);
int lstrcmpW(LPCWSTR a, LPCWSTR b);
int lstrcmpiW(LPCWSTR a, LPCWSTR b);

#endif

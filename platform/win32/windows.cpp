// SPDX-License-Identifier: MIT
// Windows: what they need on the desktop and the device's windows do not have. Then the source of
// the message loop: it changes messages to what the device would send, and keeps drags going
// outside the window.
#include "device.h"

#include <algorithm>
#include <set>

#include "resource_numbers.h"

constexpr DWORD kFrame = WS_OVERLAPPEDWINDOW;

// Returns the work area of the primary monitor.
static RECT WorkArea() {
    RECT area = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area;
}

static std::set<ATOM> program_classes;
static SIZE asked_for = {};  // client area that the main window was created with

// Returns the outer size around a client area and a menu, limited to the monitor's room.
static SIZE FramedSize(int width, int height, DWORD style, DWORD ex_style) {
    RECT frame = {0, 0, width, height};
    FrameRect(&frame, style, ex_style);
    const RECT area = WorkArea();
    return {std::min(frame.right - frame.left, area.right - area.left),
            std::min(frame.bottom - frame.top, area.bottom - area.top)};
}

static HICON ProgramIcon() {
    const HICON own = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_DESKTOP));
    return own ? own : LoadIconW(nullptr, MAKEINTRESOURCEW(32512));
}

ATOM DeviceRegisterClass(const WNDCLASSW* window_class) {
    if (!window_class) return 0;
    WNDCLASSW dressed = *window_class;
    if (!dressed.hCursor) dressed.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    if (!dressed.hIcon) dressed.hIcon = ProgramIcon();
    if (!dressed.hInstance) dressed.hInstance = GetModuleHandleW(nullptr);
    const ATOM atom = RegisterClassW(&dressed);
    if (atom) program_classes.insert(atom);
    return atom;
}

bool HasProgramClass(HWND window) {
    return program_classes.count(static_cast<ATOM>(GetClassLongW(window, GCW_ATOM))) != 0;
}

// Adapts a window that opened on a monitor whose scale differs from the system's: it gets the size
// that was asked for, in the pixels of that scale.
static void TakeMonitorsScale(HWND window, bool has_size, DWORD style, DWORD ex_style) {
    const int before = static_cast<int>(DeviceDpi()), now = static_cast<int>(WindowDpi(window));
    if (now == before) return;
    ChangeScale(window, WindowDpi(window), nullptr);
    if (!has_size) return;
    asked_for = {MulDiv(asked_for.cx, now, before), MulDiv(asked_for.cy, now, before)};
    const SIZE size = FramedSize(asked_for.cx, asked_for.cy, style, ex_style);
    SetWindowPos(window, nullptr, 0, 0, size.cx, size.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    MakeRoomForMenu(window);
}

HWND DeviceCreateWindow(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x,
                        int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                        LPVOID parameter) {
    style |= WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
    const bool top = !(style & (WS_CHILD | WS_POPUP));
    const bool has_size = top && width != CW_USEDEFAULT;
    if (has_size) {
        style |= kFrame;
        asked_for = {width, height};
        const SIZE size = FramedSize(width, height, style, ex_style);
        width = size.cx;
        height = size.cy;
    }
    const HWND window = CreateWindowExW(ex_style, class_name, title, style, x, y, width, height,
                                        parent, menu, instance, parameter);
    if (top && window) TakeMonitorsScale(window, has_size, style, ex_style);
    return window;
}

void MakeRoomForMenu(HWND window) {
    RECT client = {}, outer = {};
    GetClientRect(window, &client);
    GetWindowRect(window, &outer);
    const RECT area = WorkArea();
    const LONG missing = std::max<LONG>(0, asked_for.cy - client.bottom);
    const LONG height = std::min(outer.bottom - outer.top + missing, area.bottom - area.top);
    if (missing && height > outer.bottom - outer.top)
        SetWindowPos(window, nullptr, 0, 0, outer.right - outer.left, height,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

BOOL DeviceSetForegroundWindow(HWND window) {
    if (IsIconic(window)) ShowWindow(window, SW_RESTORE);
    return SetForegroundWindow(window);
}

// ---------------------------------------------------------------- messages

// Captures the stylus for the window that it touches, until it is lifted. The system's own controls
// do that themselves.
static void HoldStylus(const MSG& message) {
    const bool touched = message.message == WM_LBUTTONDOWN || message.message == WM_LBUTTONDBLCLK;
    if (touched && HasProgramClass(message.hwnd)) SetCapture(message.hwnd);
    if (message.message == WM_LBUTTONUP && GetCapture() == message.hwnd &&
        HasProgramClass(message.hwnd))
        ReleaseCapture();
}

BOOL DeviceGetMessage(MSG* message, HWND window, UINT first, UINT last) {
    const BOOL result = GetMessageW(message, window, first, last);
    if (result <= 0) return result;
    DeviceNoteKey(message);
    HoldStylus(*message);
    return result;
}

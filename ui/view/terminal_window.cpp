// SPDX-License-Identifier: MIT
// The terminal window (class "ClientWnd"): registering the class, its message table, and the
// handler of WM_CREATE.
#include "ui/view/view.h"

#include "session/session_state.h"
#include "settings/settings.h"
#include "ui/view/input.h"

constexpr int kNarrowScreen = 350;  // pixels; on narrower screens the status line is short

static DWORD ScreenIsNarrow(HWND window) {
    HDC dc = GetDC(window);
    int width = GetDeviceCaps(dc, HORZRES);
    ReleaseDC(window, dc);
    return width < kNarrowScreen ? 1 : 0;
}

// Sets session.client_window here, before CreateWindowExW returns it, because the status bar is
// created as a child of this window. ImportConfigFile runs before LoadSettings, so that the
// imported values are loaded.
static LRESULT OnCreate(HWND window, WPARAM, LPARAM) {
    session.client_window = window;
    session.narrow_screen = ScreenIsNarrow(window);
    ImportConfigFile(window);
    LoadSettings();
    RebuildStatusBar();
    ListFontFaces(window);
    UpdateStatus();
    return 0;
}

static LRESULT OnPaint(HWND window, WPARAM, LPARAM) {
    PaintTerminal(window);
    return 0;
}

// BeginPaint sends this message. Nothing is erased here, because the paint in progress fills the
// background.
static LRESULT OnEraseBackground(HWND, WPARAM, LPARAM) {
    session.view.full_repaint = 1;
    return 1;
}

static LRESULT OnStylusDown(HWND, WPARAM, LPARAM position) {
    StartSelection(position);
    return 0;
}

// A mouse also sends moves while no button is down; these are ignored.
static LRESULT OnStylusMove(HWND, WPARAM buttons, LPARAM position) {
    if (buttons & MK_LBUTTON) ExtendSelection(position);
    return 0;
}

static LRESULT OnDoubleTap(HWND, WPARAM, LPARAM position) {
    TapHotspot(position);
    return 0;
}

static LRESULT OnVerticalScroll(HWND, WPARAM wparam, LPARAM) {
    ScrollRows(LOWORD(wparam), HIWORD(wparam));
    return 0;
}

static LRESULT OnHorizontalScroll(HWND, WPARAM wparam, LPARAM) {
    ScrollColumns(LOWORD(wparam), HIWORD(wparam));
    return 0;
}

namespace {

struct MessageRow {
    UINT message;
    LRESULT (*handler)(HWND, WPARAM, LPARAM);
};

}  // namespace

// clang-format off
static const MessageRow kMessages[] = {
    {WM_CREATE,        OnCreate},
    {WM_PAINT,         OnPaint},
    {WM_ERASEBKGND,    OnEraseBackground},
    {WM_LBUTTONDOWN,   OnStylusDown},
    {WM_MOUSEMOVE,     OnStylusMove},
    {WM_LBUTTONDBLCLK, OnDoubleTap},
    {WM_VSCROLL,       OnVerticalScroll},
    {WM_HSCROLL,       OnHorizontalScroll},
};
// clang-format on

static LRESULT CALLBACK ClientWindowProcedure(HWND window, UINT message, WPARAM wparam,
                                              LPARAM lparam) {
    for (const MessageRow& row : kMessages) {
        if (row.message == message) return row.handler(window, wparam, lparam);
    }
    return DefWindowProcW(window, message, wparam, lparam);
}

BOOL RegisterClientWindow(HINSTANCE instance) {
    WNDCLASSW window_class = {};
    window_class.style = CS_DBLCLKS;
    window_class.lpfnWndProc = ClientWindowProcedure;
    window_class.hInstance = instance;
    window_class.lpszClassName = TEXT("ClientWnd");
    return RegisterClassW(&window_class) != 0;
}

// SPDX-License-Identifier: MIT
// The main window's message table and layout.
#include "ui/main_window.h"

#include "connection/connection.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "ui/view/input.h"
#include "ui/view/view.h"

static void MeasureCommandBar() {
    session.command_bar_height = session.command_bar ? CommandBar_Height(session.command_bar) : 0;
}

static void MakeCommandBar() {
    session.command_bar = CommandBar_Create(session.instance, session.main_window, kCommandBarId);
    MeasureCommandBar();
}

static void MakeMenuBar() {
    SHMENUBARINFO bar = {};
    bar.cbSize = sizeof(bar);
    bar.hwndParent = session.main_window;
    bar.dwFlags = SHCMBF_HMENU;
    bar.nToolBarId = Connected() ? IDR_MENU_ONLINE : IDR_MENU_OFFLINE;
    bar.hInstRes = session.instance;
    session.menu_bar = SHCreateMenuBar(&bar) ? bar.hwndMB : nullptr;
}

static void MakeClientWindow() {
    RECT room;
    GetClientRect(session.main_window, &room);
    session.client_window = CreateWindowExW(
        0, TEXT("ClientWnd"), nullptr, WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL, 0,
        session.command_bar_height, room.right, room.bottom - session.command_bar_height,
        session.main_window, reinterpret_cast<HMENU>(static_cast<INT_PTR>(kClientWindowId)),
        session.instance, nullptr);
}

static LRESULT OnCreate(HWND window, WPARAM, LPARAM) {
    session.main_window = window;
    RECT whole;
    if (GetWindowRect(window, &whole)) session.main_width = whole.right - whole.left;
    MakeCommandBar();
    MakeClientWindow();
    if (!session.client_window) {
        DestroyWindow(window);
        return -1;
    }
    RECT client;
    GetClientRect(session.client_window, &client);
    session.client_width = client.right;
    RebuildStatusBar();
    RebuildMenuBar();
    return 0;
}

static LRESULT OnClose(HWND, WPARAM, LPARAM) {
    ExitProgram();
    return 0;
}

static LRESULT OnSize(HWND, WPARAM wparam, LPARAM) {
    if (wparam == SIZE_MINIMIZED) CloseByMinimising();
    LayoutMainWindow();
    return 0;
}

static LRESULT OnHelp(HWND, WPARAM, LPARAM) {
    ShowHelp();
    return 0;
}

static LRESULT OnSettingChange(HWND window, WPARAM wparam, LPARAM lparam) {
    if (wparam != SPI_SETSIPINFO || GetActiveWindow() != window)
        return DefWindowProcW(window, WM_SETTINGCHANGE, wparam, lparam);
    FollowInputPanel();
    return 0;
}

static LRESULT OnCommand(HWND, WPARAM wparam, LPARAM) {
    RunCommand(LOWORD(wparam));
    return 0;
}

static LRESULT OnDialNotification(HWND, WPARAM wparam, LPARAM lparam) {
    OnDialEvent(wparam, lparam);
    return 0;
}

static LRESULT OnTimer(HWND, WPARAM, LPARAM) {
    StartRequestedDial();
    BlinkTick();
    KeepDeviceAwake();
    return 0;
}

static LRESULT OnDestroy(HWND, WPARAM, LPARAM) {
    PostQuitMessage(0);
    return 0;
}

static LRESULT OnSocketData(HWND, WPARAM wparam, LPARAM) {
    OnSocketEvent(wparam);
    return 0;
}

static LRESULT OnSocketConnected(HWND, WPARAM, LPARAM) {
    RebuildMenuBar();
    RecountCoveredRows();
    UpdateStatus();
    return 0;
}

// While connected, every key belongs to the host. Offline, DefWindowProcW gives a key its usual
// meaning: F10 opens the menu.
static LRESULT OnKey(HWND window, WPARAM wparam, LPARAM lparam) {
    OnKeyDown(static_cast<int>(wparam));
    if (Connected()) return 0;  // OnKeyDown has updated the status
    UpdateStatus();
    return DefWindowProcW(window, WM_KEYDOWN, wparam, lparam);
}

static LRESULT OnCharacter(HWND, WPARAM wparam, LPARAM) {
    OnTypedCharacter(static_cast<WCHAR>(wparam));
    return 0;
}

namespace {

struct MessageRow {
    UINT message;
    LRESULT (*handler)(HWND window, WPARAM wparam, LPARAM lparam);
};

}  // namespace

// clang-format off
static const MessageRow kMessages[] = {
    {WM_CREATE,           OnCreate},
    {WM_CLOSE,            OnClose},
    {WM_SIZE,             OnSize},
    {WM_HELP,             OnHelp},
    {WM_COMMAND,          OnCommand},
    {WM_RASDIALEVENT,     OnDialNotification},
    {WM_SETTINGCHANGE,    OnSettingChange},
    {WM_TIMER,            OnTimer},
    {WM_DESTROY,          OnDestroy},
    {WM_SOCKET_DATA,      OnSocketData},
    {WM_SOCKET_CONNECTED, OnSocketConnected},
    {WM_KEYDOWN,          OnKey},
    {WM_CHAR,             OnCharacter},
};
// clang-format on

LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    for (const MessageRow& row : kMessages)
        if (row.message == message) return row.handler(window, wparam, lparam);
    return DefWindowProcW(window, message, wparam, lparam);
}

void RebuildMenuBar() {
    if (!IsWindow(session.main_window)) return;
    if (session.command_bar) CommandBar_Destroy(session.command_bar);
    if (session.menu_bar) DestroyWindow(session.menu_bar);
    MakeCommandBar();
    ShowToolbar();
    MakeMenuBar();
    UpdateStatus();
}

void LayoutMainWindow() {
    RECT room;
    if (!session.client_window || !GetClientRect(session.main_window, &room)) return;
    MeasureCommandBar();
    if (session.command_bar)
        MoveWindow(session.command_bar, 0, 0, room.right, session.command_bar_height, TRUE);
    MoveWindow(session.client_window, 0, session.command_bar_height, room.right,
               room.bottom - session.command_bar_height, FALSE);
    PlaceStatusBar();
    LayoutTerminal();
    RecountCoveredRows();
}

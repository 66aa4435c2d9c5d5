// SPDX-License-Identifier: MIT
// The shell's menu bar. On the desktop it is a menu below the title bar. The bar's window is
// invisible; the menu exists as long as that window.
#include "device.h"

static const LPCWSTR kClass = L"QuillMenuBar";
constexpr DWORD kMenuBar = 0x0010;

static LRESULT CALLBACK BarProcedure(HWND bar, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_DESTROY) {
        EndMenu();  // it may be open
        const auto menu = reinterpret_cast<HMENU>(GetWindowLongPtrW(bar, GWLP_USERDATA));
        const HWND owner = GetParent(bar);
        if (GetMenu(owner) == menu) SetMenu(owner, nullptr);
        DestroyMenu(menu);
    }
    return DefWindowProcW(bar, message, wparam, lparam);
}

static void RegisterOnce() {
    WNDCLASSW bar = {};
    bar.lpfnWndProc = BarProcedure;
    bar.lpszClassName = kClass;
    RegisterClassW(&bar);  // fails from the second time on
}

static HWND MakeBar(HWND owner, HMENU menu) {
    RegisterOnce();
    const HWND bar =
        CreateWindowExW(0, kClass, nullptr, WS_CHILD, 0, 0, 0, 0, owner, nullptr, nullptr, nullptr);
    if (bar) SetWindowLongPtrW(bar, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(menu));
    return bar;
}

BOOL SHCreateMenuBar(SHMENUBARINFO* info) {
    if (!info || info->cbSize != sizeof(SHMENUBARINFO) || !(info->dwFlags & kMenuBar)) return FALSE;
    info->hwndMB = nullptr;
    const HMENU menu = LoadMenuW(info->hInstRes, MAKEINTRESOURCEW(info->nToolBarId));
    if (!menu) return FALSE;
    const HWND bar = MakeBar(info->hwndParent, menu);
    if (!bar || !SetMenu(info->hwndParent, menu)) {
        bar ? DestroyWindow(bar) : DestroyMenu(menu);
        return FALSE;
    }
    info->hwndMB = bar;
    if (!IsWindowVisible(info->hwndParent)) MakeRoomForMenu(info->hwndParent);
    return TRUE;
}

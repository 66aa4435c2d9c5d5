// SPDX-License-Identifier: MIT
// The clipboard: on the desktop, its content belongs to a window.
#include "device.h"

// An invisible window. It goes with its thread; the clipboard's content stays.
static HWND Keeper() {
    static HWND keeper = nullptr;
    if (!IsWindow(keeper))
        keeper = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                 nullptr, nullptr);
    return keeper;
}

BOOL DeviceOpenClipboard(HWND owner) { return OpenClipboard(owner ? owner : Keeper()); }

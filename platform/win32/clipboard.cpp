// SPDX-License-Identifier: MIT
// The clipboard: on the desktop what is put there is a window's.
#include "device.h"

namespace {

// Nobody sees it; it goes with its thread, and what was put on the clipboard stays.
HWND Keeper() {
    static HWND keeper = nullptr;
    if (!IsWindow(keeper))
        keeper = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                 nullptr, nullptr);
    return keeper;
}

}  // namespace

BOOL DeviceOpenClipboard(HWND owner) { return OpenClipboard(owner ? owner : Keeper()); }

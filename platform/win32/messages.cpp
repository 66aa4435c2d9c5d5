// SPDX-License-Identifier: MIT
// The message loop's source: each message as the device would tell it, and drags that go on
// outside.
#include "device.h"

namespace {

// The stylus belongs to the window that it touched until it is lifted. The system's own controls
// see to that themselves.
void HoldStylus(const MSG& message) {
    const bool touched = message.message == WM_LBUTTONDOWN || message.message == WM_LBUTTONDBLCLK;
    if (touched && HasProgramClass(message.hwnd)) SetCapture(message.hwnd);
    if (message.message == WM_LBUTTONUP && GetCapture() == message.hwnd &&
        HasProgramClass(message.hwnd))
        ReleaseCapture();
}

}  // namespace

BOOL DeviceGetMessage(MSG* message, HWND window, UINT first, UINT last) {
    const BOOL result = GetMessageW(message, window, first, last);
    if (result <= 0) return result;
    DeviceNoteKey(message);
    HoldStylus(*message);
    return result;
}

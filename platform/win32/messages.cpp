// SPDX-License-Identifier: MIT
// The source of the message loop: changes messages to what the device would send, and keeps drags
// going outside the window.
#include "device.h"

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

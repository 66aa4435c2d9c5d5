// The message loop's source: each message as the device would tell it, and drags that go on
// outside.
#include "device.h"

namespace {

bool IsOfTheProgram(HWND window) {
    return GetClassLongPtrW(window, GCLP_HMODULE) ==
           reinterpret_cast<ULONG_PTR>(GetModuleHandleW(nullptr));
}

// The stylus belongs to the window that it touched until it is lifted. The system's own controls
// see to that themselves.
void HoldStylus(const MSG& message) {
    const bool touched = message.message == WM_LBUTTONDOWN || message.message == WM_LBUTTONDBLCLK;
    if (touched && IsOfTheProgram(message.hwnd)) SetCapture(message.hwnd);
    if (message.message == WM_LBUTTONUP && GetCapture() == message.hwnd &&
        IsOfTheProgram(message.hwnd))
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

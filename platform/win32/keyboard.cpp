// Messages that the desktop treats otherwise than the device: keys, and the states of a dial.
#include "device.h"

namespace {

constexpr DWORD kSilent = 0x0004;
constexpr UINT kF1Pressed = 0x004D;  // posted for each F1, whatever the window makes of the key
constexpr LPARAM kAltDown = 1 << 29;

bool IsLockKey(int virtual_key) {
    return virtual_key == VK_CAPITAL || virtual_key == VK_NUMLOCK || virtual_key == VK_SCROLL;
}

bool Down(int virtual_key) { return (GetKeyState(virtual_key) & 0x8000) != 0; }

// The desktop presses the left Ctrl along with AltGr, whose characters are no key's with Ctrl.
bool PressedByAltGr(int virtual_key) { return virtual_key == VK_LCONTROL && Down(VK_RMENU); }

UINT DialMessage() {
    static const UINT message = RegisterWindowMessageA(RASDIALEVENT);
    return message;
}

}  // namespace

BOOL DeviceGetMessage(MSG* message, HWND window, UINT first, UINT last) {
    const BOOL result = GetMessageW(message, window, first, last);
    if (result <= 0 || message->wParam != VK_F10 || (message->lParam & kAltDown)) return result;
    if (message->message == WM_SYSKEYDOWN) message->message = WM_KEYDOWN;
    if (message->message == WM_SYSKEYUP) message->message = WM_KEYUP;
    return result;
}

LRESULT DeviceDefWindowProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == kF1Pressed) return 0;
    if (message == WM_KEYDOWN && wparam == VK_F1) return SendMessageW(window, WM_HELP, 0, 0);
    if (message == WM_KEYDOWN && wparam == VK_F10 && GetMenu(window))
        return PostMessageW(window, WM_SYSCOMMAND, SC_KEYMENU, 0), 0;
    if (message == DialMessage()) return SendMessageW(window, WM_RASDIALEVENT, wparam, lparam);
    return DefWindowProcW(window, message, wparam, lparam);
}

SHORT DeviceGetKeyState(int virtual_key) {
    if (PressedByAltGr(virtual_key)) return 0;
    const int state = GetKeyState(virtual_key);
    return static_cast<SHORT>(IsLockKey(virtual_key) ? state : state & 0x8000);
}

void DeviceKeyEvent(BYTE virtual_key, BYTE scan_code, DWORD flags, ULONG_PTR extra) {
    if (flags & kSilent) {
        SetThreadExecutionState(ES_SYSTEM_REQUIRED);
    } else {
        keybd_event(virtual_key, scan_code, flags, extra);
    }
}

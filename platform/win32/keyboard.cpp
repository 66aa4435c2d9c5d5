// SPDX-License-Identifier: MIT
// Messages that the desktop treats differently from the device: keys, and the states of a dial.
#include "device.h"

constexpr DWORD kSilent = 0x0004;
constexpr UINT kF1Pressed = 0x004D;    // posted for each F1, even if the window handles it
constexpr LPARAM kExtended = 1 << 24;  // the right one of two keys
constexpr LPARAM kAltDown = 1 << 29;
constexpr LPARAM kWasDown = 1 << 30;
constexpr DWORD kTogether = 5;  // milliseconds between two keys that the desktop presses as one

static bool IsLockKey(int virtual_key) {
    return virtual_key == VK_CAPITAL || virtual_key == VK_NUMLOCK || virtual_key == VK_SCROLL;
}

static bool Down(int virtual_key) { return (GetKeyState(virtual_key) & 0x8000) != 0; }

namespace {

// The left Ctrl, as a person holds it down. The desktop also presses it together with AltGr; both
// presses then have nearly the same time.
struct LeftControl {
    bool held;
    bool held_before;  // the value before its last press
    DWORD pressed;     // message time of that press
};

}  // namespace
static LeftControl left_control = {};

static void PressLeftControl(const MSG& message) {
    const bool was_down = (message.lParam & kWasDown) != 0;
    left_control = {true, left_control.held && was_down, message.time};
}

static void NoteKey(const MSG& message) {
    const bool right = (message.lParam & kExtended) != 0;
    const bool press = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    if (message.wParam == VK_CONTROL && !right) {
        press ? PressLeftControl(message) : void(left_control.held = false);
    } else if (message.wParam == VK_MENU && right && press &&
               message.time - left_control.pressed <= kTogether) {
        left_control.held = left_control.held_before;
    }
}

static bool PressedByAltGr(int virtual_key) {
    return virtual_key == VK_LCONTROL && Down(VK_RMENU) && !left_control.held;
}

static void PutBack(const MSG& message) {
    if (message.message == WM_QUIT) return PostQuitMessage(static_cast<int>(message.wParam));
    PostMessageW(message.hwnd, message.message, message.wParam, message.lParam);
}

static bool dead_key_waits = false;  // for the key that it may combine with

// A key that does not combine with the dead key before it has two characters: that of the dead key,
// then its own. The window gets the first one before the key, because it belongs to another key.
BOOL DeviceTranslateMessage(const MSG* message) {
    const BOOL result = TranslateMessage(message);
    if (!dead_key_waits || message->message != WM_KEYDOWN) return result;
    MSG typed, next;
    if (!PeekMessageW(&typed, message->hwnd, WM_CHAR, WM_CHAR, PM_REMOVE)) return result;
    dead_key_waits = false;
    if (typed.message == WM_CHAR &&
        PeekMessageW(&next, message->hwnd, WM_CHAR, WM_CHAR, PM_NOREMOVE)) {
        DispatchMessageW(&typed);
    } else {
        PutBack(typed);
    }
    return result;
}

static UINT DialMessage() {
    static const UINT message = RegisterWindowMessageA(RASDIALEVENT);
    return message;
}

void DeviceNoteKey(MSG* message) {
    if (message->message < WM_KEYFIRST || message->message > WM_KEYLAST) return;
    NoteKey(*message);
    if (message->message == WM_DEADCHAR) dead_key_waits = true;
    if (message->wParam != VK_F10 || (message->lParam & kAltDown)) return;
    if (message->message == WM_SYSKEYDOWN) message->message = WM_KEYDOWN;
    if (message->message == WM_SYSKEYUP) message->message = WM_KEYUP;
}

// A filter that includes the device's message also takes the registered one.
BOOL DevicePeekMessage(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    if (PeekMessageW(message, window, first, last, remove)) return TRUE;
    if (WM_RASDIALEVENT < first || WM_RASDIALEVENT > last) return FALSE;
    if (!PeekMessageW(message, window, DialMessage(), DialMessage(), remove)) return FALSE;
    if (message->message == DialMessage()) message->message = WM_RASDIALEVENT;
    return TRUE;
}

LRESULT DeviceDefWindowProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == kF1Pressed) return 0;
    if (message == WM_KEYDOWN && wparam == VK_F1) return SendMessageW(window, WM_HELP, 0, 0);
    if (message == WM_KEYDOWN && wparam == VK_F10 && GetMenu(window))
        return PostMessageW(window, WM_SYSCOMMAND, SC_KEYMENU, 0), 0;
    if (message == WM_DPICHANGED)
        return ChangeScale(window, HIWORD(wparam), reinterpret_cast<const RECT*>(lparam)), 0;
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

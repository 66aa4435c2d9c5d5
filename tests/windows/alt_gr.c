/* SPDX-License-Identifier: MIT */
/* Types AltGr+7 as Windows does on a layout with AltGr: left Ctrl and right Alt go down at the same
   time. Wine's own AltGr presses no Ctrl. */
#include <windows.h>

static void Strike(WORD key, DWORD flags, DWORD time) {
    INPUT input = {0};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = (WORD)MapVirtualKeyW(key, MAPVK_VK_TO_VSC);
    input.ki.dwFlags = flags;
    input.ki.time = time;
    SendInput(1, &input, sizeof(input));
}

int main(void) {
    const DWORD now = GetTickCount();
    Strike(VK_LCONTROL, 0, now);
    Strike(VK_RMENU, KEYEVENTF_EXTENDEDKEY, now);
    Strike('7', 0, now + 10);
    Strike('7', KEYEVENTF_KEYUP, now + 20);
    Strike(VK_LCONTROL, KEYEVENTF_KEYUP, now + 30);
    Strike(VK_RMENU, KEYEVENTF_EXTENDEDKEY | KEYEVENTF_KEYUP, now + 30);
    return 0;
}

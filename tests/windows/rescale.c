/* SPDX-License-Identifier: MIT */
/* Tells the program that its monitor has another scale, and sizes its window so that the terminal
   has a wanted size, as the desktop does. Then prints the terminal's place on the screen: left,
   top, width, height. With a DPI of 0 it prints only. Usage: rescale.exe DPI [WIDTH HEIGHT] */
#include <stdio.h>
#include <stdlib.h>
#include <windows.h>

#define DPI_CHANGED 0x02E0

static void Resize(HWND window, HWND terminal, int width, int height) {
    RECT outer, inner;
    GetWindowRect(window, &outer);
    GetWindowRect(terminal, &inner);
    SetWindowPos(window, NULL, 0, 0, outer.right - outer.left + width - (inner.right - inner.left),
                 outer.bottom - outer.top + height - (inner.bottom - inner.top),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

int main(int count, char** words) {
    SetProcessDPIAware();
    const HWND window = FindWindowW(L"TELNET", NULL);
    const HWND terminal = FindWindowExW(window, NULL, L"ClientWnd", NULL);
    if (!terminal || count < 2) return 1;
    const int dpi = atoi(words[1]);
    DWORD_PTR answer = 0;
    if (dpi &&
        !SendMessageTimeoutW(window, DPI_CHANGED, MAKEWPARAM(dpi, dpi), 0, 0, 20000, &answer))
        return 2;
    if (count == 4) Resize(window, terminal, atoi(words[2]), atoi(words[3]));
    RECT place;
    GetWindowRect(terminal, &place);
    printf("%ld %ld %ld %ld\n", place.left, place.top, place.right - place.left,
           place.bottom - place.top);
    return 0;
}

// SPDX-License-Identifier: MIT
// The Windows program: what the system is to know of it before it runs, and what is left to do
// after.
#include "windows_ce.h"

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE previous, LPWSTR command_line, int show) {
    KeepToSystemLibraries();
    WatchSessionEnd();
    const int result = WinMain(instance, previous, command_line, show);
    if (SessionEnds()) HangUpWhatIsLeft();
    return result;
}

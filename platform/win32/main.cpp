// SPDX-License-Identifier: MIT
// The Windows program: prepares the process before Quill runs, and hangs up afterwards if the
// Windows session ends.
#include "windows_ce.h"

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE previous, LPWSTR command_line, int show) {
    KeepToSystemLibraries();
    WatchSessionEnd();
    const int result = WinMain(instance, previous, command_line, show);
    if (SessionEnds()) HangUpWhatIsLeft();
    return result;
}

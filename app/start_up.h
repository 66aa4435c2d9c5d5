// SPDX-License-Identifier: MIT
// Start-up: classes, windows, the socket library and the message loop. WinMain's exit codes: 0 or
// the quit message's, 1 and 2 when a window class could not be registered, 16 without a main
// window.
#ifndef QUILL_APP_START_UP_H
#define QUILL_APP_START_UP_H

#include "windows_ce.h"

// Registers the classes and looks up the colour dialog; 0 on success, else the exit code.
int InitApplication(HINSTANCE instance);

// Makes the main window; null on failure.
HWND InitInstance(HINSTANCE instance, int show);

#endif

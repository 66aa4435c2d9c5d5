// SPDX-License-Identifier: MIT
// Start-up: it registers the window classes, makes the main window, starts the socket library and
// runs the message loop. WinMain returns 0 or the quit message's code, 1 or 2 if a window class
// cannot be registered, and 16 if the main window cannot be made.
#ifndef QUILL_APP_START_UP_H
#define QUILL_APP_START_UP_H

#include "windows_ce.h"

// Registers the window classes and looks up the colour dialog. Returns 0, or the exit code on
// failure.
int InitApplication(HINSTANCE instance);

// Makes the main window and starts its timer. Returns null on failure.
HWND InitInstance(HINSTANCE instance, int show);

#endif

// The terminal window: window class "ClientWnd", a child of the main window that shows the screen.
#ifndef QUILL_UI_VIEW_TERMINAL_WINDOW_H
#define QUILL_UI_VIEW_TERMINAL_WINDOW_H

#include "windows_ce.h"

// Registers the class "ClientWnd". FALSE when the system refuses it.
//
// Creating a window of it imports the configuration file, loads the settings, builds the status bar
// and lists the device's fonts. From its WM_CREATE on the window is session.client_window.
BOOL RegisterClientWindow(HINSTANCE instance);

#endif

// The main window (class "TELNET"): its message table, its layout and its menu bar.
#ifndef QUILL_UI_MAIN_WINDOW_H
#define QUILL_UI_MAIN_WINDOW_H

#include "windows_ce.h"

LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// Makes the command bar with the current toolbar and the menu bar again, for a program that is
// connected or not, and updates the status line.
void RebuildMenuBar();

// The client window fills the main window below the command bar.
void LayoutMainWindow();

#endif

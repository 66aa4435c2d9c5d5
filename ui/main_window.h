// SPDX-License-Identifier: MIT
// The main window (class "TELNET"): its message table, its layout, its menu bar, its commands and
// its toolbar.
#ifndef QUILL_UI_MAIN_WINDOW_H
#define QUILL_UI_MAIN_WINDOW_H

#include "windows_ce.h"

LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// Makes the command bar with the current toolbar and the menu bar again, for a program that is
// connected or not, and updates the status line.
void RebuildMenuBar();

// The client window fills the main window below the command bar.
void LayoutMainWindow();

// ---------------------------------------------------------------- the commands of menus,
// accelerators and buttons

// Carries out the command of that id; an unknown one does nothing.
void RunCommand(WORD id);

// Starts the help viewer on the program's page and does not wait for it.
void ShowHelp();

// The close button's way out: asks while a session is up and `confirm_exit` is set.
void ExitProgram();

// Minimising ends the program when `xbox` is set, with the same question.
void CloseByMinimising();

// A synthetic key while a session is up and `alive` is set keeps the device powered.
void KeepDeviceAwake();

// ---------------------------------------------------------------- the toolbar on the command bar

// The buttons of the current bar, as many as the main window had room for when it was made.
void ShowToolbar();

// IDM_TOOLBAR_FIRST to IDM_TOOLBAR_LAST: the action of that button of the current bar. A position
// without a button does nothing.
void RunToolbarCommand(WORD id);

// Adds a button to the command bar for each row on bar 1, 2 or 3, in the table's order and at most
// `maxButtons`, with the row's bitmap, and its name as tool tip. The button at `position` sends
// IDM_TOOLBAR_FIRST + position. While a session is up the connect button reads "disconnect".
// Returns the number of buttons. The tool tips' texts live until the next call, so one bar is shown
// at a time.
int BuildToolbar(HWND commandBar, int barNumber, int maxButtons);

#endif

// SPDX-License-Identifier: MIT
// The main window (class "TELNET"): its message table, its layout, its menu bar, its commands and
// its toolbar. It contains the client window (ui/view/view.h), which shows the terminal.
#ifndef QUILL_UI_MAIN_WINDOW_H
#define QUILL_UI_MAIN_WINDOW_H

#include "windows_ce.h"

LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// Rebuilds the command bar with the current toolbar, and the menu bar for the current connection
// state (connected or not). Then updates the status line.
void RebuildMenuBar();

// Places the child windows for the main window's current size. The client window fills the area
// below the command bar.
void LayoutMainWindow();

// ---------------------------------------------------------------- the commands

// Runs the command with this id. An unknown id does nothing.
void RunCommand(WORD id);

// Starts the help viewer on the program's page and does not wait for it.
void ShowHelp();

// Ends the program, as the close button does. Asks first if a session is up and `confirm_exit` is
// 1.
void ExitProgram();

// Called when the window is minimised. Ends the program if `xbox` is 1; asks first under the same
// condition as ExitProgram.
void CloseByMinimising();

// Sends a synthetic key press while a session is up and `alive` is 1, so that the device does not
// power off.
void KeepDeviceAwake();

// ---------------------------------------------------------------- the toolbar on the command bar

// Shows the buttons of the current toolbar, as many as fit the width that the main window had when
// it was created.
void ShowToolbar();

// Runs the action of a button of the current toolbar. `id` is IDM_TOOLBAR_FIRST + the button's
// position. A position without a button does nothing.
void RunToolbarCommand(WORD id);

// Adds the buttons of toolbar `barNumber` (1, 2 or 3) to the command bar: one for each row of
// toolbar_buttons that is on this toolbar, in the table's order, at most `maxButtons`. A button
// shows the row's bitmap and has the row's name as its tool tip. The button at `position` sends
// IDM_TOOLBAR_FIRST + position. While a session is up, the connect button shows the "disconnect"
// bitmap and tool tip. Returns the number of buttons. The texts of the tool tips stay valid until
// the next call, so only one toolbar can be shown at a time.
int BuildToolbar(HWND commandBar, int barNumber, int maxButtons);

#endif

// The buttons of a toolbar on the command bar.
#ifndef QUILL_UI_TOOLBAR_BUTTONS_H
#define QUILL_UI_TOOLBAR_BUTTONS_H

#include "windows_ce.h"

// Adds a button to the command bar for each row on bar 1, 2 or 3, in the table's order and at most
// `maxButtons`, with the row's bitmap, and its name as tool tip. The button at `position` sends
// IDM_TOOLBAR_FIRST + position. While a session is up the connect button reads "disconnect".
// Returns the number of buttons. The tool tips' texts live until the next call, so one bar is shown
// at a time.
int BuildToolbar(HWND commandBar, int barNumber, int maxButtons);

#endif

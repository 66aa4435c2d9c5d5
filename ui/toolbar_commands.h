// What the toolbar's buttons do, and the toolbar on the main window's command bar.
#ifndef QUILL_UI_TOOLBAR_COMMANDS_H
#define QUILL_UI_TOOLBAR_COMMANDS_H

#include "windows_ce.h"

// The buttons of the current bar, as many as the main window had room for when it was made.
void ShowToolbar();

// IDM_TOOLBAR_FIRST to IDM_TOOLBAR_LAST: the action of that button of the current bar. A position
// without a button does nothing.
void RunToolbarCommand(WORD id);

#endif

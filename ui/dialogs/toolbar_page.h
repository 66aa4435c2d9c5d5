// The page "Toolbar" of the Properties sheet.
#ifndef QUILL_UI_DIALOGS_TOOLBAR_PAGE_H
#define QUILL_UI_DIALOGS_TOOLBAR_PAGE_H

#include "windows_ce.h"

// Three lists with every row of toolbar_buttons, marked where the row is on that bar. A double tap
// puts a row on the bar or takes it off, at once and for good: neither OK nor Cancel changes it.
// The command bar keeps its buttons until it is built anew.
INT_PTR CALLBACK ToolbarPageProc(HWND page, UINT message, WPARAM wparam, LPARAM lparam);

#endif

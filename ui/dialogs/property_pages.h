// The procedures of the Properties sheet's pages; ToolbarPageProc stands with the toolbars.
#ifndef QUILL_UI_DIALOGS_PROPERTY_PAGES_H
#define QUILL_UI_DIALOGS_PROPERTY_PAGES_H

#include "windows_ce.h"

// "Other": its check boxes change the settings at once, its fields when the page is left.
INT_PTR CALLBACK OtherPageProc(HWND page, UINT message, WPARAM wparam, LPARAM lparam);

// "Keyboard": the key table; each Change takes effect at once.
INT_PTR CALLBACK KeyboardPageProc(HWND page, UINT message, WPARAM wparam, LPARAM lparam);

#endif

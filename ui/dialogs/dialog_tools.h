// SPDX-License-Identifier: MIT
// What the settings dialogs have in common: dispatch, marks, texts and placement.
#ifndef QUILL_UI_DIALOGS_DIALOG_TOOLS_H
#define QUILL_UI_DIALOGS_DIALOG_TOOLS_H

#include "windows_ce.h"

// One control of a dialog that shows a number of the settings as a mark: any value but 0 is
// checked. A row with id 0 ends a table.
struct MarkRow {
    int id;
    DWORD* field;
};

// One text field. No more than `units` - 1 units can be typed, and what is longer when it is read
// is cut there. A row with id 0 ends a table.
struct TextRow {
    int id;
    LPWSTR field;
    int units;  // that the field holds, terminator included
};

// What a dialog does on a notification (`code`: BN_CLICKED, LBN_SELCHANGE, ...) of a control. A row
// without a procedure ends a table.
struct DialogCommand {
    int id;
    WORD code;
    void (*run)(HWND dialog);
};

// The body of a dialog procedure: WM_INITDIALOG runs `open`, WM_COMMAND looks its row up.
INT_PTR RunDialogMessage(HWND dialog, UINT message, WPARAM wparam, void (*open)(HWND dialog),
                         const DialogCommand* commands);

// A row of the tables above for Cancel: the dialog closes with IDCANCEL and session.dialog_result
// becomes -1.
void CancelDialog(HWND dialog);

void ShowMarks(HWND dialog, const MarkRow* rows);
void TakeMarks(HWND dialog, const MarkRow* rows);  // each field becomes 0 or 1
void ShowTexts(HWND dialog, const TextRow* rows);
void TakeTexts(HWND dialog, const TextRow* rows);

// Lets a list box with a horizontal scroll bar be scrolled to the end of its longest entry.
void FitListWidth(HWND dialog, int id);

// Moves a dialog over the middle of its parent's client area, and never to the left of it or above.
void CentreDialog(HWND dialog);

// Shows a dialog of the main window until it is closed; session.dialog_result is 0 when it opens.
// Returns what EndDialog was given, or -1 if the dialog could not be shown.
INT_PTR RunDialog(WORD id, DLGPROC procedure);

// After a field of session.settings or the table toolbar_buttons has changed: what it needs at
// once, by the table kEffects. `setting` is the field's address; most fields need nothing.
void ApplySetting(const void* setting);

// After a dialog: the terminal is repainted, as any of its settings may be another one.
void SettingsChanged();

// Writes the settings, unless they are not to be kept (session.save_settings).
void SaveIfEnabled();

#endif

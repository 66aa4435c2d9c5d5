// SPDX-License-Identifier: MIT
// Helpers that the settings dialogs share: message dispatch, check boxes ("marks"), text fields and
// placement. Show... procedures copy settings into controls, Take... procedures copy controls into
// settings.
#ifndef QUILL_UI_DIALOGS_DIALOG_TOOLS_H
#define QUILL_UI_DIALOGS_DIALOG_TOOLS_H

#include "windows_ce.h"

// A check box and the numeric setting that it shows. Any value but 0 is shown as checked. A row
// with id 0 ends a table.
struct MarkRow {
    int id;
    DWORD* field;
};

// An edit control and the text setting that it shows. The user can type at most `units` - 1 units;
// a longer text is cut to that length when it is read. A row with id 0 ends a table.
struct TextRow {
    int id;
    LPWSTR field;
    int units;  // size of the field, terminator included
};

// The handler of one notification (`code`: BN_CLICKED, LBN_SELCHANGE, ...) of the control `id`. A
// row with a null `run` ends a table.
struct DialogCommand {
    int id;
    WORD code;
    void (*run)(HWND dialog);
};

// The body of a dialog procedure: WM_INITDIALOG runs `open`, WM_COMMAND runs the matching row of
// `commands`.
INT_PTR RunDialogMessage(HWND dialog, UINT message, WPARAM wparam, void (*open)(HWND dialog),
                         const DialogCommand* commands);

// The handler of the Cancel button, for tables of DialogCommand. Closes the dialog with IDCANCEL
// and sets session.dialog_result to -1.
void CancelDialog(HWND dialog);

void ShowMarks(HWND dialog, const MarkRow* rows);
void TakeMarks(HWND dialog, const MarkRow* rows);  // each field becomes 0 or 1
void ShowTexts(HWND dialog, const TextRow* rows);
void TakeTexts(HWND dialog, const TextRow* rows);

// Sets the horizontal scroll range of a list box so that the user can scroll to the end of its
// longest entry.
void FitListWidth(HWND dialog, int id);

// Centres a dialog over its parent's client area. A dialog that is larger starts at the left or top
// edge of that area.
void CentreDialog(HWND dialog);

// Shows a dialog modally over the main window. Sets session.dialog_result to 0 before the dialog
// opens. Returns the value passed to EndDialog, or -1 if the dialog could not be shown.
INT_PTR RunDialog(WORD id, DLGPROC procedure);

// Call this after a dialog changed a setting. Runs the action that the table kEffects has for the
// setting, if there is one. `setting` is the address of a field of session.settings, or
// toolbar_buttons.
void ApplySetting(const void* setting);

// Call this after a dialog closed. Repaints the terminal, because any of its settings may have
// changed.
void SettingsChanged();

// Saves the settings, unless session.save_settings is 0.
void SaveIfEnabled();

#endif

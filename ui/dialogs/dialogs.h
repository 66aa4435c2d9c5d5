// SPDX-License-Identifier: MIT
// The dialogs in which the user edits the settings. Each procedure shows its dialog modally, owned
// by session.main_window, and returns when it is closed; the terminal is then repainted.
//
// Cancel of Connect, Font, Auto Login and Sign on to the host leaves -1 in session.dialog_result;
// OK leaves what it was, or what the dialog has put there.
#ifndef QUILL_UI_DIALOGS_DIALOGS_H
#define QUILL_UI_DIALOGS_DIALOGS_H

#include "windows_ce.h"

// The host, its history of five, and "Connect Advanced". OK saves the settings while
// session.save_settings is set, and connects.
void ShowConnectDialog();

// The face and the marks of the terminal's font. The position of the chosen face in
// session.view.faces is left in session.dialog_result, -1 if none is chosen. Saves.
void ShowFontDialog();

// The pages "Other", "Toolbar" and "Keyboard". Saves after the sheet is closed, by whichever
// button: its check boxes and lists take effect at once.
void ShowPropertiesSheet();

// The two search and response pairs of the automatic login. Saves.
void ShowAutoLoginDialog();

void ShowAboutDialog();

// Asks for the user and the password of an SSH session. False only if the dialog could not be
// shown; a Cancel is told by session.dialog_result alone, and leaves the settings as they were,
// except that a password that is not to be remembered is forgotten when the dialog opens.
bool AskSignOn();

// The desktop's colour chooser for one colour of the terminal. Nothing happens on a device without
// one (session.choose_color is null). Not saved before the program's end.
void ChooseBackgroundColor();
void ChooseCursorColor();
void ChooseTextColor();
void ChooseBoldColor();

// ---------------------------------------------------------------- pages of the Properties sheet

// "Keyboard": the key table; each Change takes effect at once.
INT_PTR CALLBACK KeyboardPageProc(HWND page, UINT message, WPARAM wparam, LPARAM lparam);

// "Toolbar": three lists with every row of toolbar_buttons, marked where the row is on that bar. A
// double tap puts a row on the bar or takes it off, at once and for good: neither OK nor Cancel
// changes it. The command bar keeps its buttons until it is built anew.
INT_PTR CALLBACK ToolbarPageProc(HWND page, UINT message, WPARAM wparam, LPARAM lparam);

#endif

// SPDX-License-Identifier: MIT
// The dialogs in which the user edits the settings. Each procedure shows its dialog modally, owned
// by session.main_window, and returns after the dialog has closed. They then repaint the terminal.
// No procedure saves while session.save_settings is 0.
//
// Cancel in Connect, Font, Auto Login and Sign on to the host sets session.dialog_result to -1. OK
// leaves 0 there; only the font dialog stores another value.
#ifndef QUILL_UI_DIALOGS_DIALOGS_H
#define QUILL_UI_DIALOGS_DIALOGS_H

#include "windows_ce.h"

// "Connect": the host, the history of five hosts, and the button for "Connect Advanced". OK saves
// the settings and connects.
void ShowConnectDialog();

// "Font": face, bold and italic of the terminal's font. OK sets session.dialog_result to the
// selected position in the list of faces, -1 if no face is selected. The settings are saved after
// OK and after Cancel.
void ShowFontDialog();

// "Properties": the pages "Other", "Toolbar" and "Keyboard". The settings are saved after OK and
// after Cancel, because the check boxes and lists take effect at once.
void ShowPropertiesSheet();

// "Auto Login": the two search and response pairs of the automatic login. The settings are saved
// after OK and after Cancel.
void ShowAutoLoginDialog();

// "Sign on to the host": asks for the user and the password of an SSH session. Returns false only
// if the dialog could not be shown; after Cancel it returns true, and session.dialog_result is -1.
// Cancel changes no setting. When the dialog opens, it clears the password (ssh_p) unless the user
// chose to keep it (ssh_def).
bool AskSignOn();

// Show the system's colour chooser for one colour of the terminal. They do nothing on a device
// without a chooser (session.choose_color is null). They do not save; the colour is saved with the
// next save.
void ChooseBackgroundColor();
void ChooseCursorColor();
void ChooseTextColor();
void ChooseBoldColor();

#endif

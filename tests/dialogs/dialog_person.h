// SPDX-License-Identifier: MIT
// The person at the dialogs of the running program (tests/support/person.h): opens them by their
// commands and works their controls by mouse and keys.
#ifndef QUILL_TESTS_DIALOGS_DIALOG_PERSON_H
#define QUILL_TESTS_DIALOGS_DIALOG_PERSON_H

#include <functional>
#include <string>
#include <vector>

#include "windows_ce.h"

// Sends the command, as menus and accelerators do, and waits for the dialog of that caption. Null,
// and a failure of the test, when it does not come.
HWND OpenDialog(WORD command, const std::string& caption);
HWND AwaitDialog(const std::string& caption);  // one that opens by itself, or from another
bool Closed(HWND dialog);                      // waits for it, and for what the program does then

void ClickControl(HWND dialog, int id);  // in its middle; for a box or button: on its mark
// Into an edit or a combo box, over what is there.
void TypeInto(HWND dialog, int id, const std::u16string& text);
void ClickLine(HWND dialog, int id, int line);  // of a list, or of what drops down
void ClickTab(HWND sheet, const std::string& caption);
std::vector<std::string> Tabs(HWND sheet);
HWND PageOf(HWND sheet);  // that is on top

std::u16string TextOf(HWND dialog, int id);
std::u16string ShownText(HWND dialog, int id);  // of an edit, as eyes see it
bool Marked(HWND dialog, int id);
std::vector<std::u16string> Lines(HWND dialog, int id);  // of a list or combo box
int SelectedLine(HWND dialog, int id);
int FocusedControl(HWND dialog);      // its id; 0: none of this dialog
RECT Place(HWND dialog, int id = 0);  // on the device's screen; 0: of the dialog

#endif

// SPDX-License-Identifier: MIT
// The person at the dialogs of the running program (tests/support/person.h): opens them by their
// commands and operates their controls by mouse and keys.
#ifndef QUILL_TESTS_DIALOGS_DIALOG_PERSON_H
#define QUILL_TESTS_DIALOGS_DIALOG_PERSON_H

#include <functional>
#include <string>
#include <vector>

#include "windows_ce.h"

// Sends the command, as menus and accelerators do, and waits for the dialog with that caption.
// Returns null and fails the test if the dialog does not open.
HWND OpenDialog(WORD command, const std::string& caption);
HWND AwaitDialog(const std::string& caption);  // one that the program or another dialog opens
bool Closed(HWND dialog);                      // also waits for what the program does next

void ClickControl(HWND dialog, int id);  // in its middle, or on the mark of a box or radio button
// Replaces the text of an edit or a combo box.
void TypeInto(HWND dialog, int id, const std::u16string& text);
void ClickLine(HWND dialog, int id, int line);  // of a list or a drop-down list
void ClickTab(HWND sheet, const std::string& caption);
std::vector<std::string> Tabs(HWND sheet);
HWND PageOf(HWND sheet);  // the current page

std::u16string TextOf(HWND dialog, int id);
std::u16string ShownText(HWND dialog, int id);  // the visible text of an edit
bool Marked(HWND dialog, int id);
std::vector<std::u16string> Lines(HWND dialog, int id);  // of a list or combo box
int SelectedLine(HWND dialog, int id);
int FocusedControl(HWND dialog);      // its id; 0: no control of this dialog
RECT Place(HWND dialog, int id = 0);  // on the device's screen; id 0: the dialog itself

#endif

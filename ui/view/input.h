// SPDX-License-Identifier: MIT
// What the user does to the terminal window: keys, marking, copy and paste, double taps.
#ifndef QUILL_UI_VIEW_INPUT_H
#define QUILL_UI_VIEW_INPUT_H

#include "windows_ce.h"

// ---------------------------------------------------------------- keys

// The keyboard's way to the host: the key table for special keys, one byte for a typed character.

// A key press: sends the key table's sequence while a session is up. Remembers whether the table
// takes the key, so that the character of the same press does not reach the host.
void OnKeyDown(int virtual_key);

// A command or a button that stands for a key.
void SendVirtualKey(int virtual_key);

// A typed character (WM_CHAR), in the ANSI code page; what it lacks goes as a question mark.
void OnTypedCharacter(WCHAR character);

// ---------------------------------------------------------------- marking

// The stylus marks a rectangle of the screen. The marked area is that of session.screen: the
// same columns on every row, see SelectedArea in screen_buffer.h.

struct StylusCell {
    int row;  // 1..49: below the screen are the ring's older lines
    int col;  // 1..80
};

// The cell under the position that a stylus message carries: x and y in pixels of the terminal
// window. What lies beyond the grid yields the nearest cell. Before the font is there: 1, 1.
StylusCell CellUnderStylus(LPARAM position);

// The stylus went down: the selection begins anew as that one cell.
void StartSelection(LPARAM position);

// The stylus moved: its cell is the selection's other corner. A selection that was dropped
// meanwhile stays dropped.
void ExtendSelection(LPARAM position);

// ---------------------------------------------------------------- copy and paste

// The selection goes to the clipboard as Unicode text and is dropped. Each cell gives the character
// of its byte, without regard to the code page or to line drawing; each row ends with CR LF.
// Without a selection, or without memory for the text, nothing happens.
void CopySelection();

// The clipboard's text goes to the host, the low byte of each character, without its LFs. Other
// contents than text are left alone.
void PasteClipboard();

// ---------------------------------------------------------------- hotspots

// A double tap at a stylus message's position. With the `hotspot` setting and on the blank before a
// number of one or two digits followed by a full stop or a colon, or on the number's first digit,
// its digits go to the host and then what the Enter key sends. Without the setting it beeps.
void TapHotspot(LPARAM position);

#endif

// SPDX-License-Identifier: MIT
// User input to the terminal window: keys, selecting with the stylus, copy and paste, double taps.
#ifndef QUILL_UI_VIEW_INPUT_H
#define QUILL_UI_VIEW_INPUT_H

#include "windows_ce.h"

// ---------------------------------------------------------------- keys

// Special keys are sent as the key table (settings/key_map.h) says. A typed character is sent as
// one byte.

// Handles a key press. While a session is up it sends the sequence from the key table. It also
// records in session.key_taken whether the table takes the key, so that the WM_CHAR of the same key
// press is not sent too.
void OnKeyDown(int virtual_key);

// Sends a key for a menu command or a toolbar button. No WM_CHAR follows such a key.
void SendVirtualKey(int virtual_key);

// Handles a typed character (WM_CHAR): sends its byte in the ANSI code page. A character that the
// code page does not have, or encodes as several bytes, is sent as a question mark. Tab and CR are
// dropped; the key table sends those keys. While telnet.escape_iac is 1, all characters below 32
// are dropped.
void OnTypedCharacter(WCHAR character);

// ---------------------------------------------------------------- marking

// The stylus selects a rectangle of the screen: the same columns in every row. The selection is
// stored in session.screen; see SelectedArea in screen_buffer.h.

struct StylusCell {
    int row;  // 1..49; rows 25..49 are the ring's older lines
    int col;  // 1..80
};

// Returns the cell under the position of a stylus message (its lParam: x and y in pixels of the
// terminal window). A position outside the grid returns the nearest cell. Before the font exists it
// returns 1, 1.
StylusCell CellUnderStylus(LPARAM position);

// The stylus went down. Starts a new selection of the one cell under it.
void StartSelection(LPARAM position);

// The stylus moved. Its cell becomes the selection's other corner. If the selection was dropped in
// the meantime, it stays dropped.
void ExtendSelection(LPARAM position);

// ---------------------------------------------------------------- copy and paste

// Copies the selection to the clipboard as Unicode text and drops the selection. Each cell's byte
// is copied as the Unicode character with the same number, without regard to the code page or line
// drawing. Each row ends with CR LF. Does nothing if nothing is selected or there is no memory for
// the text.
void CopySelection();

// Sends the clipboard's text to the host: the low byte of each character, without LFs. If the
// clipboard holds anything but text, nothing is sent.
void PasteClipboard();

// ---------------------------------------------------------------- hotspots

// Handles a double tap at the position of a stylus message. If the setting `hotspot` is on, the
// user can tap a menu number: one or two digits with a blank before them and a full stop or a colon
// after them. A tap on the blank or on the first digit sends the digits and then what the Enter key
// sends. If the setting is off, the tap only beeps.
void TapHotspot(LPARAM position);

#endif

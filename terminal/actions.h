// SPDX-License-Identifier: MIT
// The actions of the host's control characters and sequences: moving the cursor, erasing, the split
// regions, rendition and reports. The byte parsers call them, and they change session.screen.
#ifndef QUILL_TERMINAL_ACTIONS_H
#define QUILL_TERMINAL_ACTIONS_H

#include "session/session_state.h"
#include "terminal/screen_buffer.h"

// ---------------------------------------------------------------- rows

// Inline access to a row, for the files of this folder: its words, and the flag that the row needs
// painting.

// The 81 words of a row: the line attribute, then the cells of columns 1..80. The row must be
// 1..49. The cursor's row always is.
inline DWORD* RowWords(int row) {
    const int slot = session.screen.ring_origin + row;
    return session.screen.slots[slot > kRingLines ? slot - kRingLines : slot];
}

inline void MarkRow(int row) { session.screen.row_changed[row] = 1; }  // row 1..49

// ---------------------------------------------------------------- the cursor

// After each of these calls cursor_row is within 1..49 and cursor_col within 1..80, or 1..40 on a
// double-width row.

// Hosts move the cursor often and unpredictably. The bounds below are written so that they compile
// to conditional moves instead of branches.
inline int AtLeast(int value, int bound) { return value < bound ? bound : value; }
inline int AtMost(int value, int bound) { return value > bound ? bound : value; }

// `row` must be 1..49. `col` may be any number.
inline void PlaceCursor(int row, int col) {
    ScreenBuffer& screen = session.screen;
    const int double_width = static_cast<int>(RowWords(row)[0] & kLineDoubleWidth);
    screen.cursor_row = row;
    screen.cursor_col = AtLeast(AtMost(col, screen.columns >> double_width), 1);
}

inline void MoveCursor(int row, int col) { PlaceCursor(HoldRow(row), col); }

// Limits the cursor's column to the width of its row.
inline void ClampColumn() { PlaceCursor(session.screen.cursor_row, session.screen.cursor_col); }

void LineFeed();      // on bottom_margin the region scrolls up; the column stays
void NextLine();      // line feed, then column 1
void ReverseIndex();  // on top_margin the region scrolls down
void Backspace();
void CarriageReturn();

// Moves to the next tab stop after the cursor. If there is no stop up to the last column, the
// cursor goes to the last column but one. With the default stops this happens from column 73 on,
// and also from column 80 itself. Hosts see that this terminal leaves one cell free at the right
// edge.
void Tab();
void SetTabStop();
void ClearTabStops();  // CSI g: 0 clears the stop at the cursor, 3 clears all

// CSI A, B, C and D act only with exactly one parameter. The direction is 0 up, 1 down, 2 right, 3
// left, in the order of the final bytes.
void StepCursor(int direction);
void CursorUp();
void CursorDown();
void CursorRight();
void CursorLeft();
void CursorPositionTo();  // CSI H

void Vt52Up();
void Vt52Down();
void Vt52Right();
void Vt52Left();
void Vt52Home();

// ESC 7 and ESC 8. There is one saved cursor.
void SaveCursor();
void RestoreCursor();

void SetScrollingRegion();  // CSI r

// ---------------------------------------------------------------- erasing

// Erasing, and inserting and deleting characters and lines: the final bytes @ J K L M P X and the
// VT52 sequences J and K. L and M move the cursor to column 1; the others do not move it.

// These act on each parameter in turn. With private_flag set (selective erase) they keep protected
// cells.
void EraseInDisplay();
void EraseInLine();

void EraseCharacters();
void InsertCharacters();
void DeleteCharacters();
void InsertOneLine();  // CSI L: always one line; the parameter is ignored
void DeleteSomeLines();

void BlankScreen(int reset_line_attr);  // rows 1..24; reset_line_attr as for FillLine

// The VT52 forms. On the cursor's row they write spaces with the current attribute; the rows below
// become plain blanks.
void Vt52EraseToEndOfScreen();
void Vt52EraseToEndOfLine();

// ---------------------------------------------------------------- the split regions

// The screen can be divided into an upper and a lower region, each with its own cursor, margins and
// attribute. One region is active: session.screen holds its values.

// Makes the upper region active and as high as the screen. TerminalStart and TerminalReset call
// this.
void ResetSplit();

void DefineSplit();   // CSI n p: the upper region is rows 1..n, the lower one the rest
void SwitchRegion();  // CSI 1 s to the lower region, CSI 0 s to the upper

// ---------------------------------------------------------------- rendition

// Graphic rendition (CSI m) and character protection (CSI n " q). Both change the current
// attribute.

void SelectRendition();  // every parameter in turn; colours and unknown values are ignored
void SelectProtection();

// ---------------------------------------------------------------- reports

// The texts that the terminal sends to the host on request. Each procedure writes one reply to
// session.parser.reply_text and sets reply_pending. A reply that is a control sequence begins with
// the 8-bit CSI when c1_replies is on; the table in reports.cpp has the exceptions.

void ReplyAnswerback();          // ENQ
void ReplyNotImplemented();      // = in a control sequence
void ReplyVt52Identity();        // ESC Z in VT52 mode
void ReplyPrimaryAttributes();   // ESC Z in ANSI mode
void ReplyDeviceAttributes();    // CSI c; the secondary reply when secondary_flag is set
void ReplyDeviceStatus();        // CSI n; sends nothing for an unknown status
void ReplyTerminalParameters();  // CSI x; one text for parameter 0, another for the rest

#endif

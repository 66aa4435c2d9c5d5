// SPDX-License-Identifier: MIT
// What sequences do to the screen: the cursor, erasing, the split regions, rendition and reports.
#ifndef QUILL_TERMINAL_ACTIONS_H
#define QUILL_TERMINAL_ACTIONS_H

#include "session/session_state.h"
#include "terminal/screen_buffer.h"

// ---------------------------------------------------------------- rows

// Rows as the terminal's own files write them, without a call: their words and their marks.

// The 81 words of a row: the line attribute, then the cells of columns 1..80. The row must be
// 1..49, as the cursor's always is.
inline DWORD* RowWords(int row) {
    const int slot = session.screen.ring_origin + row;
    return session.screen.slots[slot > kRingLines ? slot - kRingLines : slot];
}

inline void MarkRow(int row) { session.screen.row_changed[row] = 1; }  // row 1..49

// ---------------------------------------------------------------- the cursor

// After each of these cursor_row is within 1..49 and cursor_col within 1..80, or 1..40 on a
// double-width row.

// Cursor motion is frequent and where it goes is random, so the bounds below are written to compile
// to conditional moves.
inline int AtLeast(int value, int bound) { return value < bound ? bound : value; }
inline int AtMost(int value, int bound) { return value > bound ? bound : value; }

// row 1..49; any column.
inline void PlaceCursor(int row, int col) {
    ScreenBuffer& screen = session.screen;
    const int double_width = static_cast<int>(RowWords(row)[0] & kLineDoubleWidth);
    screen.cursor_row = row;
    screen.cursor_col = AtLeast(AtMost(col, screen.columns >> double_width), 1);
}

inline void MoveCursor(int row, int col) { PlaceCursor(HoldRow(row), col); }

// To the width of the cursor's row.
inline void ClampColumn() { PlaceCursor(session.screen.cursor_row, session.screen.cursor_col); }

void LineFeed();      // on bottom_margin the region scrolls up; never returns the carriage
void NextLine();      // line feed, then column 1
void ReverseIndex();  // on top_margin the region scrolls down
void Backspace();
void CarriageReturn();

// To the next stop after the cursor. Where there is none up to the last column the cursor ends on
// the last column but one: hosts that count on a tab's room at the right edge see this terminal
// leave one cell free, from column 73 on and also from column 80 itself.
void Tab();
void SetTabStop();
void ClearTabStops();  // CSI g: 0 the cursor's, 3 all

// CSI A, B, C and D act only with exactly one parameter. Direction: 0 up .. 3 left, as the finals.
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

// The one slot of ESC 7 and ESC 8.
void SaveCursor();
void RestoreCursor();

void SetScrollingRegion();  // CSI r

// ---------------------------------------------------------------- erasing

// Erasing, and inserting and deleting of characters and lines: the finals @ J K L M P X and the
// VT52 sequences J and K. The cursor stays, but for L and M, which take it to column 1.

// Each parameter in turn. With private_flag (selective erase) protected cells are kept.
void EraseInDisplay();
void EraseInLine();

void EraseCharacters();
void InsertCharacters();
void DeleteCharacters();
void InsertOneLine();  // CSI L: one line, whatever its parameter says
void DeleteSomeLines();

void BlankScreen(int reset_line_attr);  // rows 1..24

// VT52: what they erase becomes spaces in the current attribute.
void Vt52EraseToEndOfScreen();
void Vt52EraseToEndOfLine();

// ---------------------------------------------------------------- the split regions

// The screen divided into an upper and a lower region, each with its own cursor, margins and
// attribute. One of them is active; it is the one whose values stand in session.screen.

// The upper region active and as high as the screen, for TerminalStart and TerminalReset.
void ResetSplit();

void DefineSplit();   // CSI n p: rows 1..n and the rest
void SwitchRegion();  // CSI 1 s to the lower region, CSI 0 s to the upper

// ---------------------------------------------------------------- rendition

// Graphic rendition (CSI m) and character protection (CSI n " q): what they set in the current
// attribute.

void SelectRendition();  // every parameter in turn; colours and the rest are ignored
void SelectProtection();

// ---------------------------------------------------------------- reports

// The texts that the terminal sends to the host when asked. Each of these places one reply in
// session.parser.reply_text and sets reply_pending; the reply begins with the 8-bit introducer when
// c1_replies is on.

void ReplyAnswerback();          // ENQ
void ReplyNotImplemented();      // = in a control sequence
void ReplyVt52Identity();        // ESC Z in VT52 mode
void ReplyPrimaryAttributes();   // ESC Z in ANSI mode
void ReplyDeviceAttributes();    // CSI c; the secondary reply when secondary_flag is set
void ReplyDeviceStatus();        // CSI n; nothing for a status that is not known
void ReplyTerminalParameters();  // CSI x

#endif

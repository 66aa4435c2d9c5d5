// Cursor movement. After each of these cursor_row is within 1..49 and cursor_col within 1..80, or
// 1..40 on a double-width row.
#ifndef QUILL_TERMINAL_CURSOR_H
#define QUILL_TERMINAL_CURSOR_H

#include "session/session_state.h"
#include "terminal/screen_buffer.h"
#include "terminal/screen_rows.h"

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

#endif

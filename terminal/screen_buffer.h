// SPDX-License-Identifier: MIT
// The grid of character cells and its operations, on session.screen.
//
// Rows and columns count from 1. Rows 1..24 are the screen. Rows 25..49 are the rest of the ring:
// the operations accept them, but they are never shown. An operation on a row outside 1..49 or a
// column outside 1..80 changes nothing, and reading such a cell returns a blank.
//
// A cell is a 32-bit word (kCell... in terminal_types.h). Every operation except TurnRing sets
// row_changed for each row of the screen that it changes; only the renderer clears it. Erasing
// writes plain blanks, never the current attribute.
#ifndef QUILL_TERMINAL_SCREEN_BUFFER_H
#define QUILL_TERMINAL_SCREEN_BUFFER_H

#include "session/session_state.h"

inline bool RowExists(int row) { return row >= 1 && row <= kRingLines; }
inline bool CellExists(int row, int col) {
    return RowExists(row) && col >= 1 && col <= kScreenColumns;
}

// Limits a computed row to 1..49.
inline int HoldRow(int row) {
    if (row < 1) return 1;
    return row > kRingLines ? kRingLines : row;
}

// Returns the slot, 1..49, of a row. The row is limited to 1..49 first.
inline int RowSlot(int row) {
    int slot = session.screen.ring_origin + HoldRow(row);
    return slot > kRingLines ? slot - kRingLines : slot;
}

void MarkRows(int first, int last);
void MarkAllRows();        // rows 1..24
void ForgetMark(int row);  // the renderer calls it once it has drawn the row, 1..49

// These clear the whole ring and set ring_origin to 0. ClearAll (start-up) writes blanks and line
// attribute 0. ClearAllLines (new connection) writes 32 into every word, the line attribute
// included; as a line attribute, 32 means single width.
void ClearAll();
void ClearAllLines();

// Line sizes.
bool IsDoubleWidth(int row);
bool IsDoubleTop(int row);
bool IsDoubleBottom(int row);
void SetDoubleTop(int row);
void SetDoubleBottom(int row);
void SetSingleWidth(int row);
void SetDoubleWidth(int row);

// The current attribute. It is OR-ed into every character that is written.
void ResetAttr();
void SetBold(int on);
void SetUnderline(int on);
void SetBlink(int on);
void SetReverse(int on);
void SetGraphic(int on);
void SetProtected(int on);
WORD GetAttr();
void SetAttr(WORD value);

// Cells. PutCharUnprotected does not change a protected cell. InsertCell moves cells col..79 one
// place to the right: cell 80 is lost, and cell `col` keeps its value for the caller to overwrite.
// DeleteCell moves cells col+1..80 one place to the left and blanks cell 80.
void PutChar(BYTE code, int row, int col);
void PutCharUnprotected(BYTE code, int row, int col);
void InsertCell(int row, int col);
void DeleteCell(int row, int col);
DWORD GetCell(int row, int col);
void SetCell(int row, int col, DWORD value);

// Whole lines. CopyLine also copies the line attribute. FillLine writes all 80 cells.
// FillLineUnprotected writes the cells in columns 1..session.screen.columns that are not protected.
// With reset_line_attr 1 both also set the line attribute to 0.
void CopyLine(int to, int from);
void FillLine(int row, DWORD code, int reset_line_attr);
void FillLineUnprotected(int row, DWORD code, int reset_line_attr);

// These scroll rows top..bottom n times by one line, down (InsertLines) or up (DeleteLines). The
// whole screen scrolls by turning the ring, that is, by changing ring_origin. They do nothing if n
// is below 1. TurnRing adds `delta` to ring_origin, modulo 49, and marks no row.
void InsertLines(int n, int top, int bottom);
void DeleteLines(int n, int top, int bottom);
void TurnRing(int delta);

// Selection and painting. SetSelection with a start column below 1 drops the selection. GetPaintRow
// returns 81 words. Without a selection they are the row itself; with one they are a copy in which
// the selected cells have kCellReverse, valid until the next call.
void SetSelection(int start_col, int start_row, int end_col, int end_row);
void MoveSelectionEnd(int col, int row);
void DropSelection();  // asks for a full repaint if something was selected
struct ScreenArea {
    int first_row, last_row;
    int first_col, last_col;  // first > last: the area contains no column
};
ScreenArea SelectedArea();  // the selected area; its values may lie outside the grid
const DWORD* GetPaintRow(int row);
int AnyBlinking();        // 1: some cell of rows 1..24 blinks
void MarkBlinkingRows();  // marks those rows

#endif

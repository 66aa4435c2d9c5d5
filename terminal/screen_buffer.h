// SPDX-License-Identifier: MIT
// The grid of character cells and its operations, on session.screen.
//
// Rows and columns count from 1. Rows 1..24 are the screen; rows 25..49 are the ring's older lines,
// which the operations accept and nothing shows. An operation on a row outside 1..49 or a column
// outside 1..80 changes nothing, and a read of one yields a blank.
//
// A cell is a 32-bit word (kCell... in terminal_types.h). Every operation sets row_changed of each
// row that it changes; only the renderer clears it. Erasing writes plain blanks, never the current
// attribute.
#ifndef QUILL_TERMINAL_SCREEN_BUFFER_H
#define QUILL_TERMINAL_SCREEN_BUFFER_H

#include "session/session_state.h"

inline bool RowExists(int row) { return row >= 1 && row <= kRingLines; }
inline bool CellExists(int row, int col) {
    return RowExists(row) && col >= 1 && col <= kScreenColumns;
}

// The nearest row of the ring, for results that nothing else bounds.
inline int HoldRow(int row) {
    if (row < 1) return 1;
    return row > kRingLines ? kRingLines : row;
}

// The slot, 1..49, of a row, which is held to 1..49 first.
inline int RowSlot(int row) {
    int slot = session.screen.ring_origin + HoldRow(row);
    return slot > kRingLines ? slot - kRingLines : slot;
}

void MarkRows(int first, int last);
void MarkAllRows();        // rows 1..24
void ForgetMark(int row);  // the renderer has drawn it; row 1..49

// Clearing the whole ring; ring_origin becomes 0. ClearAll (start-up) leaves blanks and line
// attributes 0; ClearAllLines (new connection) leaves 32 in every word, which as a line attribute
// reads as single width.
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

// The attribute that is OR-ed into every character written.
void ResetAttr();
void SetBold(int on);
void SetUnderline(int on);
void SetBlink(int on);
void SetReverse(int on);
void SetGraphic(int on);
void SetProtected(int on);
WORD GetAttr();
void SetAttr(WORD value);

// Cells. PutCharUnprotected leaves a protected cell alone. InsertCell moves cells col..79 one place
// right (cell 80 is lost; cell col keeps its value for the caller to overwrite); DeleteCell moves
// cells col+1..80 one place left and blanks cell 80.
void PutChar(BYTE code, int row, int col);
void PutCharUnprotected(BYTE code, int row, int col);
void InsertCell(int row, int col);
void DeleteCell(int row, int col);
DWORD GetCell(int row, int col);
void SetCell(int row, int col, DWORD value);

// Whole lines. CopyLine takes the line attribute along. FillLine writes all 80 cells;
// FillLineUnprotected those of columns 1..columns that are not protected. reset_line_attr 1 also
// sets the line attribute to 0.
void CopyLine(int to, int from);
void FillLine(int row, DWORD code, int reset_line_attr);
void FillLineUnprotected(int row, DWORD code, int reset_line_attr);

// Scrolling rows top..bottom n times by one line, down (InsertLines) or up (DeleteLines). The whole
// screen scrolls by turning the ring; n below 1 does nothing.
void InsertLines(int n, int top, int bottom);
void DeleteLines(int n, int top, int bottom);
void TurnRing(int delta);

// Selection and painting. A start column below 1 drops the selection. GetPaintRow yields 81 words:
// the row itself, or with a selection a copy, good until the next call, in which the selected cells
// have kCellReverse.
void SetSelection(int start_col, int start_row, int end_col, int end_row);
void MoveSelectionEnd(int col, int row);
void DropSelection();  // asks for a full repaint if something was selected
struct ScreenArea {
    int first_row, last_row;
    int first_col, last_col;  // first > last: no column of any row
};
ScreenArea SelectedArea();  // of the selection's four values, which may lie outside the grid
const DWORD* GetPaintRow(int row);
int AnyBlinking();        // 1: some cell of rows 1..24 blinks
void MarkBlinkingRows();  // marks those rows

#endif

// SPDX-License-Identifier: MIT
// Erasing, and inserting and deleting characters and lines.
#include "terminal/actions.h"

#include <algorithm>

#include "terminal/screen_buffer.h"

// Writes plain blanks to columns first..last of a row. With `selective` it keeps protected cells.
static void BlankCells(int row, int first, int last, bool selective) {
    if (!RowExists(row)) return;
    DWORD* words = RowWords(row);
    for (int col = first; col <= last; ++col) {
        if (!selective || (words[col] & kCellProtected) == 0) words[col] = kBlank;
    }
    MarkRow(row);
}

static void BlankRows(int first, int last, bool selective, int reset_line_attr) {
    for (int row = first; row <= last; ++row) {
        if (selective) {
            FillLineUnprotected(row, kBlank, reset_line_attr);
        } else {
            FillLine(row, kBlank, reset_line_attr);
        }
    }
}

void BlankScreen(int reset_line_attr) { BlankRows(1, session.screen.rows, false, reset_line_attr); }

// ---------------------------------------------------------------- CSI J and K

using EraseProcedure = void (*)(bool selective);

static void EraseDisplayAfter(bool selective) {
    const ScreenBuffer& screen = session.screen;
    BlankCells(screen.cursor_row, screen.cursor_col, screen.columns, selective);
    BlankRows(screen.cursor_row + 1, screen.rows, selective, 1);
}

static void EraseDisplayBefore(bool selective) {
    const ScreenBuffer& screen = session.screen;
    BlankCells(screen.cursor_row, 1, screen.cursor_col, selective);
    BlankRows(1, screen.cursor_row - 1, selective, 1);
}

static void EraseDisplayWhole(bool selective) { BlankRows(1, session.screen.rows, selective, 1); }

static void EraseLineAfter(bool selective) {
    const ScreenBuffer& screen = session.screen;
    BlankCells(screen.cursor_row, screen.cursor_col, screen.columns, selective);
}

static void EraseLineBefore(bool selective) {
    BlankCells(session.screen.cursor_row, 1, session.screen.cursor_col, selective);
}

static void EraseLineWhole(bool selective) {
    BlankRows(session.screen.cursor_row, session.screen.cursor_row, selective, 0);
}

constexpr int kEraseChoices = 3;
static const EraseProcedure kEraseInDisplay[kEraseChoices] = {EraseDisplayAfter, EraseDisplayBefore,
                                                              EraseDisplayWhole};
static const EraseProcedure kEraseInLine[kEraseChoices] = {EraseLineAfter, EraseLineBefore,
                                                           EraseLineWhole};

static void EraseEach(const EraseProcedure* choices) {
    const ParserState& parser = session.parser;
    for (int i = 0; i < parser.param_count; ++i) {
        const int choice = parser.params[i];
        if (choice >= 0 && choice < kEraseChoices) choices[choice](parser.private_flag != 0);
    }
}

void EraseInDisplay() { EraseEach(kEraseInDisplay); }
void EraseInLine() { EraseEach(kEraseInLine); }

// ---------------------------------------------------------------- characters and lines

void EraseCharacters() {
    const ScreenBuffer& screen = session.screen;
    const int room = screen.columns - screen.cursor_col + 1;
    const int count = std::min(session.parser.params[0], room);
    if (count < 1) return;
    BlankCells(screen.cursor_row, screen.cursor_col, screen.cursor_col + count - 1, false);
}

// A count beyond the end of the row acts like a count up to the end of the row.
static int HoldToRestOfRow(int count) {
    return std::min(count, session.screen.columns - session.screen.cursor_col + 1);
}

void InsertCharacters() {
    const ScreenBuffer& screen = session.screen;
    for (int n = HoldToRestOfRow(session.parser.params[0]); n > 0; --n) {
        InsertCell(screen.cursor_row, screen.cursor_col);
        PutChar(' ', screen.cursor_row, screen.cursor_col);
    }
}

void DeleteCharacters() {
    const ScreenBuffer& screen = session.screen;
    for (int n = HoldToRestOfRow(std::max(session.parser.params[0], 1)); n > 0; --n) {
        DeleteCell(screen.cursor_row, screen.cursor_col);
    }
}

// Sets the rows that inserting and deleting lines scrolls. Inside the scrolling region they run
// from the cursor's row to the bottom margin, above it from the cursor's row to the row before the
// top margin. Below it they run from the row after the bottom margin to the cursor's row.
static void LinesFromCursor(int* first, int* last) {
    const ScreenBuffer& screen = session.screen;
    const int row = screen.cursor_row;
    *first = row;
    *last = screen.bottom_margin;
    if (row > screen.bottom_margin) {
        *first = screen.bottom_margin + 1;
        *last = row;
    } else if (row < screen.top_margin) {
        *last = screen.top_margin - 1;
    }
}

void InsertOneLine() {
    int first, last;
    LinesFromCursor(&first, &last);
    InsertLines(1, first, last);
    CarriageReturn();
}

void DeleteSomeLines() {
    int first, last;
    LinesFromCursor(&first, &last);
    DeleteLines(std::max(session.parser.params[0], 1), first, last);
    CarriageReturn();
}

// ---------------------------------------------------------------- VT52

void Vt52EraseToEndOfLine() {
    const ScreenBuffer& screen = session.screen;
    for (int col = screen.cursor_col; col <= screen.columns; ++col) {
        PutChar(' ', screen.cursor_row, col);
    }
}

void Vt52EraseToEndOfScreen() {
    Vt52EraseToEndOfLine();
    BlankRows(session.screen.cursor_row + 1, session.screen.rows, false, 1);
}

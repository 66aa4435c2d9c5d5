// SPDX-License-Identifier: MIT
// The grid of character cells: clearing, line sizes, the current attribute, cells and whole lines,
// scrolling, the selection, and the rows as the renderer reads them.
#include "terminal/screen_buffer.h"

#include <algorithm>
#include <cstring>

#include "session/session_ports.h"
#include "terminal/actions.h"

constexpr DWORD kLineSizeBits = kLineDoubleWidth | kLineDoubleTop | kLineDoubleBottom;

// MarkRows and FillLine are not inlined, so that their loops are not copied into every way to
// scroll.
[[gnu::noinline]] void MarkRows(int first, int last) {
    for (int row = HoldRow(first); row <= HoldRow(last); ++row) session.screen.row_changed[row] = 1;
}

void MarkAllRows() { MarkRows(1, session.screen.rows); }

static void FillRing(DWORD line_attribute) {
    session.screen.ring_origin = 0;
    for (DWORD(&slot)[kSlotWords] : session.screen.slots) {
        for (DWORD& word : slot) word = kBlank;
        slot[0] = line_attribute;
    }
    MarkAllRows();
}

void ClearAll() { FillRing(0); }
void ClearAllLines() { FillRing(kBlank); }

static bool LineHas(int row, DWORD bit) { return RowExists(row) && (RowWords(row)[0] & bit) != 0; }

bool IsDoubleWidth(int row) { return LineHas(row, kLineDoubleWidth); }
bool IsDoubleTop(int row) { return LineHas(row, kLineDoubleTop); }
bool IsDoubleBottom(int row) { return LineHas(row, kLineDoubleBottom); }

static void SetLineSize(int row, DWORD bits) {
    if (!RowExists(row)) return;
    DWORD* words = RowWords(row);
    words[0] = (words[0] & ~kLineSizeBits) | bits;
    MarkRow(row);
}

void SetDoubleTop(int row) { SetLineSize(row, kLineDoubleWidth | kLineDoubleTop); }
void SetDoubleBottom(int row) { SetLineSize(row, kLineDoubleWidth | kLineDoubleBottom); }
void SetSingleWidth(int row) { SetLineSize(row, 0); }
void SetDoubleWidth(int row) { SetLineSize(row, kLineDoubleWidth); }

static void SetAttrBit(DWORD bit, int on) {
    DWORD attr = session.screen.current_attr;
    session.screen.current_attr = static_cast<WORD>(on ? attr | bit : attr & ~bit);
}

void ResetAttr() { session.screen.current_attr = 0; }
void SetBold(int on) { SetAttrBit(kCellBold, on); }
void SetUnderline(int on) { SetAttrBit(kCellUnderline, on); }
void SetBlink(int on) { SetAttrBit(kCellBlink, on); }
void SetReverse(int on) { SetAttrBit(kCellReverse, on); }
void SetGraphic(int on) { SetAttrBit(kCellGraphic, on); }
void SetProtected(int on) { SetAttrBit(kCellProtected, on); }
WORD GetAttr() { return session.screen.current_attr; }
void SetAttr(WORD value) { session.screen.current_attr = value; }

void PutChar(BYTE code, int row, int col) {
    SetCell(row, col, code | static_cast<DWORD>(session.screen.current_attr));
}

void PutCharUnprotected(BYTE code, int row, int col) {
    if ((GetCell(row, col) & kCellProtected) == 0) PutChar(code, row, col);
}

void InsertCell(int row, int col) {
    if (!CellExists(row, col)) return;
    DWORD* cells = RowWords(row);
    const int moved = session.screen.columns - col;
    if (moved > 0)
        memmove(cells + col + 1, cells + col, static_cast<size_t>(moved) * sizeof(*cells));
    MarkRow(row);
}

void DeleteCell(int row, int col) {
    if (!CellExists(row, col)) return;
    DWORD* cells = RowWords(row);
    const int moved = session.screen.columns - col;
    if (moved > 0)
        memmove(cells + col, cells + col + 1, static_cast<size_t>(moved) * sizeof(*cells));
    cells[session.screen.columns] = kBlank;
    MarkRow(row);
}

DWORD GetCell(int row, int col) { return CellExists(row, col) ? RowWords(row)[col] : kBlank; }

void SetCell(int row, int col, DWORD value) {
    if (!CellExists(row, col)) return;
    RowWords(row)[col] = value;
    MarkRow(row);
}

void CopyLine(int to, int from) {
    if (!RowExists(to) || !RowExists(from)) return;
    memmove(RowWords(to), RowWords(from), sizeof(session.screen.slots[0]));
    MarkRow(to);
}

[[gnu::noinline]] void FillLine(int row, DWORD code, int reset_line_attr) {
    if (!RowExists(row)) return;
    DWORD* words = RowWords(row);
    for (int col = 1; col <= kScreenColumns; ++col) words[col] = code;
    if (reset_line_attr) words[0] = 0;
    MarkRow(row);
}

void FillLineUnprotected(int row, DWORD code, int reset_line_attr) {
    if (!RowExists(row)) return;
    DWORD* words = RowWords(row);
    for (int col = 1; col <= session.screen.columns; ++col) {
        if ((words[col] & kCellProtected) == 0) words[col] = code;
    }
    if (reset_line_attr) words[0] = 0;
    MarkRow(row);
}

// ---------------------------------------------------------------- scrolling

void TurnRing(int delta) {
    int origin = session.screen.ring_origin + delta % kRingLines;
    if (origin < 0) origin += kRingLines;
    if (origin >= kRingLines) origin -= kRingLines;
    session.screen.ring_origin = origin;
}

static void MoveSlots(int to, int from, int count) {
    if (count < 1) return;
    memmove(session.screen.slots[to], session.screen.slots[from],
            static_cast<size_t>(count) * sizeof(session.screen.slots[0]));
}

// Copies row r+1 onto row r, for r = top..bottom-1. Needs top < bottom.
static void MoveRowsUp(int top, int bottom) {
    const int first = RowSlot(top);
    const int last = RowSlot(bottom);
    if (first < last) {
        MoveSlots(first, first + 1, last - first);
        return;
    }
    MoveSlots(first, first + 1, kRingLines - first);
    MoveSlots(kRingLines, 1, 1);
    MoveSlots(1, 2, last - 1);
}

// Copies row r-1 onto row r, for r = bottom..top+1. Needs top < bottom.
static void MoveRowsDown(int top, int bottom) {
    const int first = RowSlot(top);
    const int last = RowSlot(bottom);
    if (first < last) {
        MoveSlots(first + 1, first, last - first);
        return;
    }
    MoveSlots(2, 1, last - 1);
    MoveSlots(1, kRingLines, 1);
    MoveSlots(first + 1, first, kRingLines - first);
}

static bool WholeScreen(int top, int bottom) { return top == 1 && bottom == session.screen.rows; }

// Returns how many single steps have the same effect as n, so that a huge n costs little. A region
// is blank after as many steps as it has rows. The whole ring is blank after one turn; after that
// only its origin moves.
static int StepsThatMatter(int n, int top, int bottom) {
    if (WholeScreen(top, bottom)) return n <= kRingLines ? n : kRingLines + n % kRingLines;
    const int height = bottom > top ? bottom - top + 1 : 1;
    return n < height ? n : height;
}

static void ScrollUp(int top, int bottom) {
    if (WholeScreen(top, bottom)) {
        TurnRing(1);
        MarkRows(1, bottom - 1);
    } else if (top < bottom) {
        MoveRowsUp(top, bottom);
        MarkRows(top, bottom - 1);
    }
    FillLine(bottom, kBlank, 1);
}

static void ScrollDown(int top, int bottom) {
    if (WholeScreen(top, bottom)) {
        TurnRing(-1);
        MarkRows(2, bottom);
    } else if (top < bottom) {
        MoveRowsDown(top, bottom);
        MarkRows(top + 1, bottom);
    }
    FillLine(top, kBlank, 1);
}

void InsertLines(int n, int top, int bottom) {
    if (!RowExists(top) || !RowExists(bottom)) return;
    for (int steps = StepsThatMatter(n, top, bottom); steps > 0; --steps) ScrollDown(top, bottom);
}

void DeleteLines(int n, int top, int bottom) {
    if (!RowExists(top) || !RowExists(bottom)) return;
    for (int steps = StepsThatMatter(n, top, bottom); steps > 0; --steps) ScrollUp(top, bottom);
}

// ---------------------------------------------------------------- selection and painting

void SetSelection(int start_col, int start_row, int end_col, int end_row) {
    ScreenBuffer& screen = session.screen;
    screen.selection_active = start_col < 1 ? 0 : 1;
    if (!screen.selection_active) return;
    screen.selection_start_col = start_col;
    screen.selection_start_row = start_row;
    screen.selection_end_col = end_col;
    screen.selection_end_row = end_row;
}

// The columns run from the column of the upper point to that of the lower point. Points on the same
// row are put in order.
ScreenArea SelectedArea() {
    const ScreenBuffer& screen = session.screen;
    ScreenArea area = {screen.selection_start_row, screen.selection_end_row,
                       screen.selection_start_col, screen.selection_end_col};
    if (area.first_row > area.last_row) {
        std::swap(area.first_row, area.last_row);
        std::swap(area.first_col, area.last_col);
    } else if (area.first_row == area.last_row && area.first_col > area.last_col) {
        std::swap(area.first_col, area.last_col);
    }
    return area;
}

static void MarkSelectedCells(int row) {
    ScreenBuffer& screen = session.screen;
    const ScreenArea area = SelectedArea();
    if (row < area.first_row || row > area.last_row) return;
    const int first = std::max(area.first_col, 1);
    const int last = std::min(area.last_col, screen.columns);
    for (int col = first; col <= last; ++col) screen.paint_row[col] |= kCellReverse;
}

const DWORD* GetPaintRow(int row) {
    ScreenBuffer& screen = session.screen;
    if (!RowExists(row)) {
        std::fill_n(screen.paint_row, kSlotWords, kBlank);
        screen.paint_row[0] = 0;
        return screen.paint_row;
    }
    if (!screen.selection_active) return RowWords(row);
    memcpy(screen.paint_row, RowWords(row), sizeof(screen.paint_row));
    MarkSelectedCells(row);
    return screen.paint_row;
}

static bool RowBlinks(int row) {
    const DWORD* words = RowWords(row);
    DWORD seen = 0;
    for (int col = 1; col <= session.screen.columns; ++col) seen |= words[col];
    return (seen & kCellBlink) != 0;
}

int AnyBlinking() {
    for (int row = 1; row <= kScreenRows; ++row) {
        if (RowBlinks(row)) return 1;
    }
    return 0;
}

void MarkBlinkingRows() {
    for (int row = 1; row <= kScreenRows; ++row) {
        if (RowBlinks(row)) MarkRow(row);
    }
}

void MoveSelectionEnd(int col, int row) {
    session.screen.selection_end_col = col;
    session.screen.selection_end_row = row;
}

void DropSelection() {
    if (!session.screen.selection_active) return;
    session.screen.selection_active = 0;
    session_ports.repaint();
}

void ForgetMark(int row) { session.screen.row_changed[row] = 0; }

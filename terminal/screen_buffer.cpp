// The screen's storage: clearing, line sizes, the current attribute, cells and whole lines.
// Scrolling stands in screen_scroll.cpp, selection and painting in screen_paint.cpp.
#include "terminal/screen_buffer.h"
#include "terminal/screen_rows.h"

#include <cstring>

static const DWORD kLineSizeBits = kLineDoubleWidth | kLineDoubleTop | kLineDoubleBottom;

void MarkRows(int first, int last) {
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
        memmove(cells + col + 1, cells + col, static_cast<size_t>(moved) * sizeof *cells);
    MarkRow(row);
}

void DeleteCell(int row, int col) {
    if (!CellExists(row, col)) return;
    DWORD* cells = RowWords(row);
    const int moved = session.screen.columns - col;
    if (moved > 0)
        memmove(cells + col, cells + col + 1, static_cast<size_t>(moved) * sizeof *cells);
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
    memmove(RowWords(to), RowWords(from), sizeof session.screen.slots[0]);
    MarkRow(to);
}

void FillLine(int row, DWORD code, int reset_line_attr) {
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

// What painting reads: the selection's rectangle, rows with their selection marked, and which rows
// blink.
#include <algorithm>
#include <cstring>

#include "session/session_ports.h"
#include "terminal/screen_buffer.h"
#include "terminal/screen_rows.h"

void SetSelection(int start_col, int start_row, int end_col, int end_row) {
    ScreenBuffer& screen = session.screen;
    screen.selection_active = start_col < 1 ? 0 : 1;
    if (!screen.selection_active) return;
    screen.selection_start_col = start_col;
    screen.selection_start_row = start_row;
    screen.selection_end_col = end_col;
    screen.selection_end_row = end_row;
}

// The columns run from the upper point's to the lower point's; points on one row are put in order.
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
    memcpy(screen.paint_row, RowWords(row), sizeof screen.paint_row);
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

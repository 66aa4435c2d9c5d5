// SPDX-License-Identifier: MIT
// The terminal's screen as the manual page of a capability speaks of it.
#include "tests/hosts/picture.h"

#include <cstdio>
#include <cstring>

#include "terminal/actions.h"
#include "terminal/screen_buffer.h"
#include "tests/terminal/terminal_state.h"

static DWORD PatternCell(int row, int col) {
    const DWORD protection = (row + col) % 3 == 0 ? DWORD{kCellProtected} : 0;
    const DWORD attributes = static_cast<DWORD>((row * 5 + col * 3) % 16) << 8 | protection;
    return static_cast<DWORD>('A' + (row * 7 + col) % 58) | attributes;
}

static void FillWithPattern() {
    for (int row = 1; row <= kRingLines; ++row) {
        for (int col = 1; col <= kScreenColumns; ++col) SetCell(row, col, PatternCell(row, col));
    }
}

static void WriteLastColumn() {
    const DWORD before = GetCell(session.screen.cursor_row, kScreenColumns);
    Feed("#");
    SetCell(session.screen.cursor_row, kScreenColumns, before);
}

static TerminalSnapshot InUse() {
    NewTerminal();
    Feed("\033[24;1H" + std::string(31, '\n'));
    FillWithPattern();
    return TakeSnapshot();
}

void SetUp(const Start& start) {
    static const TerminalSnapshot in_use = InUse();
    session.screen = in_use.screen;
    session.parser = in_use.parser;
    session.modes = in_use.modes;
    session.split = in_use.split;
    if (start.double_width) {
        SetDoubleWidth(start.row);
        for (int col = 41; col <= kScreenColumns; ++col) SetCell(start.row, col, kBlank);
    }
    ScreenBuffer& screen = session.screen;
    screen.cursor_row = start.row;
    screen.cursor_col = start.col;
    screen.top_margin = start.top;
    screen.bottom_margin = start.bottom;
    if (start.after_last_column) WriteLastColumn();
    screen.current_attr = start.pen;
}

Picture TakePicture() {
    Picture picture = {};
    for (int row = 1; row <= kScreenRows; ++row) {
        picture.width[row] = IsDoubleWidth(row) ? kScreenColumns / 2 : kScreenColumns;
        memcpy(picture.cells[row], RowWords(row), sizeof picture.cells[row]);
    }
    picture.row = session.screen.cursor_row;
    picture.col = session.screen.cursor_col;
    picture.top = session.screen.top_margin;
    picture.bottom = session.screen.bottom_margin;
    return picture;
}

void NewSession() { NewTerminal(); }

std::string Feed(const std::string& bytes) {
    std::string replies;
    FeedWhole(bytes, &replies);
    return replies;
}

static bool SameCell(DWORD wanted, DWORD found) {
    return wanted == kAnyBlank ? (found & 0xFF) == ' ' : wanted == found;
}

static std::string CellDifference(const Picture& wanted, const Picture& found, int row, int col) {
    char text[120];
    snprintf(text, sizeof text, "row %d, column %d holds %04x, not %04x", row, col,
             static_cast<unsigned>(found.cells[row][col]),
             static_cast<unsigned>(wanted.cells[row][col] & 0xFFFF));
    return text;
}

std::string Difference(const Picture& wanted, const Picture& found, bool with_cursor) {
    for (int row = 1; row <= kScreenRows; ++row) {
        for (int col = 1; col <= wanted.width[row]; ++col) {
            if (!SameCell(wanted.cells[row][col], found.cells[row][col]))
                return CellDifference(wanted, found, row, col);
        }
    }
    if (!with_cursor || (wanted.row == found.row && wanted.col == found.col)) return "";
    char text[120];
    snprintf(text, sizeof text, "the cursor is at %d,%d, not %d,%d", found.row, found.col,
             wanted.row, wanted.col);
    return text;
}

std::string Describe(const Start& start) {
    char text[160];
    snprintf(text, sizeof text, "from %d,%d, region %d to %d%s%s%s", start.row, start.col,
             start.top, start.bottom, start.pen ? ", attributes on" : "",
             start.double_width ? ", double width" : "",
             start.after_last_column ? ", after the last column" : "");
    return text;
}

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
    // A saved cursor that no start has.
    Feed("\033[7;80H\033[4m\033(0#\0337\033[m\033(B");
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

void SetUpTheOtherWay(const Start& start) {
    SetUp({start.row, start.col, 1, kScreenRows, start.pen, start.double_width,
           start.after_last_column});
    TerminalModes& modes = session.modes;
    modes = {.insert_mode = 1,
             .autowrap = 0,
             .origin_mode = 1,
             .newline_mode = 1,
             .localecho = 1,
             .keypad_application = 1,
             .autorepeat = 0,
             .cursor_visible = 0,
             .screen_reverse = 1,
             .vt52_mode = 0,
             .vt100_level = 1,
             .c1_replies = 1};
    Feed("\033(0\033)0\016");
    for (BYTE& stop : session.screen.tab_stops) stop ^= 1;
    session.screen.current_attr =
        kCellBold | kCellUnderline | kCellBlink | kCellReverse | kCellProtected;
}

void ForEveryStart(const std::function<void(const Start&)>& act) {
    const int regions[][2] = {{1, kScreenRows}, {5, 20}, {1, 10}, {12, 24}, {23, 24}};
    for (const auto& region : regions) {
        for (const int row : {1, 2, 5, 10, 12, 19, 20, 23, 24}) {
            for (const int col : {1, 2, 9, 39, 40, 72, 79, 80}) {
                for (const WORD pen : {WORD{0}, WORD{kCellReverse | kCellBold}}) {
                    act({row, col, region[0], region[1], pen, false, false});
                    if (col <= 40) act({row, col, region[0], region[1], pen, true, false});
                    if (col == 80) act({row, col, region[0], region[1], pen, false, true});
                }
            }
        }
    }
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

std::string WidthDifference(const Picture& wanted, const Picture& found) {
    for (int row = 1; row <= kScreenRows; ++row) {
        if (wanted.width[row] != found.width[row])
            return "row " + std::to_string(row) + " has " + std::to_string(found.width[row]) +
                   " columns";
    }
    return "";
}

std::string Describe(const Start& start) {
    char text[160];
    snprintf(text, sizeof text, "from %d,%d, region %d to %d%s%s%s", start.row, start.col,
             start.top, start.bottom, start.pen ? ", attributes on" : "",
             start.double_width ? ", double width" : "",
             start.after_last_column ? ", after the last column" : "");
    return text;
}

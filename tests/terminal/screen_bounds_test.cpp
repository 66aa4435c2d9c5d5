// SPDX-License-Identifier: MIT
// The screen's operations with rows and columns that do not exist: they change nothing and access
// nothing outside the ring (AddressSanitizer checks this too).
#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "terminal/screen_buffer.h"
#include "tests/terminal/terminal_state.h"

static const int kNoRows[] = {INT_MIN, -49, -1, 0, 50, 51, 1000, INT_MAX};
static const int kNoColumns[] = {INT_MIN, -1, 0, 81, 82, 132, INT_MAX};

static void FillScreen() {
    NewTerminal();
    for (int row = 1; row <= kRingLines; ++row) FillLine(row, static_cast<DWORD>('0' + row), 0);
    std::fill_n(session.screen.row_changed, kRingSlots, 0u);
}

static void TouchRow(int row) {
    SetDoubleTop(row);
    SetDoubleBottom(row);
    SetDoubleWidth(row);
    SetSingleWidth(row);
    CopyLine(row, 3);
    CopyLine(3, row);
    FillLine(row, 'x', 1);
    FillLineUnprotected(row, 'x', 1);
    InsertLines(1, row, 5);
    InsertLines(1, 5, row);
    DeleteLines(1, row, 5);
    DeleteLines(1, 5, row);
}

static void TouchCell(int row, int col) {
    PutChar('x', row, col);
    PutCharUnprotected('x', row, col);
    InsertCell(row, col);
    DeleteCell(row, col);
    SetCell(row, col, 'x');
}

TEST(ScreenBounds, RowsOutsideTheRingChangeNothing) {
    FillScreen();
    const TerminalSnapshot before = TakeSnapshot();
    for (int row : kNoRows) {
        TouchRow(row);
        TouchCell(row, 5);
        EXPECT_EQ("", FirstDifference(before, TakeSnapshot())) << row;
    }
}

TEST(ScreenBounds, ColumnsOutsideTheLineChangeNothing) {
    FillScreen();
    const TerminalSnapshot before = TakeSnapshot();
    for (int col : kNoColumns) {
        TouchCell(5, col);
        EXPECT_EQ("", FirstDifference(before, TakeSnapshot())) << col;
    }
}

TEST(ScreenBounds, CellsThatDoNotExistReadAsBlanks) {
    FillScreen();
    for (int row : kNoRows) EXPECT_EQ(kBlank, GetCell(row, 5));
    for (int col : kNoColumns) EXPECT_EQ(kBlank, GetCell(5, col));
    for (int row : kNoRows) EXPECT_FALSE(IsDoubleWidth(row) || IsDoubleTop(row));
}

TEST(ScreenBounds, PaintRowOfAMissingRowIsBlank) {
    FillScreen();
    for (int row : kNoRows) {
        const DWORD* words = GetPaintRow(row);
        EXPECT_EQ(0u, words[0]);
        for (int col = 1; col <= kScreenColumns; ++col) EXPECT_EQ(kBlank, words[col]);
    }
}

TEST(ScreenBounds, SlotIsAlwaysOneTo49) {
    NewTerminal();
    for (int origin = 0; origin < kRingLines; ++origin) {
        session.screen.ring_origin = origin;
        for (int row = 1; row <= kRingLines; ++row) {
            EXPECT_GE(RowSlot(row), 1);
            EXPECT_LE(RowSlot(row), kRingLines);
        }
        for (int row : kNoRows) EXPECT_LE(RowSlot(row), kRingLines);
        for (int row : kNoRows) EXPECT_GE(RowSlot(row), 1);
    }
}

TEST(ScreenBounds, HugeSelectionStaysInTheRow) {
    FillScreen();
    SetSelection(1, INT_MIN, INT_MAX, INT_MAX);
    const DWORD* words = GetPaintRow(5);
    EXPECT_EQ(0u, words[0]);
    for (int col = 1; col <= kScreenColumns; ++col) EXPECT_NE(0u, words[col] & kCellReverse);
}

// Compares a region scroll with the plain rule, line by line, from every position of the ring.
static void ExpectScrolled(int top, int bottom, bool down) {
    const TerminalSnapshot before = TakeSnapshot();
    down ? InsertLines(1, top, bottom) : DeleteLines(1, top, bottom);
    const int blanked = down ? top : bottom;
    for (int row = 1; row <= kRingLines; ++row) {
        int from = row;
        if (row >= top && row <= bottom) from = down ? row - 1 : row + 1;
        int slot = before.screen.ring_origin + from;
        if (slot > kRingLines) slot -= kRingLines;
        for (int col = 1; col <= kScreenColumns; col += 20) {
            const DWORD expected = row == blanked ? kBlank : before.screen.slots[slot][col];
            ASSERT_EQ(expected, GetCell(row, col)) << top << ".." << bottom << " row " << row;
        }
        const bool marked = row >= top && row <= bottom;
        ASSERT_EQ(marked, session.screen.row_changed[row] != 0) << row;
    }
}

TEST(ScreenBounds, RegionScrollMovesEachLineOnceWhereverTheRingStarts) {
    for (int origin = 0; origin < kRingLines; ++origin) {
        for (int top = 1; top <= kScreenRows; top += 3) {
            for (int bottom = top + 1; bottom < kScreenRows; bottom += 4) {
                for (bool down : {false, true}) {
                    NewTerminal();
                    session.screen.ring_origin = origin;
                    FillScreen();
                    session.screen.ring_origin = origin;
                    ExpectScrolled(top, bottom, down);
                }
            }
        }
    }
}

TEST(ScreenBounds, HugeCountsEndAtOnce) {
    FillScreen();
    DeleteLines(INT_MAX, 1, kScreenRows);
    EXPECT_EQ(INT_MAX % kRingLines, session.screen.ring_origin);
    for (int row = 1; row <= kRingLines; ++row) EXPECT_EQ(kBlank, GetCell(row, 1));
    FillScreen();
    InsertLines(INT_MAX, 5, 10);
    EXPECT_EQ(kBlank, GetCell(10, 1));
    EXPECT_NE(kBlank, GetCell(11, 1));
    std::string replies;
    FeedWhole("\x1b[5;5H\x1b[2147483647@\x1b[4294967295P\x1b[9999999999M\x1b[99999999999999A",
              &replies);
    EXPECT_EQ("", FieldOutOfBounds());
}

TEST(ScreenBounds, TurnRingTakesAnyDelta) {
    std::mt19937 random(3);
    NewTerminal();
    for (int i = 0; i < 1000; ++i) {
        const int delta = static_cast<int>(random());
        const int before = session.screen.ring_origin;
        TurnRing(delta);
        const int moved = (session.screen.ring_origin - before - delta % kRingLines) % kRingLines;
        ASSERT_EQ(0, moved);
        ASSERT_EQ("", FieldOutOfBounds());
    }
}

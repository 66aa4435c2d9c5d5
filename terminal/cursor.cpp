// SPDX-License-Identifier: MIT
// Cursor movement, tab stops, the saved cursor, the scrolling region, and the two split regions.
#include "terminal/actions.h"

#include <algorithm>

static int FirstParam() { return session.parser.params[0]; }
static int SecondParam() { return session.parser.params[1]; }

// ---------------------------------------------------------------- control characters

void LineFeed() {
    ScreenBuffer& screen = session.screen;
    if (screen.cursor_row == screen.bottom_margin) {
        DeleteLines(1, screen.top_margin, screen.bottom_margin);
    } else {
        screen.cursor_row = HoldRow(screen.cursor_row + 1);
    }
    ClampColumn();
}

void NextLine() {
    LineFeed();
    session.screen.cursor_col = 1;
}

void ReverseIndex() {
    ScreenBuffer& screen = session.screen;
    if (screen.cursor_row == screen.top_margin) {
        InsertLines(1, screen.top_margin, screen.bottom_margin);
    } else {
        screen.cursor_row = HoldRow(screen.cursor_row - 1);
    }
    ClampColumn();
}

void Backspace() {
    if (session.screen.cursor_col > 1) --session.screen.cursor_col;
}

void CarriageReturn() { session.screen.cursor_col = 1; }

void Tab() {
    ScreenBuffer& screen = session.screen;
    int col = screen.cursor_col;
    if (col < screen.columns) ++col;
    while (col < screen.columns && screen.tab_stops[col] != 0) ++col;
    screen.cursor_col = screen.tab_stops[col] == 0 ? col : screen.columns - 1;
    ClampColumn();
}

void SetTabStop() { session.screen.tab_stops[session.screen.cursor_col] = 0; }

void ClearTabStops() {
    ScreenBuffer& screen = session.screen;
    if (FirstParam() == 0) screen.tab_stops[screen.cursor_col] = 1;
    if (FirstParam() == 3) std::fill_n(screen.tab_stops, kTabColumns, BYTE{1});
}

// ---------------------------------------------------------------- control sequences

struct StepRow {
    int up, down, right, left;
};

// clang-format off
static const StepRow kSteps[] = {
    {1, 0, 0, 0},  // CSI A
    {0, 1, 0, 0},  // CSI B
    {0, 0, 1, 0},  // CSI C
    {0, 0, 0, 1},  // CSI D
};
// clang-format on

// Up stops at the top margin, or at row 1 if the cursor is above the margin. Down stops at the
// bottom margin, or at the last row if the cursor is below the margin. All four directions share
// one procedure that multiplies instead of branching: hosts mix the directions, so the processor
// would mispredict the branches.
void StepCursor(int direction) {
    if (session.parser.param_count != 1) return;
    const ScreenBuffer& screen = session.screen;
    const StepRow& step = kSteps[direction];
    const int distance = AtMost(AtLeast(FirstParam(), 1), kScreenColumns);
    const int row = screen.cursor_row;
    const int highest = row < screen.top_margin ? 1 : screen.top_margin;
    const int lowest = row > screen.bottom_margin ? screen.rows : screen.bottom_margin;
    const int above = 1 + step.up * (highest - 1);
    const int below = kRingLines - step.down * (kRingLines - lowest);
    const int moved = row + (step.down - step.up) * distance;
    PlaceCursor(AtMost(AtLeast(moved, above), below),
                screen.cursor_col + (step.right - step.left) * distance);
}

void CursorUp() { StepCursor(0); }
void CursorDown() { StepCursor(1); }
void CursorRight() { StepCursor(2); }
void CursorLeft() { StepCursor(3); }

// In origin mode, parameter 0 means the row above the scrolling region.
void CursorPositionTo() {
    const ScreenBuffer& screen = session.screen;
    int row = AtMost(FirstParam(), screen.rows);
    if (session.modes.origin_mode) row = AtMost(row + screen.top_margin - 1, screen.rows);
    session.parser.pending_wrap = 0;
    PlaceCursor(AtLeast(row, 1), SecondParam());
}

// With fewer than two parameters the region becomes the whole screen.
void SetScrollingRegion() {
    ScreenBuffer& screen = session.screen;
    int top = 1, bottom = screen.rows;
    if (session.parser.param_count >= 2) {
        top = FirstParam() == 0 ? 1 : FirstParam();
        bottom = SecondParam() == 0 ? 1 : SecondParam();
    }
    if (top < 1 || bottom > screen.rows || bottom <= top) return;
    screen.top_margin = top;
    screen.bottom_margin = bottom;
    MoveCursor(top, 1);
}

// ---------------------------------------------------------------- VT52

void Vt52Up() { MoveCursor(session.screen.cursor_row - 1, session.screen.cursor_col); }

void Vt52Down() {
    const ScreenBuffer& screen = session.screen;
    MoveCursor(AtMost(screen.cursor_row + 1, screen.rows), screen.cursor_col);
}

void Vt52Right() {
    ++session.screen.cursor_col;
    ClampColumn();
}

void Vt52Left() { Backspace(); }

void Vt52Home() { MoveCursor(1, 1); }

// ---------------------------------------------------------------- the saved cursor

void SaveCursor() {
    SavedCursor& saved = session.parser.saved;
    saved.attr = session.screen.current_attr;
    saved.pending_wrap = static_cast<int>(session.parser.pending_wrap);
    saved.col = session.screen.cursor_col;
    saved.row = session.screen.cursor_row;
    saved.g0_set = session.modes.g0_set;
    saved.g1_set = session.modes.g1_set;
    saved.graphic_active = session.modes.graphic_active;
}

void RestoreCursor() {
    const SavedCursor& saved = session.parser.saved;
    session.screen.current_attr = saved.attr;
    session.parser.pending_wrap = static_cast<DWORD>(saved.pending_wrap);
    session.modes.g0_set = saved.g0_set;
    session.modes.g1_set = saved.g1_set;
    session.modes.graphic_active = saved.graphic_active;
    MoveCursor(saved.row, saved.col);
}

// ---------------------------------------------------------------- the split regions

void ResetSplit() {
    const int rows = session.screen.rows;
    SplitRegions& split = session.split;
    split.active_region = 1;
    split.upper_height = rows;
    split.region_last_row = rows;
    split.upper = {1, 1, 1, rows, 0, 0};
    split.lower = {1, split.lower.row, rows, rows, 0, 0};
}

// The top margin does not change. If the upper region takes the whole screen, the lower one starts
// at row 1.
void DefineSplit() {
    SplitRegions& split = session.split;
    const int rows = session.screen.rows;
    const int height = std::min(session.parser.params[0], rows);
    if (height < 1) return;
    split.active_region = 1;
    split.upper_height = height;
    split.region_last_row = height;
    session.screen.bottom_margin = height;
    split.upper.col = 1;
    split.upper.row = 1;
    split.upper.bottom_margin = height;
    split.lower.col = 1;
    split.lower.row = height == rows ? 1 : rows;
    split.lower.top_margin = height == rows ? 1 : height + 1;
    MoveCursor(1, 1);
}

static void SaveRegion(RegionCursor* region) {
    const ScreenBuffer& screen = session.screen;
    *region = {screen.cursor_col,    screen.cursor_row,   screen.top_margin,
               screen.bottom_margin, screen.current_attr, session.parser.pending_wrap};
}

static void RestoreRegion(const RegionCursor& region) {
    session.screen.top_margin = region.top_margin;
    session.screen.bottom_margin = region.bottom_margin;
    session.screen.current_attr = region.attr;
    session.parser.pending_wrap = region.pending_wrap;
    MoveCursor(region.row, region.col);
}

void SwitchRegion() {
    SplitRegions& split = session.split;
    if (session.parser.param_count != 1) return;
    const int wanted = session.parser.params[0];
    if (wanted == 1 && split.active_region == 1) {
        SaveRegion(&split.upper);
        split.active_region = 0;
        split.region_last_row = session.screen.rows;
        RestoreRegion(split.lower);
    } else if (wanted == 0 && split.active_region == 0) {
        SaveRegion(&split.lower);
        split.active_region = 1;
        split.region_last_row = split.upper_height;
        RestoreRegion(split.upper);
    }
}

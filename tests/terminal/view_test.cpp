// SPDX-License-Identifier: MIT
// The terminal window: its class and messages, geometry, scrolling, following the cursor, and the
// requests for a repaint. Cells are 8 x 16; the bars are 10 wide and 12 high.
#include "ui/view/view.h"

#include "program_double.h"
#include "terminal/screen_buffer.h"

static WPARAM ScrollEvent(int code, int position = 0) {
    return static_cast<WPARAM>(code) | (static_cast<WPARAM>(position) << 16);
}

static int FlaggedRows() {
    int count = 0;
    for (int row = 1; row <= kScreenRows; ++row) count += session.screen.row_changed[row] == 1;
    return count;
}

// ---------------------------------------------------------------- class and messages

class WindowClass : public TerminalWindow {};

TEST_F(WindowClass, IsNamedClientWndAndReceivesDoubleTaps) {
    auto instance = reinterpret_cast<HINSTANCE>(uintptr_t{3});
    static std::u16string name;
    ASSERT_TRUE(RegisterClientWindow(instance));
    name = gdi.window_class.lpszClassName;
    EXPECT_EQ(name, u"ClientWnd");
    EXPECT_EQ(gdi.window_class.style, CS_DBLCLKS);
    EXPECT_EQ(gdi.window_class.hInstance, instance);
    EXPECT_EQ(gdi.window_class.hbrBackground, nullptr);
}

TEST_F(WindowClass, ARefusedRegistrationIsReported) {
    gdi.refuse_class = true;
    EXPECT_FALSE(RegisterClientWindow(nullptr));
}

TEST_F(WindowClass, CreationImportsThenLoadsThenBuildsTheStatusBar) {
    session.client_window = nullptr;
    EXPECT_EQ(SendToWindow(WM_CREATE), 0);
    EXPECT_EQ(program_calls,
              (Lines{"ImportConfigFile", "LoadSettings", "RebuildStatusBar", "UpdateStatus"}));
    EXPECT_EQ(session.client_window, TestWindow());
    EXPECT_EQ(session.view.face_count, 2);
}

TEST_F(WindowClass, AScreenBelow350PixelsIsNarrow) {
    const int widths[] = {240, 349, 350, 640};
    const DWORD narrow[] = {1, 1, 0, 0};
    for (size_t i = 0; i < 4; ++i) {
        gdi.screen_width = widths[i];
        SendToWindow(WM_CREATE);
        EXPECT_EQ(session.narrow_screen, narrow[i]) << widths[i];
    }
}

TEST_F(WindowClass, OtherMessagesGoToTheDefaultProcedure) {
    EXPECT_EQ(SendToWindow(WM_KEYDOWN), 4711);
    EXPECT_EQ(SendToWindow(WM_SIZE), 4711);
    EXPECT_EQ(gdi.default_messages, (std::vector<UINT>{WM_KEYDOWN, WM_SIZE}));
}

TEST_F(WindowClass, ErasingOnlyRequestsAFullRepaint) {
    EXPECT_EQ(SendToWindow(WM_ERASEBKGND), 1);
    EXPECT_TRUE(session.view.full_repaint);
    EXPECT_TRUE(gdi.drawn.empty());
    EXPECT_EQ(gdi.invalidations, 0);
}

// ---------------------------------------------------------------- geometry

class Geometry : public TerminalWindow {
  protected:
    static void ExpectView(int rows, int columns, bool vertical, bool horizontal) {
        EXPECT_EQ(session.view.visible_rows, rows);
        EXPECT_EQ(session.view.visible_columns, columns);
        EXPECT_EQ(gdi.bar_shown[SB_VERT], vertical);
        EXPECT_EQ(gdi.bar_shown[SB_HORZ], horizontal);
    }
};

TEST_F(Geometry, AWindowOf24By80CellsShowsNoBars) { ExpectView(24, 80, false, false); }

TEST_F(Geometry, ALargerWindowShowsAtMostOneRowMore) {
    Resize(4000, 3000);
    ExpectView(25, 80, false, false);
}

TEST_F(Geometry, ALowWindowGetsAVerticalBarOnly) {
    Resize(650, 200);
    ExpectView(12, 80, true, false);
}

TEST_F(Geometry, ANarrowWindowGetsAHorizontalBarOnly) {
    Resize(400, 396);
    ExpectView(24, 50, false, true);
}

TEST_F(Geometry, TheVerticalBarsWidthMayForceTheHorizontalBar) {
    Resize(640, 300);
    ExpectView(18, 78, true, true);
}

TEST_F(Geometry, TheHorizontalBarsHeightMayForceTheVerticalBar) {
    Resize(639, 384);
    ExpectView(23, 78, true, true);
}

TEST_F(Geometry, BarsThatAreShownDoNotCountAgainstAWindowThatFits) {
    Resize(300, 200);
    ExpectView(11, 36, true, true);
    Resize(640, 384);
    ExpectView(24, 80, false, false);
}

TEST_F(Geometry, TheBarsGetRangePageAndPosition) {
    session.view.view_top = 5;
    session.view.view_left = 7;
    Resize(300, 200);
    EXPECT_EQ(gdi.bars[SB_VERT].nMin, 0);
    EXPECT_EQ(gdi.bars[SB_VERT].nMax, 23);
    EXPECT_EQ(gdi.bars[SB_VERT].nPage, 11u);
    EXPECT_EQ(gdi.bars[SB_VERT].nPos, 0);
    EXPECT_EQ(gdi.bars[SB_HORZ].nMin, 0);
    EXPECT_EQ(gdi.bars[SB_HORZ].nMax, 79);
    EXPECT_EQ(gdi.bars[SB_HORZ].nPage, 36u);
    EXPECT_EQ(gdi.bars[SB_HORZ].nPos, 0);
    EXPECT_EQ(session.view.view_top, 0);
    EXPECT_EQ(session.view.view_left, 0);
}

TEST_F(Geometry, TheStatusBarsHeightIsReserved) {
    session.status_height = 20;
    Resize(650, 384);
    ExpectView(22, 80, true, false);
}

TEST_F(Geometry, RowsUnderTheInputPanelAreNotVisible) {
    session.view.covered_rows = 5;
    Resize(650, 384);
    ExpectView(19, 80, true, false);
    session.view.covered_rows = 50;
    Resize(650, 384);
    ExpectView(0, 80, true, false);
}

TEST_F(Geometry, CoveredRowsAreSubtractedFromAllRowsOfATallWindow) {
    session.view.covered_rows = 3;
    Resize(650, 30 * 16);
    ExpectView(25, 80, false, false);
    session.view.covered_rows = 8;
    Resize(650, 30 * 16);
    ExpectView(22, 80, true, false);
}

TEST_F(Geometry, TheViewFollowsTheCursorAtOnceWhileRowsAreCoveredAndOnlyThen) {
    session.screen.cursor_row = 20;
    session.screen.cursor_col = 70;
    Resize(330, 204);
    EXPECT_EQ(session.view.view_top, 0);
    EXPECT_EQ(session.view.view_left, 0);
    session.view.covered_rows = 1;
    Resize(330, 204);
    EXPECT_EQ(session.view.visible_rows, 11);
    EXPECT_EQ(session.view.view_top, 20 - 11);
    EXPECT_EQ(session.view.view_left, 70 - 40);
    session.settings.followcursor = 0;
    Resize(330, 204);
    EXPECT_EQ(session.view.view_top, 0);
    EXPECT_EQ(session.view.view_left, 0);
}

TEST_F(Geometry, NoSizeOfTheWindowGivesNegativeCells) {
    session.status_height = 20;
    const int widths[] = {0, 1, 5, 9, 10, 11, 100, 4000};
    const int heights[] = {0, 1, 12, 19, 20, 21, 80, 3000};
    for (int width : widths) {
        for (int height : heights) {
            Resize(width, height);
            EXPECT_GE(session.view.visible_rows, 0);
            EXPECT_LE(session.view.visible_rows, 25);
            EXPECT_GE(session.view.visible_columns, 0);
            EXPECT_LE(session.view.visible_columns, 80);
            FollowCursor();
            SendToWindow(WM_VSCROLL, ScrollEvent(SB_PAGEDOWN));
            SendToWindow(WM_HSCROLL, ScrollEvent(SB_LINEDOWN));
            Paint();
        }
    }
}

TEST_F(Geometry, UnmeasuredCellsShowNothing) {
    session.view.cell_height = session.view.cell_width = 0;
    MeasureView();
    EXPECT_EQ(session.view.visible_rows, 0);
    EXPECT_EQ(session.view.visible_columns, 0);
}

TEST_F(Geometry, IsMeasuredByTheFirstPaintAfterARequestOnly) {
    gdi.window = {0, 0, 300, 200};
    Paint();
    ExpectView(24, 80, false, false);
    LayoutTerminal();
    EXPECT_EQ(gdi.scroll_calls, 0);
    Paint();
    EXPECT_EQ(gdi.scroll_calls, 2);
    Paint();
    EXPECT_EQ(gdi.scroll_calls, 2);
}

TEST_F(Geometry, TheStatusBarIsPlacedAgainAsBarsComeAndGo) {
    Resize(300, 200);
    EXPECT_EQ(program_calls, Lines{"PlaceStatusBar"});
}

// ---------------------------------------------------------------- scrolling

class Scrolling : public TerminalWindow {
  protected:
    void SetUp() override {
        TerminalWindow::SetUp();
        Resize(330, 204);  // 12 rows by 40 columns, both bars
        ASSERT_EQ(session.view.visible_rows, 12);
        ASSERT_EQ(session.view.visible_columns, 40);
        gdi.invalidations = gdi.scroll_calls = 0;
    }
    static void Vertical(int code, int position = 0) {
        EXPECT_EQ(SendToWindow(WM_VSCROLL, ScrollEvent(code, position)), 0);
    }
    static void Horizontal(int code, int position = 0) {
        EXPECT_EQ(SendToWindow(WM_HSCROLL, ScrollEvent(code, position)), 0);
    }
};

TEST_F(Scrolling, OneLineDownShowsRows3To14) {
    for (int row = 1; row <= 24; ++row) Put(row, "row " + std::to_string(row) + ".");
    Vertical(SB_LINEDOWN);
    EXPECT_EQ(session.view.view_top, 2);
    Paint();
    EXPECT_NE(DrawnInRow(1, 16).at(0).find("'row 3."), std::string::npos);
    EXPECT_NE(DrawnInRow(12, 16).at(0).find("'row 14."), std::string::npos);
    EXPECT_TRUE(DrawnInRow(13, 16).empty());
}

TEST_F(Scrolling, LinesAreTwoRowsAndPagesAreTheWindow) {
    Vertical(SB_PAGEDOWN);
    EXPECT_EQ(session.view.view_top, 12);
    Vertical(SB_LINEUP);
    EXPECT_EQ(session.view.view_top, 10);
    Vertical(SB_LINEDOWN);
    EXPECT_EQ(session.view.view_top, 12);
    Vertical(SB_PAGEUP);
    EXPECT_EQ(session.view.view_top, 0);
}

TEST_F(Scrolling, TheThumbSetsThePosition) {
    Vertical(SB_THUMBPOSITION, 7);
    EXPECT_EQ(session.view.view_top, 7);
    EXPECT_EQ(gdi.bars[SB_VERT].nPos, 7);
    EXPECT_EQ(gdi.bars[SB_VERT].nMax, 23);
}

TEST_F(Scrolling, OtherCodesDoNothing) {
    for (int code : {SB_THUMBTRACK, SB_ENDSCROLL, 6, 7, 9, 65535}) Vertical(code, 5);
    EXPECT_EQ(session.view.view_top, 0);
    EXPECT_EQ(gdi.invalidations, 0);
}

TEST_F(Scrolling, TheViewStaysOnTheScreen) {
    Vertical(SB_LINEUP);
    EXPECT_EQ(session.view.view_top, 0);
    Vertical(SB_THUMBPOSITION, 65535);
    EXPECT_EQ(session.view.view_top, 12);
    Vertical(SB_LINEDOWN);
    EXPECT_EQ(session.view.view_top, 12);
}

TEST_F(Scrolling, AChangeSetsThePositionAndRepaintsAll) {
    Vertical(SB_LINEDOWN);
    EXPECT_EQ(gdi.scroll_calls, 1);
    EXPECT_EQ(gdi.bars[SB_VERT].nPos, 2);
    EXPECT_EQ(gdi.invalidations, 1);
    EXPECT_TRUE(session.view.full_repaint);
}

TEST_F(Scrolling, NoChangeRepaintsNothing) {
    Vertical(SB_LINEUP);
    Vertical(SB_THUMBPOSITION, 0);
    EXPECT_EQ(gdi.scroll_calls, 0);
    EXPECT_EQ(gdi.invalidations, 0);
}

TEST_F(Scrolling, TheHorizontalBarMovesTheColumns) {
    Put(1, std::string(40, 'a') + std::string(40, 'b'));
    Horizontal(SB_LINEDOWN);
    EXPECT_EQ(session.view.view_left, 2);
    Horizontal(SB_PAGEDOWN);
    EXPECT_EQ(session.view.view_left, 40);
    EXPECT_EQ(gdi.bars[SB_HORZ].nPos, 40);
    session.screen.cursor_row = 2;
    Paint();
    EXPECT_EQ(DrawnInRow(1, 16),
              Lines{"text 0,0 320x16 '" + std::string(40, 'b') + "' 111111 on eeeeee"});
    Horizontal(SB_THUMBPOSITION, 3);
    EXPECT_EQ(session.view.view_left, 3);
    Horizontal(SB_PAGEUP);
    EXPECT_EQ(session.view.view_left, 0);
    EXPECT_EQ(session.view.view_top, 0);
}

// ---------------------------------------------------------------- following the cursor

class FollowingTheCursor : public Scrolling {
  protected:
    static void To(int row, int column) {
        session.screen.cursor_row = row;
        session.screen.cursor_col = column;
        FollowCursor();
    }
};

TEST_F(FollowingTheCursor, InsideTheViewNothingMoves) {
    Paint();
    To(1, 1);
    To(12, 40);
    EXPECT_EQ(session.view.view_top, 0);
    EXPECT_EQ(session.view.view_left, 0);
    EXPECT_EQ(gdi.scroll_calls, 0);
    EXPECT_EQ(FlaggedRows(), 12);  // the rows that were never visible
}

TEST_F(FollowingTheCursor, BelowTheViewTheCursorRowBecomesTheLast) {
    Paint();
    To(13, 1);
    EXPECT_EQ(session.view.view_top, 1);
    EXPECT_EQ(gdi.bars[SB_VERT].nPos, 1);
    EXPECT_EQ(FlaggedRows(), 24);
    EXPECT_GE(gdi.invalidations, 1);
    To(24, 1);
    EXPECT_EQ(session.view.view_top, 12);
}

TEST_F(FollowingTheCursor, AboveTheViewTheCursorRowBecomesTheLastToo) {
    To(24, 1);
    To(12, 1);
    EXPECT_EQ(session.view.view_top, 0);
    session.view.view_top = 12;
    To(5, 1);
    EXPECT_EQ(session.view.view_top, 0);
}

TEST_F(FollowingTheCursor, ColumnsFollowTheSameWay) {
    To(1, 41);
    EXPECT_EQ(session.view.view_left, 1);
    EXPECT_EQ(gdi.bars[SB_HORZ].nPos, 1);
    To(1, 80);
    EXPECT_EQ(session.view.view_left, 40);
    To(1, 41);
    EXPECT_EQ(session.view.view_left, 40);
    To(1, 40);
    EXPECT_EQ(session.view.view_left, 0);
}

TEST_F(FollowingTheCursor, TheBackgroundIsFilledSoThatHalfACellLeavesNothing) {
    To(1, 41);
    EXPECT_EQ(Paint().at(0).substr(0, 5), "fill ");
}

TEST_F(FollowingTheCursor, ACursorBelowTheScreenTakesTheViewPastItsEnd) {
    for (int row = 25; row <= 49; ++row) {
        To(row, 1);
        EXPECT_EQ(session.view.view_top, row - 12);
        Paint();
        for (int i = 1; i <= 12; ++i) {
            EXPECT_EQ(DrawnInRow(i, 16).empty(), session.view.view_top + i > 24);
        }
    }
    To(1, 1);
    EXPECT_EQ(session.view.view_top, 0);
}

TEST_F(FollowingTheCursor, ScrollingOnFromPastTheEndComesBackAndOtherCodesDoNot) {
    To(49, 1);
    ASSERT_EQ(session.view.view_top, 37);
    gdi.invalidations = gdi.scroll_calls = 0;
    for (int code : {SB_ENDSCROLL, SB_THUMBTRACK, 6, 7, 9}) {
        Vertical(code, 5);
        EXPECT_EQ(session.view.view_top, 37) << code;
    }
    EXPECT_EQ(gdi.invalidations, 0);
    EXPECT_EQ(gdi.scroll_calls, 0);
    Vertical(SB_LINEUP);
    EXPECT_EQ(session.view.view_top, 12);
    EXPECT_EQ(gdi.bars[SB_VERT].nPos, 12);
}

TEST_F(Scrolling, CoveringRowsKeepsTheViewAndUncoveringResetsIt) {
    Vertical(SB_THUMBPOSITION, 7);
    Horizontal(SB_THUMBPOSITION, 9);
    for (int rows : {1, 5}) {
        CoverRows(rows);
        EXPECT_EQ(session.view.covered_rows, rows);
        EXPECT_EQ(session.view.view_top, 7);
        EXPECT_EQ(session.view.view_left, 9);
    }
    CoverRows(0);
    EXPECT_EQ(session.view.covered_rows, 0);
    EXPECT_EQ(session.view.view_top, 0);
    EXPECT_EQ(session.view.view_left, 0);
}

// ---------------------------------------------------------------- repaint requests

class RepaintRequests : public TerminalWindow {};

TEST_F(RepaintRequests, RefreshAsksForTheFlaggedRowsWithoutErasing) {
    for (const int row : {3, 4, 5, 9, 24}) MarkRows(row, row);
    RefreshTerminal();
    EXPECT_EQ(gdi.invalid, (Lines{"0,32 640x48", "0,128 640x16", "0,368 640x16"}));
    EXPECT_EQ(gdi.erasing_invalidations, 0);
    EXPECT_FALSE(session.view.full_repaint);
    EXPECT_EQ(FlaggedRows(), 5);
}

TEST_F(RepaintRequests, RefreshAsksForNothingWhereNothingChanged) {
    RefreshTerminal();
    EXPECT_TRUE(gdi.invalid.empty());
}

TEST_F(RepaintRequests, RefreshAsksForTheRowsThatTheCursorLeftAndReached) {
    session.screen.cursor_row = 7;
    RefreshTerminal();
    EXPECT_EQ(gdi.invalid, (Lines{"0,0 640x16", "0,96 640x16"}));
    Paint();
    gdi.invalid.clear();
    session.screen.cursor_col = 5;
    RefreshTerminal();
    EXPECT_EQ(gdi.invalid, Lines{"0,96 640x16"});
}

TEST_F(RepaintRequests, RefreshAsksForTheCursorsRowWhenItIsHiddenOrShown) {
    for (const DWORD visible : {0u, 1u}) {
        gdi.invalid.clear();
        session.modes.cursor_visible = visible;
        RefreshTerminal();
        EXPECT_EQ(gdi.invalid, Lines{"0,0 640x16"}) << visible;
        Paint();
        gdi.invalid.clear();
        RefreshTerminal();
        EXPECT_TRUE(gdi.invalid.empty()) << visible;
    }
}

TEST_F(RepaintRequests, RefreshAsksOnlyForRowsOfTheWindow) {
    Resize(330, 204);  // 12 rows by 40 columns
    SendToWindow(WM_VSCROLL, ScrollEvent(SB_LINEDOWN));
    SendToWindow(WM_HSCROLL, ScrollEvent(SB_LINEDOWN));
    Paint();
    gdi.invalid.clear();
    for (const int row : {1, 3, 14, 15}) MarkRows(row, row);
    RefreshTerminal();
    EXPECT_EQ(gdi.invalid, (Lines{"0,0 624x16", "0,176 624x16"}));
}

TEST_F(RepaintRequests, RefreshAsksForTheWholeWindowWhereAPaintDrawsAll) {
    session.connected = 0;
    RefreshTerminal();
    session.connected = 1;
    session.screen.selection_active = 1;
    RefreshTerminal();
    session.screen.selection_active = 0;
    session.view.full_repaint = 1;
    RefreshTerminal();
    EXPECT_EQ(gdi.invalid, (Lines{"all", "all", "all"}));
}

TEST_F(RepaintRequests, APaintMayDrawOnTheRowsThatChangedSinceTheLastRequest) {
    MarkRows(5, 5);
    Paint();
    EXPECT_EQ(gdi.invalid, Lines{"0,64 640x16"});
}

TEST_F(RepaintRequests, RepaintAsksForAllRowsAndTheBackground) {
    RepaintTerminal();
    EXPECT_EQ(gdi.invalidations, 1);
    EXPECT_TRUE(session.view.full_repaint);
    EXPECT_EQ(FlaggedRows(), 24);
}

TEST_F(RepaintRequests, LayoutAsksForTheGeometryToo) {
    LayoutTerminal();
    EXPECT_EQ(gdi.invalidations, 1);
    EXPECT_TRUE(session.view.geometry_pending);
    EXPECT_TRUE(session.view.full_repaint);
}

TEST_F(RepaintRequests, ATickTogglesThePhaseAndAsksForNothingWithoutBlinkingCells) {
    BlinkTick();
    EXPECT_EQ(session.view.blink_phase, 1u);
    BlinkTick();
    EXPECT_EQ(session.view.blink_phase, 0u);
    EXPECT_EQ(gdi.invalidations, 0);
}

TEST_F(RepaintRequests, ATickFlagsOnlyTheBlinkingRows) {
    Put(3, "x", kCellBlink);
    Put(9, "y", kCellBlink);
    Paint();
    gdi.invalid.clear();
    BlinkTick();
    EXPECT_EQ(gdi.invalid, (Lines{"0,32 640x16", "0,128 640x16"}));
    EXPECT_EQ(FlaggedRows(), 2);
    EXPECT_EQ(session.screen.row_changed[3], 1u);
    EXPECT_EQ(session.screen.row_changed[9], 1u);
    EXPECT_FALSE(session.view.full_repaint);
}

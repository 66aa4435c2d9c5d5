// SPDX-License-Identifier: MIT
// Painting: which rows, which runs, which colours, the cursor, the underline, the selection.
#include "program_double.h"
#include "terminal/actions.h"
#include "terminal/screen_buffer.h"
#include "ui/view/view.h"

class Painting : public TerminalWindow {
  protected:
    static std::vector<int> PaintedRows() {
        Paint();
        std::vector<int> rows;
        for (int row = 1; row <= 25; ++row) {
            if (!DrawnInRow(row, 16).empty()) rows.push_back(row);
        }
        return rows;
    }
    static bool Filled() { return !gdi.drawn.empty() && gdi.drawn[0].what.rfind("fill", 0) == 0; }
    // A run at column 1 of row 3, as the drawing call prints it.
    static std::string Run(const std::string& text, const std::string& colors, int column = 1) {
        return "text " + std::to_string((column - 1) * 8) + ",32 " +
               std::to_string(text.size() * 8) + "x16 '" + text + "' " + colors;
    }
    static std::string Padded(std::string text, size_t blanks) { return text.append(blanks, ' '); }
    // What row 3 draws, without the blanks that end it.
    static Lines Row3() {
        Lines row = PaintRow(3);
        if (!row.empty()) row.pop_back();
        return row;
    }
};

static const char* kPlain = "111111 on eeeeee";
static std::vector<int> AllRows() {
    std::vector<int> rows;
    for (int row = 1; row <= 24; ++row) rows.push_back(row);
    return rows;
}

// ---------------------------------------------------------------- which rows

TEST_F(Painting, OnlyFlaggedRowsAndTheCursorRowArePainted) {
    MarkRow(5);
    MarkRow(24);
    EXPECT_EQ(PaintedRows(), (std::vector<int>{1, 5, 24}));
    EXPECT_FALSE(Filled());
}

TEST_F(Painting, FlagsAreClearedByThePaint) {
    MarkRow(5);
    Paint();
    EXPECT_EQ(session.screen.row_changed[5], 0u);
    EXPECT_EQ(PaintedRows(), std::vector<int>{1});
}

TEST_F(Painting, TheRowTheCursorLeftIsPaintedOnceMore) {
    session.screen.cursor_row = 7;
    EXPECT_EQ(PaintedRows(), (std::vector<int>{1, 7}));
    EXPECT_EQ(PaintedRows(), std::vector<int>{7});
}

TEST_F(Painting, AFullRepaintFillsTheClientAreaAndPaintsAllRows) {
    RepaintTerminal();
    EXPECT_EQ(PaintedRows(), AllRows());
    EXPECT_EQ(gdi.drawn[0].what, "fill 0,0 640x384 eeeeee");
    EXPECT_FALSE(session.view.full_repaint);
    EXPECT_EQ(PaintedRows(), std::vector<int>{1});
}

TEST_F(Painting, WithoutASessionEveryPaintIsAFullOne) {
    session.connected = 0;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(PaintedRows(), AllRows());
        EXPECT_TRUE(Filled());
    }
}

TEST_F(Painting, AnEraseDuringBeginPaintMakesThePaintAFullOne) {
    gdi.erase_due = true;
    EXPECT_EQ(PaintedRows(), AllRows());
    EXPECT_TRUE(Filled());
    EXPECT_EQ(PaintedRows(), std::vector<int>{1});
}

TEST_F(Painting, EveryGeometryIsFollowedByAFullRepaint) {
    session.view.geometry_pending = 1;
    EXPECT_EQ(PaintedRows(), AllRows());
    EXPECT_TRUE(Filled());
}

TEST_F(Painting, AMissingFontIsMadeByThePaint) {
    DeleteObject(session.view.font);
    session.view.font = nullptr;
    EXPECT_EQ(PaintedRows(), AllRows());
    EXPECT_EQ(gdi.fonts_made.size(), 1u);
    EXPECT_NE(session.view.font, nullptr);
}

TEST_F(Painting, RowsPast24AreNeverPainted) {
    Resize(700, 500);
    ASSERT_EQ(session.view.visible_rows, 25);
    session.screen.row_changed[25] = 1;
    session.screen.cursor_row = 25;
    RepaintTerminal();
    EXPECT_EQ(PaintedRows(), AllRows());
}

TEST_F(Painting, ACursorBelowTheScreenIsNotDrawn) {
    for (int row = 25; row <= 49; ++row) {
        session.screen.cursor_row = row;
        RepaintTerminal();
        for (const std::string& call : Paint()) EXPECT_EQ(call.find("cccccc"), std::string::npos);
    }
}

TEST_F(Painting, ASelectionPaintsEveryVisibleRow) {
    SetSelection(2, 3, 4, 3);
    EXPECT_EQ(PaintedRows(), AllRows());
    EXPECT_FALSE(Filled());
    EXPECT_EQ(PaintedRows(), AllRows());
    SetSelection(0, 0, 0, 0);
    EXPECT_EQ(PaintedRows(), std::vector<int>{1});
}

TEST_F(Painting, WithoutADeviceContextNothingCountsAsPainted) {
    RepaintTerminal();
    gdi.refuse_paint = true;
    EXPECT_EQ(Paint(), Lines{});
    gdi.refuse_paint = false;
    EXPECT_EQ(PaintedRows(), AllRows());
    EXPECT_TRUE(Filled());
}

// ---------------------------------------------------------------- runs

TEST_F(Painting, AWholeRowOfOneAttributeIsOneRun) {
    EXPECT_EQ(PaintRow(3), Lines{Run(std::string(80, ' '), kPlain)});
}

TEST_F(Painting, ACommaBIsDrawnAsThreePieces) {
    Put(3, "a,b", 0);
    SetCell(3, 4, 'z' | kCellBold);
    EXPECT_EQ(PaintRow(3),
              (Lines{Run("a", kPlain), Run(",", kPlain, 2), Run("b", kPlain, 3),
                     Run("z", "222222 on eeeeee", 4), Run(std::string(76, ' '), kPlain, 5)}));
}

TEST_F(Painting, CommasAndUnderscoresAreDrawnSeparately) {
    Put(3, ",,_x");
    Lines row = PaintRow(3);
    EXPECT_EQ(row, (Lines{Run(",", kPlain), Run(",", kPlain, 2), Run("_", kPlain, 3),
                          Run(Padded("x", 76), kPlain, 4)}));
}

TEST_F(Painting, ARunEndsWhereAnyAttributeChanges) {
    const DWORD bits[] = {kCellBold, kCellUnderline, kCellBlink, kCellReverse, kCellProtected};
    for (DWORD bit : bits) {
        Put(3, "ab");
        SetCell(3, 3, 'c' | bit);
        Lines row = PaintRow(3);
        ASSERT_GE(row.size(), 3u);
        EXPECT_EQ(row[0], Run("ab", kPlain)) << bit;
    }
}

TEST_F(Painting, ARunMayReachTheLastColumn) {
    SetCell(3, 80, 'x');
    EXPECT_EQ(PaintRow(3), Lines{Run(std::string(79, ' ') + "x", kPlain)});
    SetCell(3, 80, ',');
    EXPECT_EQ(PaintRow(3), (Lines{Run(std::string(79, ' '), kPlain), Run(",", kPlain, 80)}));
}

TEST_F(Painting, BytesAreShownThroughTheAnsiCodePage) {
    Put(3, "\x80\xe9");
    EXPECT_EQ(PaintRow(3)[0].substr(0, 29), "text 0,32 640x16 '<20ac><e9> ");
}

TEST_F(Painting, AColumnStaysInItsCellInACodePageOfTwoBytes) {
    gdi.two_byte_page = true;
    Put(3, "\x82\xa0|\x83\x41.");
    EXPECT_EQ(PaintRow(3)[0].substr(0, 25), "text 0,32 640x16 '?<a0>|?");
    SetCell(4, 80, 0x82);
    SetCell(4, 79, 'x');
    EXPECT_NE(PaintRow(4)[0].find("x?'"), std::string::npos);
}

TEST_F(Painting, AByteWithoutACharacterInTheUtf8PageIsAQuestionMark) {
    gdi.utf8_page = true;
    Put(3, "a\xc3\xa4|\x80");
    EXPECT_EQ(PaintRow(3)[0].substr(0, 23), "text 0,32 640x16 'a??|?");
}

TEST_F(Painting, GlyphsAreDrawnOnTheCellGridWhateverTheFont) {
    gdi.sample_width = [](const LOGFONTW&) { return 117; };  // 11 a cell
    DeleteObject(session.view.font);
    session.view.font = nullptr;
    Paint();
    Put(3, "ab", kCellBold);
    EXPECT_EQ(PaintRow(3)[0], "text 0,32 22x16 'ab' 222222 on eeeeee");
    EXPECT_EQ(PaintRow(3)[1].substr(0, 16), "text 22,32 858x1");
}

// ---------------------------------------------------------------- colours

TEST_F(Painting, BoldCellsTakeTheBoldColour) {
    Put(3, "x", kCellBold);
    EXPECT_EQ(Row3(), Lines{Run("x", "222222 on eeeeee")});
}

TEST_F(Painting, ReverseCellsSwapTheirColours) {
    Put(3, "x", kCellReverse);
    EXPECT_EQ(Row3(), Lines{Run("x", "eeeeee on 111111")});
    Put(3, "x", kCellReverse | kCellBold);
    EXPECT_EQ(Row3(), Lines{Run("x", "eeeeee on 222222")});
}

TEST_F(Painting, ABoldBlinkingCellIsBoldAndVanishesOnAlternateTicks) {
    Put(3, "x", kCellBold | kCellBlink);
    const char* shown = "222222 on eeeeee";
    const char* vanished = "eeeeee on eeeeee";
    EXPECT_EQ(Row3(), Lines{Run("x", shown)});
    for (const char* colors : {vanished, shown, vanished, shown}) {
        BlinkTick();
        Paint();
        EXPECT_EQ(DrawnInRow(3, 16).at(0), Run("x", colors));
    }
}

TEST_F(Painting, ABlinkingReverseCellVanishesToo) {
    Put(3, "x", kCellReverse | kCellBlink);
    EXPECT_EQ(Row3(), Lines{Run("x", "eeeeee on 111111")});
    session.view.blink_phase = 1;
    EXPECT_EQ(Row3(), Lines{Run("x", "eeeeee on eeeeee")});
}

TEST_F(Painting, CellsThatDoNotBlinkIgnoreThePhase) {
    session.view.blink_phase = 1;
    Put(3, "x", kCellBold);
    EXPECT_EQ(Row3(), Lines{Run("x", "222222 on eeeeee")});
}

TEST_F(Painting, AProtectedCellLooksPlain) {
    Put(3, "x", kCellProtected);
    EXPECT_EQ(Row3(), Lines{Run("x", kPlain)});
}

TEST_F(Painting, AReversedScreenIsNotDrawnReversed) {
    session.modes.screen_reverse = 1;
    Put(3, "x", kCellBold);
    EXPECT_EQ(Row3(), Lines{Run("x", "222222 on eeeeee")});
}

TEST_F(Painting, DoubleSizeLinesAreDrawnAsCellsAsUsual) {
    Put(3, "x", kCellBold);
    SetDoubleTop(3);
    EXPECT_EQ(Row3(), Lines{Run("x", "222222 on eeeeee")});
}

// ---------------------------------------------------------------- cursor

class Cursor : public Painting {
  protected:
    void SetUp() override {
        Painting::SetUp();
        session.screen.cursor_row = 3;
        session.screen.cursor_col = 2;
    }
};

TEST_F(Cursor, IsABlockOfItsOwnColourWithTheCharacterInIt) {
    Put(3, "abc");
    EXPECT_EQ(Row3(), (Lines{Run("a", kPlain), Run("b", "111111 on cccccc", 2)}));
}

TEST_F(Cursor, KeepsTheTextColourOfItsCell) {
    Put(3, "abc", kCellBold);
    EXPECT_EQ(Row3()[1], Run("b", "222222 on cccccc", 2));
    Put(3, "abc", kCellReverse);
    EXPECT_EQ(Row3()[1], Run("b", "eeeeee on cccccc", 2));
}

TEST_F(Cursor, IsNeverStoredInTheScreen) {
    Put(3, "abc");
    Paint();
    EXPECT_EQ(GetCell(3, 2), DWORD{'b'});
}

TEST_F(Cursor, NeverBlinksEvenWithTheSetting) {
    session.settings.blink = 1;
    Put(3, "abc");
    for (int tick = 0; tick < 4; ++tick) {
        BlinkTick();
        EXPECT_EQ(Row3()[1], Run("b", "111111 on cccccc", 2));
    }
}

TEST_F(Cursor, IsNotDrawnWhileTheHostHidesIt) {
    session.modes.cursor_visible = 0;
    Put(3, "abc");
    EXPECT_EQ(PaintRow(3), Lines{Run(Padded("abc", 77), kPlain)});
}

TEST_F(Cursor, IsDrawnOnTheLastColumnToo) {
    session.screen.cursor_col = 80;
    EXPECT_EQ(PaintRow(3),
              (Lines{Run(std::string(79, ' '), kPlain), Run(" ", "111111 on cccccc", 80)}));
}

TEST_F(Cursor, LeftOfTheViewIsNotDrawn) {
    session.view.view_left = 10;
    EXPECT_EQ(PaintRow(3), Lines{Run(std::string(70, ' '), kPlain)});
}

// ---------------------------------------------------------------- underline

TEST_F(Painting, AnUnderlinedRunGetsALineAcrossAtTheDescent) {
    ASSERT_EQ(session.view.underline_offset, 4);
    Put(3, "abc", kCellUnderline);
    EXPECT_EQ(Row3(), (Lines{Run("abc", kPlain), "line 0,44 24,44 111111"}));
}

TEST_F(Painting, TheUnderlineTakesTheTextColour) {
    Put(3, "a", kCellUnderline | kCellBold);
    EXPECT_EQ(Row3()[1], "line 0,44 8,44 222222");
    Put(3, "a", kCellUnderline | kCellReverse);
    EXPECT_EQ(Row3()[1], "line 0,44 8,44 eeeeee");
    session.view.blink_phase = 1;
    Put(3, "a", kCellUnderline | kCellBlink);
    EXPECT_EQ(Row3()[1], "line 0,44 8,44 eeeeee");
}

TEST_F(Painting, CommaAndUnderscoreAreNotUnderlined) {
    Put(3, "a,_b", kCellUnderline);
    EXPECT_EQ(Row3(), (Lines{Run("a", kPlain), "line 0,44 8,44 111111", Run(",", kPlain, 2),
                             Run("_", kPlain, 3), Run("b", kPlain, 4), "line 24,44 32,44 111111"}));
}

TEST_F(Cursor, IsNotUnderlined) {
    Put(3, "abc", kCellUnderline);
    EXPECT_EQ(Row3(),
              (Lines{Run("a", kPlain), "line 0,44 8,44 111111", Run("b", "111111 on cccccc", 2),
                     Run("c", kPlain, 3), "line 16,44 24,44 111111"}));
}

TEST_F(Painting, TheUnderlinesPenIsDeleted) {
    Put(3, "abc", kCellUnderline);
    PaintRow(3);
    EXPECT_EQ(gdi.pens_made, 1);
    EXPECT_EQ(LiveObjects("pen"), 0);
}

// ---------------------------------------------------------------- selection

TEST_F(Painting, SelectedCellsAreShownReversed) {
    Put(3, "abcdef");
    SetSelection(2, 3, 4, 3);
    Lines row = PaintRow(3);
    EXPECT_EQ(row, (Lines{Run("a", kPlain), Run("bcd", "eeeeee on 111111", 2),
                          Run(Padded("ef", 74), kPlain, 5)}));
    EXPECT_EQ(GetCell(3, 2), DWORD{'b'});
}

TEST_F(Painting, ASelectedReverseCellLooksAsItDidBefore) {
    Put(3, "abcd", kCellReverse | kCellBold);
    SetSelection(2, 3, 3, 3);
    EXPECT_EQ(GetPaintRow(3)[2], 'b' | kCellReverse | kCellBold);
    EXPECT_EQ(Row3(), Lines{Run("abcd", "eeeeee on 222222")});
    EXPECT_EQ(GetCell(3, 2), 'b' | kCellReverse | kCellBold);
}

TEST_F(Painting, ACursorInTheSelectionStaysABlock) {
    Put(3, "abc");
    session.screen.cursor_row = 3;
    session.screen.cursor_col = 2;
    SetSelection(1, 3, 3, 3);
    EXPECT_EQ(Row3(), (Lines{Run("a", "eeeeee on 111111"), Run("b", "eeeeee on cccccc", 2),
                             Run("c", "eeeeee on 111111", 3)}));
}

TEST_F(Painting, ASelectionWithoutAStartColumnIsDropped) {
    session.screen.selection_active = 1;
    session.screen.selection_start_col = 0;
    Paint();
    EXPECT_FALSE(session.screen.selection_active);
}

// ---------------------------------------------------------------- cost

TEST_F(Painting, APlainScreenCostsOneCallARow) {
    RepaintTerminal();
    EXPECT_EQ(Paint().size(), 1u + 24u + 1u);  // background, rows, and the cursor's own cell
}

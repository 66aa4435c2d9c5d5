// SPDX-License-Identifier: MIT
// The DEC special graphics glyphs: the exact lines of each code. The cell under test is column 3 of
// row 2: left 16, right 24, top 16, bottom 32, centre 20,24.
#include "program_double.h"
#include "terminal/screen_buffer.h"
#include "ui/view/view.h"

static const char* kBlankCell = "text 16,16 8x16 ' ' 111111 on eeeeee";

class LineDrawing : public TerminalWindow {
  protected:
    // What is drawn for the cell, without the rest of the row.
    static Lines Glyph(BYTE code, DWORD attributes = 0) {
        SetCell(2, 3, code | kCellGraphic | attributes);
        Lines row = PaintRow(2);
        return Lines(row.begin() + 1, row.end() - 1);
    }
};

struct GlyphLines {
    char code;
    Lines lines;
};

TEST_F(LineDrawing, EachCodeDrawsItsLinesOnABlankCell) {
    const std::vector<GlyphLines> expected = {
        {'j', {"line 16,24 21,24 111111", "line 20,16 20,25 111111"}},
        {'k', {"line 16,24 21,24 111111", "line 20,24 20,32 111111"}},
        {'l', {"line 20,24 24,24 111111", "line 20,24 20,32 111111"}},
        {'m', {"line 20,16 20,25 111111", "line 20,24 24,24 111111"}},
        {'n', {"line 16,24 24,24 111111", "line 20,16 20,32 111111"}},
        {'o', {"line 16,16 24,16 111111"}},
        {'p', {"line 16,24 24,24 111111"}},
        {'q', {"line 16,24 24,24 111111"}},
        {'r', {"line 16,24 24,24 111111"}},
        {'s', {"line 16,30 24,30 111111"}},
        {'t', {"line 20,16 20,32 111111", "line 20,24 24,24 111111"}},
        {'u', {"line 20,16 20,32 111111", "line 16,24 21,24 111111"}},
        {'v', {"line 16,24 24,24 111111", "line 20,16 20,25 111111"}},
        {'w', {"line 16,24 24,24 111111", "line 20,24 20,32 111111"}},
        {'x', {"line 20,16 20,32 111111"}},
    };
    for (const GlyphLines& glyph : expected) {
        Lines all = {kBlankCell};
        all.insert(all.end(), glyph.lines.begin(), glyph.lines.end());
        EXPECT_EQ(Glyph(static_cast<BYTE>(glyph.code)), all) << glyph.code;
    }
}

TEST_F(LineDrawing, CheckerboardIsAVerticalLineAtEveryPixelColumn) {
    Lines expected = {kBlankCell};
    for (int x = 16; x < 24; ++x) {
        std::string column = std::to_string(x);
        expected.push_back("line " + column + ",16 " + column + ",32 111111");
    }
    EXPECT_EQ(Glyph('a'), expected);
}

TEST_F(LineDrawing, PoundSignAndCentredDotAreText) {
    EXPECT_EQ(Glyph('}'), (Lines{kBlankCell, "text 16,16 8x16 '<a3>' 111111 on eeeeee"}));
    EXPECT_EQ(Glyph('~'), (Lines{kBlankCell, "text 16,16 8x16 '.' 111111 on eeeeee"}));
}

TEST_F(LineDrawing, EveryOtherCodeFrom95To126IsBlank) {
    const std::string drawn = "ajklmnopqrstuvwx}~";
    for (int code = 95; code <= 126; ++code) {
        if (drawn.find(static_cast<char>(code)) != std::string::npos) continue;
        EXPECT_EQ(Glyph(static_cast<BYTE>(code)), Lines{kBlankCell}) << code;
    }
}

TEST_F(LineDrawing, CodesOutside95To126AreDrawnAsSeparateText) {
    EXPECT_EQ(Glyph('A'), Lines{"text 16,16 8x16 'A' 111111 on eeeeee"});
    EXPECT_EQ(Glyph(94), Lines{"text 16,16 8x16 '^' 111111 on eeeeee"});
    EXPECT_EQ(Glyph(127), Lines{"text 16,16 8x16 '<7f>' 111111 on eeeeee"});
}

TEST_F(LineDrawing, NeighbouringLineDrawingCellsAreDrawnSeparately) {
    SetCell(2, 1, 'q' | kCellGraphic);
    SetCell(2, 2, 'q' | kCellGraphic);
    Lines row = PaintRow(2);
    ASSERT_EQ(row.size(), 5u);
    EXPECT_EQ(row[0], "text 0,16 8x16 ' ' 111111 on eeeeee");
    EXPECT_EQ(row[1], "line 0,24 8,24 111111");
    EXPECT_EQ(row[2], "text 8,16 8x16 ' ' 111111 on eeeeee");
    EXPECT_EQ(row[3], "line 8,24 16,24 111111");
}

TEST_F(LineDrawing, NeighbouringCellsWithoutAGlyphAreDrawnSeparatelyToo) {
    for (int col = 1; col <= 3; ++col)
        SetCell(2, col, static_cast<DWORD>('@' + col) | kCellGraphic);
    Lines row = PaintRow(2);
    ASSERT_EQ(row.size(), 4u);
    EXPECT_EQ(row[0], "text 0,16 8x16 'A' 111111 on eeeeee");
    EXPECT_EQ(row[1], "text 8,16 8x16 'B' 111111 on eeeeee");
    EXPECT_EQ(row[2], "text 16,16 8x16 'C' 111111 on eeeeee");
    EXPECT_EQ(row[3].substr(0, 22), "text 24,16 616x16 '   ");
}

TEST_F(LineDrawing, LinesTakeTheCellsTextColour) {
    EXPECT_EQ(Glyph('x', kCellBold),
              (Lines{"text 16,16 8x16 ' ' 222222 on eeeeee", "line 20,16 20,32 222222"}));
    EXPECT_EQ(Glyph('x', kCellReverse),
              (Lines{"text 16,16 8x16 ' ' eeeeee on 111111", "line 20,16 20,32 eeeeee"}));
    session.view.blink_phase = 1;
    EXPECT_EQ(Glyph('x', kCellBlink),
              (Lines{"text 16,16 8x16 ' ' eeeeee on eeeeee", "line 20,16 20,32 eeeeee"}));
}

TEST_F(LineDrawing, TheCursorKeepsTheGlyphOnItsOwnColour) {
    session.screen.cursor_row = 2;
    session.screen.cursor_col = 3;
    EXPECT_EQ(Glyph('x'),
              (Lines{"text 16,16 8x16 ' ' 111111 on cccccc", "line 20,16 20,32 111111"}));
}

TEST_F(LineDrawing, AnUnderlinedGlyphGetsTheUnderlineToo) {
    EXPECT_EQ(Glyph('x', kCellUnderline),
              (Lines{kBlankCell, "line 20,16 20,32 111111", "line 16,28 24,28 111111"}));
}

TEST_F(LineDrawing, EveryLineUsesItsOwnPenAndDeletesIt) {
    Glyph('n');
    EXPECT_EQ(gdi.pens_made, 2);
    Glyph('a');
    EXPECT_EQ(gdi.pens_made, 2 + 8);
    EXPECT_EQ(LiveObjects("pen"), 0);
}

TEST_F(LineDrawing, ACellOfOnePixelDrawsInsideItself) {
    gdi.metrics = [](const LOGFONTW&) {
        TEXTMETRICW metrics = {};
        metrics.tmHeight = 1;
        return metrics;
    };
    gdi.sample_width = [](const LOGFONTW&) { return 10; };
    CreateTerminalFont();
    LayoutTerminal();
    SetCell(2, 3, 's' | kCellGraphic);
    Paint();
    Lines row = DrawnInRow(2, 1);
    ASSERT_EQ(row.size(), 4u);
    EXPECT_EQ(row[2], "line 2,1 3,1 111111");
}

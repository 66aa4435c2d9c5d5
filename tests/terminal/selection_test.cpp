// SPDX-License-Identifier: MIT
// Selecting with the stylus, copying and pasting.
#include "clipboard_double.h"
#include "program_double.h"
#include "terminal/interpreter.h"
#include "terminal/screen_buffer.h"
#include "ui/view/input.h"

namespace {

LPARAM At(int x, int y) { return MAKELPARAM(x, y); }

// Any pixel of the cell; cells are 8 x 16.
LPARAM Cell(int col, int row) { return At((col - 1) * 8 + 3, (row - 1) * 16 + 9); }

class Stylus : public TerminalWindow {
  protected:
    void SetUp() override {
        TerminalWindow::SetUp();
        ResetClipboard();
    }
    void TearDown() override {
        EXPECT_EQ(clipboard.faults, Lines{});
        EXPECT_EQ(LiveBlocks(), 0);
        EXPECT_FALSE(clipboard.open);
        TerminalWindow::TearDown();
    }
    static void Down(LPARAM position) { SendToWindow(WM_LBUTTONDOWN, MK_LBUTTON, position); }
    static void Move(LPARAM position) { SendToWindow(WM_MOUSEMOVE, MK_LBUTTON, position); }
    static void Drag(int col, int row, int to_col, int to_row) {
        Down(Cell(col, row));
        Move(Cell(to_col, to_row));
    }
    static Lines Corners() {
        const ScreenBuffer& screen = session.screen;
        return {std::to_string(screen.selection_start_col) + "," +
                    std::to_string(screen.selection_start_row),
                std::to_string(screen.selection_end_col) + "," +
                    std::to_string(screen.selection_end_row)};
    }
    static std::string Copied() {
        std::string text;
        for (const WCHAR unit : clipboard.text) text += static_cast<char>(unit);
        return text;
    }
    // What was sent; a call sends one byte.
    static std::string Sent() {
        std::string bytes;
        for (const std::string& call : program_calls) {
            EXPECT_EQ(call.size(), std::string("SessionSend 0 x").size()) << call;
            bytes += call.back();
        }
        program_calls.clear();
        return bytes;
    }
    static std::string Pasted(const std::u16string& text) {
        clipboard.has_text = true;
        clipboard.text = text;
        PasteClipboard();
        return Sent();
    }
};

TEST_F(Stylus, PressingSelectsTheCellUnderIt) {
    Down(Cell(10, 3));
    EXPECT_EQ(session.screen.selection_active, 1u);
    EXPECT_EQ(Corners(), (Lines{"10,3", "10,3"}));
    EXPECT_GE(gdi.invalidations, 1);
    EXPECT_EQ(GetPaintRow(3)[10] & kCellReverse, kCellReverse);
    EXPECT_EQ(GetPaintRow(3)[9] & kCellReverse, 0u);
    EXPECT_EQ(GetPaintRow(3)[11] & kCellReverse, 0u);
}

TEST_F(Stylus, EveryPixelOfACellIsThatCell) {
    for (const LPARAM position : {At(72, 32), At(79, 32), At(72, 47), At(79, 47)}) {
        const StylusCell cell = CellUnderStylus(position);
        EXPECT_EQ(cell.col, 10);
        EXPECT_EQ(cell.row, 3);
    }
    EXPECT_EQ(CellUnderStylus(At(80, 47)).col, 11);
    EXPECT_EQ(CellUnderStylus(At(79, 48)).row, 4);
}

TEST_F(Stylus, ScrolledViewShiftsTheCell) {
    session.view.view_top = 5;
    session.view.view_left = 20;
    const StylusCell cell = CellUnderStylus(Cell(10, 3));
    EXPECT_EQ(cell.col, 30);
    EXPECT_EQ(cell.row, 8);
}

TEST_F(Stylus, FarRightIsColumn80) {
    EXPECT_EQ(CellUnderStylus(At(639, 0)).col, 80);
    EXPECT_EQ(CellUnderStylus(At(640, 0)).col, 80);
    EXPECT_EQ(CellUnderStylus(At(32767, 0)).col, 80);
    session.view.view_left = 40;
    EXPECT_EQ(CellUnderStylus(At(400, 0)).col, 80);
}

TEST_F(Stylus, FarBelowTheScreenIsRow49) {
    EXPECT_EQ(CellUnderStylus(At(0, 24 * 16)).row, 25);
    EXPECT_EQ(CellUnderStylus(At(0, 48 * 16)).row, 49);
    EXPECT_EQ(CellUnderStylus(At(0, 49 * 16)).row, 49);
    EXPECT_EQ(CellUnderStylus(At(0, 32767)).row, 49);
}

TEST_F(Stylus, ADragOutOfTheWindowsLeftAndTopIsTheFirstCell) {
    Down(Cell(3, 3));
    Move(At(-500, -500));
    EXPECT_EQ(Corners(), (Lines{"3,3", "1,1"}));
}

TEST_F(Stylus, CellsOfOnePixelAreCells) {
    session.view.cell_width = session.view.cell_height = 1;
    const StylusCell cell = CellUnderStylus(At(5, 3));
    EXPECT_EQ(cell.col, 6);
    EXPECT_EQ(cell.row, 4);
}

TEST_F(Stylus, WithoutAFontTheCellIsTheFirst) {
    session.view.cell_width = session.view.cell_height = 0;
    const StylusCell cell = CellUnderStylus(At(100, 100));
    EXPECT_EQ(cell.col, 1);
    EXPECT_EQ(cell.row, 1);
}

TEST_F(Stylus, MovingExtendsAndRepaintsOnlyWhenTheCellChanges) {
    Down(Cell(10, 3));
    Paint();
    gdi.invalidations = 0;
    Move(Cell(10, 3) + 1);
    EXPECT_EQ(gdi.invalidations, 0);
    Move(Cell(12, 5));
    EXPECT_EQ(gdi.invalidations, 1);
    EXPECT_EQ(Corners(), (Lines{"10,3", "12,5"}));
    Move(Cell(12, 5));
    EXPECT_EQ(gdi.invalidations, 1);
}

TEST_F(Stylus, AMouseThatMovesWithoutItsButtonExtendsNothing) {
    Down(Cell(10, 3));
    SendToWindow(WM_MOUSEMOVE, 0, Cell(20, 9));
    EXPECT_EQ(Corners(), (Lines{"10,3", "10,3"}));
}

TEST_F(Stylus, TheHostsTextDropsTheSelectionAndMovingOnDoesNotBringItBack) {
    Drag(10, 3, 12, 5);
    TerminalWrite(reinterpret_cast<const BYTE*>("x"), 1);
    EXPECT_EQ(session.screen.selection_active, 0u);
    EXPECT_TRUE(session.view.full_repaint);
    Move(Cell(14, 6));
    EXPECT_EQ(session.screen.selection_active, 0u);
    Down(Cell(1, 1));
    EXPECT_EQ(session.screen.selection_active, 1u);
}

TEST_F(Stylus, TheNextPaintShowsTheMarkedCells) {
    Put(2, "abcdef");
    Paint();
    Drag(2, 2, 4, 2);
    Paint();
    const Lines row = DrawnInRow(2, 16);
    ASSERT_EQ(row.size(), 3u);
    EXPECT_EQ(row[0], "text 0,16 8x16 'a' 111111 on eeeeee");
    EXPECT_EQ(row[1], "text 8,16 24x16 'bcd' eeeeee on 111111");
    EXPECT_EQ(row[2].substr(0, 22), "text 32,16 608x16 'ef ");
}

TEST_F(Stylus, CopyTakesTheRectangleWithALineEndARow) {
    Put(3, "first row of text");
    Put(4, "second");
    Put(5, "the third row");
    Drag(3, 3, 8, 5);
    CopySelection();
    EXPECT_EQ(Copied(), "rst ro\r\ncond  \r\ne thir\r\n");
    EXPECT_EQ(session.screen.selection_active, 0u);
    EXPECT_TRUE(session.view.full_repaint);
    EXPECT_EQ(clipboard.empties, 1);
}

TEST_F(Stylus, CopyUpwardsTakesTheLowerCornersColumnLast) {
    Put(3, "first row of text");
    Put(4, "second");
    Drag(8, 4, 3, 3);
    CopySelection();
    EXPECT_EQ(Copied(), "rst ro\r\ncond  \r\n");
}

TEST_F(Stylus, CopyOfOneRowGoesFromTheSmallerToTheLargerColumn) {
    Put(3, "first row");
    Drag(7, 3, 2, 3);
    CopySelection();
    EXPECT_EQ(Copied(), "irst r\r\n");
}

TEST_F(Stylus, CopyOfOneCellIsThatCharacter) {
    Put(3, "first row");
    Down(Cell(7, 3));
    CopySelection();
    EXPECT_EQ(Copied(), "r\r\n");
}

TEST_F(Stylus, DragStraightDownMarksAndCopiesThatColumn) {
    Put(3, "first row");
    Put(4, "second");
    Put(5, "third");
    for (const bool up : {false, true}) {
        up ? Drag(4, 5, 4, 3) : Drag(4, 3, 4, 5);
        for (int row = 1; row <= 24; row++) {
            for (int col = 1; col <= 80; col++) {
                const bool marked = row >= 3 && row <= 5 && col == 4;
                EXPECT_EQ((GetPaintRow(row)[col] & kCellReverse) != 0, marked) << row << "," << col;
            }
        }
        CopySelection();
        EXPECT_EQ(Copied(), "s\r\no\r\nr\r\n");
    }
}

TEST_F(Stylus, DragDownAndLeftMarksNothingAndCopiesFourEmptyLines) {
    for (int row = 3; row <= 6; row++) Put(row, std::string(80, 'x'));
    Drag(10, 3, 5, 6);
    for (int row = 3; row <= 6; row++)
        for (int col = 1; col <= 80; col++) EXPECT_EQ(GetPaintRow(row)[col] & kCellReverse, 0u);
    CopySelection();
    EXPECT_EQ(Copied(), "\r\n\r\n\r\n\r\n");
}

TEST_F(Stylus, CopyGivesTheBytesOfTheCells) {
    SetCell(1, 1, 0xE9);
    SetCell(1, 2, 0x80 | kCellBold);
    SetCell(1, 3, 'q' | kCellGraphic);
    SetCell(1, 4, 0xFF | kCellProtected | kCellReverse);
    Drag(1, 1, 4, 1);
    CopySelection();
    EXPECT_EQ(clipboard.text, u"\u00e9\u0080q\u00ff\r\n");
}

TEST_F(Stylus, CopyTakesTheRingsOlderLinesBelowTheScreen) {
    Put(24, "last row");
    SetCell(49, 2, 'r');
    Down(Cell(1, 24));
    Move(At(3 * 8, 32767));
    CopySelection();
    std::string expected = "last\r\n";
    for (int row = 25; row <= 48; row++) expected += "    \r\n";
    EXPECT_EQ(Copied(), expected + " r  \r\n");
}

TEST_F(Stylus, CopyAllocates164BytesARowAnd2More) {
    Drag(1, 1, 80, 1);
    CopySelection();
    Drag(1, 1, 80, 24);
    CopySelection();
    Down(At(0, 0));
    Move(At(32767, 32767));
    CopySelection();
    EXPECT_EQ(clipboard.allocated, (std::vector<size_t>{166, 23 * 164 + 166, 48 * 164 + 166}));
}

// The text ends with its last line; the memory after it keeps its old content.
TEST_F(Stylus, CopyHandsOverOnlyTheTextFollowedByZeros) {
    const int drags[][4] = {
        {7, 3, 7, 3}, {1, 3, 80, 3}, {10, 3, 5, 6}, {3, 3, 8, 24}, {1, 1, 80, 24}};
    for (int row = 1; row <= 24; row++) Put(row, std::string(80, 'x'));
    for (const auto& drag : drags) {
        Drag(drag[0], drag[1], drag[2], drag[3]);
        CopySelection();
        const std::u16string& block = clipboard.block;
        ASSERT_GE(block.size() * sizeof(WCHAR), clipboard.allocated.back());
        ASSERT_EQ(clipboard.text.substr(clipboard.text.size() - 2), u"\r\n");
        for (size_t i = clipboard.text.size(); i < block.size(); i++) {
            ASSERT_EQ(block[i], 0) << "unit " << i << " of " << block.size();
        }
    }
}

TEST_F(Stylus, CopyWithoutASelectionDoesNothing) {
    clipboard.has_text = true;
    clipboard.text = u"before";
    CopySelection();
    EXPECT_EQ(clipboard.text, u"before");
    EXPECT_EQ(clipboard.allocated.size(), 0u);
    EXPECT_FALSE(session.view.full_repaint);
}

TEST_F(Stylus, CopyWithoutMemoryChangesNothing) {
    clipboard.refuse_memory = true;
    Drag(1, 1, 5, 1);
    CopySelection();
    EXPECT_EQ(session.screen.selection_active, 1u);
    EXPECT_EQ(clipboard.empties, 0);
}

TEST_F(Stylus, CopyToAClipboardThatCannotBeOpenedFreesTheText) {
    clipboard.refuse_open = true;
    Drag(1, 1, 5, 1);
    CopySelection();
    EXPECT_EQ(LiveBlocks(), 0);
    EXPECT_EQ(session.screen.selection_active, 0u);
}

TEST_F(Stylus, CopyToAClipboardThatRefusesTheTextFreesIt) {
    clipboard.refuse_data = true;
    Drag(1, 1, 5, 1);
    CopySelection();
    EXPECT_EQ(LiveBlocks(), 0);
}

TEST_F(Stylus, PasteSendsAByteACallWithoutLineFeeds) { EXPECT_EQ(Pasted(u"a\r\nb"), "a\rb"); }

TEST_F(Stylus, PasteSendsEverythingElseUnchanged) {
    EXPECT_EQ(Pasted(u"\t\x1b[A\x7f\u00e9\u00ff\r\r\n\n."), "\t\x1b[A\x7f\xe9\xff\r\r.");
}

TEST_F(Stylus, PasteCutsCharactersToTheirLowByte) {
    EXPECT_EQ(Pasted(u"\u0141\u20ac\u4e2d"), "\x41\xac\x2d");
    EXPECT_EQ(Pasted(u"a\u010ab"), "a\nb") << "its low byte is 10, but it is no LF";
}

TEST_F(Stylus, PasteContinuesAfterACharacterWhoseLowByteIsZero) {
    EXPECT_EQ(Pasted(u"a\u0100b\uff00c"), std::string("a\0b\0c", 5));
}

TEST_F(Stylus, PasteEndsAtTheZeroOrWhereTheBlockEnds) {
    EXPECT_EQ(Pasted(std::u16string(u"ab\0cd", 5)), "ab");
    clipboard.terminated = false;
    EXPECT_EQ(Pasted(u"abcd"), "abcd");
}

TEST_F(Stylus, PasteIsSentAsTyped) {
    session.telnet.escape_iac = 1;
    clipboard.has_text = true;
    clipboard.text = u"a\nb";
    PasteClipboard();
    session.telnet.escape_iac = 0;
    EXPECT_EQ(program_calls, (Lines{"SessionSend 1 a", "SessionSend 1 b"}));
}

TEST_F(Stylus, PasteOfNothingSendsNothing) {
    PasteClipboard();
    EXPECT_EQ(Sent(), "");
    EXPECT_EQ(Pasted(u""), "");
}

TEST_F(Stylus, PasteFromAClipboardThatCannotBeOpenedSendsNothing) {
    clipboard.refuse_open = true;
    EXPECT_EQ(Pasted(u"text"), "");
}

}  // namespace

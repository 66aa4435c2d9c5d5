// SPDX-License-Identifier: MIT
// Double taps on the numbers of a menu.
#include "program_double.h"
#include "terminal/interpreter.h"
#include "terminal/screen_buffer.h"
#include "tests/terminal/hotspot_rule.h"
#include "ui/view/input.h"

namespace {

class HotspotTap : public TerminalWindow {
  protected:
    void SetUp() override {
        TerminalWindow::SetUp();
        session.settings.hotspot = 1;
        session.settings.bell = 1;
    }
    static LPARAM Cell(int col, int row) {
        return MAKELPARAM((col - 1) * 8 + 4, (row - 1) * 16 + 4);
    }
    // What a double tap there sends; "<Enter>" for the Enter key.
    static std::string Tap(int col, int row = 5) {
        program_calls.clear();
        gdi.beeps.clear();
        SendToWindow(WM_LBUTTONDOWN, MK_LBUTTON, Cell(col, row));
        SendToWindow(WM_LBUTTONDBLCLK, MK_LBUTTON, Cell(col, row));
        std::string sent;
        for (const std::string& call : program_calls)
            sent += call == "SendVirtualKey 13" ? "<Enter>" : call.substr(strlen("SessionSend 0 "));
        return sent;
    }
    static void Text(int col, const std::string& text, int row = 5) {
        FillLine(row, kBlank, 0);
        for (size_t i = 0; i < text.size(); i++)
            SetCell(row, col + static_cast<int>(i), static_cast<BYTE>(text[i]));
    }
};

TEST_F(HotspotTap, OnTheBlankBeforeOneDigitSendsItAndEnter) {
    Text(10, " 3. Mail");
    EXPECT_EQ(Tap(10), "3<Enter>");
    Text(10, " 3: Mail");
    EXPECT_EQ(Tap(10), "3<Enter>");
}

TEST_F(HotspotTap, OnTheOneDigitSendsItAndEnter) {
    Text(10, " 3. Mail");
    EXPECT_EQ(Tap(11), "3<Enter>");
}

TEST_F(HotspotTap, OnTwoDigitsSendsBothAndEnter) {
    for (const char* text : {" 12. Mail", " 12: Mail"}) {
        Text(10, text);
        EXPECT_EQ(Tap(10), "12<Enter>") << "on the blank";
        EXPECT_EQ(Tap(11), "12<Enter>") << "on the first digit";
    }
}

TEST_F(HotspotTap, OnTheSecondDigitTheSeparatorOrTheTextDoesNothing) {
    Text(10, " 12. Mail");
    for (int col = 12; col <= 18; col++) EXPECT_EQ(Tap(col), "") << col;
}

TEST_F(HotspotTap, OnThreeDigitsSendsNothing) {
    Text(10, " 123. Mail");
    for (int col = 10; col <= 14; col++) EXPECT_EQ(Tap(col), "") << col;
}

TEST_F(HotspotTap, OnANumberWithoutABlankBeforeDoesNothing) {
    Text(10, "x3. Mail");
    EXPECT_EQ(Tap(11), "");
}

TEST_F(HotspotTap, OnANumberWithoutASeparatorDoesNothing) {
    Text(10, " 3) Mail");
    EXPECT_EQ(Tap(11), "");
    Text(10, " 12 Mail");
    EXPECT_EQ(Tap(11), "");
}

TEST_F(HotspotTap, OnANumberInColumn1Or2DoesNothing) {
    Text(1, "3. Mail");
    EXPECT_EQ(Tap(1), "");
    Text(1, " 3. Mail");
    EXPECT_EQ(Tap(2), "");
    Text(1, "  3. Mail");
    EXPECT_EQ(Tap(3), "3<Enter>");
}

TEST_F(HotspotTap, OnTheBlankInColumn1SendsTheNumberInColumn2) {
    Text(1, " 3. Mail");
    EXPECT_EQ(Tap(1), "3<Enter>");
}

TEST_F(HotspotTap, FromColumn75OnDoesNothing) {
    Text(74, " 3.");
    EXPECT_EQ(Tap(75), "");
    EXPECT_EQ(Tap(74), "3<Enter>") << "the blank is still left of the limit";
    Text(73, " 3.");
    EXPECT_EQ(Tap(74), "3<Enter>");
    Text(75, " 3.");
    EXPECT_EQ(Tap(75), "");
    EXPECT_EQ(Tap(76), "");
    Text(78, " 3.");
    for (int col = 75; col <= 80; col++) EXPECT_EQ(Tap(col), "") << col;
}

TEST_F(HotspotTap, OnADigitFollowedByALetterSendsBoth) {
    Text(10, " 1x. Mail");
    EXPECT_EQ(Tap(10), "1x<Enter>");
}

TEST_F(HotspotTap, ANumberThatIsNegativeButNotMinusOneCounts) {
    Text(10, " x5. Mail");
    EXPECT_EQ(Tap(10), "x5<Enter>");
    Text(10, " -0: Mail");
    EXPECT_EQ(Tap(10), "-0<Enter>");
}

TEST_F(HotspotTap, NineAfterNoDigitIsMinusOneAndDoesNothing) {
    Text(10, " x9. Mail");
    EXPECT_EQ(Tap(10), "");
}

TEST_F(HotspotTap, BlankWithoutANumberDoesNothing) {
    Text(10, " x. Mail");
    EXPECT_EQ(Tap(10), "");
    Text(10, "        ");
    EXPECT_EQ(Tap(10), "");
}

TEST_F(HotspotTap, BeepsOnlyWhenSomethingIsSentAndOnlyWithTheBell) {
    Text(10, " 3. Mail");
    Tap(11);
    EXPECT_EQ(gdi.beeps, std::vector<UINT>{0});
    Tap(15);
    EXPECT_EQ(gdi.beeps, std::vector<UINT>{});
    session.settings.bell = 0;
    EXPECT_EQ(Tap(11), "3<Enter>");
    EXPECT_EQ(gdi.beeps, std::vector<UINT>{});
}

TEST_F(HotspotTap, WithoutTheSettingBeepsAndSelectsNothingNew) {
    session.settings.hotspot = 0;
    session.settings.bell = 0;
    Text(10, " 3. Mail");
    gdi.beeps.clear();
    SendToWindow(WM_LBUTTONDBLCLK, MK_LBUTTON, Cell(11, 5));
    EXPECT_EQ(gdi.beeps, std::vector<UINT>{MB_ICONEXCLAMATION});
    EXPECT_EQ(session.screen.selection_active, 0u);
    EXPECT_EQ(program_calls, Lines{});
}

TEST_F(HotspotTap, ShowsTheFirstTapsSelectionAgain) {
    Text(10, " 3. Mail");
    SendToWindow(WM_LBUTTONDOWN, MK_LBUTTON, Cell(11, 5));
    TerminalWrite(reinterpret_cast<const BYTE*>("x"), 1);
    EXPECT_EQ(session.screen.selection_active, 0u);
    SendToWindow(WM_LBUTTONDBLCLK, MK_LBUTTON, Cell(11, 5));
    EXPECT_EQ(session.screen.selection_active, 1u);
    EXPECT_EQ(session.screen.selection_start_col, 11);
    EXPECT_EQ(session.screen.selection_end_row, 5);
}

TEST_F(HotspotTap, WithoutAFirstTapSelectsNothing) {
    SendToWindow(WM_LBUTTONDBLCLK, MK_LBUTTON, Cell(11, 5));
    EXPECT_EQ(session.screen.selection_active, 0u);
}

TEST_F(HotspotTap, IsSentAsTypedAndRepainted) {
    Text(10, " 3. Mail");
    session.telnet.escape_iac = 1;
    SendToWindow(WM_LBUTTONDOWN, MK_LBUTTON, Cell(11, 5));
    program_calls.clear();
    gdi.invalidations = 0;
    SendToWindow(WM_LBUTTONDBLCLK, MK_LBUTTON, Cell(11, 5));
    session.telnet.escape_iac = 0;
    EXPECT_EQ(program_calls, (Lines{"SessionSend 1 3", "SendVirtualKey 13"}));
    EXPECT_EQ(gdi.invalidations, 1);
}

TEST_F(HotspotTap, CharactersCountWhateverTheirAttributes) {
    Text(10, " 3. Mail");
    for (int col = 10; col <= 12; col++)
        SetCell(5, col, GetCell(5, col) | kCellReverse | kCellBold | kCellGraphic);
    EXPECT_EQ(Tap(11), "3<Enter>");
}

TEST_F(HotspotTap, InALineDrawingRowTheBytesCount) {
    Text(10, " 7. q");
    for (int col = 1; col <= 80; col++) SetCell(5, col, GetCell(5, col) | kCellGraphic);
    EXPECT_EQ(Tap(10), "7<Enter>");
    EXPECT_EQ(Tap(11), "7<Enter>");
}

// Its characters are drawn at twice their column, but the tap counts the screen's cells.
TEST_F(HotspotTap, InADoubleWidthRowGoesByTheScreensCells) {
    Text(10, " 3. Mail");
    SetDoubleWidth(5);
    EXPECT_EQ(Tap(11), "3<Enter>");
    EXPECT_EQ(Tap(21), "") << "where the digit is drawn";
}

TEST_F(HotspotTap, SendsNumbersOfEveryLengthAtTheRowsEdges) {
    for (int digits = 1; digits <= 80; digits++) {
        for (const int first : {1, 2, 3, 81 - digits - 1, 81 - digits}) {
            if (first < 1 || first + digits > 82) continue;
            std::string line(90, ' ');
            const std::string number = std::string(static_cast<size_t>(digits), '4') + ".";
            line.replace(static_cast<size_t>(first), number.size(), number);
            line.replace(81, 9, 9, ' ');
            FillLine(5, kBlank, 0);
            for (int col = 1; col <= 80; col++)
                SetCell(5, col, static_cast<BYTE>(line[static_cast<size_t>(col)]));
            for (int col = 1; col <= 80; col++) {
                const std::string rule = HotspotRule(line, col);
                ASSERT_EQ(Tap(col), rule.empty() ? rule : rule + "<Enter>")
                    << digits << " digits from column " << first << ", tapped on " << col;
            }
        }
    }
}

TEST_F(HotspotTap, InAScrolledView) {
    Resize(160, 96);
    session.view.view_left = 30;
    session.view.view_top = 10;
    Text(40, " 7. Mail", 12);
    EXPECT_EQ(Tap(11, 2), "7<Enter>");
}

TEST_F(HotspotTap, BelowTheScreenReadsTheRingsOlderLines) {
    Text(10, " 3. Mail", 49);
    SendToWindow(WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(10 * 8, 32767));
    EXPECT_EQ(program_calls, (Lines{"SessionSend 0 3", "SendVirtualKey 13"}));
}

std::string Expected(const std::string& line, int col) {
    const std::string sent = HotspotRule(line, col);
    return sent.empty() ? sent : sent + "<Enter>";
}

// Every text of five characters out of six kinds, with a tap on the second one.
TEST_F(HotspotTap, SendsWhatTheRuleSaysOfEveryTextOfFiveCharacters) {
    const std::string kinds = " .:19x";
    for (const int col : {1, 2, 3, 40, 74, 75, 77, 80}) {
        std::string line(90, ' ');
        FillLine(5, kBlank, 0);
        for (int number = 0; number < 6 * 6 * 6 * 6 * 6; number++) {
            for (int i = 0, left = number; i < 5; i++, left /= 6) {
                if (col - 1 + i < 1 || col - 1 + i > 80) continue;
                const auto place = static_cast<size_t>(col - 1 + i);
                line[place] = kinds[static_cast<size_t>(left % 6)];
                SetCell(5, col - 1 + i, static_cast<BYTE>(line[place]));
            }
            ASSERT_EQ(Tap(col), Expected(line, col)) << "column " << col << ": " << line;
        }
    }
}

// Every cell of the screen, while text of the host arrives between the two taps.
TEST_F(HotspotTap, TakesEveryCellWhileTextArrives) {
    const std::string menu =
        "  1. Mail 12: News  123. x9. ( 4.)  5. 66.  7: 8.8 99: 10.  1.   2.  34. 5:.  6.";
    ASSERT_EQ(menu.size(), 80u);
    int sent = 0;
    for (int row = 1; row <= 24; row++) {
        for (int col = 1; col <= 80; col++) {
            Text(1, menu, row);
            SendToWindow(WM_LBUTTONDOWN, MK_LBUTTON, Cell(col, row));
            const std::string elsewhere =
                std::string("\033[").append(std::to_string(row % 24 + 1)).append(";1Hnews");
            TerminalWrite(reinterpret_cast<const BYTE*>(elsewhere.data()),
                          static_cast<int>(elsewhere.size()));
            const std::string expected = Expected(" " + menu + std::string(9, ' '), col);
            ASSERT_EQ(Tap(col, row), expected) << row << "," << col;
            sent += !expected.empty();
        }
    }
    EXPECT_GT(sent, 24 * 15);
}

}  // namespace

// SPDX-License-Identifier: MIT
// Mouse and finger on the running program: selection, copy, paste, hotspots.
#include <gtest/gtest.h>
#include <QClipboard>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QScrollBar>
#include <QTest>

#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/toolbars.h"
#include "tests/app/clipboard_stage.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/drawn.h"
#include "tests/terminal/hotspot_rule.h"
#include "ui/main_window.h"
#include "ui/view/view.h"

namespace {

QWidget* Terminal() { return FindWindowRecord(session.client_window)->widget; }

// The middle of a cell of the unscrolled screen, in coordinates of the terminal window.
QPoint Middle(int row, int col) {
    const ViewState& view = session.view;
    return QPoint((col - 1) * view.cell_width + view.cell_width / 2,
                  (row - 1) * view.cell_height + view.cell_height / 2);
}

void SendMouse(QEvent::Type type, QPoint position, Qt::MouseButton button, bool down) {
    const Qt::MouseButtons held = down ? Qt::MouseButtons(Qt::LeftButton) : Qt::NoButton;
    QMouseEvent event(type, position, Terminal()->mapToGlobal(position), button, held,
                      Qt::NoModifier);
    QApplication::sendEvent(Terminal(), &event);
}

void Press(QPoint at) { SendMouse(QEvent::MouseButtonPress, at, Qt::LeftButton, true); }
void MoveTo(QPoint at) { SendMouse(QEvent::MouseMove, at, Qt::NoButton, true); }
void Release(QPoint at) { SendMouse(QEvent::MouseButtonRelease, at, Qt::LeftButton, false); }
void DoublePress(QPoint at) {
    Press(at);
    Release(at);
    SendMouse(QEvent::MouseButtonDblClick, at, Qt::LeftButton, true);
    Release(at);
}

void DragCells(int row, int col, int to_row, int to_col) {
    OnWindowThread([=] {
        Press(Middle(row, col));
        MoveTo(Middle((row + to_row) / 2, (col + to_col) / 2));
        MoveTo(Middle(to_row, to_col));
        Release(Middle(to_row, to_col));
    });
}

void DoubleClickCell(int row, int col) {
    OnWindowThread([=] { DoublePress(Middle(row, col)); });
}

bool Selected(int start_row, int start_col, int end_row, int end_col) {
    return Eventually([=] {
        const ScreenBuffer& screen = session.screen;
        return screen.selection_active && screen.selection_start_row == start_row &&
               screen.selection_start_col == start_col && screen.selection_end_row == end_row &&
               screen.selection_end_col == end_col;
    });
}

std::string ClipboardText() {
    std::string text;
    OnWindowThread([&] { text = QApplication::clipboard()->text().toStdString(); });
    return text;
}

const char kThreeRows[] = "\033[3;1Hfirst row of text\033[4;1Hsecond\033[5;1Hthe third row";

TEST(Stylus, MouseMarksAndTheCopyKeyGivesTheTextToTheDesktop) {
    WithText(kThreeRows, [](FakeHost&) {
        SetClipboard("before");
        DragCells(3, 3, 5, 8);
        ASSERT_TRUE(Selected(3, 3, 5, 8));
        PressCopy();
        EXPECT_TRUE(Eventually([] { return !session.screen.selection_active; }));
        EXPECT_EQ(ClipboardText(), "rst ro\ncond  \ne thir\n");
    });
}

TEST(Stylus, CopyCommandWithoutASelectionLeavesTheClipboard) {
    WithText(kThreeRows, [](FakeHost&) {
        SetClipboard("before");
        OnWindowThread([] { RunCommand(40018); });
        EXPECT_EQ(ClipboardText(), "before");
    });
}

// The button of that action on the visible bar.
void PressButtonOf(int action) {
    OnWindowThread([=] {
        for (WORD i = 0; i <= IDM_TOOLBAR_LAST - IDM_TOOLBAR_FIRST; i++)
            if (ToolbarAction(i, session.toolbar) == action)
                return RunCommand(static_cast<WORD>(IDM_TOOLBAR_FIRST + i));
        ADD_FAILURE() << "no button of action " << action;
    });
}

TEST(Stylus, CutAndPasteOfTheToolbarCopyAndPaste) {
    WithText(kThreeRows, [](FakeHost& host) {
        DragCells(3, 1, 3, 5);
        ASSERT_TRUE(Selected(3, 1, 3, 5));
        PressButtonOf(kActionCut);
        EXPECT_EQ(ClipboardText(), "first\n");
        EXPECT_EQ(TerminalRow(3), "first row of text") << "nothing is cut out of the screen";
        PressButtonOf(kActionPaste);
        EXPECT_EQ(host.Read(6), "first\r");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Stylus, CopiedTextPastesAsRowsWithCarriageReturns) {
    WithText(kThreeRows, [](FakeHost& host) {
        DragCells(3, 1, 4, 6);
        ASSERT_TRUE(Selected(3, 1, 4, 6));
        OnWindowThread([] {
            RunCommand(40018);
            RunCommand(40019);
        });
        EXPECT_EQ(host.Read(14), "first \rsecond\r");
    });
}

TEST(Stylus, LettersBeyondAsciiReachTheDesktopAsDisplayed) {
    WithText("\033[3;1Hcaf\xe9 \xa3", [](FakeHost&) {
        DragCells(3, 1, 3, 6);
        ASSERT_TRUE(Selected(3, 1, 3, 6));
        PressCopy();
        EXPECT_TRUE(Eventually(
            [] { return QApplication::clipboard()->text() == QString::fromUtf8("café £\n"); }));
    });
}

TEST(Stylus, MarkedCellsAreDrawnReversed) {
    WithText(kThreeRows, [](FakeHost&) {
        ASSERT_TRUE(Eventually([] { return DrawnText().find("third") != std::string::npos; }));
        OnWindowThread([] { StartRecording(); });
        DragCells(3, 1, 3, 5);
        const auto reversed = [] {
            for (const DrawCall& call : RecordedCalls())
                if (call.text == u"first" && call.color == session.settings.color_bg &&
                    call.background == session.settings.color_fg)
                    return true;
            return false;
        };
        EXPECT_TRUE(Eventually(reversed));
        OnWindowThread([] { StopRecording(); });
    });
}

TEST(Stylus, AClickLeavesTheKeyboardWithTheProgram) {
    WithText(kThreeRows, [](FakeHost& host) {
        OnWindowThread(
            [] { QTest::mouseClick(Terminal(), Qt::LeftButton, Qt::NoModifier, Middle(3, 3)); });
        TypeText("ls\n");
        EXPECT_EQ(host.Read(3), "ls\r");
    });
}

TEST(Stylus, ATypedCharacterDropsTheSelection) {
    WithText(kThreeRows, [](FakeHost& host) {
        DragCells(3, 3, 5, 8);
        ASSERT_TRUE(Selected(3, 3, 5, 8));
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
        EXPECT_TRUE(Eventually([] { return !session.screen.selection_active; }));
    });
}

TEST(Stylus, SelectingWhileTheHostScrollsIsSafe) {
    WithText(kThreeRows, [](FakeHost& host) {
        std::string block;
        for (int i = 0; i < 60; i++) block += "a line of the fast stream\r\n";
        for (int round = 0; round < 60; round++) {
            host.TrySend(block);
            const int row = round % 30 + 1, col = round * 7 % 90 + 1;
            DragCells(row, col, 30 - row, 90 - col);
            PressCopy();
        }
        OnWindowThread([] {
            EXPECT_GE(session.screen.selection_start_row, 1);
            EXPECT_LE(session.screen.selection_end_col, 80);
        });
        host.Send("\033[2J\033[Hthe end");
        EXPECT_TRUE(TerminalShows("the end"));
    });
}

TEST(Stylus, TheOtherButtonsMarkNothing) {
    WithText(kThreeRows, [](FakeHost&) {
        DragCells(3, 3, 5, 8);
        ASSERT_TRUE(Selected(3, 3, 5, 8));
        OnWindowThread([] {
            for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
                QTest::mousePress(Terminal(), button, Qt::NoModifier, Middle(9, 9));
                QTest::mouseMove(Terminal(), Middle(10, 10));
                QTest::mouseRelease(Terminal(), button, Qt::NoModifier, Middle(10, 10));
                QTest::mouseDClick(Terminal(), button, Qt::NoModifier, Middle(11, 11));
            }
        });
        PostToMain(0);
        EXPECT_TRUE(Selected(3, 3, 5, 8));
    });
}

TEST(Stylus, AnotherButtonWhileDraggingDoesNotEndTheDrag) {
    WithText(kThreeRows, [](FakeHost&) {
        OnWindowThread([] {
            Press(Middle(3, 3));
            MoveTo(Middle(4, 4));
            QTest::mousePress(Terminal(), Qt::RightButton, Qt::NoModifier, Middle(9, 9));
            QTest::mouseRelease(Terminal(), Qt::RightButton, Qt::NoModifier, Middle(9, 9));
            MoveTo(Middle(5, 8));
            Release(Middle(5, 8));
        });
        EXPECT_TRUE(Selected(3, 3, 5, 8));
    });
}

TEST(Stylus, AResetOfTheTerminalInTheMiddleOfADragDropsTheSelection) {
    WithText(kThreeRows, [](FakeHost& host) {
        OnWindowThread([] {
            Press(Middle(3, 3));
            MoveTo(Middle(4, 4));
        });
        ASSERT_TRUE(Selected(3, 3, 4, 4));
        host.Send("\033cgone");
        ASSERT_TRUE(TerminalShows("gone"));
        SetClipboard("before");
        OnWindowThread([] {
            EXPECT_FALSE(session.screen.selection_active);
            MoveTo(Middle(5, 8));
            Release(Middle(5, 8));
        });
        PressCopy();
        OnWindowThread([] { EXPECT_FALSE(session.screen.selection_active); });
        EXPECT_EQ(ClipboardText(), "before");
    });
}

TEST(Stylus, ASelectionKeepsItsCellsThroughFontsSizesAndThePanel) {
    WithText(kThreeRows, [](FakeHost&) {
        DragCells(3, 3, 5, 8);
        ASSERT_TRUE(Selected(3, 3, 5, 8));
        OnWindowThread([] { RunCommand(IDM_LARGER_FONT); });
        ResizeDevice(240, 320);
        PostToMain(WM_SETTINGCHANGE, SPI_SETSIPINFO);
        EXPECT_TRUE(Selected(3, 3, 5, 8));
        ResizeDevice(640, 480);
        OnWindowThread([] { RunCommand(IDM_SMALLER_FONT); });
        PressCopy();
        EXPECT_TRUE(Eventually([] { return !session.screen.selection_active; }));
        EXPECT_EQ(ClipboardText(), "rst ro\ncond  \ne thir\n");
    });
}

TEST(Stylus, DraggingOutOfTheWindowSelectsToItsEdge) {
    WithText(kThreeRows, [](FakeHost&) {
        OnWindowThread([] {
            Press(Middle(4, 4));
            MoveTo(QPoint(-300, -300));
        });
        EXPECT_TRUE(Selected(4, 4, 1, 1));
        OnWindowThread([] { MoveTo(QPoint(30000, 30000)); });
        EXPECT_TRUE(Selected(4, 4, 49, 80));
        OnWindowThread([] { Release(QPoint(30000, 30000)); });
        PressCopy();
        EXPECT_TRUE(Eventually([] { return QApplication::clipboard()->text().count('\n') == 46; }));
    });
}

// ---------------------------------------------------------------- hotspots

const char kMenu[] = "\033[3;5H 1. Mail\033[4;5H12: News\033[5;5Hx 7 Chat";

TEST(Hotspot, ADoubleClickOnTheNumberSendsItAndEnter) {
    WithText(kMenu, [](FakeHost& host) {
        DoubleClickCell(3, 6);
        EXPECT_EQ(host.Read(2), "1\r");
        DoubleClickCell(4, 5);
        EXPECT_EQ(host.Read(3), "12\r");
        DoubleClickCell(5, 7);
        DoubleClickCell(4, 6);
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Hotspot, EnterIsThatOfTheKeyTableAndOfNewlineMode) {
    WithText(std::string(kMenu) + "\033[20h", [](FakeHost& host) {
        DoubleClickCell(3, 6);
        EXPECT_EQ(host.Read(3), "1\r\n");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Hotspot, WithoutTheSettingADoubleClickBeeps) {
    WithText(kMenu, [](FakeHost& host) {
        int beeps = 0;
        OnWindowThread([&] { session.settings.hotspot = 0, beeps = BeepCount(); });
        DoubleClickCell(3, 6);
        EXPECT_TRUE(Eventually(
            [&] { return BeepCount() == beeps + 1 && LastBeep() == MB_ICONEXCLAMATION; }));
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Hotspot, BellSoundsTheDefaultBeep) {
    WithText(kMenu, [](FakeHost& host) {
        int beeps = 0;
        OnWindowThread([&] { session.settings.bell = 1, beeps = BeepCount(); });
        DoubleClickCell(3, 6);
        EXPECT_EQ(host.Read(2), "1\r");
        OnWindowThread([&] {
            EXPECT_EQ(BeepCount(), beeps + 1);
            EXPECT_EQ(LastBeep(), MB_OK);
        });
    });
}

TEST(Hotspot, InEveryColumnAndRowWhileTextArrives) {
    const std::string menu =
        "  1. Mail 12: News  123. x8. ( 4.)  5. 66.  7: 8.8 99: 10.  1.   2.  34. 5:.  6.";
    std::string screen;
    for (int row = 1; row <= 23; row++)
        screen.append("\033[").append(std::to_string(row)).append(";1H").append(menu);
    WithText(screen, [&](FakeHost& host) {
        std::string news, expected;
        for (int i = 0; i < 40; i++) news += "\033[24;1H\033[Knews of the host";
        for (int row = 1; row <= 23; row++) {
            for (int col = 1; col <= 80; col++) {
                if (col % 8 == 1) host.TrySend(news);
                DoubleClickCell(row, col);
                const std::string sent = HotspotRule(" " + menu + std::string(9, ' '), col);
                if (!sent.empty()) expected += sent + "\r";
            }
        }
        host.Send("\033[24;1H\033[Kall tapped");
        ASSERT_TRUE(TerminalShows("all tapped"));
        EXPECT_EQ(host.Read(expected.size()), expected);
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

// ---------------------------------------------------------------- touch

QPointingDevice* Screen() {
    static QPointingDevice* device = QTest::createTouchDevice();
    return device;
}

// Touch events as the desktop sends them, one entry for each finger.
void Touch(const std::function<void(QTest::QTouchEventWidgetSequence&)>& fingers) {
    OnWindowThread([&] {
        QTest::QTouchEventWidgetSequence sequence = QTest::touchEvent(Terminal(), Screen(), false);
        fingers(sequence);
        sequence.commit(false);
    });
}

void TapTwice(int row, int col) {
    for (int i = 0; i < 2; i++) {
        Touch([=](auto& f) { f.press(0, Middle(row, col), Terminal()); });
        Touch([=](auto& f) { f.release(0, Middle(row, col), Terminal()); });
    }
}

TEST(Finger, MarksByDragging) {
    WithText(kThreeRows, [](FakeHost&) {
        Touch([](auto& f) { f.press(0, Middle(3, 3), Terminal()); });
        Touch([](auto& f) { f.move(0, Middle(5, 8), Terminal()); });
        Touch([](auto& f) { f.release(0, Middle(5, 8), Terminal()); });
        ASSERT_TRUE(Selected(3, 3, 5, 8));
        PressCopy();
        EXPECT_TRUE(Eventually([] { return !session.screen.selection_active; }));
        EXPECT_EQ(ClipboardText(), "rst ro\ncond  \ne thir\n");
    });
}

TEST(Finger, DoubleTapIsAHotspot) {
    WithText(kMenu, [](FakeHost& host) {
        TapTwice(3, 6);
        EXPECT_EQ(host.Read(2), "1\r");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Finger, TwoTapsApartAreNoDoubleTap) {
    WithText(kMenu, [](FakeHost& host) {
        Touch([](auto& f) { f.press(0, Middle(12, 40), Terminal()); });
        Touch([](auto& f) { f.release(0, Middle(12, 40), Terminal()); });
        Touch([](auto& f) { f.press(0, Middle(3, 6), Terminal()); });
        Touch([](auto& f) { f.release(0, Middle(3, 6), Terminal()); });
        EXPECT_TRUE(Selected(3, 6, 3, 6));
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Finger, OnAScrollBarScrolls) {
    Stage stage;
    stage.width = 240, stage.height = 200;
    RunProgram(stage, [] {
        ASSERT_TRUE(Eventually([] { return session.view.visible_rows > 0; }));
        QScrollBar* bar = nullptr;
        OnWindowThread([&] { bar = FindWindowRecord(session.client_window)->vertical.bar; });
        ASSERT_TRUE(Eventually([&] { return bar->isVisible(); }));
        const auto low = [&] { return QPoint(bar->width() / 2, bar->height() * 3 / 4); };
        Touch([&](auto& f) { f.press(0, low(), bar); });
        Touch([&](auto& f) { f.release(0, low(), bar); });
        EXPECT_TRUE(Eventually([] { return session.view.view_top > 0; }));
        OnWindowThread([] { EXPECT_EQ(session.screen.selection_active, 0u); });
    });
}

// The desktop cancels a touch in progress, as when a box opens under the finger.
TEST(Finger, ATouchWhoseEndGotLostDoesNotBlockTheNext) {
    WithText(kThreeRows, [](FakeHost&) {
        Touch([](auto& f) { f.press(0, Middle(3, 3), Terminal()); });
        EXPECT_TRUE(Selected(3, 3, 3, 3));
        Touch([](auto& f) { f.press(1, Middle(12, 20), Terminal()); });
        EXPECT_TRUE(Selected(12, 20, 12, 20));
        Touch([](auto& f) { f.move(1, Middle(13, 30), Terminal()); });
        EXPECT_TRUE(Selected(12, 20, 13, 30));
        Touch([](auto& f) { f.release(1, Middle(13, 30), Terminal()); });
    });
}

TEST(Finger, TheSecondFingerDoesNothing) {
    WithText(kThreeRows, [](FakeHost&) {
        Touch([](auto& f) { f.press(0, Middle(3, 3), Terminal()); });
        Touch([](auto& f) { f.stationary(0).press(1, Middle(20, 20), Terminal()); });
        Touch([](auto& f) { f.stationary(0).move(1, Middle(21, 30), Terminal()); });
        Touch([](auto& f) { f.move(0, Middle(5, 8), Terminal()).stationary(1); });
        Touch([](auto& f) { f.release(0, Middle(5, 8), Terminal()).stationary(1); });
        Touch([](auto& f) { f.move(1, Middle(9, 9), Terminal()); });
        Touch([](auto& f) { f.release(1, Middle(9, 9), Terminal()); });
        EXPECT_TRUE(Selected(3, 3, 5, 8));
    });
}

TEST(Finger, AThirdTapIsAFirstOne) {
    WithText(kMenu, [](FakeHost& host) {
        TapTwice(3, 6);
        Touch([](auto& f) { f.press(0, Middle(3, 6), Terminal()); });
        Touch([](auto& f) { f.release(0, Middle(3, 6), Terminal()); });
        EXPECT_EQ(host.Read(2), "1\r");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

}  // namespace

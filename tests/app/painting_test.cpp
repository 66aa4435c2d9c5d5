// SPDX-License-Identifier: MIT
// The allocations of a frame: drawing text makes none. The picture of a row that is painted alone.
#include <gtest/gtest.h>
#include <QBackingStore>
#include <utility>

#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "tests/support/fake_host.h"
#include "tests/support/heap.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/view/view.h"

static constexpr int kRows = 24;
static constexpr DWORD kSmallSizes = 12;

// Marks the first rows as changed and paints them without an observer, like the shipped program.
static Allocations AllocationsOfAFrame(int rows) {
    const DrawingObserver before = std::exchange(drawing_observer, DrawingObserver());
    for (int row = 1; row <= rows; ++row) session.screen.row_changed[row] = 1;
    InvalidateRect(session.client_window, nullptr, FALSE);
    const Allocations count = CountAllocations([] { UpdateWindow(session.client_window); });
    drawing_observer = before;
    return count;
}

// Each row has runs of every attribute that needs no pen, and letters that are wider than their
// cells.
static std::string FullScreen() {
    std::string screen = "\033[H";
    for (int row = 0; row < kRows - 1; ++row)
        screen += "plain, \033[1mbold_ \033[7mreverse\033[m \033[5mblinking\033[m " +
                  std::string(30, static_cast<char>('A' + row)) + "\r\n";
    return screen + "the end";
}

// A frame allocates memory for its context and its region; a run of text allocates no memory.
TEST(Painting, DrawingTextAllocatesNoMemory) {
    if (!CanCountAllocations()) GTEST_SKIP() << "a build without the address sanitizer";
    FakeHost host;
    WithSession(host, [&] {
        host.Send(FullScreen());
        ASSERT_TRUE(TerminalShows("the end"));
        OnWindowThread([] {
            AllocationsOfAFrame(kRows);  // glyphs are measured when they are first drawn
            const Allocations one = AllocationsOfAFrame(1), all = AllocationsOfAFrame(kRows);
            EXPECT_GT(one.program, 0) << "nothing was painted, or nothing is counted";
            EXPECT_GT(all.libraries, one.libraries) << "only one row was painted";
            EXPECT_EQ(all.program, one.program);
        });
    });
}

// ---------------------------------------------------------------- rows alone

static DWORD* CellsOf(int row) {
    const int slot = session.screen.ring_origin + row;
    return session.screen.slots[slot > kRingLines ? slot - kRingLines : slot];
}

// Every byte that is shown, in every attribute: a cell's neighbours differ from row to row.
static void FillScreen() {
    static const DWORD kAttributes[] = {0,         kCellUnderline, kCellReverse,
                                        kCellBold, kCellGraphic,   kCellReverse | kCellUnderline};
    DWORD at = 0;
    for (int row = 1; row <= kRows; ++row)
        for (int col = 1; col <= kScreenColumns; ++col, ++at)
            CellsOf(row)[col] = (at * 7 % 224 + 32) | kAttributes[at / 5 % std::size(kAttributes)];
}

static void PaintAll() {
    RepaintTerminal();
    for (int i = 0; i < 9 && !FindWindowRecord(session.client_window)->invalid.isEmpty(); ++i)
        UpdateWindow(session.client_window);
}

static QImage StoredTerminal() {
    const auto* store = static_cast<QImage*>(ReadyStore(DeviceScreen())->paintDevice());
    const QWidget* terminal = FindWindowRecord(session.client_window)->widget;
    return store->copy(QRect(terminal->mapTo(DeviceScreen(), QPoint()), terminal->size()));
}

static std::string NameOfFont() {
    const Settings& s = session.settings;
    return QString::fromUtf16(s.fname).toStdString() + " " + std::to_string(s.fsize) +
           (s.font_bold ? " bold" : "") + (s.font_italic ? " italic" : "");
}

static void PaintRowAlone(int row) {
    session.screen.row_changed[row] = 1;
    RefreshTerminal();
    UpdateWindow(session.client_window);
}

static void ExpectNoRowReachesOut() {
    CreateTerminalFont();
    LayoutTerminal();
    FillScreen();
    PaintAll();
    const QImage whole = StoredTerminal();
    for (const int row : {1, 12, 23}) {
        PaintRowAlone(row);
        EXPECT_TRUE(StoredTerminal() == whole) << NameOfFont() << ": row " << row;
    }
    std::fill_n(CellsOf(kRows) + 1, kScreenColumns, kBlank);
    PaintRowAlone(kRows);
    const QImage alone = StoredTerminal();
    PaintAll();
    EXPECT_TRUE(StoredTerminal() == alone) << NameOfFont() << ": the last row";
}

// The area below the last row is painted only with the whole window. Small letters are rounded
// most.
TEST(Painting, NoRowReachesOutOfItsCellsInAnyFont) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            Settings& s = session.settings;
            for (int face = 0; face < session.view.face_count; ++face) {
                lstrcpyW(s.fname, session.view.faces[face].font.lfFaceName);
                for (DWORD size = kFontSizeMin; size <= kSmallSizes; ++size) {
                    for (const DWORD slanted_and_bold : {0, 1}) {
                        s.fsize = size;
                        s.font_bold = s.font_italic = slanted_and_bold;
                        ExpectNoRowReachesOut();
                    }
                }
            }
        });
    });
}

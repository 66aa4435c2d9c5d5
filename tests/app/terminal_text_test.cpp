// SPDX-License-Identifier: MIT
// The terminal's text as screen readers get it.
#include <gtest/gtest.h>

#include "platform/qt/terminal_source.h"
#include "platform/qt/window/accessible.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"
#include "tests/support/person.h"

namespace {

TextScreen ScreenAfter(const std::string& bytes) {
    TextScreen screen;
    OnWindowThread([&] {
        ServeTerminalText();
        EXPECT_EQ(session.client_window, text_screen_source.window());
        TerminalWrite(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<int>(bytes.size()));
        screen = text_screen_source.read();
        text_screen_source = TextScreenSource();
    });
    return screen;
}

}  // namespace

TEST(TerminalText, LettersAndLinesAreReadAsTheyAreDrawn) {
    RunProgram({}, [] {
        EXPECT_TRUE(Eventually([] { return session.accelerators != nullptr; }));
        const TextScreen screen = ScreenAfter(
            "\033[2J\033[Ha_z ~!  \r\n\033(0lqkx~_a\033(B~a\r\n\x80\x81\xA0\xFF"
            "!\033[5;11Hbox\033[7;4H");
        ASSERT_EQ(24, screen.rows.size());
        EXPECT_EQ(QString("a_z ~!"), screen.rows[0]);
        EXPECT_EQ(QString::fromUtf16(u"┌─┐│· ▒~a"), screen.rows[1]);
        EXPECT_EQ(QString::fromUtf16(u"€ \u00a0ÿ!"), screen.rows[2]);
        EXPECT_EQ(QString(""), screen.rows[3]);
        EXPECT_EQ(QString("          box"), screen.rows[4]);
        EXPECT_EQ(QString("   "), screen.rows[6]) << "up to the cursor";
        EXPECT_EQ(QPoint(3, 6), screen.cursor);
        EXPECT_TRUE(screen.selected.isEmpty());
    });
}

TEST(TerminalText, CellsMoveWithTheView) {
    RunProgram({}, [] {
        EXPECT_TRUE(Eventually([] { return session.view.cell_width > 0; }));
        const TextScreen screen = ScreenAfter("x");
        OnWindowThread([&] {
            const ViewState& view = session.view;
            EXPECT_EQ(QRect(-view.view_left * view.cell_width, -view.view_top * view.cell_height,
                            view.cell_width, view.cell_height),
                      screen.cell);
            EXPECT_FALSE(screen.cell.isEmpty());
            session.view.view_top = 3;
        });
        const TextScreen scrolled = ScreenAfter("");
        OnWindowThread([&] {
            EXPECT_EQ(-session.view.view_top * session.view.cell_height, scrolled.cell.top());
        });
    });
}

TEST(TerminalText, SelectedCellsAreMarked) {
    RunProgram({}, [] {
        EXPECT_TRUE(Eventually([] { return session.accelerators != nullptr; }));
        ScreenAfter("\033[2J\033[Horder 4711");
        OnWindowThread([] {
            session.screen.selection_active = 1;
            session.screen.selection_start_col = 7;
            session.screen.selection_start_row = session.screen.selection_end_row = 1;
            session.screen.selection_end_col = 10;
            ServeTerminalText();
            EXPECT_EQ(QRect(6, 0, 4, 1), text_screen_source.read().selected);
            text_screen_source = TextScreenSource();
        });
    });
}

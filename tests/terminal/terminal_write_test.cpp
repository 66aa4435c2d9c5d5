// SPDX-License-Identifier: MIT
// What TerminalWrite does with the host's bytes: selection, replies, following the cursor, status.
#include "program_double.h"
#include "session/session_ports.h"
#include "terminal/interpreter.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"

static void Write(const std::string& bytes) {
    TerminalWrite(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<int>(bytes.size()));
}

class HostBytes : public TerminalWindow {};

TEST_F(HostBytes, TextIsShownByTheNextPaint) {
    Write("abc");
    EXPECT_GE(gdi.invalidations, 1);
    EXPECT_EQ(gdi.erasing_invalidations, 0);
    EXPECT_FALSE(session.view.full_repaint);
    Lines drawn = Paint();
    ASSERT_FALSE(drawn.empty());
    EXPECT_EQ(drawn[0], "text 0,0 24x16 'abc' 111111 on eeeeee");
}

TEST_F(HostBytes, OnlyTheRowsOfTheTextArePainted) {
    Write("\033[7;1Hx\033[9;1H");
    Paint();
    std::vector<int> painted;
    for (int row = 1; row <= 24; ++row) {
        if (!DrawnInRow(row, 16).empty()) painted.push_back(row);
    }
    EXPECT_EQ(painted, (std::vector<int>{1, 7, 9}));  // the cursor came from 1 and went to 9
}

TEST_F(HostBytes, ASelectionIsDroppedAndTheWholeWindowRepainted) {
    SetSelection(3, 2, 5, 4);
    Write("x");
    EXPECT_FALSE(session.screen.selection_active);
    EXPECT_TRUE(session.view.full_repaint);
    EXPECT_EQ(Paint()[0], "fill 0,0 640x384 eeeeee");
}

TEST_F(HostBytes, TheSelectionIsDroppedBeforeTheFirstByte) {
    session_ports.repaint = [] { program_calls.push_back("Repaint"); };
    SetSelection(3, 2, 5, 4);
    Write("\005");
    EXPECT_EQ(program_calls, (Lines{"Repaint", "SessionSend 0 QUILL"}));
}

TEST_F(HostBytes, EachReplyIsSentWholeAndAtOnceWithoutEscaping) {
    Write("a\033[6nb\005\033[6n");
    EXPECT_EQ(program_calls, (Lines{"SessionSend 0 \033[1;2R", "SessionSend 0 QUILL",
                                    "SessionSend 0 \033[1;3R", "UpdateStatus"}));
}

TEST_F(HostBytes, TheStatusIsUpdatedOnlyWhenTheCursorMoved) {
    Write("\033[1m\007");
    EXPECT_EQ(program_calls, Lines{});
    Write("x");
    EXPECT_EQ(program_calls, Lines{"UpdateStatus"});
    program_calls.clear();
    Write("y\b");
    EXPECT_EQ(program_calls, Lines{});
}

TEST_F(HostBytes, TheViewFollowsTheCursorOnlyWithTheSetting) {
    Resize(640, 192);
    session.settings.followcursor = 0;
    Write("\033[20;1H");
    EXPECT_EQ(session.view.view_top, 0);
    session.settings.followcursor = 1;
    Write("x");
    EXPECT_EQ(session.view.view_top, 20 - session.view.visible_rows);
}

TEST_F(HostBytes, TheViewFollowsBeforeTheStatusIsUpdated) {
    Resize(640, 192);
    Write("\033[24;80Hx\033[6n");
    EXPECT_EQ(session.view.view_top, 24 - session.view.visible_rows);
    EXPECT_EQ(program_calls.back(), "UpdateStatus");
}

TEST_F(HostBytes, NothingIsReadBeyondTheCount) {
    const std::string bytes = "ab\033[2Cc\033[31mdefgh";
    for (size_t count = 0; count <= bytes.size(); ++count) {
        ClearAll();
        TerminalStart();
        TerminalWrite(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<int>(count));
        std::string shown;
        for (int col = 1; col <= 12; ++col) shown += static_cast<char>(GetCell(1, col) & 0xFF);
        std::string expected = count < 7 ? std::string("ab").substr(0, count) : "ab  c";
        if (count > 12) expected += bytes.substr(12, count - 12);
        EXPECT_EQ(shown, expected.append(12 - expected.size(), ' ')) << count;
    }
}

TEST_F(HostBytes, ZeroBytesAreAccepted) {
    TerminalWrite(nullptr, 0);
    EXPECT_EQ(program_calls, Lines{});
}

TEST_F(HostBytes, WithoutAWindowNoRepaintIsRequested) {
    session.client_window = nullptr;
    session.view.visible_rows = 0;
    Write("x");
    EXPECT_EQ(gdi.invalidations, 0);
    EXPECT_EQ(gdi.scroll_calls, 0);
    session.client_window = TestWindow();
}

TEST_F(HostBytes, APendingReplyIsNotSentToTheNextConnection) {
    EXPECT_EQ(TerminalFeedByte(5), 1);
    TerminalStart();
    EXPECT_EQ(TerminalFeedByte('x'), 0);
    EXPECT_EQ(TerminalTakeReply(), nullptr);
}

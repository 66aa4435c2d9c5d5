// SPDX-License-Identifier: MIT
// The allocations of a frame: drawing text makes none.
#include <gtest/gtest.h>

#include <utility>

#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "tests/support/fake_host.h"
#include "tests/support/heap.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

static constexpr int kRows = 24;

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

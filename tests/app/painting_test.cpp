// What a frame costs beside its drawing.
#include <gtest/gtest.h>

#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "tests/support/fake_host.h"
#include "tests/support/heap.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

// Paints the first rows as changed ones, while nobody looks on; how often memory was allocated.
long AllocationsOfAFrame(int rows) {
    for (int row = 1; row <= rows; row++) session.screen.row_changed[row] = 1;
    InvalidateRect(session.client_window, nullptr, FALSE);
    StartCountingAllocations();
    UpdateWindow(session.client_window);
    return StopCountingAllocations();
}

// A frame that changes one row allocates what a frame needs; each further run of text nothing.
TEST(Painting, RunsOfTextAllocateNothing) {
    if (!CanCountAllocations()) GTEST_SKIP() << "a build without the sanitizers' allocator";
    FakeHost host;
    WithSession(host, [&] {
        std::string screen = "\033[H";
        for (int row = 0; row < 23; row++)
            screen += "plain \033[1mbold \033[7mreverse\033[m \033[4munderlined\033[m " +
                      std::string(30, static_cast<char>('A' + row)) + "\r\n";
        host.Send(screen + "the end");
        ASSERT_TRUE(TerminalShows("the end"));
        OnWindowThread([] {
            const DrawingObserver before = std::exchange(drawing_observer, DrawingObserver());
            AllocationsOfAFrame(24);  // glyphs are looked at when they are first drawn
            const long one = AllocationsOfAFrame(1);
            EXPECT_GT(one, 0) << "nothing was painted, or nothing is counted";
            EXPECT_EQ(AllocationsOfAFrame(24), one);
            drawing_observer = before;
        });
    });
}

}  // namespace

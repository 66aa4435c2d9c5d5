// SPDX-License-Identifier: MIT
// The random painter under the entries of this terminal, and under names of other terminals.
#include <gtest/gtest.h>

#include "tests/hosts/painting.h"
#include "tests/hosts/terminfo_entry.h"

static const int kSteps = 200;  // of each seed

static void ExpectNoWrongScreen(const char* term) {
    for (unsigned long seed = 1; seed <= 5; ++seed) {
        const Painting painting = Paint(term, seed, kSteps);
        EXPECT_EQ(kSteps, painting.steps) << "seed " << seed;
        EXPECT_EQ(0, painting.wrong) << "seed " << seed << ", " << painting.first_difference;
    }
}

TEST(Painter, HasNoWrongScreenAsQuill) { ExpectNoWrongScreen("quill"); }

TEST(Painter, HasNoWrongScreenAsQuill7) { ExpectNoWrongScreen("quill-7"); }

// Names of the usual databases that promise no more than is there: docs/hosts_names.md.
TEST(Painter, HasNoWrongScreenAsTheNamesForHostsWithoutTheEntry) {
    for (const char* name : {"vt220d", "vt102", "vt100"}) {
        TerminfoEntry entry;
        if (!ReadEntry(name, &entry)) {
            printf("there is no entry %s here\n", name);
            continue;
        }
        SCOPED_TRACE(name);
        ExpectNoWrongScreen(name);
    }
}

// The counted insert-line is what goes wrong there, so the painter can tell right from wrong.
TEST(Painter, SeesTheWrongScreensOfVt220) {
    int wrong = 0;
    for (unsigned long seed = 1; seed <= 5; ++seed) wrong += Paint("vt220", seed, kSteps).wrong;
    EXPECT_GT(wrong, 0);
}

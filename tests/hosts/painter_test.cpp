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
class PainterUnderAnotherName : public testing::TestWithParam<const char*> {};

TEST_P(PainterUnderAnotherName, HasNoWrongScreen) {
    TerminfoEntry entry;
    if (!ReadEntry(GetParam(), &entry)) GTEST_SKIP() << "there is no entry " << GetParam();
    ExpectNoWrongScreen(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Of, PainterUnderAnotherName, testing::Values("vt220d", "vt102", "vt100"),
                         [](const auto& info) { return std::string(info.param); });

// The counted insert-line is what goes wrong there, so the painter can tell right from wrong.
TEST(Painter, SeesTheWrongScreensOfVt220) {
    int wrong = 0;
    for (unsigned long seed = 1; seed <= 5; ++seed) wrong += Paint("vt220", seed, kSteps).wrong;
    EXPECT_GT(wrong, 0);
}

// SPDX-License-Identifier: MIT
// The random painter under the entries of this terminal, and under names of other terminals.
#include <gtest/gtest.h>

#include "tests/guide/page.h"
#include "tests/hosts/painting.h"
#include "tests/hosts/terminfo_entry.h"

static const int kSteps = 200;  // of each seed
static const unsigned long kSeeds = 5;

static void ExpectNoWrongScreen(const std::string& term) {
    for (unsigned long seed = 1; seed <= kSeeds; ++seed) {
        const Painting painting = Paint(term, seed, kSteps);
        EXPECT_EQ(kSteps, painting.steps) << "seed " << seed;
        EXPECT_EQ(0, painting.wrong) << "seed " << seed << ", " << painting.first_difference;
    }
}

TEST(Painter, HasNoWrongScreenAsQuill) { ExpectNoWrongScreen("quill"); }

TEST(Painter, HasNoWrongScreenAsQuill7) { ExpectNoWrongScreen("quill-7"); }

// Names of the usual databases that promise no more than is there: docs/hosts_names.md.
static std::vector<std::string> RightNames() {
    std::vector<std::string> names;
    Page page = ReadPage(QUILL_NAMES_PAGE);
    for (const PageRow& row : page.tables["Right names"]) {
        for (const std::string& name : CodeOf(row.at(0))) names.push_back(name);
    }
    return names;
}

static std::string TestName(const testing::TestParamInfo<std::string>& info) {
    std::string name = info.param;
    for (char& c : name) c = c == '-' ? '_' : c;
    return name;
}

class PainterUnderAnotherName : public testing::TestWithParam<std::string> {};

TEST_P(PainterUnderAnotherName, HasNoWrongScreen) {
    TerminfoEntry entry;
    if (!ReadEntry(GetParam(), &entry)) GTEST_SKIP() << "there is no entry " << GetParam();
    ExpectNoWrongScreen(GetParam());
}

INSTANTIATE_TEST_SUITE_P(OfThePage, PainterUnderAnotherName, testing::ValuesIn(RightNames()),
                         TestName);

// The counted insert-line is what goes wrong there, so the painter can tell right from wrong.
TEST(Painter, SeesTheWrongScreensOfVt220) {
    int wrong = 0;
    for (unsigned long seed = 1; seed <= kSeeds; ++seed)
        wrong += Paint("vt220", seed, kSteps).wrong;
    EXPECT_GT(wrong, 0);
}

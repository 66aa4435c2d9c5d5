// SPDX-License-Identifier: MIT
// The random painter under the entries of this terminal, and under names of other terminals.
#include <gtest/gtest.h>

#include "tests/guide/page.h"
#include "tests/hosts/painting.h"
#include "tests/hosts/terminfo_entry.h"

static const int kSteps = 200;  // of each seed
static const unsigned long kSeeds = 5;

static void ExpectNoWrongScreen(const std::string& term, unsigned long seeds = kSeeds) {
    for (unsigned long seed = 1; seed <= seeds; ++seed) {
        const Painting painting = Paint(term, seed, kSteps);
        EXPECT_EQ(kSteps, painting.steps) << "seed " << seed;
        EXPECT_EQ(0, painting.wrong) << "seed " << seed << ", " << painting.first_difference;
    }
}

TEST(Painter, HasNoWrongScreenAsQuill) { ExpectNoWrongScreen("quill"); }

TEST(Painter, HasNoWrongScreenAsQuill7) { ExpectNoWrongScreen("quill-7"); }

// Names of the usual databases that promise no more than is there: docs/hosts_names.md.
struct PaintedName {
    std::string name;
    bool first;  // of its row, whose others have the same strings, or nearly so
};

static void PrintTo(const PaintedName& painted, std::ostream* stream) { *stream << painted.name; }

static std::vector<PaintedName> RightNames() {
    std::vector<PaintedName> names;
    Page page = ReadPage(QUILL_NAMES_PAGE);
    for (const PageRow& row : page.tables["Right names"]) {
        const std::vector<std::string> of_row = CodeOf(row.at(0));
        for (const std::string& name : of_row) names.push_back({name, name == of_row[0]});
    }
    return names;
}

static std::string TestName(const testing::TestParamInfo<PaintedName>& info) {
    std::string name = info.param.name;
    for (char& c : name) c = c == '-' ? '_' : c;
    return name;
}

class PainterUnderAnotherName : public testing::TestWithParam<PaintedName> {};

// All seeds for each name are docs/hosts_names.py's.
TEST_P(PainterUnderAnotherName, HasNoWrongScreen) {
    const auto& [name, first] = GetParam();
    TerminfoEntry entry;
    if (!ReadEntry(name, &entry)) GTEST_SKIP() << "there is no entry " << name;
    ExpectNoWrongScreen(name, first ? kSeeds : 1);
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

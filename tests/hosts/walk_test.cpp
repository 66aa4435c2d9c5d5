// SPDX-License-Identifier: MIT
// Each program of the walks under the entry `quill`, and under the names for hosts where it cannot
// be installed, judged after every step.
#include <gtest/gtest.h>

#include "tests/hosts/program_walks.h"
#include "tests/hosts/pty_program.h"
#include "tests/hosts/terminfo_entry.h"

class WalkTest : public testing::Test {
  public:
    WalkTest(const ProgramWalk& walk, const std::string& term) : walk_(walk), term_(term) {}

    void TestBody() override {
        TerminfoEntry entry;
        if (!ReadEntry(term_, &entry)) GTEST_SKIP() << "there is no entry " << term_;
        if (!IsInstalled(walk_.program)) GTEST_SKIP() << walk_.program << " is not installed";
        const WalkResult result = WalkThrough(walk_, term_, term_);
        EXPECT_EQ(0, result.wrong) << result.first_difference;
        EXPECT_TRUE(result.finished) << "it ended early, on\n" << result.screen;
        EXPECT_EQ(walk_.steps.size(), static_cast<size_t>(result.steps));
        printf("%d steps, %d wrong\n", result.steps, result.wrong);
    }

  private:
    ProgramWalk walk_;
    std::string term_;
};

static void RegisterWalk(const char* suite, const ProgramWalk& walk, const std::string& term) {
    testing::RegisterTest(suite, walk.name, nullptr, nullptr, __FILE__, __LINE__,
                          [=]() -> testing::Test* { return new WalkTest(walk, term); });
}

// Under the other names with the rows of the key table that docs/hosts_names.md changes.
void RegisterWalks() {
    for (const ProgramWalk& walk : ProgramWalks()) RegisterWalk("Walk", walk, walk.term);
    for (const ProgramWalk& walk : ProgramWalks()) RegisterWalk("WalkAsVt220d", walk, "vt220d");
    for (const ProgramWalk& walk : ProgramWalks()) RegisterWalk("WalkAsVt102", walk, "vt102");
    for (const ProgramWalk& walk : ProgramWalks()) RegisterWalk("WalkAsVt100", walk, "vt100");
}

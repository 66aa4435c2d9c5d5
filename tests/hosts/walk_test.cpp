// SPDX-License-Identifier: MIT
// Each program of the walks under the entry `quill`, judged after every step.
#include <gtest/gtest.h>

#include "tests/hosts/program_walks.h"
#include "tests/hosts/pty_program.h"

class WalkTest : public testing::Test {
  public:
    explicit WalkTest(const ProgramWalk& walk) : walk_(walk) {}

    void TestBody() override {
        if (!IsInstalled(walk_.program)) GTEST_SKIP() << walk_.program << " is not installed";
        const WalkResult result = WalkThrough(walk_, walk_.term, walk_.term);
        EXPECT_EQ(0, result.wrong) << result.first_difference;
        EXPECT_TRUE(result.finished) << "it ended early, on\n" << result.screen;
        EXPECT_EQ(walk_.steps.size(), static_cast<size_t>(result.steps));
        printf("%d steps, %d wrong\n", result.steps, result.wrong);
    }

  private:
    ProgramWalk walk_;
};

void RegisterWalks() {
    for (const ProgramWalk& walk : ProgramWalks()) {
        testing::RegisterTest("Walk", walk.name, nullptr, nullptr, __FILE__, __LINE__,
                              [walk]() -> testing::Test* { return new WalkTest(walk); });
    }
}

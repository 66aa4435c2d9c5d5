// SPDX-License-Identifier: MIT
// The marks for known gaps.
#include "tests/platform/known_gap.h"

namespace {

// The results that a block reports, in order: f is a failure, s a skip.
template <typename Block>
std::string ResultsOf(Block block) {
    testing::TestPartResultArray results;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS, &results);
        block();
    }
    std::string letters;
    for (int i = 0; i < results.size(); i++)
        letters += results.GetTestPartResult(i).skipped() ? 's' : 'f';
    return letters;
}

}  // namespace

TEST(KnownGapMark, SkipsAFailingTest) {
    EXPECT_EQ("s", ResultsOf([] {
                  const KnownGap gap(true, "reason");
                  ADD_FAILURE();
                  ADD_FAILURE();
              }));
}

TEST(KnownGapMark, MakesAPassingTestFail) {
    EXPECT_EQ("f", ResultsOf([] { const KnownGap gap(true, "reason"); }));
}

TEST(KnownGapMark, OfAnotherSystemDoesNothing) {
    EXPECT_EQ("f", ResultsOf([] {
                  const KnownGap gap(false, "reason");
                  ADD_FAILURE();
              }));
    EXPECT_EQ("", ResultsOf([] { const KnownGap gap(false, "reason"); }));
}

TEST(KnownGapMark, AppliesToExactlyOneSystem) {
    const TestPlatform here = PlatformOfTests();
    EXPECT_NE(here.slice, here.windows);
    EXPECT_TRUE(here.windows || !here.wine);
}

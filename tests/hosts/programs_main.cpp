// SPDX-License-Identifier: MIT
// Runs the tests with programs, which find the compiled entries by $TERMINFO.
#include <gtest/gtest.h>

#include <cstdlib>

void RegisterWalks();

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    setenv("TERMINFO", QUILL_TERMINFO, 1);
    RegisterWalks();
    return RUN_ALL_TESTS();
}

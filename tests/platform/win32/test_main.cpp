// SPDX-License-Identifier: MIT
// Runs the tests against the calls of Windows and the adapter.
#include <gtest/gtest.h>

#include "tests/platform/known_gap.h"
#include "windows_ce.h"

TestPlatform PlatformOfTests() {
    const HMODULE library = GetModuleHandleW(L"ntdll.dll");
    const bool wine = GetProcAddress(library, "wine_get_version") != nullptr;
    return {.slice = false, .windows = true, .wine = wine};
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    InitCommonControls();
    return RUN_ALL_TESTS();
}

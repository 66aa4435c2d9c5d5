// SPDX-License-Identifier: MIT
// Runs the tests on a private device: an empty folder that is removed at the end.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/qt/services/registry.h"
#include "platform/qt/services/services.h"
#include "tests/platform/known_gap.h"

TestPlatform PlatformOfTests() { return {.slice = true, .windows = false, .wine = false}; }

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::string folder = std::filesystem::temp_directory_path().string() + "/quill-test-XXXXXX";
    if (!mkdtemp(folder.data())) return 1;
    SetDeviceRoot(folder);
    const int result = RUN_ALL_TESTS();
    CloseRegistry();
    std::filesystem::remove_all(folder);
    return result;
}

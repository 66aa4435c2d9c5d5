// SPDX-License-Identifier: MIT
// Runs the tests that need windows on a private device: an invisible screen, and an empty folder
// that is removed at the end.
#include <filesystem>

#include <gtest/gtest.h>
#include <QApplication>

#include "platform/qt/host/host.h"
#include "tests/platform/known_gap.h"

TestPlatform PlatformOfTests() { return {.slice = true, .windows = false, .wine = false}; }

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    std::string folder = std::filesystem::temp_directory_path().string() + "/quill-test-XXXXXX";
    if (!mkdtemp(folder.data())) return 1;
    HostOptions options;
    options.root = folder;
    OpenDevice(options);
    InitCommonControls();
    const int result = RUN_ALL_TESTS();
    CloseDevice();
    std::filesystem::remove_all(folder);
    return result;
}

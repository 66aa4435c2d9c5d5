// SPDX-License-Identifier: MIT
// Runs the tests of dialogs on a device whose only resources are their templates.
#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <QApplication>

#include "platform/qt/host/host.h"
#include "platform/qt/services/resources.h"
#include "platform/qt/window/device_screen.h"
#include "tests/platform/known_gap.h"

TestPlatform PlatformOfTests() { return {.slice = true, .windows = false, .wine = false}; }

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    std::string folder = std::filesystem::temp_directory_path().string() + "/quill-test-XXXXXX";
    if (!mkdtemp(folder.data())) return 1;
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder));
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    HostOptions options;
    options.root = folder;
    options.screen = QSize(640, 480);
    OpenDevice(options);
    DeviceScreen()->show();
    std::ifstream file(TEST_DIALOGS_FILE, std::ios::binary);
    const std::vector<uint8_t> image(std::istreambuf_iterator<char>(file), {});
    SetResourceImage(image.data(), image.size());
    const int result = RUN_ALL_TESTS();
    CloseDevice();
    std::filesystem::remove_all(folder);
    return result;
}

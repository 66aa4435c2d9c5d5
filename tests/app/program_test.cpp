// SPDX-License-Identifier: MIT
// The program itself, started as a person starts it: how it ends, and what it writes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <QImage>

#include "tests/support/person.h"

namespace {

namespace fs = std::filesystem;

int ExitCodeOfCommand(const std::string& command) {
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Its exit code; 124 where it takes too long. What it says on stderr is in FOLDER/said.
int ExitCodeOf(const std::string& folder, const std::string& options,
               const std::string& before = "") {
    const std::string command = before + " timeout -k 5 100 '" QUILL_PROGRAM "' --root '" + folder +
                                "/root' " + options + " 2>'" + folder + "/said'";
    return ExitCodeOfCommand(command);
}

std::string Said(const std::string& folder) {
    std::ifstream file(folder + "/said");
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

TEST(Program, WithoutADisplayEndsWithOneAndMakesNoFolder) {
    const std::string folder = FreshRoot();
    EXPECT_EQ(1, ExitCodeOf(folder, "", "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM"));
    EXPECT_NE(std::string::npos, Said(folder).find("no display")) << Said(folder);
    EXPECT_FALSE(fs::exists(folder + "/root"));
}

// A desktop follows a link, so a box would tell what is wrong with it.
TEST(Program, RefusesALinkWithTwoAlsoWhereTheToolkitCannotStart) {
    const std::string folder = FreshRoot();
    EXPECT_EQ(2, ExitCodeOfCommand(
                     "env DISPLAY=:9999 QT_QPA_PLATFORM=xcb timeout -k 5 100 '" QUILL_PROGRAM
                     "' 'telnet://two words' 2>'" +
                     folder + "/said'"));
    EXPECT_NE(std::string::npos, Said(folder).find("two words")) << Said(folder);
}

TEST(Program, TellsItsVersionWithoutADesktop) {
    const std::string folder = FreshRoot();
    EXPECT_EQ(0,
              ExitCodeOf(folder, "--version >'" + folder + "/version'", "env -u QT_QPA_PLATFORM"));
    std::ifstream file(folder + "/version");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_TRUE(text.starts_with("quill ") && text.ends_with("\n")) << text;
    EXPECT_EQ("", Said(folder));
}

// The invisible desktop has 800 by 800 pixels. A device's pixel is two by two of them where there
// is room.
TEST(Program, MakesItsPixelsSmallerOnASmallDesktop) {
    const std::string folder = FreshRoot(), picture = folder + "/picture.png";
    EXPECT_EQ(0, ExitCodeOf(folder, "--screen 320x240 --snapshot '" + picture + "'"));
    EXPECT_EQ(QSize(640, 480), QImage(QString::fromStdString(picture)).size());
    EXPECT_EQ(0, ExitCodeOf(folder, "--screen 640x480 --snapshot '" + picture + "'"));
    EXPECT_EQ(QSize(800, 600), QImage(QString::fromStdString(picture)).size());
}

TEST(Program, SucceedsIfPictureAndTextAreWritten) {
    const std::string folder = FreshRoot(), there = "'" + folder + "/file.png' ";
    const std::string nowhere = "'" + folder + "/no folder/file.png' ";
    const std::string small = "--screen 320x240 ";
    EXPECT_EQ(0, ExitCodeOf(folder, small + "--snapshot " + there + "--text '" + folder + "/t'"));
    EXPECT_EQ(1, ExitCodeOf(folder, small + "--snapshot " + there + "--text " + nowhere));
    EXPECT_NE(std::string::npos, Said(folder).find("cannot write")) << Said(folder);
    EXPECT_EQ(1, ExitCodeOf(folder, small + "--snapshot " + nowhere + "--text " + there));
}

TEST(Program, AnswersItsBoxesItselfWhileItMakesAPicture) {
    const std::string folder = FreshRoot();
    fs::create_directory(folder + "/root");
    std::ofstream(folder + "/root/mconfig.cfg") << "host = \"depot.example\"\nautoconnect = 0\n";
    EXPECT_EQ(0, ExitCodeOf(folder, "--screen 320x240 --text '" + folder + "/text'"));
    EXPECT_FALSE(fs::exists(folder + "/root/mconfig.cfg")) << "it was imported";
    std::ifstream file(folder + "/text");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(std::string::npos, text.find("OFF")) << text;
}

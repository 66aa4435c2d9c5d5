// SPDX-License-Identifier: MIT
// The window on the desktop: its place, the mark of its profile, and the options of the toolkit.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <csignal>

#include <QIcon>
#include <QImage>
#include <QScreen>

#include <filesystem>
#include <fstream>

#include "platform/qt/host/command_line.h"
#include "platform/qt/host/host.h"
#include "platform/qt/host/profiles.h"
#include "platform/qt/services/services.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "session/session_state.h"
#include "tests/support/person.h"

namespace {

constexpr int kBorder = 8, kTitleHeight = 20;  // what a window's frame takes at least

std::string PlaceFile() { return DeviceRoot() + "/window.cfg"; }

std::string Numbers(const char* name, int a, int b) {
    return std::string(name) + ' ' + std::to_string(a) + ' ' + std::to_string(b) + '\n';
}

// The place of the frame, and the size of the window, for which that was kept.
QRect Restored(const std::string& kept) {
    DeviceScreen()->move(11, 12);
    DeviceScreen()->resize(333, 222);
    std::filesystem::remove(PlaceFile());
    if (!kept.empty()) std::ofstream(PlaceFile()) << kept;
    RestoreWindowPlace();
    return QRect(DeviceScreen()->pos(), DeviceScreen()->size());
}

void InProgram(const std::function<void()>& test) {
    RunProgram({}, [&] {
        EXPECT_TRUE(Eventually([] { return session.accelerators != nullptr; }));
        OnWindowThread(test);
    });
}

QImage IconOf(int side) {
    return DeviceScreen()
        ->windowIcon()
        .pixmap(QSize(side, side), 1.0)
        .toImage()
        .convertToFormat(QImage::Format_ARGB32);
}

// True if the toolkit's options are fine, and stay for it.
bool TakesAndKeeps(const std::vector<std::string>& options) {
    std::vector<std::string> words = options;
    words.insert(words.begin(), "quill");
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    int count = static_cast<int>(words.size());
    CommandLine line;
    testing::internal::CaptureStderr();
    const bool taken = TakeCommandLine(&count, arguments.data(), &line);
    testing::internal::GetCapturedStderr();
    return taken && count == static_cast<int>(words.size());
}

}  // namespace

TEST(DesktopWindow, WithoutAFileItStaysWhereItIs) {
    InProgram([] { EXPECT_EQ(QRect(11, 12, 333, 222), Restored("")); });
}

TEST(DesktopWindow, ASizeWithoutAPlaceLeavesThePlaceToTheDesktop) {
    InProgram([] { EXPECT_EQ(QRect(11, 12, 300, 200), Restored(Numbers("size", 300, 200))); });
}

TEST(DesktopWindow, OnAnotherDesktopTheWholeWindowIsMovedOntoTheScreen) {
    InProgram([] {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        const QPoint farthest(screen.right() + 1 - kBorder - 300,
                              screen.bottom() + 1 - kBorder - 200 - kTitleHeight);
        const auto kept = [](QPoint place) {
            return Numbers("size", 300, 200) + Numbers("place", place.x(), place.y()) +
                   Numbers("desktop", 1, 1);
        };
        EXPECT_EQ(QRect(farthest, QSize(300, 200)),
                  Restored(kept(screen.bottomRight() - QPoint(100, 30))));
        EXPECT_EQ(QRect(farthest, QSize(300, 200)), Restored(kept(farthest)));
        EXPECT_EQ(QRect(farthest - QPoint(1, 1), QSize(300, 200)),
                  Restored(kept(farthest - QPoint(1, 1))));
    });
}

TEST(DesktopWindow, ItsPlaceIsKeptWhileItIsShown) {
    InProgram([] {
        std::filesystem::remove(PlaceFile());
        DeviceScreen()->hide();
        SaveWindowPlace();
        EXPECT_FALSE(std::filesystem::exists(PlaceFile()));
        DeviceScreen()->show();
        SaveWindowPlace();
        EXPECT_TRUE(std::filesystem::exists(PlaceFile()));
        EXPECT_FALSE(std::filesystem::exists(PlaceFile() + ".new"));
    });
}

TEST(DesktopWindow, APlaceThatCannotBeWrittenLeavesTheLastOne) {
    InProgram([] {
        SaveWindowPlace();
        const auto kept = std::filesystem::file_size(PlaceFile());
        signal(SIGXFSZ, SIG_IGN);
        rlimit before = {};
        ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &before));
        rlimit none = before;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_FSIZE, &none);
        SaveWindowPlace();
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_GT(kept, 0u);
        EXPECT_EQ(kept, std::filesystem::file_size(PlaceFile()));
        EXPECT_FALSE(std::filesystem::exists(PlaceFile() + ".new"));
    });
}

TEST(DesktopWindow, ItIsPaintedStraightIntoItsStore) {
    InProgram([] {
        ASSERT_NE(nullptr, DeviceScreen()->backingStore());
        EXPECT_EQ(DeviceScreen()->backingStore(), ReadyStore(DeviceScreen()));
    });
}

// A letter on a disc of five eighths, in the lower right corner.
TEST(DesktopWindow, AProfilesIconHasADiscInItsCorner) {
    InProgram([] {
        constexpr int kSide = 48, kDiscBegins = 18;
        const QRgb disc = qRgb(0x60, 0, 0x20);
        const QImage plain = IconOf(kSide);
        MarkWindow("");
        EXPECT_EQ(plain, IconOf(kSide));
        MarkWindow("stores");
        const QImage marked = IconOf(kSide);
        const int middle = kDiscBegins + (kSide - kDiscBegins) / 2;
        EXPECT_EQ(disc, marked.pixel(middle, kDiscBegins + 2));
        EXPECT_EQ(disc, marked.pixel(kDiscBegins + 2, middle));
        EXPECT_EQ(disc, marked.pixel(middle, kSide - 3));
        int smooth = 0;
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                const QRgb now = marked.pixel(x, y);
                if (x < kDiscBegins || y < kDiscBegins) {
                    EXPECT_EQ(plain.pixel(x, y), now) << x << ' ' << y;
                }
                const bool edge = x < kDiscBegins + 4 && now != plain.pixel(x, y);
                smooth += edge && now != disc;
            }
        }
        EXPECT_GT(smooth, 0) << "the disc's edge is no staircase";
        EXPECT_EQ("stores - Quill", DeviceScreen()->windowIconText());
    });
}

TEST(Profiles, NamesHaveLettersDigitsAndThreeSigns) {
    for (const char* name : {"a", "z", "A", "Z", "0", "9", "azAZ09._-"})
        EXPECT_TRUE(IsProfileName(name)) << name;
    for (const char* name : {"", "`", "{", "@", "[", "/", ":", "-a", ".a", "_a", "a b", "a/b"})
        EXPECT_FALSE(IsProfileName(name)) << name;
    EXPECT_TRUE(IsProfileName(std::string(40, 'a')));
    EXPECT_FALSE(IsProfileName(std::string(41, 'a')));
}

TEST(ToolkitOptions, AreTakenWithTheirValues) {
    EXPECT_TRUE(TakesAndKeeps({"-style=fusion"}));
    EXPECT_TRUE(TakesAndKeeps({"--style=fusion", "-platform", "offscreen", "-reverse"}));
    EXPECT_FALSE(TakesAndKeeps({"-stile=fusion"}));
    EXPECT_FALSE(TakesAndKeeps({"-reverse=1"}));
    EXPECT_FALSE(TakesAndKeeps({"-platform=offscreen"})) << "the toolkit would not take it";
    EXPECT_FALSE(TakesAndKeeps({"--display=:77"}));
    EXPECT_FALSE(TakesAndKeeps({"-style"}));
}

TEST(ToolkitOptions, HelpSucceeds) {
    CommandLine line;
    line.task = Task::kHelp;
    testing::internal::CaptureStdout();
    EXPECT_EQ(0, DoTask(line));
    EXPECT_NE(std::string::npos, testing::internal::GetCapturedStdout().find("--profile"));
}

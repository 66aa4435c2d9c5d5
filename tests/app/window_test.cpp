// SPDX-License-Identifier: MIT
// What the real window shows of the terminal.
#include <gtest/gtest.h>
#include <chrono>
#include <QScreen>
#include <QThread>

#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/drawn.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/view/view.h"

namespace {

bool Drawn(const std::string& text) {
    return Eventually([&] { return DrawnText().find(text) != std::string::npos; });
}

QColor PixelOf(const QImage& picture, int row, int column, int x, int y) {
    RECT client;
    GetWindowRect(session.client_window, &client);
    return picture.pixelColor(client.left + (column - 1) * session.view.cell_width + x,
                              client.top + (row - 1) * session.view.cell_height + y);
}

TEST(Window, DefaultScreenShowsAll24RowsAnd80ColumnsWithoutScrollBars) {
    FakeHost host;
    Stage stage;
    stage.width = 0;  // the size that the host chooses
    stage.config = host.Config();
    RunProgram(stage, [&] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        ASSERT_TRUE(host.Accept());
        host.Send("\033[24;80HX");
        ASSERT_TRUE(Drawn("X"));
        OnWindowThread([] {
            EXPECT_GE(session.view.visible_rows, 24);
            EXPECT_EQ(session.view.visible_columns, 80);
            RECT whole, client;
            GetWindowRect(session.client_window, &whole);
            GetClientRect(session.client_window, &client);
            EXPECT_EQ(whole.right - whole.left, client.right);
            EXPECT_EQ(whole.bottom - whole.top, client.bottom);
        });
    });
}

TEST(Window, NarrowDeviceScrollsBothWays) {
    FakeHost host;
    Stage stage;
    stage.width = 240, stage.height = 200;
    stage.config = host.Config("followcursor = 0\n");
    RunProgram(stage, [&] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        ASSERT_TRUE(host.Accept());
        host.Send("\033[1;1Htop left\033[24;70Hfar corner");
        ASSERT_TRUE(Drawn("top left"));
        OnWindowThread([] {
            EXPECT_LT(session.view.visible_rows, 24);
            EXPECT_LT(session.view.visible_columns, 80);
            SendMessageW(session.client_window, WM_VSCROLL, SB_PAGEDOWN, 0);
            SendMessageW(session.client_window, WM_HSCROLL,
                         static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(SB_THUMBPOSITION, 79))),
                         0);
        });
        EXPECT_TRUE(Drawn("far corner"));
    });
}

TEST(Window, FollowingTheCursorBringsItIntoView) {
    FakeHost host;
    Stage stage;
    stage.width = 240, stage.height = 200;
    stage.config = host.Config();
    RunProgram(stage, [&] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        ASSERT_TRUE(host.Accept());
        host.Send("x");
        ASSERT_TRUE(Drawn("x"));
        host.Send("\033[24;70Hhere");
        EXPECT_TRUE(Drawn("here"));
    });
}

TEST(Window, FollowingTheCursorIncludesTheNegotiationsLines) {
    FakeHost host;
    Stage stage;
    stage.width = 240, stage.height = 200;
    stage.config = host.Config("nego = 1\n");
    RunProgram(stage, [&] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        ASSERT_TRUE(host.Accept());
        std::string commands;
        for (int i = 0; i < 11; i++) commands += "\377\375\037";
        host.Send(commands + "\377\373\003");
        EXPECT_TRUE(Drawn("CLIENT: IAC  DO TN_SUPPRESS_GA"));
    });
}

TEST(Window, GlyphsAreDrawnOnTheCellGrid) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[2J\033[H\033[7m" + std::string(80, ' ') +
                  "\033[m\r\n\033(0x\033(B\033[2;80H|");
        ASSERT_TRUE(Drawn("|"));
        const QImage picture = Picture();
        OnWindowThread([&] {
            const int width = session.view.cell_width, height = session.view.cell_height;
            EXPECT_EQ(PixelOf(picture, 1, 1, 0, 0), QColor(Qt::black));
            EXPECT_EQ(PixelOf(picture, 1, 80, width - 1, height - 1), QColor(Qt::black));
            EXPECT_EQ(PixelOf(picture, 2, 1, width / 2, 0), QColor(Qt::black)) << "the bar";
            EXPECT_EQ(PixelOf(picture, 2, 1, width - 1, 0), QColor(Qt::white));
        });
    });
}

TEST(Window, CursorIsASteadyBlockInItsColour) {
    FakeHost host;
    WithSession(host, [&] {
        for (int tick = 0; tick < 2; tick++) {
            OnWindowThread([] {
                session.settings.blink = 1;
                BlinkTick();
                UpdateWindow(session.client_window);
            });
            const QImage picture = Picture();
            OnWindowThread([&] { EXPECT_EQ(PixelOf(picture, 1, 6, 0, 0), QColor(128, 128, 128)); });
        }
    });
}

TEST(Window, BoldBlinkingCellVanishesOnAlternateTicks) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[2J\033[H\033[1;5mMMMM\033[m");
        ASSERT_TRUE(Drawn("MMMM"));
        int coloured = 0, vanished = 0;
        for (int tick = 0; tick < 2; tick++) {
            OnWindowThread([] { BlinkTick(); });
            const QImage picture = Picture();
            OnWindowThread([&] {
                bool bold = false;
                for (int y = 0; y < session.view.cell_height; y++)
                    bold |= PixelOf(picture, 1, 2, session.view.cell_width / 2, y).red() >
                            PixelOf(picture, 1, 2, session.view.cell_width / 2, y).green() + 20;
                bold ? coloured++ : vanished++;
            });
        }
        EXPECT_EQ(coloured, 1);
        EXPECT_EQ(vanished, 1);
    });
}

TEST(Window, PaintsComeByTheFrameAndNotByTheChunk) {
    FakeHost host;
    WithSession(host, [&] {
        std::string block;
        for (int i = 0; i < 400; i++) block += "a line of the fast stream that scrolls by\r\n";
        int before = 0, after = 0;
        OnWindowThread([&] { before = PaintCount(); });
        size_t sent = 0;
        const auto start = std::chrono::steady_clock::now();
        for (; sent < 30000000; sent += block.size()) host.Send(block);
        host.Send("the end");
        ASSERT_TRUE(TerminalShows("the end"));
        OnWindowThread([&] { after = PaintCount(); });
        const int chunks = static_cast<int>(sent / kReceiveSize);
        // A slow machine takes many frames for the stream: at most one a window in 16 ms, and a
        // few at once.
        const auto passed = std::chrono::steady_clock::now() - start;
        const auto frames = kFramesAtOnce + 1 + passed / std::chrono::milliseconds(16);
        EXPECT_LT(after - before, std::max<long>(chunks / 4, 2 * frames));
        EXPECT_GT(after - before, 0);
    });
}

TEST(Window, FontGrowsAndShrinksWithTheKeysOfTheAccelerators) {
    RunProgram({}, [] {
        ASSERT_TRUE(Eventually([] { return session.view.font != nullptr; }));
        int height = 0;
        OnWindowThread([&] { height = session.view.cell_height; });
        PostToMain(WM_COMMAND, 40009);
        EXPECT_TRUE(Eventually([&] { return session.view.cell_height == height + 1; }));
        PostToMain(WM_COMMAND, 40010);
        EXPECT_TRUE(Eventually([&] { return session.view.cell_height == height; }));
        OnWindowThread([] { session.settings.fsize = 25; });
        PostToMain(WM_COMMAND, 40009);
        OnWindowThread([] {});
        EXPECT_TRUE(Eventually([] { return session.settings.fsize == 25; }));
    });
}

// The pixels that the desktop really shows; Picture() would draw the window again.
QImage Glass() {
    QImage glass;
    OnWindowThread([&] {
        glass = QGuiApplication::primaryScreen()
                    ->grabWindow(DeviceScreen()->winId())
                    .toImage()
                    .convertToFormat(QImage::Format_RGB32);
    });
    return glass;
}

// The toolkit may repaint a corner of the window while rows are still waiting to be drawn.
TEST(Window, RowsDrawnWhileTheToolkitAsksForACornerReachTheScreen) {
    FakeHost host;
    WithSession(host, [&] {
        ASSERT_TRUE(Drawn("hello"));
        OnWindowThread([] {
            const char text[] = "\033[2J\033[7m          fresh          \033[m";
            TerminalWrite(reinterpret_cast<const BYTE*>(text), sizeof(text) - 1);
            FindWindowRecord(session.client_window)->widget->repaint(QRect(0, 100, 5, 5));
        });
        QThread::msleep(200);
        const QImage glass = Glass();
        EXPECT_EQ(glass, Picture().convertToFormat(QImage::Format_RGB32));
        OnWindowThread([&] { EXPECT_EQ(PixelOf(glass, 1, 10, 0, 0), QColor(Qt::black)); });
    });
}

// Pixel lines of a cell, counted from 0, on a desktop with two pixels for each pixel of the device.
struct Feet {
    int letter;     // the last line on which the letter of row 1, column 1 has ink
    int underline;  // the first one of an underline
};

Feet FeetOfFirstCell() {
    constexpr int kScale = 2;
    QImage picture(DeviceScreen()->size() * kScale, QImage::Format_RGB32);
    picture.setDevicePixelRatio(kScale);
    DeviceScreen()->render(&picture);
    RECT client;
    GetWindowRect(session.client_window, &client);
    Feet feet{-1, (session.view.cell_height - session.view.underline_offset) * kScale};
    for (int y = 0; y < session.view.cell_height * kScale; y++)
        for (int x = 0; x < session.view.cell_width * kScale; x++)
            if (qGray(picture.pixel(client.left * kScale + x, client.top * kScale + y)) < 128)
                feet.letter = y;
    return feet;
}

TEST(Window, UnderlineIsBelowTheLettersInEverySize) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[2J\033[Hmmm");
        ASSERT_TRUE(Drawn("mmm"));
        for (int size = 8; size <= 25; size++) {
            OnWindowThread([&] {
                ASSERT_EQ(session.settings.fsize, size);
                UpdateWindow(session.client_window);
                const Feet feet = FeetOfFirstCell();
                EXPECT_GE(feet.letter, 0) << "font of " << size;
                EXPECT_GT(feet.underline, feet.letter) << "font of " << size;
                EXPECT_LT(feet.underline, 2 * session.view.cell_height) << "font of " << size;
            });
            PostToMain(WM_COMMAND, 40009);
            OnWindowThread([] {});
        }
    });
}

// The bars take room from the status line and leave an empty corner between them.
TEST(Window, BarsThatAppearAndDisappearLeaveNoOldPixels) {
    FakeHost host;
    WithSession(host, [&] {
        ResizeDevice(400, 258);  // the size that it has on a desktop
        ASSERT_TRUE(Drawn("hello"));
        for (const WPARAM command : {40009, 40009, 40009, 40009, 40010, 40010, 40010, 40010}) {
            PostToMain(WM_COMMAND, command);
            OnWindowThread([] {});
            QThread::msleep(200);
            const QImage glass = Glass();
            EXPECT_EQ(glass, Picture().convertToFormat(QImage::Format_RGB32))
                << "font of " << session.settings.fsize;
        }
    });
}

struct Size {
    int width, height;
};
const Size kSizes[] = {{100, 80},  {4000, 3000}, {240, 320}, {640, 240}, {101, 2000},
                       {3999, 81}, {350, 200},   {349, 200}, {800, 600}};

TEST(Window, TakesEverySizeOfTheDeviceWhileTheHostFloods) {
    FakeHost host;
    WithSession(host, [&] {
        for (const Size& size : kSizes) {
            for (int i = 0; i < 40; i++)
                host.Send("flooding with text, \033[7mreverse\033[m _,\r\n");
            ResizeDevice(size.width, size.height);
            for (int i = 0; i < 40; i++) host.Send("\033[5mblinking\033[m and \033(0lqk\033(B\r\n");
            OnWindowThread([] {
                UpdateWindow(session.client_window);
                EXPECT_GE(session.view.visible_rows, 0);
                EXPECT_LE(session.view.visible_rows, 25);
                EXPECT_GE(session.view.visible_columns, 0);
                EXPECT_LE(session.view.visible_columns, 80);
            });
        }
        host.Send("\033[2J\033[Hdone");
        EXPECT_TRUE(TerminalShows("done"));
        EXPECT_TRUE(Drawn("done"));
    });
}

}  // namespace

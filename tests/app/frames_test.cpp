// SPDX-License-Identifier: MIT
// What the running program draws on the screen, and in which frames.
#include <gtest/gtest.h>

#include <chrono>
#include <QBackingStore>
#include <QScreen>
#include <random>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "tests/support/drawn.h"
#include "tests/support/fake_host.h"
#include "tests/support/frame_clock.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/view/view.h"

static std::vector<QRegion> g_flushed;  // by the program itself
static bool g_recording = false;

void RealFlush(
    QBackingStore* store, const QRegion& region, QWindow* window,
    const QPoint& offset) asm("__real__ZN13QBackingStore5flushERK7QRegionP7QWindowRK6QPoint");
void SeenFlush(
    QBackingStore* store, const QRegion& region, QWindow* window,
    const QPoint& offset) asm("__wrap__ZN13QBackingStore5flushERK7QRegionP7QWindowRK6QPoint");
void SeenFlush(QBackingStore* store, const QRegion& region, QWindow* window, const QPoint& offset) {
    if (g_recording) g_flushed.push_back(region);
    RealFlush(store, region, window, offset);
}

namespace {

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

bool AllPainted() {
    for (const Window* window : AllWindows())
        if (!window->invalid.isEmpty()) return false;
    return true;
}

// Waits until everything is handled and painted: the reply to a report request comes after it.
void AwaitRest(FakeHost& host) {
    host.Send("\033[6n");
    std::string answer;
    while (answer.empty() || answer.back() != 'R') {
        const std::string more = host.Read(1);
        ASSERT_FALSE(more.empty());
        answer += more;
    }
    ASSERT_TRUE(Eventually(AllPainted));
}

void ExpectGlassShowsTheGrid(const std::string& after) {
    const QImage glass = Glass();
    EXPECT_EQ(glass, Picture().convertToFormat(QImage::Format_RGB32)) << after;
    std::string grid = TerminalText(), drawn = DrawnText();
    while (!grid.empty() && grid.back() == '\n') grid.pop_back();
    while (!drawn.empty() && drawn.back() == '\n') drawn.pop_back();
    EXPECT_EQ(drawn, grid) << after;
}

// The windows painted by the first frame that was recorded.
std::vector<HWND> FirstFrame() {
    std::vector<HWND> windows;
    int frames = 0;
    for (const DrawCall& call : RecordedCalls()) {
        frames += call.kind == DrawCall::Kind::kFrame;
        if (frames == 1 && call.kind == DrawCall::Kind::kPaint) windows.push_back(call.window);
    }
    return windows;
}

TEST(Frames, AnEchosFrameHoldsTheTerminalAndTheStatusLine) {
    FakeHost host;
    WithSession(host, [&] {
        for (int i = 0; i < 5; i++) {
            AwaitRest(host);
            OnWindowThread([] { StartRecording(); });
            TypeText("x");
            EXPECT_EQ(host.Read(1), "x");
            host.Send("x");
            ASSERT_TRUE(Eventually([] { return FirstFrame().size() >= 2; }));
            OnWindowThread([] {
                EXPECT_EQ(FirstFrame(),
                          (std::vector<HWND>{session.client_window, session.status_window}));
                StopRecording();
            });
        }
    });
}

TEST(Frames, AnEchoPaintsOnlyItsRow) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[2J\033[7;10H");
        AwaitRest(host);
        host.Send("x");
        AwaitRest(host);
        OnWindowThread([] {
            const int height = session.view.cell_height;
            const QRect painted = FindWindowRecord(session.client_window)->painted.boundingRect();
            EXPECT_EQ(painted, QRect(0, 6 * height, 80 * session.view.cell_width, height));
        });
    });
}

// A part of a window, in coordinates of the device's screen.
QRegion OnDevice(HWND window, QRect part) {
    const QWidget* widget = FindWindowRecord(window)->widget;
    return (part & widget->rect()).translated(widget->mapTo(DeviceScreen(), QPoint(0, 0)));
}

QRegion RowOnDevice(int row) {
    const int height = session.view.cell_height;
    return OnDevice(session.client_window,
                    QRect(0, (row - 1) * height, 80 * session.view.cell_width, height));
}

// The status line changes with the cursor's place.
QRegion StatusLineOnDevice() {
    return OnDevice(session.status_window, FindWindowRecord(session.status_window)->widget->rect());
}

// What was flushed for the terminal and for the status line, each in one piece.
std::vector<QRegion> FlushedBy(FakeHost& host, const std::string& output) {
    std::vector<QRegion> flushed;
    AwaitRest(host);
    OnWindowThread([] {
        g_flushed.clear();
        g_recording = true;
    });
    host.Send(output);
    AwaitRest(host);
    OnWindowThread([&] {
        g_recording = false;
        flushed = g_flushed;
    });
    return flushed;
}

TEST(Frames, OnlyRowsThatChangedAreFlushedToTheScreen) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[2J\033[7;10H");
        const auto echo = FlushedBy(host, "x");
        const auto two_rows = FlushedBy(host, "y\0337\033[3;70Hz\0338");
        const auto same_cell = FlushedBy(host, "\0337\033[3;70Hz\0338");
        OnWindowThread([&] {
            const QRegion status = StatusLineOnDevice();
            EXPECT_FALSE(RowOnDevice(7).isEmpty());
            EXPECT_EQ(echo, (std::vector{RowOnDevice(7), status}));
            EXPECT_EQ(two_rows, (std::vector{RowOnDevice(3) + RowOnDevice(7), status}));
            EXPECT_EQ(same_cell, std::vector{RowOnDevice(3)});
        });
    });
}

constexpr UINT kFloodMessage = 0x0400;
constexpr int kFloodMessages = 400;
int g_flood = 0;  // messages so far

// Each message posts the next one before it ends, so the queue is never empty. Each takes a
// millisecond and makes both windows invalid.
LRESULT CALLBACK FloodProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message != kFloodMessage) return DefWindowProcW(window, message, wparam, lparam);
    InvalidateRect(session.client_window, nullptr, FALSE);
    InvalidateRect(session.status_window, nullptr, FALSE);
    AdvanceFrameClock(1);
    if (++g_flood < kFloodMessages) {
        PostMessageW(window, kFloodMessage, 0, 0);
    } else {
        StartFrameClock();
    }
    return 0;
}

void BeginFlood() {
    WNDCLASSW flood = {};
    flood.lpszClassName = u"Flood";
    flood.lpfnWndProc = FloodProcedure;
    ASSERT_NE(RegisterClassW(&flood), 0);
    HWND window = CreateWindowExW(0, u"Flood", u"", WS_CHILD, 0, 0, 1, 1, session.main_window,
                                  nullptr, nullptr, nullptr);
    g_flood = 0;
    StopFrameClock();
    PostMessageW(window, kFloodMessage, 0, 0);
}

int PaintsRecordedOf(HWND window) {
    const auto& calls = RecordedCalls();
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const DrawCall& call) {
        return call.kind == DrawCall::Kind::kPaint && call.window == window;
    }));
}

TEST(Frames, MessagesWithoutEndDoNotHoldBackTheTerminalAndTheStatusLine) {
    FakeHost host;
    WithSession(host, [&] {
        AwaitRest(host);
        OnWindowThread([] {
            StartRecording();
            BeginFlood();
        });
        ASSERT_TRUE(Eventually([] { return g_flood == kFloodMessages && AllPainted(); }));
        OnWindowThread([] {
            StopRecording();
            EXPECT_GE(PaintsRecordedOf(session.client_window), kFloodMessages / 17);
            EXPECT_GE(PaintsRecordedOf(session.status_window), kFloodMessages / 17);
        });
        ExpectGlassShowsTheGrid("the flood");
    });
}

TEST(Frames, OutputThatChangesNeitherTextNorCellsPaintsNothing) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[2J\033[7;10Hsome text");
        AwaitRest(host);
        int before = 0, after = 0;
        OnWindowThread([&] { before = PaintCount(); });
        host.Send("\033[1m\033[m\0337\033[1;1H\0338\033[?7h\017");
        AwaitRest(host);
        OnWindowThread([&] { after = PaintCount(); });
        EXPECT_EQ(after, before);
    });
}

TEST(Frames, AStreamIsPaintedAtMostOncePerSixteenMilliseconds) {
    FakeHost host;
    WithSession(host, [&] {
        using Clock = std::chrono::steady_clock;
        AwaitRest(host);
        int before = 0, after = 0;
        const auto began = Clock::now();
        OnWindowThread([&] { before = FrameCount(); });
        for (int i = 0; i < 5000; i++) host.Send("a line of the stream that scrolls by\r\n");
        AwaitRest(host);
        OnWindowThread([&] { after = FrameCount(); });
        const auto passed =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - began).count();
        EXPECT_LE(after - before, kFramesAtOnce + 1 + passed / kFrameMilliseconds);
        EXPECT_GT(after - before, 0);
    });
}

std::string RandomPiece(std::mt19937& random) {
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const std::string place =
        "\033[" + std::to_string(1 + below(24)) + ';' + std::to_string(1 + below(80)) + 'H';
    switch (below(8)) {
        case 0:
            return place;
        case 1:
            return place + "\033[7mreverse\033[m";
        case 2:
            return "\r\na line, with_marks";
        case 3:
            return "\033[4;18r\033[18;1H\r\nregion\r\n\033[r";
        case 4:
            return place + (below(2) ? "\033[K" : "\033[1J");
        case 5:
            return below(2) ? "\033[?25l" : "\033[?25h";
        case 6:
            return place + "\033[1;4mbold\033[m";
        default:
            return place + "\033M" + (below(9) ? "" : "\033[2J");
    }
}

TEST(Frames, AfterAnyBurstTheScreenShowsTheGrid) {
    FakeHost host;
    WithSession(host, [&] {
        std::mt19937 random(4711);
        for (int burst = 0; burst < 40; burst++) {
            const int pieces = 1 << random() % 10;
            for (int i = 0; i < pieces; i++) host.Send(RandomPiece(random));
            AwaitRest(host);
            ExpectGlassShowsTheGrid("burst " + std::to_string(burst));
        }
    });
}

TEST(Frames, AfterAResizeInAStreamTheScreenShowsTheGrid) {
    FakeHost host;
    WithSession(host, [&] {
        std::mt19937 random(4711);
        for (const int width : {500, 640, 700, 520}) {
            for (int i = 0; i < 200; i++) host.Send(RandomPiece(random));
            ResizeDevice(width, width - 100);
            for (int i = 0; i < 200; i++) host.Send(RandomPiece(random));
            AwaitRest(host);
            ExpectGlassShowsTheGrid("width " + std::to_string(width));
        }
    });
}

TEST(Frames, RowsUnderTheKeyboardDoNotPaintOverIt) {
    FakeHost host;
    WithSession(host, [&] {
        ResizeDevice(640, 260);
        OnWindowThread([] { ShowInputPanel(true); });
        for (const int row : {3, 12, 24}) {
            host.Send("\033[" + std::to_string(row) + ";1H\033[7m" + std::string(80, ' ') +
                      "\033[m");
            AwaitRest(host);
            EXPECT_EQ(Glass(), Picture().convertToFormat(QImage::Format_RGB32)) << row;
        }
        OnWindowThread([] { ShowInputPanel(false); });
        AwaitRest(host);
        EXPECT_EQ(Glass(), Picture().convertToFormat(QImage::Format_RGB32));
    });
}

// Dark points of the status line's text, and the lowest row that has one.
struct Ink {
    int points = 0;
    int bottom = 0;
};

Ink StatusInk() {
    const QImage picture = Picture();
    Ink ink;
    OnWindowThread([&] {
        RECT bar;
        GetWindowRect(session.status_window, &bar);
        for (int y = bar.top + 2; y < bar.bottom; y++)
            for (int x = bar.left; x < bar.right; x++) {
                if (qGray(picture.pixel(x, y)) >= 100) continue;
                ink.points++;
                ink.bottom = y;
            }
    });
    return ink;
}

TEST(Frames, TheStatusLineShowsItsTextAlsoBeyondAscii) {
    FakeHost host;
    WithSession(host, [&] {
        Ink ink[3];
        const LPCWSTR texts[] = {u"", u"online  row: 1", u"online  row: 1  \u00e9\u00e9\u00e9"};
        for (int i = 0; i < 3; i++) {
            OnWindowThread([&] {
                SetWindowTextW(session.status_window, texts[i]);
                UpdateWindow(session.status_window);
            });
            ink[i] = StatusInk();
        }
        EXPECT_EQ(ink[0].points, 0);
        EXPECT_GT(ink[1].points, 20);
        EXPECT_GT(ink[2].points, ink[1].points);
        EXPECT_NEAR(ink[1].bottom, ink[2].bottom, 1) << "the text moves";
    });
}

TEST(Frames, ARowThatChangesBetweenTheRequestAndThePaintIsNotLost) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[2J\033[H");
        AwaitRest(host);
        OnWindowThread([] {
            const RECT first = {0, 0, 100, session.view.cell_height};
            InvalidateRect(session.client_window, &first, FALSE);
            session.screen.slots[session.screen.ring_origin + 9][5] = 'x';
            session.screen.row_changed[9] = 1;
        });
        ASSERT_TRUE(Eventually(AllPainted));
        ExpectGlassShowsTheGrid("a row that nobody asked for");
    });
}

}  // namespace

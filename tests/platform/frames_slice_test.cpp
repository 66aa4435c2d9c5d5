// SPDX-License-Identifier: MIT
// Frames: how many come at once, at what pace they follow, and what one frame paints.
#include "platform/qt/window/messages.h"

#include <QBackingStore>
#include <QInputMethodEvent>
#include <QKeyEvent>

#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "tests/platform/test_windows.h"
#include "tests/support/frame_clock.h"

// Frames are settled only where the toolkit shares memory with an X server.
QString PlatformOfFrames() asm("__wrap__ZN15QGuiApplication12platformNameEv");
QString PlatformOfFrames() { return QStringLiteral("xcb"); }

static std::vector<QRegion> g_begun;  // every region that the platform has begun to paint

void RealBegin(QBackingStore* store,
               const QRegion& region) asm("__real__ZN13QBackingStore10beginPaintERK7QRegion");
void SeenBegin(QBackingStore* store,
               const QRegion& region) asm("__wrap__ZN13QBackingStore10beginPaintERK7QRegion");
void SeenBegin(QBackingStore* store, const QRegion& region) {
    g_begun.push_back(region);
    RealBegin(store, region);
}

namespace {

constexpr qint64 kMillisecond = 1000000;

// Counts the frames that begin if every millisecond requests one.
int FramesIn(FramePace* pace, qint64 from, qint64 milliseconds) {
    int frames = 0;
    for (qint64 i = 0; i < milliseconds; i++) {
        const qint64 now = from + i * kMillisecond;
        if (NanosecondsToFrame(*pace, now) > 0) continue;
        CountFrame(pace, now);
        frames++;
    }
    return frames;
}

}  // namespace

TEST(FramePace, AFewComeAtOnceAndThenOneEachSixteenMilliseconds) {
    FramePace pace;
    EXPECT_EQ(kFramesAtOnce + 1600 / kFrameMilliseconds - 1, FramesIn(&pace, 1000, 1600));
    for (int second = 2; second < 10; second++)
        EXPECT_LE(FramesIn(&pace, second * 1000 * kMillisecond, 160), 10 + kFramesAtOnce);
}

TEST(FramePace, ThreeComeAtOnceAfterAPause) {
    FramePace pace;
    EXPECT_EQ(3, FramesIn(&pace, 1000, 16));
    EXPECT_EQ(3, FramesIn(&pace, 500 * kMillisecond, 16));
}

TEST(FramePace, InAStreamNoTwoAreCloserThanAFramesTime) {
    FramePace pace;
    qint64 now = 0, last = -1;
    for (int i = 0; i < 20; i++) {
        now += NanosecondsToFrame(pace, now);
        if (i > kFramesAtOnce) {
            EXPECT_EQ(kFrameMilliseconds * kMillisecond, now - last);
        }
        last = now;
        CountFrame(&pace, now);
    }
}

TEST(FramePace, DelayedFrameComesWhenItIsDue) {
    FramePace pace;
    FramesIn(&pace, 0, 100);
    const qint64 wait = NanosecondsToFrame(pace, 100 * kMillisecond);
    EXPECT_GT(wait, 0);
    EXPECT_LE(wait, kFrameMilliseconds * kMillisecond);
    EXPECT_EQ(0, NanosecondsToFrame(pace, 100 * kMillisecond + wait));
}

TEST(FramePace, APauseOrAKeyAllowsAFewAtOnceAgain) {
    FramePace pace;
    FramesIn(&pace, 0, 200);
    EXPECT_EQ(kFramesAtOnce, FramesIn(&pace, 300 * kMillisecond, 4));
    EXPECT_EQ(0, FramesIn(&pace, 304 * kMillisecond, 4));
    RestPace(&pace, 308 * kMillisecond);
    EXPECT_EQ(kFramesAtOnce, FramesIn(&pace, 308 * kMillisecond, 4));
}

namespace {

class Frames : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
        for (int i = 0; i < 3; i++) children[i] = Child(i + 1, 0, 10 * i, 0, 10, 10);
        PaintAndDo([](HWND) {});
        RunUntil([this] { return Of(WM_PAINT).size() >= 3; });
        HurryFrames();
        heard.clear();
    }
    // Paints each window for real, and calls `something` during the paint.
    void PaintAndDo(const std::function<void(HWND)>& something) {
        answer = [something](const Heard& now, LRESULT* result) {
            if (now.message != WM_PAINT) return false;
            PAINTSTRUCT paint;
            BeginPaint(now.window, &paint);
            something(now.window);
            EndPaint(now.window, &paint);
            *result = 0;
            return true;
        };
    }
    void InvalidateAll() {
        for (const HWND child : children) InvalidateRect(child, nullptr, FALSE);
    }
    std::vector<UINT> PaintsAndPosts() const {
        std::vector<UINT> numbers;
        for (const Heard& each : heard)
            if (each.message == WM_PAINT || each.message == kTestMessage)
                numbers.push_back(each.message);
        return numbers;
    }

    HWND children[3] = {};
};

}  // namespace

TEST_F(Frames, OneFramePaintsAllInvalidWindowsBeforeNewMessages) {
    PaintAndDo([](HWND window) { PostMessageW(window, kTestMessage, 0, 0); });
    InvalidateAll();
    RunUntilIdle();
    EXPECT_EQ(
        (std::vector<UINT>{WM_PAINT, WM_PAINT, WM_PAINT, kTestMessage, kTestMessage, kTestMessage}),
        PaintsAndPosts());
}

TEST_F(Frames, OneFramePaintsWhatItsOwnPaintsMakeInvalid) {
    PaintAndDo([this](HWND window) {
        if (window != children[0]) return;
        PostMessageW(window, kTestMessage, 0, 0);
        InvalidateRect(children[2], nullptr, FALSE);
    });
    InvalidateRect(children[0], nullptr, FALSE);
    RunUntilIdle();
    EXPECT_EQ((std::vector<UINT>{WM_PAINT, WM_PAINT, kTestMessage}), PaintsAndPosts());
    EXPECT_EQ(1u, Of(WM_PAINT, children[2]).size());
}

TEST_F(Frames, AWindowThatIsNeverValidIsPaintedOncePerFrameAndBlocksNothing) {
    PaintAndDo([this](HWND window) {
        if (window == children[0]) InvalidateRect(window, nullptr, FALSE);
    });
    InvalidateRect(children[0], nullptr, FALSE);
    ASSERT_TRUE(RunUntil([this] { return Of(WM_PAINT, children[0]).size() >= 5; }));
    for (int i = 0; i < 5; i++) PostMessageW(top, kTestMessage, 0, 0);
    InvalidateRect(children[1], nullptr, FALSE);
    InvalidateRect(children[2], nullptr, FALSE);
    EXPECT_TRUE(RunUntil([this] {
        return Of(kTestMessage).size() == 5 && Of(WM_PAINT, children[1]).size() == 1 &&
               Of(WM_PAINT, children[2]).size() == 1;
    }));
    PaintAndDo([](HWND) {});
}

TEST_F(Frames, DelayedPaintsAreNeverLost) {
    PaintAndDo([](HWND) {});
    for (int i = 0; i < 10; i++) {
        InvalidateAll();
        RunUntilIdle();
    }
    EXPECT_TRUE(RunUntil([this] {
        for (const HWND child : children)
            if (!FindWindowRecord(child)->invalid.isEmpty()) return false;
        return true;
    }));
    EXPECT_EQ(Of(WM_PAINT, children[0]).size(), Of(WM_PAINT, children[2]).size());
}

// Nothing else wakes the queue. If the frame does not come, a timer wakes it and is then queued.
TEST_F(Frames, DelayedPaintWakesTheSleepingQueue) {
    PaintAndDo([](HWND) {});
    SetTimer(top, 7, 3000, nullptr);
    MSG message = {};
    for (int i = 0; i < kFramesAtOnce + 3; i++) {
        InvalidateRect(children[0], nullptr, FALSE);
        do {
            ASSERT_TRUE(GetMessageW(&message, nullptr, 0, 0));
        } while (message.message != WM_PAINT);
        MSG timer;
        EXPECT_FALSE(PeekMessageW(&timer, top, WM_TIMER, WM_TIMER, PM_REMOVE)) << "frame " << i;
        DispatchMessageW(&message);
    }
    KillTimer(top, 7);
}

TEST_F(Frames, WhatAPaintInvalidatesAfterItsBeginningIsKeptForTheNext) {
    bool again = true;
    PaintAndDo([&](HWND window) {
        const RECT piece = {1, 2, 4, 5};
        if (std::exchange(again, false)) InvalidateRect(window, &piece, FALSE);
    });
    InvalidateRect(children[0], nullptr, FALSE);
    UpdateWindow(children[0]);
    EXPECT_EQ(QRect(1, 2, 3, 3), FindWindowRecord(children[0])->invalid.boundingRect());
    EXPECT_TRUE(RunUntil([this] { return Of(WM_PAINT, children[0]).size() == 2; }));
}

namespace {

int g_frames = 0;

// The clock does not go on: whatever has to wait for a frame's time waits forever.
class HeldFrames : public Frames {
  protected:
    void SetUp() override {
        Frames::SetUp();
        g_frames = 0;
        drawing_observer.frame = [] { ++g_frames; };
        StopFrameClock();
        HurryFrames();
    }
    void TearDown() override {
        StartFrameClock();
        drawing_observer = DrawingObserver();
        Frames::TearDown();
    }
    // The frames that come if a window is invalid again after each of them.
    int FramesThatCome() {
        const int before = g_frames;
        for (int i = 0; i < 10; ++i) {
            InvalidateRect(children[0], nullptr, FALSE);
            RunUntilIdle();
        }
        return g_frames - before;
    }
    QWidget* Widget() const { return FindWindowRecord(top)->widget; }
};

}  // namespace

TEST_F(HeldFrames, ThreeComeAtOnceAndTheFourthWaits) {
    EXPECT_EQ(3, FramesThatCome());
    EXPECT_EQ(0, FramesThatCome());
    AdvanceFrameClock(15);
    EXPECT_EQ(0, FramesThatCome());
    AdvanceFrameClock(1);
    EXPECT_EQ(1, FramesThatCome());
}

TEST_F(HeldFrames, AKeyPressBringsThemAtOnce) {
    EXPECT_EQ(3, FramesThatCome());
    EXPECT_EQ(0, FramesThatCome());
    QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    QCoreApplication::sendEvent(Widget(), &press);
    EXPECT_EQ(3, FramesThatCome());
    EXPECT_EQ(0, FramesThatCome());
}

TEST_F(HeldFrames, TextOfAnInputMethodBringsThemAtOnce) {
    EXPECT_EQ(3, FramesThatCome());
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("a"));
    QCoreApplication::sendEvent(Widget(), &event);
    EXPECT_EQ(3, FramesThatCome());
}

// Moves come faster than frames. A release follows a press, which has brought the frames already.
TEST_F(HeldFrames, AKeyReleaseAndTheStylusDoNotBringThem) {
    EXPECT_EQ(3, FramesThatCome());
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier);
    QCoreApplication::sendEvent(Widget(), &release);
    QMouseEvent move(QEvent::MouseMove, QPointF(5, 5), Widget()->mapToGlobal(QPointF(5, 5)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Widget(), &move);
    EXPECT_EQ(0, FramesThatCome());
    EXPECT_EQ(1u, Of(WM_MOUSEMOVE).size());
}

// Each message posts the next one, so the queue is never empty.
TEST_F(HeldFrames, PostedMessagesWithoutEndDoNotHoldThemBack) {
    constexpr int kMessages = 160;
    int posted = 0;
    answer = [&](const Heard& now, LRESULT*) {
        if (now.message != kTestMessage) return false;
        InvalidateAll();
        AdvanceFrameClock(1);
        if (++posted < kMessages) PostMessageW(top, kTestMessage, 0, 0);
        return false;
    };
    PostMessageW(top, kTestMessage, 0, 0);
    RunUntilIdle();
    EXPECT_EQ(kMessages, posted);
    EXPECT_GE(g_frames, 160 / 17);  // a message takes a millisecond
    EXPECT_LE(g_frames, 160 / 16 + 3);
    std::vector<size_t> before_first;  // messages before each window's first paint
    for (const HWND child : children) {
        size_t messages = 0;
        for (const Heard& each : heard) {
            if (each.message == WM_PAINT && each.window == child) break;
            messages += each.message == kTestMessage;
        }
        before_first.push_back(messages);
    }
    EXPECT_EQ((std::vector<size_t>{17, 17, 17}), before_first);
    heard.clear();
}

// What a frame waits for, it waits for before the queue sleeps, not when the next frame comes.
TEST_F(Frames, TheStoreIsReadyForTheNextFrameBeforeTheQueueSleeps) {
    PaintAndDo([](HWND) {});
    const QRegion whole = FindWindowRecord(top)->widget->window()->rect();
    const auto readied = [&] { return std::count(g_begun.begin(), g_begun.end(), whole); };
    const auto sleep = [&] {  // until a timer wakes the queue
        MSG message = {};
        SetTimer(top, 7, 1, nullptr);
        while (message.message != WM_TIMER) {
            ASSERT_TRUE(GetMessageW(&message, nullptr, 0, 0));
            DispatchMessageW(&message);
        }
        KillTimer(top, 7);
    };
    sleep();
    for (int i = 0; i < 3; ++i) {
        g_begun.clear();
        HurryFrames();
        InvalidateRect(children[0], nullptr, FALSE);
        RunUntilIdle();
        ASSERT_EQ(1u, g_begun.size());
        EXPECT_EQ(0, readied());
        sleep();
        EXPECT_EQ(1, readied());
        sleep();
        EXPECT_EQ(1, readied()) << "without a frame in between";
    }
}

TEST_F(Frames, AHiddenWindowIsNotPainted) {
    ShowWindow(children[0], SW_HIDE);
    InvalidateRect(children[0], nullptr, FALSE);
    UpdateWindow(children[0]);
    EXPECT_TRUE(Of(WM_PAINT).empty());
    EXPECT_TRUE(FindWindowRecord(children[0])->invalid.isEmpty());
}

namespace {

// Whether a rest before the first frame waits for the store of the device's screen.
class RestBeforeAnyFrame : public testing::Environment {
  public:
    void SetUp() override {
        WNDCLASSW hidden = {};
        hidden.lpfnWndProc = DefWindowProcW;
        hidden.lpszClassName = TEXT("QuillHiddenWindow");
        RegisterClassW(&hidden);
        const HWND window = CreateWindowExW(0, hidden.lpszClassName, nullptr, 0, 0, 0, 10, 10,
                                            nullptr, nullptr, nullptr, nullptr);
        DeviceScreen()->show();
        QCoreApplication::processEvents();
        ready = ReadyStore(FindWindowRecord(window)->widget->window()) != nullptr;
        g_begun.clear();
        SettleFrames();
        waits = g_begun.size();
        DestroyWindow(window);
    }
    bool ready = false;
    size_t waits = 0;
};
RestBeforeAnyFrame* g_rest =
    static_cast<RestBeforeAnyFrame*>(testing::AddGlobalTestEnvironment(new RestBeforeAnyFrame));

}  // namespace

TEST_F(Frames, ARestBeforeTheFirstFrameWaitsForNothing) {
    EXPECT_TRUE(g_rest->ready);
    EXPECT_EQ(0u, g_rest->waits);
}

// Of windows in the same place, the later one is on top.
TEST_F(Frames, AWindowPaintsNothingWhereALaterOneCoversIt) {
    const HWND last = Child(4, 0, 14, 4, 10, 10);
    PaintAndDo([](HWND) {});
    ASSERT_TRUE(RunUntil([&] { return !Of(WM_PAINT, last).empty(); }));
    const QWidget* widget = FindWindowRecord(top)->widget;
    const QPoint corner = widget->mapTo(widget->window(), QPoint(0, 0));
    const auto painted = [&](HWND window) {
        HurryFrames();
        RunUntilIdle();
        HurryFrames();
        g_begun.clear();
        InvalidateRect(window, nullptr, FALSE);
        RunUntilIdle();
        return g_begun.size() == 1 ? g_begun[0].translated(-corner) : QRegion();
    };
    const QRegion covered(14, 4, 10, 10);
    EXPECT_EQ(QRegion(0, 0, 10, 10), painted(children[0]));
    EXPECT_EQ(QRegion(10, 0, 10, 10) - covered, painted(children[1]));
    EXPECT_EQ(QRegion(20, 0, 10, 10) - covered, painted(children[2]));
    EXPECT_EQ(covered, painted(last));
    ShowWindow(last, SW_HIDE);
    EXPECT_EQ(QRegion(10, 0, 10, 10), painted(children[1]));
}

// Otherwise the queue would try to paint it without end.
TEST_F(Frames, AWindowThatTheDesktopDoesNotShowIsValidAndPaintedWhenItComesBack) {
    PaintAndDo([](HWND) {});
    QWidget* screen = FindWindowRecord(top)->widget->window();
    const QSize size = screen->size();
    screen->setUpdatesEnabled(false);
    screen->resize(size + QSize(1, 1));  // its store is not ready
    ASSERT_EQ(nullptr, ReadyStore(screen));
    RunUntilIdle();
    heard.clear();
    InvalidateRect(children[0], nullptr, FALSE);
    UpdateWindow(children[0]);
    EXPECT_TRUE(Of(WM_PAINT).empty());
    EXPECT_TRUE(FindWindowRecord(children[0])->invalid.isEmpty());
    screen->resize(size);
    screen->setUpdatesEnabled(true);
    EXPECT_TRUE(RunUntil([this] { return !Of(WM_PAINT, children[0]).empty(); }));
}

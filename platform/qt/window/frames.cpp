// SPDX-License-Identifier: MIT
// Decides when invalid windows are painted.
#include "platform/qt/window/messages.h"

#include <chrono>
#include <QBackingStore>
#include <QGuiApplication>
#include <QWindow>
#include <utility>

#include "platform/qt/window/accessible.h"
#include "platform/qt/window/window.h"

constexpr qint64 kFrame = qint64{kFrameMilliseconds} * 1000000;

static FramePace g_pace;
static bool g_under_way = false;
static bool g_unsettled = false;     // a frame has come since SettleFrames
static std::vector<HWND> g_painted;  // by the present frame
static qint64 g_invalid_since = -1;  // when FrameOverdue first found an invalid window; -1: none

static qint64 Now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(time).count();
}

static bool IsInvalid(Window& window) {
    if (window.invalid.isEmpty() || !PaintedByProgram(window)) return false;
    if (window.widget->isVisible()) return true;
    window.invalid = QRegion();
    return false;
}

static bool IsLeftOfFrame(Window& window) {
    return IsInvalid(window) &&
           std::find(g_painted.begin(), g_painted.end(), window.handle) == g_painted.end();
}

// The frame ends when no invalid window is left that it has not painted.
static Window* NextOfFrame() {
    if (!g_under_way) return nullptr;
    Window* next = FirstWindow(IsLeftOfFrame);
    if (!next) {
        g_under_way = false;
        g_painted.clear();
    }
    return next;
}

static void BeginFrame() {
    g_under_way = g_unsettled = true;
    g_invalid_since = -1;
    CountFrame(&g_pace, Now());
    if (drawing_observer.frame) drawing_observer.frame();
}

QBackingStore* ReadyStore(const QWidget* top) {
    QBackingStore* store = top->backingStore();
    const QWindow* surface = top->windowHandle();
    const bool ready = store && surface && surface->isExposed() && store->size() == top->size();
    return ready ? store : nullptr;
}

qint64 NanosecondsToFrame(const FramePace& pace, qint64 now) {
    return std::max(pace.rested - (kFramesAtOnce - 1) * kFrame - now, qint64{0});
}

void CountFrame(FramePace* pace, qint64 now) {
    pace->rested = std::max(pace->rested, now) + kFrame;
}

void RestPace(FramePace* pace, qint64 now) { pace->rested = std::min(pace->rested, now); }

Window* WindowToPaint() {
    if (Window* next = NextOfFrame()) return next;
    Window* first = FirstWindow(IsInvalid);
    return first && NanosecondsToFrame(g_pace, Now()) == 0 ? first : nullptr;
}

bool FrameUnderWay() { return NextOfFrame() != nullptr; }

bool FrameOverdue() {
    if (!FirstWindow(IsInvalid)) {
        g_invalid_since = -1;
        return false;
    }
    const qint64 now = Now();
    if (g_invalid_since < 0) g_invalid_since = now;
    return now - g_invalid_since >= kFrame && NanosecondsToFrame(g_pace, now) == 0;
}

constexpr int64_t kPerMillisecond = 1000000;

int MillisecondsToFrame() {
    if (!FirstWindow(IsInvalid)) return -1;
    return static_cast<int>((NanosecondsToFrame(g_pace, Now()) + kPerMillisecond - 1) /
                            kPerMillisecond);
}

void PaintFrameOf(Window& window) {
    if (!NextOfFrame()) BeginFrame();
    g_painted.push_back(window.handle);
    if (PaintedByProgram(window)) window.operations->paint(window);
    TellTextChanges();
}

void HurryFrames() { RestPace(&g_pace, Now()); }

// The X server reads from shared memory what was painted, and the toolkit paints there again only
// after the server has answered that it is done. This call waits for that answer when there is
// nothing else to do.
void SettleFrames() {
    TellTextChanges();
    static const bool shared = QGuiApplication::platformName() == "xcb";
    if (!std::exchange(g_unsettled, false) || !shared) return;
    const Window* program = ProgramWindow();
    const QWidget* top = program && program->widget ? program->widget->window() : nullptr;
    QBackingStore* store = top ? ReadyStore(top) : nullptr;
    if (!store) return;
    store->beginPaint(top->rect());
    store->endPaint();
}

void ResetFrames() {
    g_unsettled = false;
    g_pace = FramePace();
    g_under_way = false;
    g_painted.clear();
    g_invalid_since = -1;
}

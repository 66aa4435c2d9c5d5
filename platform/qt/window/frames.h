// SPDX-License-Identifier: MIT
// Frames: when invalid windows are painted.
//
// A frame paints all windows that are invalid, one WM_PAINT each, with nothing else in between.
// After a pause, and after a key, up to kFramesAtOnce frames may come at once. Then, while windows
// keep becoming invalid, one frame comes every kFrameMilliseconds; what has to wait is painted when
// its time comes. Window thread only.
#ifndef QUILL_PLATFORM_QT_WINDOW_FRAMES_H
#define QUILL_PLATFORM_QT_WINDOW_FRAMES_H

#include "platform/qt/window/window.h"

class QBackingStore;

inline constexpr int kFrameMilliseconds = 16;
inline constexpr int kFramesAtOnce = 3;

// The pace limits how many frames may come. Times are nanoseconds of a clock that only goes
// forward.
struct FramePace {
    qint64 rested = 0;  // from this time on, kFramesAtOnce frames may come at once
};
qint64 NanosecondsToFrame(const FramePace& pace, qint64 now);  // 0: a frame may begin
void CountFrame(FramePace* pace, qint64 now);
void RestPace(FramePace* pace, qint64 now);

// Returns the window to paint next; null if all are valid or the frame has to wait. Hidden windows
// become valid, because they are painted whole when they are shown again.
Window* WindowToPaint();
bool FrameUnderWay();        // a frame has begun and has a window left to paint
bool FrameOverdue();         // a window has waited for a frame's time, and a frame may begin
int MillisecondsToFrame();   // -1: no window is invalid
void PaintFrameOf(Window&);  // paints a window in the present frame, or begins a frame
void HurryFrames();          // a person waits for the next paint: frames may come at once
void SettleFrames();         // before the queue sleeps: does what the next frame would wait for
void ResetFrames();

// Returns the backing store of a desktop window that can be drawn on; null if there is none yet or
// it has another size.
QBackingStore* ReadyStore(const QWidget* top);

#endif

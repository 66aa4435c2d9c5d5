// SPDX-License-Identifier: MIT
// Frames: when the windows that are invalid are painted.
//
// A frame paints all windows that are invalid, one WM_PAINT each, and nothing else comes in
// between. After a rest, and after a key, a few frames come at once. Then, while windows keep
// becoming invalid, one comes every kFrameMilliseconds; what is held back is painted when its time
// has come. Window thread only.
#ifndef QUILL_PLATFORM_QT_WINDOW_FRAMES_H
#define QUILL_PLATFORM_QT_WINDOW_FRAMES_H

#include "platform/qt/window/window.h"

class QBackingStore;

inline constexpr int kFrameMilliseconds = 16;
inline constexpr int kFramesAtOnce = 3;

// How many frames may come. Times are nanoseconds of a clock that only goes forward.
struct FramePace {
    qint64 rested = 0;  // from this time on kFramesAtOnce may come at once
};
qint64 NanosecondsToFrame(const FramePace& pace, qint64 now);  // 0: one may begin
void CountFrame(FramePace* pace, qint64 now);
void RestPace(FramePace* pace, qint64 now);

// The window that is painted next. Null: all are valid, or the frame is held back. Hidden windows
// become valid, as they are painted whole when they are shown again.
Window* WindowToPaint();
bool FrameUnderWay();        // and a window of it is still to be painted
bool FrameOverdue();         // a window has been invalid for a frame's time, and a frame may begin
int MillisecondsToFrame();   // -1: no window is invalid
void PaintFrameOf(Window&);  // paints a window as part of a frame, which it may begin
void HurryFrames();          // a person waits for what comes next
void SettleFrames();         // before the queue sleeps: what the next frame would wait for
void ResetFrames();

// The store of a desktop window that is ready to be drawn on; null while it has none yet, or has
// one of another size.
QBackingStore* ReadyStore(const QWidget* top);

#endif

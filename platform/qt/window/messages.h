// SPDX-License-Identifier: MIT
// The message queue of the window thread, the state of the keys, and the frames in which windows
// are painted. Each message carries the key state of the moment when it happened.
#ifndef QUILL_PLATFORM_QT_WINDOW_MESSAGES_H
#define QUILL_PLATFORM_QT_WINDOW_MESSAGES_H

#include <bitset>
#include <functional>

#include "platform/qt/window/window.h"

class QKeyEvent;

using KeyStates = std::bitset<256>;  // by virtual key

void QueueInput(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
// Queues a key press with the characters that TranslateMessage makes of it.
void QueueKey(HWND window, UINT message, WPARAM key, LPARAM flags, const QString& characters);
void SetKeyDown(size_t virtual_key, bool down);
bool IsKeyDown(size_t virtual_key);  // according to the last event

// Call it when a box or a dialog opens: the windows below it take no input, not even what came just
// before it. Notices of their controls stay in the queue.
void DropInput();
void RunModalLoop(const std::function<bool()>& done);  // dispatches until done() or WM_QUIT
// Dispatches posted messages, for a frame's time at most, but neither input nor the toolkit's
// events.
void DispatchPosted(const std::function<bool()>& done);
void TakeMessagesFor(HWND window);       // from now on messages can be posted to it
void ForgetWindowMessages(HWND window);  // drops its messages; from now on it gets no more
// Removes such posted messages that nobody has taken yet; true if there were any.
bool DropPosted(HWND window, UINT message, WPARAM wparam);
void ResetMessages();
bool QuitPosted();

// keyboard.cpp
void QueueKeyEvent(HWND window, QKeyEvent* event, bool down);
void QueueCommittedText(HWND window, const QString& text);
void ReleaseModifiers();  // their releases do not come here

// ---------------------------------------------------------------- frames

// When invalid windows are painted (frames.cpp).
//
// A frame paints all windows that are invalid, one WM_PAINT each, with nothing else in between.
// After a pause, and after a key, up to kFramesAtOnce frames may come at once. Then, while windows
// keep becoming invalid, one frame comes every kFrameMilliseconds; what has to wait is painted when
// its time comes. Window thread only.

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

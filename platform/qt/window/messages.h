// SPDX-License-Identifier: MIT
// The message queue of the window thread, and the state of the keys. Each message carries the key
// state of the moment when it happened.
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

#endif

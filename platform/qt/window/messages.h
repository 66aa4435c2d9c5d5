// SPDX-License-Identifier: MIT
// The message queue of the window thread and the state of the keys, which each message carries as
// it was when it happened.
#ifndef QUILL_PLATFORM_QT_WINDOW_MESSAGES_H
#define QUILL_PLATFORM_QT_WINDOW_MESSAGES_H

#include <bitset>
#include <functional>

#include "platform/qt/window/window.h"

class QKeyEvent;

using KeyStates = std::bitset<256>;  // by virtual key

void QueueInput(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
// A key press with the characters that TranslateMessage is to make of it.
void QueueKey(HWND window, UINT message, WPARAM key, LPARAM flags, const QString& characters);
void SetKeyDown(size_t virtual_key, bool down);
bool IsKeyDown(size_t virtual_key);  // as the last event left it

void RunModalLoop(const std::function<bool()>& done);  // dispatches until done or WM_QUIT
// What is posted, for a frame at most; neither input nor the toolkit's events have their turn.
void DispatchPosted(const std::function<bool()>& done);
void TakeMessagesFor(HWND window);       // from now on posts to it are taken
void ForgetWindowMessages(HWND window);  // and from now on no more
// Takes posted messages back that nobody has got yet; whether there were any.
bool DropPosted(HWND window, UINT message, WPARAM wparam);
void ResetMessages();
bool QuitPosted();

// keyboard.cpp
void QueueKeyEvent(HWND window, QKeyEvent* event, bool down);
void QueueCommittedText(HWND window, const QString& text);

#endif

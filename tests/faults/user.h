// SPDX-License-Identifier: MIT
// A user of the program who accepts anything: what does not come is waited for a short while only,
// and each box and dialog is closed. Except for CloseTop, these are called from the person's
// thread.
#ifndef QUILL_TESTS_FAULTS_USER_H
#define QUILL_TESTS_FAULTS_USER_H

#include <functional>
#include <string>
#include <vector>

#include "tests/long_runs/hosts.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

// Milliseconds that the user waits, once a call has failed for what may not come any more.
constexpr int kShort = 300;
constexpr int kLong = 6000;
int Patience();

// Waits until the condition holds. False if it does not, or if the program has ended.
bool Soon(const std::function<bool()>& condition, int milliseconds = Patience());
void Settle();  // until the program has nothing to do

extern std::vector<std::string> boxes_shown;  // title and text of each box that was closed
// Closes one thing that covers the window, on the window's thread. False if there is none.
bool CloseTop();
void CloseAll();  // from the person's thread
void Answer();    // waits for a box, and closes it

void Command(WORD id);
void Use(const std::function<void()>& hands);  // on the window's thread

// Opens a dialog by its command, does that, and presses the button.
void InDialog(WORD command, int button, const std::function<void()>& hands);

// The settings for a session with that host.
void UseKind(const LongHost& host, const HostKind& kind, DWORD cipher);
void ServeUntil(LongHost& host, const std::function<bool()>& condition);
// False if the program does not connect.
bool Open(LongHost& host, const HostKind& kind, DWORD cipher, int patience = Patience());

#endif

// SPDX-License-Identifier: MIT
// Steps of tests that hold sessions: connecting, closing, waiting for either.
#ifndef QUILL_TESTS_SUPPORT_SESSIONS_H
#define QUILL_TESTS_SUPPORT_SESSIONS_H

#include <functional>

#include "tests/support/fake_host.h"

void SetHost(const char16_t* name, int port);
void Connect();
void ConnectLater();  // for connects that show a message box: does not wait for its end
void Close();
bool Online();   // waits for it
bool Offline();  // waits for it

// A program with a session to the host, which has said "hello".
void WithSession(FakeHost& host, const std::function<void()>& person);

#endif

// SPDX-License-Identifier: MIT
// Steps of tests that use sessions: connect, close, wait for either.
#ifndef QUILL_TESTS_SUPPORT_SESSIONS_H
#define QUILL_TESTS_SUPPORT_SESSIONS_H

#include <functional>

#include "tests/support/fake_host.h"

void SetHost(const char16_t* name, int port);
void Connect();
void ConnectLater();  // does not wait, for connects that show a message box
void Close();
bool Online();   // waits until the session is up
bool Offline();  // waits until no session is up

// Connects to the host, which sends "hello".
void BeginSession(FakeHost& host);
// Runs the program with a session to the host, which has sent "hello".
void WithSession(FakeHost& host, const std::function<void()>& person);

#endif

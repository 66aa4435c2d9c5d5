// SPDX-License-Identifier: MIT
// Steps of tests that use sessions.
#include "tests/support/sessions.h"

#include <gtest/gtest.h>

#include "connection/connection.h"
#include "session/session_state.h"
#include "tests/support/person.h"

void SetHost(const char16_t* name, int port) {
    OnWindowThread([&] {
        lstrcpyW(session.settings.host, name);
        session.settings.port = static_cast<DWORD>(port);
    });
}

void Connect() {
    OnWindowThread([] { SessionConnect(); });
}
void Close() {
    OnWindowThread([] { SessionClose(); });
}
void ConnectLater() {
    QMetaObject::invokeMethod(
        qApp, [] { SessionConnect(); }, Qt::QueuedConnection);
}
bool Online() {
    return Eventually([] { return session.connected == 1; });
}
bool Offline() {
    return Eventually([] { return session.connected == 0 && session.connect_pending == 0; });
}

void BeginSession(FakeHost& host) {
    SetHost(u"127.0.0.1", host.port);
    Connect();
    ASSERT_TRUE(host.Accept());
    host.Send("hello");
    ASSERT_TRUE(TerminalShows("hello"));
}

void WithSession(FakeHost& host, const std::function<void()>& person) {
    RunProgram({}, [&] {
        BeginSession(host);
        person();
    });
}

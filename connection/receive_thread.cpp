// SPDX-License-Identifier: MIT
// The receiving thread. To end it, the window thread closes its socket; its select then fails.
#include "connection/connection.h"

#include "session/session_state.h"

constexpr long kWaitMicroseconds = 200000;
constexpr DWORD kWaitMilliseconds = 200;
constexpr DWORD kRetryMilliseconds = 20;
constexpr DWORD kEndMilliseconds = 5000;

static bool OwnTurn() { return session.receive_ready.load(std::memory_order_acquire) == 1; }

// While the window thread uses the buffer, this waits for the buffer and not for the socket, so
// that the next read starts as soon as the buffer is free. Returns the result of select.
static int WaitForSocket(SOCKET socket, fd_set* readable, fd_set* failed) {
    TIMEVAL timeout = {0, kWaitMicroseconds};
    if (!OwnTurn()) {
        WaitForSingleObject(session.handed_back, kWaitMilliseconds);
        if (!OwnTurn()) timeout.tv_usec = 0;
    }
    FD_ZERO(readable);
    FD_ZERO(failed);
    FD_SET(socket, failed);
    const bool read = OwnTurn();
    if (read) FD_SET(socket, readable);
    return select(0, read ? readable : nullptr, nullptr, failed, &timeout);
}

// A full queue refuses a message. Without the message the session would stop for good, so this
// tries again until the program ends.
static void Post(UINT message, WPARAM wparam) {
    while (!PostMessageW(session.main_window, message, wparam, 0) &&
           !session.receiving_done.load(std::memory_order_acquire))
        WaitForSingleObject(session.handed_back, kRetryMilliseconds);
}

static void ReportConnected() {
    if (Connected()) return;
    session.connected.store(1, std::memory_order_release);
    Post(WM_SOCKET_CONNECTED, 0);
}

// Reads one chunk into the buffer and passes it to the window thread. Returns false if the host has
// closed the connection.
static bool ReceiveChunk(SOCKET socket) {
    session.receive_count = recv(socket, session.receive_buffer, kReceiveSize, 0);
    if (session.receive_count == 0) return false;
    session.receive_ready.store(0, std::memory_order_release);
    Post(WM_SOCKET_DATA, 0);
    return true;
}

static bool ServeSocket(SOCKET socket) {
    fd_set readable, failed;
    const int result = WaitForSocket(socket, &readable, &failed);
    if (result == 0) return true;
    if (result == SOCKET_ERROR || FD_ISSET(socket, &failed)) return false;
    // When the user closes the session, the socket is shut down first. That looks like the end of
    // the host's data.
    if (session.socket.load(std::memory_order_acquire) != socket) return false;
    ReportConnected();
    if (!OwnTurn() || !FD_ISSET(socket, &readable)) return true;
    return ReceiveChunk(socket);
}

static bool MakeEvents() {
    if (!session.handed_back) session.handed_back = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    if (!session.receive_ended) session.receive_ended = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    return session.handed_back && session.receive_ended;
}

DWORD WINAPI ReceiveThread(LPVOID) {
    const SOCKET socket = session.socket.load(std::memory_order_acquire);
    session.receive_ready.store(1, std::memory_order_release);
    while (ServeSocket(socket)) {
    }
    Post(WM_SOCKET_DATA, 1);
    SetEvent(session.receive_ended);  // the next session may start now
    return 1;
}

static HANDLE MakeThread() {
    if (!MakeEvents()) return nullptr;
    ResetEvent(session.receive_ended);
    const HANDLE thread = CreateThread(nullptr, 0, ReceiveThread, nullptr, 0, nullptr);
    if (!thread) SetEvent(session.receive_ended);
    return thread;
}

void StartReceiveThread() {
    session.receiving_done.store(0, std::memory_order_release);
    if (const HANDLE thread = MakeThread()) {
        CloseHandle(thread);
    } else if (!PostMessageW(session.main_window, WM_SOCKET_DATA, 1, 0)) {
        SendMessageW(session.main_window, WM_SOCKET_DATA, 1, 0);
    }
}

int AwaitReceiveThread() {
    return !session.receive_ended ||
           WaitForSingleObject(session.receive_ended, kEndMilliseconds) == WAIT_OBJECT_0;
}

void WakeReceiveThread() {
    if (session.handed_back) SetEvent(session.handed_back);
}

void EndReceiving() {
    session.receiving_done.store(1, std::memory_order_release);
    WakeReceiveThread();
    if (!AwaitReceiveThread()) return;
    for (HANDLE* event : {&session.handed_back, &session.receive_ended}) {
        if (*event) CloseHandle(*event);
        *event = nullptr;
    }
}

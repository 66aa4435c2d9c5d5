// SPDX-License-Identifier: MIT
// Handling of WM_SOCKET_DATA: passing a received chunk to the protocol, or ending the session.
#include "connection/connection.h"

#include "protocol/protocols.h"
#include "session/session_state.h"

static void HandBackBuffer() {
    session.receive_ready.store(1, std::memory_order_release);
    WakeReceiveThread();
}

// The receiving thread also reports a failed recv, as a chunk with a negative count. It is ignored
// here.
static void TakeChunk() {
    if (session.receive_count < 1) return;
    TakeSessionChunk(reinterpret_cast<const BYTE*>(session.receive_buffer), session.receive_count);
}

static bool Stale() {
    return !Connected() || session.receive_ready.load(std::memory_order_acquire) == 1;
}

// A message box that is shown here lets other messages run, and these may start a new session. This
// event must not give that session's buffer to its receiving thread.
void OnSocketEvent(WPARAM kind) {
    const SessionMark served = CurrentSession();
    if (kind == 1) {
        session.connect_pending = 0;
        SessionClosed();
    } else if (kind == 0 && !Stale()) {
        TakeChunk();
    }
    const SessionMark left = CurrentSession();
    if (left == served || left.socket == INVALID_SOCKET) HandBackBuffer();
}

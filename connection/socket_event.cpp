// SPDX-License-Identifier: MIT
// What is done with a received chunk.
#include "connection/connection.h"

#include "protocol/protocols.h"
#include "session/session_state.h"

namespace {

void HandBackBuffer() {
    session.receive_ready.store(1, std::memory_order_release);
    WakeReceiveThread();
}

// A failed recv is handed over like a chunk; it ends here, and no protocol sees it.
void TakeChunk() {
    if (session.receive_count < 1) return;
    TakeSessionChunk(reinterpret_cast<const BYTE*>(session.receive_buffer), session.receive_count);
}

bool Stale() { return !Connected() || session.receive_ready.load(std::memory_order_acquire) == 1; }

}  // namespace

// A message box shown on the way lets other messages run, and a new session may begin in them: its
// turn on the buffer is not this event's to give.
void OnSocketEvent(WPARAM kind) {
    const SOCKET served = session.socket.load(std::memory_order_acquire);
    if (kind == 1) {
        session.connect_pending = 0;
        SessionClosed();
    } else if (kind == 0 && !Stale()) {
        TakeChunk();
    }
    const SOCKET left = session.socket.load(std::memory_order_acquire);
    if (left == served || left == INVALID_SOCKET) HandBackBuffer();
}

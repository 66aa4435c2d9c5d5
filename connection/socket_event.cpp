// What is done with a received chunk.
#include "connection/socket_event.h"

#include "connection/connection.h"
#include "connection/receive_thread.h"
#include "protocol/ssh/ssh_session.h"
#include "protocol/telnet/auto_login.h"
#include "protocol/telnet/telnet_engine.h"
#include "session/session_state.h"
#include "terminal/terminal_write.h"

namespace {

void HandBackBuffer() {
    session.receive_ready.store(1, std::memory_order_release);
    WakeReceiveThread();
}

// Gathers the displayable bytes of the chunk in display_buffer; their number.
int FilterChunk() {
    const BYTE* bytes = reinterpret_cast<const BYTE*>(session.receive_buffer);
    const int count = session.receive_count;
    BYTE* data = session.telnet.display_buffer;
    int kept = 0;
    for (int i = 0; i < count; i++) {
        const int run = TelnetDataRun(bytes + i, count - i);
        std::memcpy(data + kept, bytes + i, static_cast<size_t>(run));
        kept += run;
        i += run;
        if (i < count && !TelnetReceiveByte(bytes[i])) data[kept++] = bytes[i];
    }
    return kept;
}

void TakeTelnetChunk() {
    const int count = FilterChunk();
    if (count == 0) return;
    TerminalWrite(session.telnet.display_buffer, count);
    CheckAutoLogin(session.telnet.display_buffer, count);
}

void TakeSshChunk() {
    SshTakeChunk(reinterpret_cast<const BYTE*>(session.receive_buffer), session.receive_count);
}

bool Stale() { return !Connected() || session.receive_ready.load(std::memory_order_acquire) == 1; }

// A failed recv is handed over like a chunk; it ends here, and no protocol hears of it.
void TakeChunk() {
    if (session.receive_count < 1) return;
    session.settings.ssh == 0 ? TakeTelnetChunk() : TakeSshChunk();
}

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

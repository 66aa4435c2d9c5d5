// What is done with a received chunk.
#include "telnet/socket_event.h"

#include "app/connection.h"
#include "app/receive_thread.h"
#include "app/session_state.h"
#include "telnet/auto_login.h"
#include "telnet/session_send.h"
#include "telnet/telnet_engine.h"
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
    if (session.receive_count < 1) return;
    const int count = FilterChunk();
    if (count == 0) return;
    TerminalWrite(session.telnet.display_buffer, count);
    CheckAutoLogin(session.telnet.display_buffer, count);
}

// The first chunk of an SSH server is its identification line; ours answers it.
void TakeSshChunk() {
    static const char kSsh2[] = "SSH-2.0-1.0.00\n";
    static const char kSsh1[] = "SSH-1.5-1.0.00\n";
    if (session.banner_sent) return;
    const char* line = session.settings.ssh_type2 == 1 ? kSsh2 : kSsh1;
    if (SocketSendAll(reinterpret_cast<const BYTE*>(line), static_cast<int>(std::strlen(line))))
        session.banner_sent = 1;
}

bool Stale() {
    return !session.connected.load(std::memory_order_acquire) ||
           session.receive_ready.load(std::memory_order_acquire) == 1;
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
        session.settings.ssh == 0 ? TakeTelnetChunk() : TakeSshChunk();
    }
    if (session.socket.load(std::memory_order_acquire) == served) HandBackBuffer();
}

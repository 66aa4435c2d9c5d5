// SPDX-License-Identifier: MIT
// Sending to the host: the dispatch to the session's protocol, the socket writes, and expanded
// escape text.
#include "session/session_ports.h"

#include "session/session_state.h"
#include "text/text.h"

constexpr int kResponseSize = 256;

bool SocketSendAll(const BYTE* bytes, int length) {
    const SOCKET target = session.socket.load(std::memory_order_acquire);
    if (target == INVALID_SOCKET) return true;
    while (length > 0) {
        const int sent = send(target, reinterpret_cast<const char*>(bytes), length, 0);
        if (sent <= 0) return false;
        bytes += sent;
        length -= sent;
    }
    return true;
}

void SessionSend(const BYTE* bytes, int length, int escape) {
    if (Connected()) session_ports.send(bytes, length, escape);
}

void SendResponse(const char* text) {
    BYTE bytes[kResponseSize];
    const int length = ExpandEscapeText(text, bytes, kResponseSize);
    SessionSend(bytes, length, static_cast<int>(session.telnet.escape_iac));
}

// The send routine of every session.
#include "session/session_send.h"

#include "protocol/ssh/ssh_session.h"
#include "session/session_state.h"
#include "text/escape_text.h"

namespace {

constexpr BYTE kIac = 255;
constexpr BYTE kEor = 239;
constexpr int kStagingSize = 1024;
constexpr int kResponseSize = 256;

// Goes out in pieces of the staging buffer's size.
void SendEscaped(const BYTE* bytes, int length) {
    BYTE staging[kStagingSize];
    int used = 0;
    for (int i = 0; i < length; i++) {
        if (used > kStagingSize - 4) {
            if (!SocketSendAll(staging, used)) return;
            used = 0;
        }
        if (bytes[i] == kIac) staging[used++] = kIac;
        staging[used++] = bytes[i];
    }
    staging[used++] = kIac;
    staging[used++] = kEor;
    SocketSendAll(staging, used);
}

}  // namespace

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
    if (!Connected()) return;
    if (session.settings.ssh) return SshSendData(bytes, length);
    if (escape) {
        SendEscaped(bytes, length);
    } else {
        SocketSendAll(bytes, length);
    }
}

void SendResponse(const char* text) {
    BYTE bytes[kResponseSize];
    const int length = ExpandEscapeText(text, bytes, kResponseSize);
    SessionSend(bytes, length, static_cast<int>(session.telnet.escape_iac));
}

// The send routine of every session.
#include "telnet/session_send.h"

#include "app/session_state.h"
#include "ssh/ssh_session.h"

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

// The text's bytes as they are sent: a response as it grows, with the escape under way.
struct Response {
    BYTE bytes[kResponseSize];
    int length;
    int escape;  // an escape is open
    int digits;
    int value;
};

void Put(Response& response, int byte) {
    if (response.length < kResponseSize)
        response.bytes[response.length++] = static_cast<BYTE>(byte);
}

void EndEscape(Response& response) {
    if (response.escape) Put(response, response.value);
    response.escape = response.digits = response.value = 0;
}

void TakeCharacter(Response& response, char c) {
    if (response.escape && c >= '0' && c <= '7' && response.digits < 3) {
        response.value = response.value * 8 + (c - '0');
        response.digits++;
        return;
    }
    EndEscape(response);
    if (c == '\\') {
        response.escape = 1;
    } else {
        Put(response, static_cast<BYTE>(c));
    }
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
    if (!session.connected.load(std::memory_order_acquire)) return;
    if (session.settings.ssh) return SshSendData(bytes, length);
    if (escape) {
        SendEscaped(bytes, length);
    } else {
        SocketSendAll(bytes, length);
    }
}

void SendResponse(const char* text) {
    Response response = {};
    for (; *text; text++) TakeCharacter(response, *text);
    EndEscape(response);
    SessionSend(response.bytes, response.length, static_cast<int>(session.telnet.escape_iac));
}

// Typed bytes to the socket.
#include "protocol/telnet/telnet.h"

#include "session/session_ports.h"

namespace {

constexpr BYTE kIac = 255;
constexpr BYTE kEor = 239;
constexpr int kStagingSize = 1024;

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

void TelnetSendData(const BYTE* bytes, int length, int escape) {
    if (escape) {
        SendEscaped(bytes, length);
    } else {
        SocketSendAll(bytes, length);
    }
}

// SPDX-License-Identifier: MIT
// The table of the protocols, the choice between them, and the exchange of identification lines.
#include "protocol/protocols.h"

#include "crypto/ciphers.h"
#include "crypto/packet_checks.h"
#include "protocol/ssh/ssh1.h"
#include "protocol/ssh/ssh2.h"
#include "protocol/ssh/ssh_session.h"
#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "text/bytes.h"

const Protocol* const kProtocols[] = {&kTelnetProtocol, &kSsh1Protocol, &kSsh2Protocol};

static const Protocol& CurrentProtocol() {
    if (session.settings.ssh == 0) return *kProtocols[0];
    return *kProtocols[session.settings.ssh_type2 == 1 ? 2 : 1];
}

static void Identify(const Protocol& protocol, const BYTE* bytes, int count) {
    const char* line = protocol.identification;
    protocol.start(line, bytes, count);
    if (!SocketSendAll(reinterpret_cast<const BYTE*>(line), static_cast<int>(std::strlen(line))))
        return;
    session.banner_sent = 1;
    session_ports.update_status();
}

void BeginProtocol() {
    session.ssh.recvFill = 0;
    session.ssh_progress = 0;
    session.banner_sent = 0;
}

void TakeSessionChunk(const BYTE* bytes, int count) {
    const Protocol& protocol = CurrentProtocol();
    if (!protocol.identification) return protocol.take_chunk(bytes, count);
    if (session.socket.load(std::memory_order_acquire) == INVALID_SOCKET) return;
    if (session.banner_sent) return protocol.take_chunk(bytes, count);
    Identify(protocol, bytes, count);
}

void SendSessionData(const BYTE* bytes, int length, int escape) {
    CurrentProtocol().send_data(bytes, length, escape);
}

void ForgetSshSession() {
    ResetCiphers();
    for (const Protocol* protocol : kProtocols) protocol->forget();
    WipeCipherKeys();
    WipeMacKeys();
    Wipe(&session.ssh, sizeof(session.ssh));
}

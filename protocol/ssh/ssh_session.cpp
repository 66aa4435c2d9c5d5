// Identification, and the choice between the protocols.
#include "protocol/ssh/ssh_session.h"

#include "crypto/ciphers.h"
#include "crypto/hmac_sha1.h"
#include "crypto/wipe.h"
#include "protocol/ssh/ssh1_session.h"
#include "protocol/ssh/ssh2_session.h"
#include "session/session_send.h"
#include "session/session_state.h"
#include "ui/view/status_bar.h"

namespace {

const SshProtocol* const kProtocols[] = {&kSsh1Protocol, &kSsh2Protocol};

const SshProtocol* Spoken() { return kProtocols[session.settings.ssh_type2 == 1]; }

void Identify(const SshProtocol* protocol, const BYTE* bytes, int count) {
    const char* line = protocol->identification;
    protocol->start(line, bytes, count);
    if (!SocketSendAll(reinterpret_cast<const BYTE*>(line), static_cast<int>(std::strlen(line))))
        return;
    session.banner_sent = 1;
    UpdateStatus();
}

}  // namespace

void SshTakeChunk(const BYTE* bytes, int count) {
    if (session.socket.load(std::memory_order_acquire) == INVALID_SOCKET) return;
    if (session.banner_sent) return Spoken()->take_chunk(bytes, count);
    Identify(Spoken(), bytes, count);
}

void SshSendData(const BYTE* bytes, int length) {
    if (length < 1) return;
    Spoken()->send_data(bytes, length);
}

void SshSendPacketBytes(const BYTE* bytes, int length) {
    if (Connected()) SocketSendAll(bytes, length);
}

void ResetCiphers() {
    session.ssh2.cipher = nullptr;
    session.ssh1.ssh1Cipher = nullptr;
    session.ssh1.ssh1State = 0;
}

void ForgetSshSession() {
    ResetCiphers();
    for (const SshProtocol* protocol : kProtocols) protocol->forget();
    WipeCipherKeys();
    WipeMacKeys();
    Wipe(&session.ssh, sizeof(session.ssh));
}

bool SshSessionStands(SOCKET served) {
    return served != INVALID_SOCKET && Connected() &&
           session.socket.load(std::memory_order_acquire) == served;
}

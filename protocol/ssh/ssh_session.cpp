// The socket, the ciphers and the end of a session, for both SSH protocols.
#include "protocol/ssh/ssh_session.h"

#include "session/session_ports.h"
#include "session/session_state.h"

void SshSendPacketBytes(const BYTE* bytes, int length) {
    if (Connected()) SocketSendAll(bytes, length);
}

void ResetCiphers() {
    session.ssh2.cipher = nullptr;
    session.ssh1.ssh1Cipher = nullptr;
    session.ssh1.ssh1State = 0;
}

void CloseSession() {
    ResetCiphers();
    session_ports.close_session();
}

bool SshSessionStands(SOCKET served) {
    return served != INVALID_SOCKET && Connected() &&
           session.socket.load(std::memory_order_acquire) == served;
}

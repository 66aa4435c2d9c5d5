// SPDX-License-Identifier: MIT
// Common code of SSH-1 and SSH-2: the socket, the ciphers, the end of a session and the fields of
// packets.
#include "protocol/ssh/ssh_session.h"

#include "session/session_ports.h"
#include "session/session_state.h"
#include "text/bytes.h"

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

bool SshSessionIsCurrent(const SessionMark& served) {
    return served.socket != INVALID_SOCKET && Connected() && CurrentSession() == served;
}

// ---------------------------------------------------------------- the fields of packets

BYTE* PutByte(BYTE* at, BYTE value) {
    *at = value;
    return at + 1;
}

BYTE* PutUint32(BYTE* at, uint32_t value) {
    StoreBig(at, value);
    return at + 4;
}

BYTE* PutBytes(BYTE* at, const void* bytes, int count) {
    if (count > 0) std::memcpy(at, bytes, static_cast<size_t>(count));
    return at + count;
}

BYTE* PutBlock(BYTE* at, const void* bytes, int count) {
    return PutBytes(PutUint32(at, static_cast<uint32_t>(count)), bytes, count);
}

BYTE* PutString(BYTE* at, const char* text) {
    return PutBlock(at, text, static_cast<int>(std::strlen(text)));
}

int StringSize(const char* text) { return 4 + static_cast<int>(std::strlen(text)); }

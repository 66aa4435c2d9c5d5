// What both SSH protocols stand on: the way to the socket, the ciphers, and the end of a session.
#ifndef QUILL_PROTOCOL_SSH_SSH_SESSION_H
#define QUILL_PROTOCOL_SSH_SSH_SESSION_H

#include "windows_ce.h"

// Writes a protocol's packet to the socket; nothing while not connected.
void SshSendPacketBytes(const BYTE* bytes, int length);

// Both protocols go on in the clear, SSH-1 from its first state.
void ResetCiphers();

// The end of every fatal SSH condition: ResetCiphers, then the session is closed.
void CloseSession();

// True while `served` is still the current session's socket. A handler may show a dialog or close
// the session, and other messages run meanwhile.
bool SshSessionStands(SOCKET served);

#endif

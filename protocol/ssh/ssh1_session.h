// The SSH-1.5 client (T. Ylonen, "The SSH (Secure Shell) Remote Login Protocol", 1995): password
// authentication, a terminal and a shell.
#ifndef QUILL_PROTOCOL_SSH_SSH1_SESSION_H
#define QUILL_PROTOCOL_SSH_SSH1_SESSION_H

#include "session/protocol_types.h"

extern const Protocol kSsh1Protocol;

// A packet that has been checked, `length` bytes of data: the step that is due in the session's
// state.
void Ssh1RunState(BYTE type, const BYTE* data, int length);

// Bytes for the shell, as they are; dropped before there is one.
void Ssh1SendData(const BYTE* data, int length);

// Takes the server's public-key message, answers it with the session key, and encrypts from then
// on. False when the session has ended instead, its message shown.
bool Ssh1ExchangeKeys(const BYTE* data, int length);

// Shows the error, and then CloseSession, unless the session ended while the box was shown.
void Ssh1EndSession(LPCWSTR text);

#endif

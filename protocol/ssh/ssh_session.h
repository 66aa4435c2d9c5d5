// SPDX-License-Identifier: MIT
// What SSH-1 and SSH-2 have in common: writing to the socket, turning encryption off, ending a
// session, and writing the fields of packets.
#ifndef QUILL_PROTOCOL_SSH_SSH_SESSION_H
#define QUILL_PROTOCOL_SSH_SSH_SESSION_H

#include "session/session_state.h"
#include "windows_ce.h"

// Writes a packet to the socket. Does nothing while not connected.
void SshSendPacketBytes(const BYTE* bytes, int length);

// Turns encryption off for both protocols and sets SSH-1 to its first state.
void ResetCiphers();

// Ends the session after a fatal SSH error: calls ResetCiphers, then closes the session.
void CloseSession();

// True while `served` is still the current session and is connected. Check this after each call
// that may show a dialog or close the session: other messages run during a dialog.
bool SshSessionIsCurrent(const SessionMark& served);

// ---------------------------------------------------------------- the fields of packets

// The fields of packets to an SSH server (RFC 4251, 5; SSH-1 has the same). Each procedure writes
// at `at`, where the caller provides room, and returns the position after the bytes that it wrote.

BYTE* PutByte(BYTE* at, BYTE value);
BYTE* PutUint32(BYTE* at, uint32_t value);  // big-endian
BYTE* PutBytes(BYTE* at, const void* bytes, int count);
BYTE* PutBlock(BYTE* at, const void* bytes, int count);  // a `string` of `count` bytes
BYTE* PutString(BYTE* at, const char* text);             // a `string` of the text's bytes
int StringSize(const char* text);                        // bytes that PutString writes

#endif

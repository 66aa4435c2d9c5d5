// SPDX-License-Identifier: MIT
// What both SSH protocols stand on: the way to the socket, the ciphers, the end of a session, and
// the fields of packets.
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

// ---------------------------------------------------------------- the fields of packets

// The fields of packets to an SSH server (RFC 4251, 5; SSH-1 has the same). Each procedure writes
// at `at`, where the caller has made room, and returns the position behind what it wrote.

BYTE* PutByte(BYTE* at, BYTE value);
BYTE* PutUint32(BYTE* at, uint32_t value);  // big-endian
BYTE* PutBytes(BYTE* at, const void* bytes, int count);
BYTE* PutBlock(BYTE* at, const void* bytes, int count);  // a `string` of so many bytes
BYTE* PutString(BYTE* at, const char* text);             // a `string` of the text's bytes
int StringSize(const char* text);                        // bytes that PutString writes

#endif

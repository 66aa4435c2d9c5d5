// SPDX-License-Identifier: MIT
// The three protocols of a session, and which of them it speaks.
#ifndef QUILL_PROTOCOL_PROTOCOLS_H
#define QUILL_PROTOCOL_PROTOCOLS_H

#include "windows_ce.h"

// A connection is about to be made: no line has been exchanged, and nothing has come.
void BeginProtocol();

// A received chunk, 1..kReceiveSize bytes. On SSH the first one of a session is the server's
// line, which ours answers; while ours cannot be sent, the next chunk is taken as the server's line
// again, and what was on its way when the session was closed is passed over.
void TakeSessionChunk(const BYTE* bytes, int count);

// Terminal bytes for the host; SessionSend's way into the protocol. SSH drops them while no shell
// can take them.
void SendSessionData(const BYTE* bytes, int length, int escape);

// Wipes everything that an SSH session left: keys, passwords and packets. Also before the first
// one.
void ForgetSshSession();

#endif

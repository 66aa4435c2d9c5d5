// SPDX-License-Identifier: MIT
// The protocols Telnet, SSH-1 and SSH-2: the procedures here call the one that the settings choose.
#ifndef QUILL_PROTOCOL_PROTOCOLS_H
#define QUILL_PROTOCOL_PROTOCOLS_H

#include "windows_ce.h"

// Called before each connection is made. Resets the state: no identification line has been
// exchanged, and no bytes have been received.
void BeginProtocol();

// Takes a received chunk of 1..kReceiveSize bytes. On SSH the first chunk of a session is the
// server's identification line, and ours is sent in reply. If sending fails, the next chunk is
// taken as the server's line again. On SSH, chunks that arrive after the socket was closed are
// ignored.
void TakeSessionChunk(const BYTE* bytes, int count);

// Sends terminal bytes to the host in the session's protocol; SessionSend calls this. SSH drops
// them until there is a shell.
void SendSessionData(const BYTE* bytes, int length, int escape);

// Wipes what an SSH session left in its sections of the record and in crypto/: keys and packets. It
// may also be called before the first session.
void ForgetSshSession();

#endif

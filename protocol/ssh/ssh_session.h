// What both SSH protocols hang in: the identification lines, which protocol speaks, and the end of
// a session.
#ifndef QUILL_PROTOCOL_SSH_SSH_SESSION_H
#define QUILL_PROTOCOL_SSH_SSH_SESSION_H

#include "windows_ce.h"

struct SshProtocol {
    const char* identification;  // our line, with its end
    // The server's line has come: the first chunk, whole and unchecked. Our line follows.
    void (*start)(const char* clientVersion, const BYTE* serverVersion, int serverLength);
    void (*take_chunk)(const BYTE* bytes, int count);  // a later chunk, 1..kReceiveSize bytes
    void (*send_data)(const BYTE* bytes, int length);  // what was typed, pasted or answered
    void (*forget)();  // wipes and releases the protocol's section; also where there is nothing
};

// A received chunk, 1..kReceiveSize bytes; what was on its way when the session was closed is
// passed over. The first of a session is the server's line, which ours answers. While ours cannot
// be sent, the next chunk is taken as the server's line again.
void SshTakeChunk(const BYTE* bytes, int count);

// Terminal bytes for the host, as they are. Dropped while no shell can take them.
void SshSendData(const BYTE* bytes, int length);

// Writes a protocol's packet to the socket; nothing while not connected.
void SshSendPacketBytes(const BYTE* bytes, int length);

// Both protocols go on in the clear, SSH-1 from its first state.
void ResetCiphers();

// Wipes everything that a session left: keys, passwords and packets. Also before the first one.
void ForgetSshSession();

// A handler may show a dialog or close the session, and other messages run meanwhile: whether the
// session on this socket is still the one that goes on.
bool SshSessionStands(SOCKET served);

#endif

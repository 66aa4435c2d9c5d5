// SSH-2 (RFC 4251 to 4254), the client: from the server's line to the end.
#ifndef QUILL_PROTOCOL_SSH_SSH2_SESSION_H
#define QUILL_PROTOCOL_SSH_SSH2_SESSION_H

#include "session/protocol_types.h"

extern const Protocol kSsh2Protocol;

// A session begins: its section of the record as at first, both lines in the exchange hash, all in
// the clear. clientVersion is our line; of both lines the first CR or LF ends what is hashed.
void Ssh2Start(const char* clientVersion, const BYTE* serverVersion, int serverLength);

// Wipes and releases what a session left.
void Ssh2Forget();

#endif

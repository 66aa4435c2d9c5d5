// The SSH sections of the session record: what both protocols share, and each one's own.
#ifndef QUILL_SESSION_SSH_TYPES_H
#define QUILL_SESSION_SSH_TYPES_H

#include "session/ssh1_types.h"
#include "session/ssh2_types.h"
#include "windows_ce.h"

// Most bytes that wait for their packet's end. A packet has fewer.
inline constexpr int kSshReassemblySize = 65535;

// Both protocols': what has come and is no whole packet yet. For the life of a session.
struct SshState {
    int recvFill = 0;  // bytes in recvBuf
    BYTE recvBuf[kSshReassemblySize] = {};
};

#endif

// SSH-1's section of the session record.
#ifndef QUILL_SSH_SSH1_TYPES_H
#define QUILL_SSH_SSH1_TYPES_H

#include "crypto/ciphers.h"

// Owner: ssh/ssh1_*.cpp. For the life of a session.
struct Ssh1State {
    int ssh1State = 0;                       // 0..5, see ssh1_session.cpp
    const Ssh1Cipher* ssh1Cipher = nullptr;  // null: in the clear
};

#endif

// SSH-1.5, the client.
#ifndef QUILL_SSH_SSH1_SESSION_H
#define QUILL_SSH_SSH1_SESSION_H

#include "ssh/ssh_session.h"

extern const SshProtocol kSsh1Protocol;

#endif

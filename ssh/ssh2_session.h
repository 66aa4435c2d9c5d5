// SSH-2 (RFC 4251 to 4254), the client.
#ifndef QUILL_SSH_SSH2_SESSION_H
#define QUILL_SSH_SSH2_SESSION_H

#include "ssh/ssh_session.h"

extern const SshProtocol kSsh2Protocol;

#endif

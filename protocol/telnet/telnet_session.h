// Telnet as one of the protocols that a session speaks.
#ifndef QUILL_PROTOCOL_TELNET_TELNET_SESSION_H
#define QUILL_PROTOCOL_TELNET_TELNET_SESSION_H

#include "session/protocol_types.h"

extern const Protocol kTelnetProtocol;

#endif

// SPDX-License-Identifier: MIT
// The one instance of the session record and of its ports. This is a separate file so that a test
// can replace the send routine.
#include "session/session_state.h"

#include "session/session_ports.h"

SessionState session;
SessionPorts session_ports;

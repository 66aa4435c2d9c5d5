// SPDX-License-Identifier: MIT
// The one instance of the session record, and of its ports. A file of its own, so that a test can
// bring another send routine.
#include "session/session_state.h"

#include "session/session_ports.h"

SessionState session;
SessionPorts session_ports;

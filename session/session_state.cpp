// The one instance of the session record, and of its ports.
#include "session/session_state.h"

#include "session/session_ports.h"

SessionState session;
SessionPorts session_ports;

// SPDX-License-Identifier: MIT
// The one instance of the session record and of its ports. This is a separate file so that a test
// can replace the send routine.
#include "session/session_state.h"

#include "session/session_ports.h"

// The device gives a program little memory.
constexpr size_t kMostBytes = 307504;
static_assert(sizeof(SessionState) <= kMostBytes);

// Not constexpr: the record is nearly all zero, and a constant one would be in the program's file.
SessionState::SessionState() = default;

SessionState session;
SessionPorts session_ports;

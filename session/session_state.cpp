// The one instance of the session record.
#include "session/session_state.h"

SessionState session;

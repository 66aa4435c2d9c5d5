// The one instance of the session record.
#include "app/session_state.h"

SessionState session;

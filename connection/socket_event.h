// The window thread's side of the hand-over of received bytes.
#ifndef QUILL_CONNECTION_SOCKET_EVENT_H
#define QUILL_CONNECTION_SOCKET_EVENT_H

#include "windows_ce.h"

// WM_SOCKET_DATA: kind 0, a chunk waits in session.receive_buffer; 1, the connection has ended. The
// buffer is handed back to the receiving thread on every path.
void OnSocketEvent(WPARAM kind);

#endif

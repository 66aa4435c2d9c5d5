// The receiving thread: one for each connection, it only waits, reads and posts. It serves the
// socket that was the session's when it was started, fills session.receive_buffer only while
// session.receive_ready is 1, and posts WM_SOCKET_DATA and WM_SOCKET_CONNECTED to the main window.
#ifndef QUILL_CONNECTION_RECEIVE_THREAD_H
#define QUILL_CONNECTION_RECEIVE_THREAD_H

#include "windows_ce.h"

// Starts the thread for session.socket. No other one may be running.
void StartReceiveThread();

// Waits until the thread of a closed socket has ended; 1, or 0 if it has not within 5 seconds.
int AwaitReceiveThread();

// Wakes the thread that waits for its turn on the buffer: the turn has come, or the socket closed.
void WakeReceiveThread();

// Frees the events after the last session.
void EndReceiving();

// The thread's procedure; the argument is not used. Returns 1.
DWORD WINAPI ReceiveThread(LPVOID);

#endif

// SPDX-License-Identifier: MIT
// The connection: the one TCP session that the program holds at a time, its receiving thread, and
// the modem.
#ifndef QUILL_CONNECTION_CONNECTION_H
#define QUILL_CONNECTION_CONNECTION_H

#include "windows_ce.h"

// ---------------------------------------------------------------- the session

// Connects to settings.host and settings.port. Every failure is told in a message box with the
// caption "Error"; without a network the user is asked whether to dial. Does nothing while a
// request is under way.
void SessionConnect();

// The user's close: shuts the socket; the receiving thread's notification then runs SessionClosed.
void SessionClose();

// The session has ended, whoever ended it: the offline menus, and the message that is due.
void SessionClosed();

// ---------------------------------------------------------------- the receiving thread

// One for each connection; it only waits, reads and posts. It serves the
// socket that was the session's when it was started, fills session.receive_buffer only while
// session.receive_ready is 1, and posts WM_SOCKET_DATA and WM_SOCKET_CONNECTED to the main window.

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

// ---------------------------------------------------------------- received bytes

// The window thread's side of the hand-over of received bytes.

// WM_SOCKET_DATA: kind 0, a chunk waits in session.receive_buffer; 1, the connection has ended. The
// buffer is handed back to the receiving thread on every path.
void OnSocketEvent(WPARAM kind);

// ---------------------------------------------------------------- the modem

// Dials the entry settings.ras and returns at once. Failures to begin are told in a message box
// with the caption "Error".
void StartDial();

// Starts the dial that the user has agreed to, once; without one it does nothing.
void StartRequestedDial();

// WM_RASDIALEVENT: the state that the dial has reached, and an error code or 0. A connection made
// begins the session.
void OnDialEvent(WPARAM state, LPARAM error);

// A line of the dial's, ending in CR LF, into the terminal. Only while a dial is in progress.
void DialProgress(const char* text);

// Ends the dial or the connection that it made, if there is one. Does not wait for the modem.
void HangUpDial();

#endif

// SPDX-License-Identifier: MIT
// The connection: the program's one TCP session at a time, the thread that receives its bytes, and
// dialling with the modem.
#ifndef QUILL_CONNECTION_CONNECTION_H
#define QUILL_CONNECTION_CONNECTION_H

#include "windows_ce.h"

// ---------------------------------------------------------------- the session

// Connects to settings.host and settings.port. A message box with the caption "Error" reports each
// failure. If there is no network, it asks the user whether to dial. Does nothing while a connect
// request is in progress, or if the thread of the session before does not end within 5 seconds.
void SessionConnect();

// Closes the session on the user's side: it closes the socket. The receiving thread then posts
// WM_SOCKET_DATA, which leads to SessionClosed.
void SessionClose();

// Runs when the session has ended, on either side: wipes the SSH state, shows the offline menus,
// and shows a message if one applies. With the setting exit_dis it ends the program instead,
// if a session was up.
void SessionClosed();

// ---------------------------------------------------------------- the receiving thread

// Each connection has one receiving thread. It waits for data, reads it and posts messages to the
// main window: WM_SOCKET_DATA and WM_SOCKET_CONNECTED. It uses the socket that session.socket holds
// when the thread starts, and writes to session.receive_buffer only while session.receive_ready
// is 1.

// Starts the thread for session.socket. No other receiving thread may be running. If there is no
// thread, the window gets WM_SOCKET_DATA for the end of the connection, before this returns where
// the queue takes no message.
void StartReceiveThread();

// Waits until the thread of a closed socket has ended. Returns 1, or 0 if it has not ended after 5
// seconds.
int AwaitReceiveThread();

// Wakes the thread while it waits for the buffer. Call it when the buffer is free again or the
// socket is closed.
void WakeReceiveThread();

// When the program ends: the thread no longer waits for a full queue, and its events are freed.
void EndReceiving();

// The thread's procedure; the argument is not used. Returns 1.
DWORD WINAPI ReceiveThread(LPVOID);

// ---------------------------------------------------------------- received bytes

// How the window thread takes the received bytes.

// Handles WM_SOCKET_DATA. kind 0: a chunk waits in session.receive_buffer; 1: the connection has
// ended. It then gives the buffer back to the receiving thread, unless a new session has begun in
// the meantime.
void OnSocketEvent(WPARAM kind);

// ---------------------------------------------------------------- the modem

// Starts to dial the entry settings.ras and returns at once. If dialling cannot start, a message
// box with the caption "Error" says so.
void StartDial();

// Starts the dial that the user agreed to (session.dial_request) and clears the request. Does
// nothing without a request.
void StartRequestedDial();

// Handles WM_RASDIALEVENT: the state that the dial has reached, and an error code or 0. When the
// dial has connected, it starts the session.
void OnDialEvent(WPARAM state, LPARAM error);

// Shows a line about the dial in the terminal. The text ends in CR LF. Does nothing if no dial is
// in progress.
void DialProgress(const char* text);

// Ends the dial in progress or the modem connection, if there is one. Does not wait for the modem.
void HangUpDial();

#endif

// SPDX-License-Identifier: MIT
// The ways out of every folder: the ports to what is above it, the send routine to the host, and
// the message boxes to the user.
#ifndef QUILL_SESSION_SESSION_PORTS_H
#define QUILL_SESSION_SESSION_PORTS_H

#include "session/session_state.h"
#include "windows_ce.h"

// What lower folders need of higher ones: one record of procedures. They are null until the program
// fills them in at its start (app/start_up.cpp); a test fills in those that it needs.

struct SessionPorts {
    // The terminal's window.
    void (*repaint)();        // the background and all rows
    void (*show_changes)();   // the rows that are flagged, after text was written
    void (*update_status)();  // the status line and the title

    // The main window: a session has begun or ended, or the toolbar has changed.
    void (*rebuild_menu_bar)();

    // Asks the user for the SSH user and password. False if the dialog could not be shown; other
    // messages run meanwhile.
    bool (*ask_sign_on)();

    // Closes the session's socket.
    void (*close_session)();

    // Sends on a session that is up, in the protocol that it speaks.
    void (*send)(const BYTE* bytes, int length, int escape);
};

extern SessionPorts session_ports;

// ---------------------------------------------------------------- to the host

// The one way out: every byte that the program sends leaves through SessionSend.

// Sends on the current session; nothing while not connected. On Telnet with `escape` 1 each byte
// 255 is doubled and IAC EOR follows; with 0 the bytes go as they are.
void SessionSend(const BYTE* bytes, int length, int escape);

// Writes to the socket until all is sent: true then, and where there is nothing to send or no
// socket; false as soon as the socket takes no more.
bool SocketSendAll(const BYTE* bytes, int length);

// Sends what the escape text stands for (text/text.h), at most 256 bytes.
void SendResponse(const char* text);

// ---------------------------------------------------------------- to the user

// The message boxes that several files show, over the main window.

// A failure: caption "Error", OK.
inline void ShowError(LPCWSTR text) {
    MessageBoxW(session.main_window, text, TEXT("Error"), MB_OK | MB_ICONERROR);
}

// A question before something is given up: caption "Warning", OK and Cancel. Whether it was OK.
inline bool Agreed(LPCWSTR question) {
    return MessageBoxW(session.main_window, question, TEXT("Warning"),
                       MB_OKCANCEL | MB_ICONEXCLAMATION) == IDOK;
}

#endif

// SPDX-License-Identifier: MIT
// What the folders above this one may call to reach the rest of the program: the ports to the
// folders above it, the routine that sends to the host, and the message boxes for the user.
#ifndef QUILL_SESSION_SESSION_PORTS_H
#define QUILL_SESSION_SESSION_PORTS_H

#include "session/session_state.h"
#include "windows_ce.h"

// The procedures of higher folders that lower folders need. The pointers are null until the program
// fills them in at its start (app/start_up.cpp). A test fills in those that it needs.

struct SessionPorts {
    // The terminal's window.
    void (*repaint)();        // requests a paint of the background and all rows
    void (*show_changes)();   // follows the cursor, requests a paint of the rows in row_changed
    void (*update_status)();  // updates the status line and the title; does nothing while hidden

    // Makes the main window's command bar, with its toolbar, and its menu bar again: after a
    // session has ended or could not begin, after the connect button, and when the toolbar has
    // changed.
    void (*rebuild_menu_bar)();

    // Asks the user for the SSH user and password. Returns false if the dialog could not be shown.
    // The message loop runs while the dialog is open, so the session may end in the meantime.
    bool (*ask_sign_on)();

    // Closes the session from our side: no "closed" message follows.
    void (*close_session)();

    // Sends on a connected session, in its protocol.
    void (*send)(const BYTE* bytes, int length, int escape);
};

extern SessionPorts session_ports;

// ---------------------------------------------------------------- to the host

// Sends data on the current session, in its protocol. Does nothing while not connected. On Telnet
// with `escape` 1, each byte 255 is doubled and IAC EOR follows; with 0 the bytes are sent
// unchanged.
void SessionSend(const BYTE* bytes, int length, int escape);

// Writes to the socket until all bytes are sent. Returns true if they are, and also if there is
// nothing to send or no socket. Returns false as soon as a send fails.
bool SocketSendAll(const BYTE* bytes, int length);

// Expands the escape text (text/text.h) and sends the bytes, at most 256 of them.
void SendResponse(const char* text);

// ---------------------------------------------------------------- to the user

// The message boxes that several files use. Their parent is the main window.

// Reports a failure. Caption "Error", button OK.
inline void ShowError(LPCWSTR text) {
    MessageBoxW(session.main_window, text, TEXT("Error"), MB_OK | MB_ICONERROR);
}

// Asks before something is lost. Caption "Warning", buttons OK and Cancel. Returns true for OK.
inline bool Agreed(LPCWSTR question) {
    return MessageBoxW(session.main_window, question, TEXT("Warning"),
                       MB_OKCANCEL | MB_ICONEXCLAMATION) == IDOK;
}

#endif

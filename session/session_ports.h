// What lower folders need of higher ones: one record of procedures. They are null until the program
// fills them in at its start (app/start_up.cpp); a test fills in those that it needs.
#ifndef QUILL_SESSION_SESSION_PORTS_H
#define QUILL_SESSION_SESSION_PORTS_H

#include "windows_ce.h"

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

#endif

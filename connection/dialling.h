// Dialling a modem: its start, its progress as lines in the terminal, and its end.
#ifndef QUILL_CONNECTION_DIALLING_H
#define QUILL_CONNECTION_DIALLING_H

#include "windows_ce.h"

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

// SPDX-License-Identifier: MIT
// Recording doubles of everything that protocol/ssh/ calls: the socket, the terminal, the Sign on
// dialog, message boxes and the connection manager. Chunks arrive through OnSocketEvent, and
// terminal bytes leave through SessionSend, as in the program.
#ifndef QUILL_TESTS_SSH2_OUTSIDE_H
#define QUILL_TESTS_SSH2_OUTSIDE_H

#include <functional>
#include <string>
#include <vector>

#include "session/session_state.h"

struct Outside {
    std::string wire;                  // sent bytes that no test step has read yet
    std::string display;               // bytes that the terminal got
    std::vector<std::string> boxes;    // message boxes as "caption: text"
    std::function<void()> during_box;  // runs while a message box is shown
    std::function<void()> on_display;  // runs at each write to the terminal
    std::string drawn;                 // random bytes that come before the generator's
    std::function<bool()> sign_on;     // answers the dialog; empty: Cancel
    int sign_ons = 0;                  // how often the dialog was shown
    int closes = 0;                    // how often the socket was closed
    int statuses = 0;                  // updates of the status line
    int terminal_writes = 0;           // calls of TerminalWrite
    int sends_that_fail = 0;           // the number of next sends that fail
    int mallocs_that_fail = 0;         // the number of next calls of malloc that fail
};
extern Outside outside;

// Starts a connected session without received data: user "visitor", password "warehouse7", terminal
// type "vt220". The clock is fixed at `milliseconds`.
void NewSession(int milliseconds = 5);

// Passes bytes of the host to the client, in chunks of at most `chunk`.
void Receive(const std::string& bytes, size_t chunk = kReceiveSize);

// Sends bytes that the user types.
void Type(const std::string& bytes);

void SetText(WCHAR* field, const char* text);

#endif

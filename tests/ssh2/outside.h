// SPDX-License-Identifier: MIT
// What protocol/ssh/ calls outside itself, as doubles that record: the socket, the terminal, the
// Sign on dialog, message boxes and the connection manager. Chunks come in through OnSocketEvent,
// and terminal bytes leave through SessionSend, as in the program.
#ifndef QUILL_TESTS_SSH2_OUTSIDE_H
#define QUILL_TESTS_SSH2_OUTSIDE_H

#include <functional>
#include <string>
#include <vector>

#include "session/session_state.h"

struct Outside {
    std::string wire;                  // what the socket took and nobody looked at yet
    std::string display;               // what the terminal got
    std::vector<std::string> boxes;    // message boxes as "caption: text"
    std::function<void()> during_box;  // what happens while one is shown
    std::function<void()> on_display;  // what the terminal does with what it got
    std::string drawn;                 // random bytes to draw before those of the generator
    std::function<bool()> sign_on;     // the dialog's person; none: Cancel
    int sign_ons = 0;                  // how often the dialog was shown
    int closes = 0;                    // how often the socket was closed
    int statuses = 0;                  // of the status line
    int terminal_writes = 0;           // calls of TerminalWrite
    int sends_that_fail = 0;           // the next so many fail
};
extern Outside outside;

// A connected session that nothing has come on, "visitor" with the password "warehouse7", terminal
// type "vt220"; the clock stands at `milliseconds`.
void NewSession(int milliseconds = 5);

// Bytes from the host, in chunks of at most `chunk`.
void Receive(const std::string& bytes, size_t chunk = kReceiveSize);

// Terminal bytes.
void Type(const std::string& bytes);

void SetText(WCHAR* field, const char* text);

#endif

// SPDX-License-Identifier: MIT
// What telnet/ calls outside itself, as doubles that record: the socket, the terminal, SSH, the
// receiving thread and the connection manager. Beside them the shorthands of these tests.
#ifndef QUILL_TESTS_TELNET_OUTSIDE_H
#define QUILL_TESTS_TELNET_OUTSIDE_H

#include <string>
#include <string_view>

#include "session/session_state.h"

struct Outside {
    std::string wire;         // what the socket took
    std::string display;      // what the terminal got, data and trace lines
    std::string ssh_chunks;   // what SSH was given to take, each chunk in brackets
    std::string ssh_data;     // what SSH was given to send
    std::string order;        // 'S' a send, 'T' a run of trace lines, 'W' a TerminalWrite
    int sends = 0;            // calls of send
    int most_per_send = 0;    // the socket takes so much at a time; 0: everything
    int fail_from_send = 0;   // this send and later ones fail; 0: none
    int failure = -1;         // with this result
    int terminal_writes = 0;  // calls of TerminalWrite
    int replies_taken = 0;    // the terminal answers to each ENQ
    int refreshes = 0;
    int closed = 0;                 // calls of SessionClosed
    DWORD pending_when_closed = 0;  // connect_pending and receive_ready, as it found them
    DWORD ready_when_closed = 0;
    int wakes = 0;                  // calls of WakeReceiveThread
    SOCKET socket_after_write = 0;  // what the session has then; 0: the same
};
extern Outside outside;

// A connected Telnet session with the settings' defaults that count here, and nothing recorded.
void NewSession();

// A chunk through OnSocketEvent.
void Receive(std::string_view bytes);

// Bytes through TelnetReceiveByte; returns those that are data.
std::string Filter(std::string_view bytes);

// What was recorded since the last call.
std::string Sent();
std::string Shown();

std::string Iac(int command, int option);      // IAC, command, option
void SetText(WCHAR* field, const char* text);  // of a settings field

#endif

// SPDX-License-Identifier: MIT
// Recording doubles of everything that protocol/telnet calls: the socket, the terminal, SSH, the
// receiving thread and the connection manager. Also helpers that these tests share.
#ifndef QUILL_TESTS_TELNET_OUTSIDE_H
#define QUILL_TESTS_TELNET_OUTSIDE_H

#include <string>
#include <string_view>

#include "session/session_state.h"

struct Outside {
    std::string wire;         // bytes that the socket accepted
    std::string display;      // data and trace lines that the terminal got
    std::string ssh_chunks;   // received chunks that SSH got, each in brackets
    std::string ssh_data;     // data that SSH got to send
    std::string order;        // 'S' a send, 'T' a run of trace lines, 'W' a TerminalWrite
    int sends = 0;            // calls of send
    int most_per_send = 0;    // the most that one send accepts; 0: no limit
    int fail_from_send = 0;   // this send and all later ones fail; 0: no send fails
    int failure = -1;         // the result of a send that fails
    int terminal_writes = 0;  // calls of TerminalWrite
    int replies_taken = 0;    // answers of the terminal to ENQ that were fetched
    int refreshes = 0;
    int closed = 0;                 // calls of SessionClosed
    DWORD pending_when_closed = 0;  // connect_pending and receive_ready at that call
    DWORD ready_when_closed = 0;
    int wakes = 0;                  // calls of WakeReceiveThread
    SOCKET socket_after_write = 0;  // the session's socket after a write; 0: unchanged
};
extern Outside outside;

// Starts a connected Telnet session with the default settings and empty records.
void NewSession();

// Passes a chunk to OnSocketEvent.
void Receive(std::string_view bytes);

// Passes bytes to TelnetReceiveByte and returns those that are data.
std::string Filter(std::string_view bytes);

// What was recorded since the last call.
std::string Sent();
std::string Shown();

std::string Iac(int command, int option);      // IAC, command, option
void SetText(WCHAR* field, const char* text);  // sets a field of the settings

#endif

// SPDX-License-Identifier: MIT
// One client of the demo host: what it is shown, what it has typed, what still has to be sent.
// A screen is a row of three procedures; a session shows one screen at a time.
#ifndef QUILL_DEMO_SESSION_H
#define QUILL_DEMO_SESSION_H

#include <cstddef>
#include <string>

// ---------------------------------------------------------------- Telnet

// The Telnet side of a session (RFC 854, 857, 858, 1091): takes options and subnegotiations out of
// the received bytes and answers them.

struct Telnet {
    int state = 0;               // row of the parser's table; 0 = data
    unsigned char command = 0;   // WILL, WONT, DO or DONT that waits for its option byte
    bool echo = false;           // the client agreed that this host echoes
    bool type_asked = false;     // the terminal type has been asked for
    std::string subnegotiation;  // option byte and contents, at most kSubnegotiationMax bytes
    std::string terminal_type;   // as the client named it, at most 40 printable characters
};

constexpr size_t kSubnegotiationMax = 64;

// Writes the opening offers (WILL ECHO, WILL SUPPRESS-GO-AHEAD, DO TERMINAL-TYPE) to `out`.
void TelnetOpen(std::string& out);

// Takes one received byte. Returns true when it is data, with the byte in `data`; answers to the
// client's options are appended to `out`. Every byte string is accepted.
bool TelnetTake(Telnet& telnet, unsigned char byte, std::string& out, char& data);

// ---------------------------------------------------------------- the session

struct Session;

struct Screen {
    void (*enter)(Session& session);                            // draws the screen
    void (*typed)(Session& session, const std::string& bytes);  // the data of one received chunk
    void (*tick)(Session& session);                             // called at `wake`; may be null
};

// A line being typed. Escape sequences of cursor keys and the like leave no trace in it.
struct LineInput {
    std::string text;     // at most kLineMax characters
    int escape = 0;       // 0 outside an escape sequence, 1 after ESC, 2 after ESC [ or ESC O
    bool secret = false;  // a password: not echoed
};

constexpr size_t kLineMax = 30;

struct Session {
    int socket = -1;
    Telnet telnet;
    std::string out;  // bytes not yet sent
    const Screen* screen = nullptr;
    long long wake = 0;     // when `tick` is due, in milliseconds of Now(); 0 = never
    bool ending = false;    // close as soon as `out` is sent
    std::string name;       // as typed at the login prompt
    LineInput line;         // the line being typed on this screen
    int step = 0;           // progress of this screen, 0 when it is entered
    int field = 0;          // field of the form, or a count of the screen's own
    std::string answer;     // bytes the terminal sent in answer to a report request
    std::string fields[5];  // contents of the form
};

// While more than this is unsent, nothing more is read from the client and no `tick` runs.
constexpr size_t kOutLimit = 16384;

// Milliseconds of a clock that never goes back.
long long Now();

// Starts a session on a connected socket: options, banner, login prompt.
void SessionStart(Session& session, int socket);

// Takes the bytes of one read.
void SessionReceive(Session& session, const char* bytes, size_t count);

// Shows another screen: resets modes, clears the terminal and calls its `enter`.
void ShowScreen(Session& session, const Screen& screen);

// Adds one typed byte to session.line and echoes it. Returns true when it ended the line (CR).
bool TakeLineByte(Session& session, char byte);

// A line cleared for the next input; `secret` for a password.
void StartLine(Session& session, bool secret);

#endif

// The Telnet side of a session (RFC 854, 857, 858, 1091): takes options and subnegotiations out of
// the received bytes and answers them.
#ifndef QUILL_DEMO_TELNET_H
#define QUILL_DEMO_TELNET_H

#include <cstddef>
#include <string>

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

#endif

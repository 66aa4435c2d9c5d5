// The Telnet engine: the receive side of RFC 854 with the option policy of this client.
//
// It accepts four options from the host (binary transmission 0, echo 1, suppress go-ahead 3,
// terminal type 24), offers three itself (1, 3, 24), answers the terminal-type request of RFC 1091
// alone, and sends no window size. Where it differs from the RFC on purpose:
//   - IAC IAC is not a data byte: both are swallowed and the next byte is taken as an option;
//   - a one-byte command is answered as if the last two-byte command had named it as its option;
//   - IAC DM, while the trace is off, leaves the next byte to be taken as an option;
//   - a subnegotiation ends at the byte SE, whatever stands before it.
#ifndef QUILL_PROTOCOL_TELNET_TELNET_ENGINE_H
#define QUILL_PROTOCOL_TELNET_TELNET_ENGINE_H

#include "windows_ce.h"

// The state of a new connection. A subnegotiation that the last one broke off goes on.
void TelnetReset();

// True when the engine took the byte, false when it is data for the terminal.
bool TelnetReceiveByte(BYTE b);

// How many bytes at the front are data in any case, so that they need not go byte by byte.
int TelnetDataRun(const BYTE* bytes, int count);

// IAC, command, option to the host, and the trace's line.
void TelnetSendCommand(BYTE command, BYTE option);

#endif

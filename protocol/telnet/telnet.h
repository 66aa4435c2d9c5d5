// SPDX-License-Identifier: MIT
// Telnet (RFC 854): one of the protocols that a session speaks, its engine, the negotiation trace
// and the automatic login.
#ifndef QUILL_PROTOCOL_TELNET_TELNET_H
#define QUILL_PROTOCOL_TELNET_TELNET_H

#include "session/protocol_types.h"
#include "windows_ce.h"

extern const Protocol kTelnetProtocol;

// ---------------------------------------------------------------- the engine

// The receive side of RFC 854 with the option policy of this client.
//
// It accepts four options from the host (binary transmission 0, echo 1, suppress go-ahead 3,
// terminal type 24), offers three itself (1, 3, 24), answers the terminal-type request of RFC 1091
// alone, and sends no window size. Where it differs from the RFC on purpose:
//   - IAC IAC is not a data byte: both are swallowed and the next byte is taken as an option;
//   - a one-byte command is answered as if the last two-byte command had named it as its option;
//   - IAC DM, while the trace is off, leaves the next byte to be taken as an option;
//   - a subnegotiation ends at the byte SE, whatever stands before it.

// The state of a new connection. A subnegotiation that the last one broke off goes on.
void TelnetReset();

// True when the engine took the byte, false when it is data for the terminal.
bool TelnetReceiveByte(BYTE b);

// How many bytes at the front are data in any case, so that they need not go byte by byte.
int TelnetDataRun(const BYTE* bytes, int count);

// IAC, command, option to the host, and the trace's line.
void TelnetSendCommand(BYTE command, BYTE option);

// ---------------------------------------------------------------- the trace

// With `nego` set, every Telnet command of either side as a line in the
// terminal. The lines go through the interpreter like received text and never to the host; they end
// in LF CR, in that order.

// Shows the text up to its first zero, at most 255 bytes in the ANSI code page. What the terminal
// would reply to it is not sent.
void TraceWrite(LPCWSTR text);

void TraceHostCommand(BYTE command, BYTE option);  // WILL, WONT, DO, DONT
void TraceDataMark();
void TraceSubnegotiation(const BYTE* bytes, int count);  // the option first, the IAC of SE last
void TraceClientCommand(BYTE command, BYTE option);
void TraceTerminalType(const char* name);

// ---------------------------------------------------------------- automatic login

// Two pairs of a search text and a response, each sent once a
// connection.

// Takes the four texts over from the settings; a pair with an empty text stays disarmed.
void ArmAutoLogin();

// The displayable bytes of one received chunk. The search is case-sensitive and does not reach
// across chunks.
void CheckAutoLogin(const BYTE* bytes, int count);

// ---------------------------------------------------------------- sending

// With `escape` 1 each byte 255 is doubled and IAC EOR follows; with 0 the bytes go as they are.
void TelnetSendData(const BYTE* bytes, int length, int escape);

#endif

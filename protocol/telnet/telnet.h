// SPDX-License-Identifier: MIT
// Telnet (RFC 854), one of the protocols of a session: the engine that separates commands from
// data, the trace of the negotiation, and the automatic login.
#ifndef QUILL_PROTOCOL_TELNET_TELNET_H
#define QUILL_PROTOCOL_TELNET_TELNET_H

#include "session/protocol_types.h"
#include "windows_ce.h"

extern const Protocol kTelnetProtocol;

// ---------------------------------------------------------------- the engine

// The receive side of RFC 854 with the option policy of this client.
//
// It accepts four options from the host (binary transmission 0, echo 1, suppress go-ahead 3,
// terminal type 24) and agrees to three of its own (1, 3, 24). The terminal-type request of RFC
// 1091 is the only subnegotiation that it answers. It sends no window size. It differs from the RFC
// on purpose:
//   - IAC IAC is not a data byte: both bytes are dropped, and the next byte is taken as an option;
//   - a one-byte command is handled like an option of the last two-byte command;
//   - after IAC DM, while the trace is off, the next byte is taken as an option;
//   - a subnegotiation ends at the byte SE, whatever byte is before it.

// Sets the state for a new connection. If the last connection ended inside a subnegotiation, the
// engine is still inside it.
void TelnetReset();

// Returns true if the engine consumed the byte, false if it is data for the terminal.
bool TelnetReceiveByte(BYTE b);

// Returns how many bytes at the front are certainly data. The caller need not pass these to
// TelnetReceiveByte.
int TelnetDataRun(const BYTE* bytes, int count);

// Sends IAC, command, option to the host, and traces it while the trace is on.
void TelnetSendCommand(BYTE command, BYTE option);

// ---------------------------------------------------------------- the trace

// With the setting `nego`, every Telnet command of either side is shown as a line in the terminal.
// The lines go through the interpreter like received text and are never sent to the host. They end
// in LF CR, in that order. The callers check `nego`.

// Converts a text to the ANSI code page and shows at most 255 bytes of it. The terminal's replies
// to it are not sent.
void TraceWrite(LPCWSTR text);

void TraceHostCommand(BYTE command, BYTE option);  // WILL, WONT, DO, DONT
void TraceDataMark();
void TraceSubnegotiation(const BYTE* bytes, int count);  // from the option to the IAC before SE
void TraceClientCommand(BYTE command, BYTE option);
void TraceTerminalType(const char* name);

// ---------------------------------------------------------------- automatic login

// Two pairs of a search text and a response. When the search text arrives, the response is sent,
// once for each connection.

// Copies the four texts from the settings. A pair with an empty text is not used.
void ArmAutoLogin();

// Searches the displayable bytes of one received chunk. The search is case-sensitive. It does not
// find a text that is split between two chunks.
void CheckAutoLogin(const BYTE* bytes, int count);

// ---------------------------------------------------------------- sending

// With `escape` 1, each byte 255 is doubled and IAC EOR follows; with 0 the bytes are sent
// unchanged.
void TelnetSendData(const BYTE* bytes, int length, int escape);

#endif

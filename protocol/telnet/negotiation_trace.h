// The negotiation trace: with `nego` set, every Telnet command of either side as a line in the
// terminal. The lines go through the interpreter like received text and never to the host; they end
// in LF CR, in that order.
#ifndef QUILL_PROTOCOL_TELNET_NEGOTIATION_TRACE_H
#define QUILL_PROTOCOL_TELNET_NEGOTIATION_TRACE_H

#include "windows_ce.h"

// Shows the text up to its first zero, at most 255 bytes in the ANSI code page. What the terminal
// would reply to it is not sent.
void TraceWrite(LPCWSTR text);

void TraceHostCommand(BYTE command, BYTE option);  // WILL, WONT, DO, DONT
void TraceDataMark();
void TraceSubnegotiation(const BYTE* bytes, int count);  // the option first, the IAC of SE last
void TraceClientCommand(BYTE command, BYTE option);
void TraceTerminalType(const char* name);

#endif

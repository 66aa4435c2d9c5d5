// The send side of a Telnet session.
#ifndef QUILL_PROTOCOL_TELNET_TELNET_SEND_H
#define QUILL_PROTOCOL_TELNET_TELNET_SEND_H

#include "windows_ce.h"

// With `escape` 1 each byte 255 is doubled and IAC EOR follows; with 0 the bytes go as they are.
void TelnetSendData(const BYTE* bytes, int length, int escape);

#endif

// The one way out: every byte that the program sends leaves through SessionSend.
#ifndef QUILL_SESSION_SESSION_SEND_H
#define QUILL_SESSION_SESSION_SEND_H

#include "windows_ce.h"

// Sends on the current session; nothing while not connected. On Telnet with `escape` 1 each byte
// 255 is doubled and IAC EOR follows; with 0 the bytes go as they are.
void SessionSend(const BYTE* bytes, int length, int escape);

// Writes to the socket until all is sent: true then, and where there is nothing to send or no
// socket; false as soon as the socket takes no more.
bool SocketSendAll(const BYTE* bytes, int length);

// Sends what the escape text stands for (text/escape_text.h), at most 256 bytes.
void SendResponse(const char* text);

#endif

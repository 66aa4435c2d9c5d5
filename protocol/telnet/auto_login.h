// Automatic login on Telnet: two pairs of a search text and a response, each sent once a
// connection.
#ifndef QUILL_PROTOCOL_TELNET_AUTO_LOGIN_H
#define QUILL_PROTOCOL_TELNET_AUTO_LOGIN_H

#include "windows_ce.h"

// Takes the four texts over from the settings; a pair with an empty text stays disarmed.
void ArmAutoLogin();

// The displayable bytes of one received chunk. The search is case-sensitive and does not reach
// across chunks.
void CheckAutoLogin(const BYTE* bytes, int count);

#endif

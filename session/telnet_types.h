// The Telnet engine's and the automatic login's sections of the session record.
#ifndef QUILL_SESSION_TELNET_TYPES_H
#define QUILL_SESSION_TELNET_TYPES_H

#include "windows_ce.h"

inline constexpr int kReceiveSize = 3000;  // most bytes of one receive
inline constexpr int kSubnegSize = 80;
inline constexpr int kTelnetOptions = 251;  // codes 0..250

struct TelnetState {
    DWORD iac_seen = 0;
    DWORD last_command = 0;  // 250..254, or 0 since the connect; never cleared after use
    DWORD in_subneg = 0;     // survives a disconnect
    BYTE subneg_buffer[kSubnegSize] = {};
    int subneg_count = 0;
    BYTE his_options[kTelnetOptions] = {};   // 1: the host was told DO
    BYTE my_options[kTelnetOptions] = {};    // 1: the client announced WILL
    DWORD escape_iac = 0;                    // typed data is sent with IAC doubled and IAC EOR
    BYTE display_buffer[kReceiveSize] = {};  // the displayable bytes of the chunk in hand
};

// Texts in the ANSI code page, for the life of a connection.
inline constexpr int kLoginTextSize = 41;  // 40 bytes and the terminator
struct AutoLogin {
    char search1[kLoginTextSize] = {};
    char search2[kLoginTextSize] = {};
    char response1[kLoginTextSize] = {};
    char response2[kLoginTextSize] = {};
    DWORD login_armed1 = 0;
    DWORD login_armed2 = 0;
};

#endif

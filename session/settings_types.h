// SPDX-License-Identifier: MIT
// The saved settings. Each field holds one registry value and has its name. The tables with the
// names and defaults are in settings.cpp.
#ifndef QUILL_SESSION_SETTINGS_TYPES_H
#define QUILL_SESSION_SETTINGS_TYPES_H

#include "windows_ce.h"

// Strings are UTF-16 with a terminator. At most 80 bytes of a value are read from the registry, so
// 40 units hold any value. Host fields have 60 units because the dialogs accept that many. A
// dial-up entry's name has 48, of which 20 can be dialled.
inline constexpr int kSettingUnits = 40;
inline constexpr int kHostUnits = 60;
inline constexpr int kDialEntryUnits = 48;

struct Settings {
    DWORD blink;         // saved, but has no visible effect
    DWORD fsize;         // font size; CreateTerminalFont brings it into 1..25
    DWORD bell;          // 1: the bell sounds
    DWORD alive;         // 1: a session keeps the device powered
    DWORD xbox;          // 1: minimising ends the program
    DWORD exit_dis;      // 1: the program ends with the session
    DWORD confirm_exit;  // 1: ask before closing a session, or the program during one
    DWORD ssh;           // 0 Telnet, 1 SSH
    DWORD ssh_type;      // 0 DES (on SSH-2 triple DES), 1 triple DES, 2 Blowfish
    DWORD autoconnect;   // 1: connect at program start
    DWORD table;         // saved, but not used
    DWORD followcursor;  // 1: the view follows the cursor
    DWORD hidestatus;    // 1: no status bar
    DWORD port;          // only the low 16 bits are used
    DWORD nego;          // 1: trace the Telnet negotiation
    DWORD hotspot;       // 1: double taps send menu numbers
    DWORD ssh_def;       // 1: sign on with the stored password, without a question
    DWORD color_bg;      // colours: 0x00BBGGRR
    DWORD color_fg;
    DWORD color_cursor;
    DWORD color_bold;
    DWORD font_bold;
    DWORD font_italic;
    DWORD ssh_type2;  // 1 SSH-2, 0 SSH-1

    WCHAR fname[kSettingUnits];
    WCHAR host[kHostUnits];
    WCHAR hist0a[kHostUnits];  // the last five hosts, in the order of their first use, newest first
    WCHAR hist1a[kHostUnits];
    WCHAR hist2a[kHostUnits];
    WCHAR hist3a[kHostUnits];
    WCHAR hist4a[kHostUnits];
    WCHAR sear1[kSettingUnits];
    WCHAR sear2[kSettingUnits];
    WCHAR resp1[kSettingUnits];
    WCHAR resp2[kSettingUnits];
    WCHAR ssh_u[kSettingUnits];
    WCHAR ssh_p[kSettingUnits];
    WCHAR termtype[kSettingUnits];
    WCHAR ras[kDialEntryUnits];
};

#endif

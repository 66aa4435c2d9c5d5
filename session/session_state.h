// SPDX-License-Identifier: MIT
// The record of the program's and the session's state; docs/architecture.md names the little that
// is elsewhere. Each section begins with "Owner:", which names the files that may write it: a file
// without its suffix, or all files of a folder. All other files only read it. "Also:" names a
// single field that one more file writes. tests/layers/owners.py checks the sources against these
// lines. Only the window thread uses this record, except for the fields under "Shared with the
// receiving thread", whose comments say how they are shared, and main_window, which that thread
// reads.
#ifndef QUILL_SESSION_SESSION_STATE_H
#define QUILL_SESSION_SESSION_STATE_H

#include <atomic>

#include "session/protocol_types.h"
#include "session/settings_types.h"
#include "session/terminal_types.h"
#include "windows_ce.h"

inline constexpr UINT WM_SOCKET_DATA = 105;  // wParam 0: a chunk waits; 1: the connection has ended
inline constexpr UINT WM_SOCKET_CONNECTED = 107;  // the socket is readable: the session is up

inline constexpr int kCommandBarId = 1;  // child ids of the main window
inline constexpr int kClientWindowId = 2;
inline constexpr int kStatusBarId = 106;  // child id of the client window

using ChooseColorProcedure = BOOL (*)(LPVOID request);

struct SessionState {
    SessionState();

    // Owner: app/start_up.
    HINSTANCE instance = nullptr;
    HACCEL accelerators = nullptr;
    HMODULE common_dialogs = nullptr;
    ChooseColorProcedure choose_color = nullptr;  // null: no colour dialog on this device

    // Owner: app/start_up, which clears them, and ui/dialogs/font_dialog.
    COLORREF custom_colors[16] = {};  // the colour dialog's custom colours; not saved

    // Owner: ui/view/terminal_window, ui/main_window. Set as soon as the window gets WM_CREATE.
    HWND client_window = nullptr;

    // Owner: ui/main_window. RebuildMenuBar makes both bars again, so their handles are not kept.
    HWND main_window = nullptr;  // set at WM_CREATE and never cleared
    HWND command_bar = nullptr;
    HWND menu_bar = nullptr;     // null if the bar could not be made
    int command_bar_height = 0;  // pixels
    int main_width = 0;          // pixels; the main window's width at its creation
    int client_width = 0;        // pixels; the client window's width at its creation

    // Owner: ui/commands.
    int toolbar = 1;  // the bar that is shown, 1..3

    // Owner: ui/view/keys.
    DWORD key_taken = 0;  // 1: the key table handles the current key press; ignore its character

    // Owner: ui/view/view.
    DWORD input_panel_up = 0;  // 1: the on-screen keyboard is shown, as last reported

    // Owner: ui/view/status_bar.
    HWND status_window = nullptr;  // null while hidden; RebuildStatusBar makes it again
    int status_height = 0;         // pixels; 0 while hidden

    // Owner: ui/view/terminal_window.
    DWORD narrow_screen = 0;  // 1: the screen was less than 350 pixels wide at the start

    // Owner: ui/view/.
    ViewState view;

    // Owner: ui/dialogs/.
    // Of the last dialog that RunDialog showed: -1 cancelled, after the Font dialog the row of the
    // face, else 0.
    int dialog_result = 0;
    DWORD connect_request = 0;  // 1: the last Connect dialog was closed by OK

    // Owner: connection/.
    DWORD connect_pending = 0;  // 1: a connect request is in progress, or its session is up
    DWORD closing = 0;          // 1: our side closed the session: no "closed" message
    DWORD dial_request = 0;     // 1: the user agreed to dial; the timer starts it
    DWORD dialling = 0;         // 1: a dial is in progress
    int last_dial_state = -1;   // the last state of any dial; -1: no state yet
    DWORD sockets_made = 0;     // modulo 2^32
    HRASCONN ras_connection = nullptr;
    SOCKADDR_IN peer = {};

    // Owner: connection/. Shared with the receiving thread (connection/receive_thread.cpp). That
    // thread uses only these fields, and it reads main_window.
    std::atomic<SOCKET> socket{INVALID_SOCKET};  // written by the window thread
    std::atomic<DWORD> connected{0};  // set by the receiving thread, cleared by the window thread
    std::atomic<DWORD> receiving_done{0};    // 1: the program ends, the thread need not post
    std::atomic<DWORD> receive_ready{0};     // 1: the thread may fill receive_buffer
    char receive_buffer[kReceiveSize] = {};  // receive_ready says which thread may touch it
    int receive_count = 0;           // what recv returned: bytes in receive_buffer, or 0 or less
    HANDLE handed_back = nullptr;    // event: receive_ready was set, or the socket closed
    HANDLE receive_ended = nullptr;  // event: the receiving thread has ended

    // Owner: protocol/protocols, protocol/ssh/.
    // 1: our identification line has been sent. Each SessionConnect clears it.
    DWORD banner_sent = 0;
    DWORD ssh_progress = 0;  // 0: the session is not encrypted yet, SSH-1: its state, SSH-2: 1
    SshState ssh;
    Ssh1State ssh1;
    Ssh2State ssh2;

    // Owner: protocol/telnet/.
    TelnetState telnet;
    AutoLogin login;

    // Owner: terminal/.
    ScreenBuffer screen;
    ParserState parser;
    TerminalModes modes;
    SplitRegions split;

    // Owner: settings/, ui/dialogs/.
    // Also: settings.fsize by ui/view/terminal_font, settings.ssh_p by protocol/ssh/.
    Settings settings = {};

    // Owner: settings/settings.
    DWORD save_settings = 1;  // 0 after a reset: nothing is saved, until SetDialEntry sets it again
};

extern SessionState session;

// True while a session is connected. Any thread may call this.
inline bool Connected() { return session.connected.load(std::memory_order_acquire) != 0; }

// Tells one session from another. The socket alone does not: the system may give the number of a
// closed socket to the next one.
struct SessionMark {
    SOCKET socket;
    DWORD sockets_made;
    bool operator==(const SessionMark&) const = default;
};

inline SessionMark CurrentSession() {
    return {session.socket.load(std::memory_order_acquire), session.sockets_made};
}

#endif

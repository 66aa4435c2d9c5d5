// SPDX-License-Identifier: MIT
// An SSH-2 session of this program without what is around it: its own protocol and terminal on one
// thread, without a window, a message queue or a receiving thread. bench/ssh2.py runs it.
//
//   ssh2_floor SOCKET [BYTES]   signs on with the name and password of bench/ssh2.py at the server
//   to
//       which the descriptor SOCKET is connected, and ends when the server closes the connection.
//       BYTES: the most that one read takes; 3,000 as in the program if it is left out.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "protocol/protocols.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"
#include "text/text.h"

static const SOCKET kSocket = 4;  // any number but INVALID_SOCKET; this program has one connection
static int g_descriptor = -1;

// The calls of the platform that the protocol and the terminal use.
int SliceSend(SOCKET, const char* bytes, int size, int) {
    return static_cast<int>(write(g_descriptor, bytes, static_cast<size_t>(size)));
}
BOOL MessageBeep(UINT) { return TRUE; }
int MessageBoxW(HWND, LPCWSTR, LPCWSTR, UINT) { return IDOK; }

static void SetText(WCHAR* field, const char* text) { WideFromAnsi(text, field, kSettingUnits); }

static void PrepareSession() {
    session_ports = {
        .repaint = [] {},
        .show_changes = [] {},
        .update_status = [] {},
        .rebuild_menu_bar = [] {},
        .ask_sign_on = [] { return true; },
        .close_session = [] { session.socket = INVALID_SOCKET; },
        .send = SendSessionData,
    };
    session.settings.ssh = session.settings.ssh_type = session.settings.ssh_type2 = 1;
    session.settings.ssh_def = 1;
    SetText(session.settings.ssh_u, "visitor");
    SetText(session.settings.ssh_p, "warehouse7");
    SetText(session.settings.termtype, "vt220");
    TerminalStart();
    ClearAllLines();
    BeginProtocol();
    session.connected = 1;
    session.socket = kSocket;
}

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: ssh2_floor SOCKET [BYTES]\n");
        return 1;
    }
    g_descriptor = std::atoi(argv[1]);
    std::string chunk(argc > 2 ? std::strtoul(argv[2], nullptr, 10) : kReceiveSize, '\0');
    PrepareSession();
    while (session.socket == kSocket) {
        const ssize_t count = read(g_descriptor, chunk.data(), chunk.size());
        if (count <= 0) return 0;
        TakeSessionChunk(reinterpret_cast<const BYTE*>(chunk.data()), static_cast<int>(count));
    }
    return 0;
}

// SPDX-License-Identifier: MIT
// The end of a session, on either side. This is a separate file: it calls the code of the modem,
// and that code starts sessions.
#include "connection/connection.h"
#include "protocol/protocols.h"
#include "session/session_ports.h"
#include "session/session_state.h"

void SessionClosed() {
    ForgetSshSession();
    if (!Connected()) {
        session_ports.update_status();
        ShowError(TEXT("Not possible to create a session to the UNIX Host"));
        session_ports.rebuild_menu_bar();
        return;
    }
    session.connected.store(0, std::memory_order_release);
    session_ports.rebuild_menu_bar();
    if (session.settings.exit_dis) {
        HangUpDial();
        PostQuitMessage(0);
    } else if (!session.closing) {
        ShowError(TEXT("Connection to the UNIX Host has been closed..."));
    }
}

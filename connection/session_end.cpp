// SPDX-License-Identifier: MIT
// The end of a session, whoever ended it. A file of its own: it hangs up the modem, which itself
// connects.
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

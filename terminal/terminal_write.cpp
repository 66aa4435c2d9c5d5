// SPDX-License-Identifier: MIT
// Passes the host's bytes to the interpreter and the terminal's replies back to the host. This is a
// separate file so that the interpreter does not depend on a connection.
#include "terminal/interpreter.h"

#include <cstring>

#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"

static void SendReply() {
    const char* reply = TerminalTakeReply();
    if (!reply) return;
    SessionSend(reinterpret_cast<const BYTE*>(reply), static_cast<int>(strlen(reply)), 0);
}

static void Feed(const BYTE* bytes, int count) {
    while (count > 0) {
        int fed = TerminalFeedText(bytes, count);
        if (fed < count && TerminalFeedByte(bytes[fed++])) SendReply();
        bytes += fed;
        count -= fed;
    }
}

void TerminalWrite(const BYTE* bytes, int count) {
    const int cursor = CursorPosition();
    DropSelection();
    Feed(bytes, count);
    ShowWritten(cursor);
}

void ShowWritten(int cursor_before) {
    session_ports.show_changes();
    if (CursorPosition() != cursor_before) session_ports.update_status();
}

// SPDX-License-Identifier: MIT
// The life of a session: its start, received bytes, changes of the screen, and the line that the
// user types.
#include "demo/session.h"

#include <chrono>
#include "demo/screens.h"

long long Now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count() + 1;
}

void SessionStart(Session& session, int socket) {
    session.socket = socket;
    TelnetOpen(session.out);
    ShowScreen(session, kLoginScreen);
}

void SessionReceive(Session& session, const char* bytes, size_t count) {
    std::string data;
    for (size_t i = 0; i < count; ++i) {
        char byte = 0;
        if (TelnetTake(session.telnet, static_cast<unsigned char>(bytes[i]), session.out, byte)) {
            data += byte;
        }
    }
    if (!data.empty() && !session.ending) session.screen->typed(session, data);
}

void ShowScreen(Session& session, const Screen& screen) {
    session.screen = &screen;
    session.wake = 0;
    session.step = 0;
    session.field = 0;
    session.answer.clear();
    StartLine(session, false);
    ClearScreen(session.out);
    screen.enter(session);
}

void StartLine(Session& session, bool secret) {
    session.line = LineInput{};
    session.line.secret = secret;
}

// Tracks escape sequences that keys send. Returns true if the byte belongs to one.
static bool SkipEscape(LineInput& line, unsigned char byte) {
    if (byte == 27) {
        line.escape = 1;
        return true;
    }
    if (line.escape == 1) {
        line.escape = byte == '[' || byte == 'O' ? 2 : 0;
        return true;
    }
    if (line.escape == 2) {
        if (byte >= 64) line.escape = 0;
        return true;
    }
    return false;
}

static void RubOut(Session& session) {
    LineInput& line = session.line;
    if (line.text.empty()) return;
    line.text.pop_back();
    if (!line.secret && session.telnet.echo) session.out += "\b \b";
}

bool TakeLineByte(Session& session, char byte) {
    LineInput& line = session.line;
    const unsigned char code = static_cast<unsigned char>(byte);
    if (code == 13) return true;
    if (SkipEscape(line, code)) return false;
    if (code == 8 || code == 127) {
        RubOut(session);
    } else if (code >= 32 && (code < 128 || code >= 160) && line.text.size() < kLineMax) {
        line.text += byte;
        if (!line.secret && session.telnet.echo) session.out += byte;
    }
    return false;
}

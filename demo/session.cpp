// SPDX-License-Identifier: MIT
// The life of a session: its start, received bytes, changes of the screen, and the line that the
// user types. Below: what the screens use to append terminal output (text and escape sequences).
#include "demo/session.h"

#include <chrono>

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

// ---------------------------------------------------------------- writing

void ClearScreen(std::string& out) {
    out += "\x1b[0m\x1b(B\x1b)B\x0f\x1b[r\x1b[4l\x1b[?6l\x1b[?7h\x1b[?25h\x1b[2J\x1b[H";
}

void MoveTo(std::string& out, int row, int col) {
    out += "\x1b[" + std::to_string(row) + ";" + std::to_string(col) + "H";
}

void WriteAt(std::string& out, int row, int col, const std::string& text) {
    MoveTo(out, row, col);
    out += text;
}

void WriteStyled(std::string& out, int row, int col, const char* rendition,
                 const std::string& text) {
    MoveTo(out, row, col);
    out += "\x1b[";
    out += rendition;
    out += "m" + text + "\x1b[0m";
}

void WriteGraphics(std::string& out, int row, int col, const std::string& text) {
    WriteAt(out, row, col, "\x1b(0" + text + "\x1b(B");
}

void WriteBox(std::string& out, int row, int col, int height, int width, const std::string& title) {
    const std::string edge(static_cast<size_t>(width - 2), 'q');
    WriteGraphics(out, row, col, "l" + edge + "k");
    for (int i = 1; i < height - 1; ++i) {
        WriteGraphics(out, row + i, col, "x");
        WriteGraphics(out, row + i, col + width - 1, "x");
    }
    WriteGraphics(out, row + height - 1, col, "m" + edge + "j");
    if (!title.empty()) WriteAt(out, row, col + 2, " " + title + " ");
}

void WriteTitle(std::string& out, const std::string& title) {
    WriteStyled(out, 1, 1, "7", Fit("  HARBOUR STORES", 60) + Fit(title, 20));
}

void WriteHint(std::string& out, const std::string& hint) {
    WriteStyled(out, 24, 1, "7", Fit("  " + hint, 80));
}

std::string Fit(const std::string& text, int width) {
    std::string fitted = text;
    fitted.resize(static_cast<size_t>(width), ' ');
    return fitted;
}

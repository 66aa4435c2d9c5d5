// SPDX-License-Identifier: MIT
// Procedures that append terminal output (text and escape sequences) to a session's `out` buffer.
#include "demo/screens.h"

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

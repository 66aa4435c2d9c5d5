// SPDX-License-Identifier: MIT
// Pages that show how single cells and lines look: line drawing, double-size lines, attributes, and
// the characters of the code page.
#include <cstdio>
#include <cstring>

#include "demo/session.h"

// A frame divided into three by three compartments.
static void WriteGrid(std::string& out, int row, int col) {
    // clang-format off
    const char* const kGrid[] = {
        "lqqqqqqqwqqqqqqqwqqqqqqqk",
        "x       x       x       x",
        "tqqqqqqqnqqqqqqqnqqqqqqqu",
        "x       x       x       x",
        "tqqqqqqqnqqqqqqqnqqqqqqqu",
        "x       x       x       x",
        "mqqqqqqqvqqqqqqqvqqqqqqqj",
    };
    const char* const kBays[] = {"Bay A", "Bay B", "Bay C", "Bay D", "Bay E",
                                 "Bay F", "Bay G", "Bay H", "Bay J"};
    // clang-format on
    for (const char* line : kGrid) WriteGraphics(out, row++, col, line);
    for (int i = 0; i < 9; ++i) WriteAt(out, row - 6 + i / 3 * 2, col + 2 + i % 3 * 8, kBays[i]);
}

// Every glyph of the DEC special graphics set (0x5F to 0x7E) beside the letter that selects it.
static void WriteGlyphs(std::string& out, int row, int col) {
    for (int i = 0; i < 32; ++i) {
        const std::string letter(1, static_cast<char>(0x5F + i));
        const int at_row = row + i / 8 * 2;
        const int at_col = col + i % 8 * 8;
        WriteAt(out, at_row, at_col, letter + "  ");
        out.append("\x1b(0").append(3, letter[0]).append("\x1b(B");
    }
}

static void WriteNested(std::string& out, int row, int col) {
    WriteBox(out, row, col, 8, 34, "Yard");
    WriteBox(out, row + 1, col + 3, 6, 28, "Warehouse 2");
    WriteBox(out, row + 2, col + 6, 4, 22, "Cold store");
    WriteGraphics(out, row + 3, col + 8, "aaaaaaaaaaaaaaaaaa");
    WriteGraphics(out, row + 4, col + 8, "opqrsopqrsopqrsopq");
}

static void EnterLineDrawing(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Line drawing");
    WriteGrid(out, 4, 6);
    WriteNested(out, 3, 40);
    WriteAt(out, 13, 6, "The special graphics set, each glyph after its letter:");
    WriteGlyphs(out, 15, 10);
    WriteHint(out, kAnyKey);
}

static void EnterDoubleSize(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Double-size lines");
    WriteAt(out, 4, 5, "\x1b#3Berth 7 is free");
    WriteAt(out, 5, 5, "\x1b#4Berth 7 is free");
    WriteAt(out, 7, 5, "\x1b#6Double width: 40 columns a line");
    WriteAt(out, 9, 5, "\x1b#5Single width: this line has 80 columns as always");
    WriteStyled(out, 11, 5, "1", "\x1b#3Bold, twice as high");
    WriteStyled(out, 12, 5, "1", "\x1b#4Bold, twice as high");
    WriteStyled(out, 14, 5, "4", "\x1b#6Underlined and wide");
    WriteStyled(out, 16, 5, "7", "\x1b#3 Reverse ");
    WriteStyled(out, 17, 5, "7", "\x1b#4 Reverse ");
    WriteAt(out, 19, 5, "\x1b#6\x1b(0lqqqqqqqqqqwqqqqqqqqqqk\x1b(B");
    WriteAt(out, 20, 5, "\x1b#6\x1b(0x\x1b(B  Wide    \x1b(0x\x1b(B  frame   \x1b(0x\x1b(B");
    WriteAt(out, 21, 5, "\x1b#6\x1b(0mqqqqqqqqqqvqqqqqqqqqqj\x1b(B");
    WriteHint(out, kAnyKey);
}

namespace {

struct Style {
    const char* rendition;
    const char* label;
};

}  // namespace

// clang-format off
static const Style kStyles[] = {
    {"0",       "plain"},            {"1",       "bold"},
    {"4",       "underline"},        {"1;4",     "bold underline"},
    {"5",       "blink"},            {"1;5",     "bold blink"},
    {"4;5",     "underline blink"},  {"1;4;5",   "bold underline blink"},
    {"7",       "reverse"},          {"1;7",     "bold reverse"},
    {"4;7",     "underline reverse"},{"1;4;7",   "bold underline reverse"},
    {"5;7",     "blink reverse"},    {"1;5;7",   "bold blink reverse"},
    {"4;5;7",   "underl. blink rev."},{"1;4;5;7", "all four at once"},
};
// clang-format on

static void EnterAttributes(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Attributes");
    WriteBox(out, 3, 5, 12, 72, "The sixteen combinations");
    int number = 0;
    for (const Style& style : kStyles) {
        const int row = 5 + number / 2;
        const int col = number % 2 == 0 ? 8 : 42;
        WriteAt(out, row, col, Fit(style.rendition, 8));
        WriteStyled(out, row, col + 8, style.rendition, style.label);
        ++number;
    }
    WriteAt(out, 16, 6, "Low stock is ");
    out += "\x1b[1mbold\x1b[0m, overdue goods \x1b[5mblink\x1b[0m, the chosen line is reverse:";
    WriteStyled(out, 18, 6, "7", Fit("  HS-1042   Hemp rope, 24 mm          Bay C      180 m", 70));
    WriteAt(out, 19, 6, "  HS-1043   Sailcloth No. 4           Bay C       65 m");
    WriteAt(out, 20, 6, "  HS-1044   ");
    out += "\x1b[1mStockholm tar, 5 l        Bay F        3\x1b[0m";
    WriteHint(out, kAnyKey);
}

const Screen kLineDrawingPage = {EnterLineDrawing, BackToMenu, nullptr};
const Screen kDoubleSizePage = {EnterDoubleSize, BackToMenu, nullptr};
const Screen kAttributesPage = {EnterAttributes, BackToMenu, nullptr};

// ---------------------------------------------------------------- characters

// The 8-bit page: every character of code page 1252 that can be sent to a terminal.

// False for the 8-bit controls that terminals act on (IND, RI, SS3, DCS, CSI), the codes that the
// code page does not define, and 255, which is IAC in Telnet.
static bool IsShown(int code) {
    static const int kNotShown[] = {0x81, 0x84, 0x8D, 0x8F, 0x90, 0x9B, 0x9D, 0xFF};
    for (const int hidden : kNotShown) {
        if (hidden == code) return false;
    }
    return true;
}

static void WriteCodeTable(std::string& out, int row, int col) {
    for (int low = 0; low < 16; ++low) {
        char head[8];
        snprintf(head, sizeof(head), "%X", static_cast<unsigned>(low));
        WriteStyled(out, row, col + 4 + low * 3, "1", head);
    }
    for (int high = 8; high < 16; ++high) {
        char head[8];
        snprintf(head, sizeof(head), "%Xx", static_cast<unsigned>(high));
        WriteStyled(out, row + high - 7, col, "1", head);
        for (int low = 0; low < 16; ++low) {
            const int code = high * 16 + low;
            const char shown = IsShown(code) ? static_cast<char>(code) : ' ';
            WriteAt(out, row + high - 7, col + 4 + low * 3, std::string(1, shown));
        }
    }
}

static void EnterCharacters(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "8-bit characters");
    WriteBox(out, 3, 10, 11, 58, "Code page 1252");
    WriteCodeTable(out, 4, 14);
    WriteAt(out, 15, 10, "Caf\xE9 Cr\xE8me, G\xF6teborg        \xA3 12.50   \x80 14.90");
    WriteAt(out, 16, 10,
            "Sm\xF8rrebr\xF8"
            "d & \xC6"
            "bler, K\xF8"
            "benhavn   4\xBD kg \xD7 3 = 13\xBD kg");
    WriteAt(out, 17, 10,
            "Gr\xFC\xDF"
            "e aus L\xFC"
            "beck              \xB1 2 \xB0"
            "C, 40 \xB5m");
    WriteAt(out, 18, 10,
            "Se\xF1"
            "or Pe\xF1"
            "a, M\xE1laga, \xBFqu\xE9 tal?  \xA9 \xAE \xA7 \xB6");
    WriteAt(out, 20, 10, "\x93Harbour Stores\x94 \x96 open daily from 6:30 \x85");
    WriteHint(out, kAnyKey);
}

const Screen kCharactersPage = {EnterCharacters, BackToMenu, nullptr};

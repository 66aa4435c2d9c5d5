// The 8-bit page: every character of code page 1252 that a terminal can be sent.
#include <cstdio>
#include <cstring>
#include "demo/screens.h"

namespace {

// The 8-bit controls that terminals act on (IND, RI, SS3, DCS, CSI), the codes that the code page
// leaves empty, and 255, which Telnet keeps for itself.
bool IsShown(int code) {
    static const int kNotShown[] = {0x81, 0x84, 0x8D, 0x8F, 0x90, 0x9B, 0x9D, 0xFF};
    for (const int hidden : kNotShown) {
        if (hidden == code) return false;
    }
    return true;
}

void WriteCodeTable(std::string& out, int row, int col) {
    for (int low = 0; low < 16; ++low) {
        char head[8];
        snprintf(head, sizeof head, "%X", static_cast<unsigned>(low));
        WriteStyled(out, row, col + 4 + low * 3, "1", head);
    }
    for (int high = 8; high < 16; ++high) {
        char head[8];
        snprintf(head, sizeof head, "%Xx", static_cast<unsigned>(high));
        WriteStyled(out, row + high - 7, col, "1", head);
        for (int low = 0; low < 16; ++low) {
            const int code = high * 16 + low;
            const char shown = IsShown(code) ? static_cast<char>(code) : ' ';
            WriteAt(out, row + high - 7, col + 4 + low * 3, std::string(1, shown));
        }
    }
}

void EnterCharacters(Session& session) {
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

}  // namespace

const Screen kCharactersPage = {EnterCharacters, BackToMenu, nullptr};

// SPDX-License-Identifier: MIT
// A second terminal, libvterm's, that gets the same bytes.
#include "tests/hosts/peer_screen.h"

#include <vterm.h>

#include <cstdio>

#include "terminal/screen_buffer.h"

VTerm* NewPeer() {
    VTerm* peer = vterm_new(kScreenRows, kScreenColumns);
    vterm_set_utf8(peer, 0);
    vterm_output_set_callback(
        peer, [](const char*, size_t, void*) {}, nullptr);
    vterm_screen_reset(vterm_obtain_screen(peer), 1);
    return peer;
}

void FeedPeer(VTerm* peer, const std::string& bytes) {
    vterm_input_write(peer, bytes.data(), bytes.size());
}

void FreePeer(VTerm* peer) { vterm_free(peer); }

struct GlyphText {
    char name;
    uint32_t text;
};

// clang-format off
static const GlyphText kGlyphTexts[] = {
    {'a', 0x2592}, {'j', 0x2518}, {'k', 0x2510}, {'l', 0x250C}, {'m', 0x2514}, {'n', 0x253C},
    {'o', 0x23BA}, {'p', 0x23BB}, {'q', 0x2500}, {'r', 0x23BC}, {'s', 0x23BD}, {'t', 0x251C},
    {'u', 0x2524}, {'v', 0x2534}, {'w', 0x252C}, {'x', 0x2502}, {'}', 0x00A3}, {'~', 0x00B7},
};
// clang-format on

static uint32_t TextOf(DWORD cell) {
    const DWORD code = cell & 0xFF;
    if (!(cell & kCellGraphic)) return code;
    for (const GlyphText& glyph : kGlyphTexts) {
        if (static_cast<BYTE>(glyph.name) == code) return glyph.text;
    }
    return code < 95 ? code : ' ';  // the others are blank here
}

static const DWORD kShown = kCellBold | kCellUnderline | kCellBlink | kCellReverse;

static DWORD AttributesOf(const VTermScreenCell& cell) {
    return (cell.attrs.bold ? kCellBold : 0) | (cell.attrs.underline ? kCellUnderline : 0) |
           (cell.attrs.blink ? kCellBlink : 0) | (cell.attrs.reverse ? kCellReverse : 0);
}

static std::string CellDifference(VTermScreen* peer, int row, int col) {
    VTermScreenCell wanted;
    vterm_screen_get_cell(peer, {row - 1, col - 1}, &wanted);
    const uint32_t text = wanted.chars[0] == 0 ? ' ' : wanted.chars[0];
    const DWORD cell = GetCell(row, col);
    // What was erased has the peer's last attributes; of a blank only these two are seen.
    const DWORD shown = text == ' ' ? kCellUnderline | kCellReverse : kShown;
    if (TextOf(cell) == text && (cell & shown) == (AttributesOf(wanted) & shown)) return "";
    char words[120];
    snprintf(words, sizeof words, "row %d, column %d holds %04x, not %04x with %04x", row, col,
             static_cast<unsigned>(cell), static_cast<unsigned>(text),
             static_cast<unsigned>(AttributesOf(wanted)));
    return words;
}

std::string DifferenceFromPeer(VTerm* peer) {
    VTermScreen* screen = vterm_obtain_screen(peer);
    for (int row = 1; row <= kScreenRows; ++row) {
        for (int col = 1; col <= kScreenColumns; ++col) {
            const std::string difference = CellDifference(screen, row, col);
            if (!difference.empty()) return difference;
        }
    }
    VTermPos cursor;
    vterm_state_get_cursorpos(vterm_obtain_state(peer), &cursor);
    const ScreenBuffer& ours = session.screen;
    if (cursor.row + 1 == ours.cursor_row && cursor.col + 1 == ours.cursor_col) return "";
    char words[120];
    snprintf(words, sizeof words, "the cursor is at %d,%d, not %d,%d", ours.cursor_row,
             ours.cursor_col, cursor.row + 1, cursor.col + 1);
    return words;
}

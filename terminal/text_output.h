// Printable characters into the grid: pending wrap, insert mode, line drawing and autowrap.
#ifndef QUILL_TERMINAL_TEXT_OUTPUT_H
#define QUILL_TERMINAL_TEXT_OUTPUT_H

#include "session/session_state.h"
#include "terminal/actions.h"
#include "terminal/screen_buffer.h"
#include "terminal/sequences.h"

// What a character written now gets beside its code.
inline DWORD WrittenAttr() {
    const DWORD attr = session.screen.current_attr;
    return session.modes.graphic_active ? attr | kCellGraphic : attr;
}

void WritePrintable(BYTE code);

// Writes the printable bytes at the front, as WritePrintable would one by one, as long as they are
// only cells: up to the last column but one of the cursor's row, with nothing to insert and no wrap
// pending. Returns how many bytes it wrote, perhaps none.
inline int WriteCells(const BYTE* bytes, int count) {
    ScreenBuffer& screen = session.screen;
    if (session.modes.insert_mode | session.parser.pending_wrap) return 0;
    const int row = screen.cursor_row;
    const int col = screen.cursor_col;
    DWORD* words = RowWords(row);
    const int last = screen.columns >> (words[0] & kLineDoubleWidth);
    const int room = last - col < count ? last - col : count;
    const DWORD attr = WrittenAttr();
    int written = 0;
    for (; written < room && kPrintableBytes[bytes[written]]; ++written) {
        words[col + written] = bytes[written] | attr;
    }
    if (written == 0) return 0;
    MarkRow(row);
    screen.cursor_col = col + written;
    return written;
}

#endif

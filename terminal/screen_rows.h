// Rows as the terminal's own files write them, without a call: their words and their marks.
#ifndef QUILL_TERMINAL_SCREEN_ROWS_H
#define QUILL_TERMINAL_SCREEN_ROWS_H

#include "session/session_state.h"

// The 81 words of a row: the line attribute, then the cells of columns 1..80. The row must be
// 1..49, as the cursor's always is.
inline DWORD* RowWords(int row) {
    const int slot = session.screen.ring_origin + row;
    return session.screen.slots[slot > kRingLines ? slot - kRingLines : slot];
}

inline void MarkRow(int row) { session.screen.row_changed[row] = 1; }  // row 1..49

#endif

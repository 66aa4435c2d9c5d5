// Marking a rectangle of the screen with the stylus. The marked area is that of session.screen: the
// same columns on every row, see SelectedArea in screen_buffer.h.
#ifndef QUILL_UI_VIEW_SELECTION_H
#define QUILL_UI_VIEW_SELECTION_H

#include "windows_ce.h"

struct StylusCell {
    int row;  // 1..49: below the screen are the ring's older lines
    int col;  // 1..80
};

// The cell under the position that a stylus message carries: x and y in pixels of the terminal
// window. What lies beyond the grid yields the nearest cell. Before the font is there: 1, 1.
StylusCell CellUnderStylus(LPARAM position);

// The stylus went down: the selection begins anew as that one cell.
void StartSelection(LPARAM position);

// The stylus moved: its cell is the selection's other corner. A selection that was dropped
// meanwhile stays dropped.
void ExtendSelection(LPARAM position);

#endif

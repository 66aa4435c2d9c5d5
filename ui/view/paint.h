// Painting the terminal window.
#ifndef QUILL_UI_VIEW_PAINT_H
#define QUILL_UI_VIEW_PAINT_H

#include "windows_ce.h"

// The answer to WM_PAINT. Makes the font and measures the geometry where that is due, then draws
// the rows that changed, every visible row while a selection is shown, and the rows where the
// cursor is and was. With a full repaint asked for, or without a session, the background is filled
// and every row drawn. Their flags in session.screen.row_changed are cleared.
void PaintTerminal(HWND window);

#endif

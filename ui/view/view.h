// The terminal window's view of the screen: how many cells fit, which row and column stand at its
// top left, and the requests for a repaint. All on session.view and session.client_window; while
// there is no such window a request only sets its flags.
#ifndef QUILL_UI_VIEW_VIEW_H
#define QUILL_UI_VIEW_VIEW_H

#include "windows_ce.h"

// Repaint requests. A paint comes later, once for any number of requests.
void RepaintTerminal();  // the background and all rows
void RefreshTerminal();  // the rows that changed, and the cursor's if it moved; perhaps none
void LayoutTerminal();   // as RepaintTerminal, after the geometry was measured again
void ShowChanges();      // as RefreshTerminal, after the view has followed the cursor if it is to

int ShownCursorColumn();  // where the cursor is drawn in its row; 0: nowhere

// Measures visible_rows and visible_columns from the window's size, the status bar's height, the
// rows under the input panel and the cell's size, sets both scroll bars up for them, and takes the
// view back to row 1, column 1. A bar is shown only if fewer cells fit than the screen has; its
// room is taken from the cells, and the status bar is placed again. The next paint must be a full
// one. While the input panel covers rows, the view then follows the cursor, if it is to follow it.
void MeasureView();

// The input panel covers that many rows, from 0 on, at the next measuring. None covered any more
// takes the view back to row 1, column 1.
void CoverRows(int rows);

// A scroll bar's event: one of SB_..., and the position that goes with SB_THUMBPOSITION. The view
// stays on the screen's rows and columns.
void ScrollRows(int code, int position);
void ScrollColumns(int code, int position);

// Moves the view so that the cursor is in it: to the last visible row, or the last visible column.
// A cursor below row 24 takes the view along, past the screen's end.
void FollowCursor();

// One tick of the main window's timer: turns blink_phase and asks for the rows that blink.
void BlinkTick();

#endif

// SPDX-License-Identifier: MIT
// The terminal window: its class, its view of the screen, painting, the font, the status line, and
// what the input panel leaves of it.
#ifndef QUILL_UI_VIEW_VIEW_H
#define QUILL_UI_VIEW_VIEW_H

#include "windows_ce.h"

// ---------------------------------------------------------------- the window

// Registers the window class "ClientWnd", a child of the main window that shows the screen. FALSE
// when the system refuses it.
//
// Creating a window of it imports the configuration file, loads the settings, builds the status bar
// and lists the device's fonts. From its WM_CREATE on the window is session.client_window.
BOOL RegisterClientWindow(HINSTANCE instance);

// ---------------------------------------------------------------- the view

// How many cells fit, which row and column stand at its
// top left of the window, and the requests for a repaint. All on session.view and
// session.client_window; while there is no such window a request only sets its flags.

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

// ---------------------------------------------------------------- painting

// The answer to WM_PAINT. Makes the font and measures the geometry where that is due, then draws
// the rows that changed, every visible row while a selection is shown, and the rows where the
// cursor is and was. With a full repaint asked for, or without a session, the background is filled
// and every row drawn. Their flags in session.screen.row_changed are cleared.
void PaintTerminal(HWND window);

// ---------------------------------------------------------------- line drawing

// The glyphs of the DEC special graphics set, drawn as lines.

inline constexpr BYTE kFirstGlyph = 95;
inline constexpr BYTE kLastGlyph = 126;

// A one-pixel line from one point up to, but not including, the other, with a pen of its own.
void DrawLine(HDC dc, POINT from, POINT to, COLORREF color);

// Draws the glyph of a code 95..126 into a cell that is already blank. The pound sign and the
// centred dot are text, in the colours that `dc` holds; all else is lines in `color`. Codes without
// a glyph leave the cell blank.
void DrawGlyph(HDC dc, const RECT& cell, BYTE code, COLORREF color);

// ---------------------------------------------------------------- the font

// The device's fixed-pitch faces, and the font in use with the size of its
// character cell. The size is the setting fsize; every procedure here holds it to 1..25 before use.

// Fills session.view.faces with the device's fixed-pitch families, at most 24, in their order.
void ListFontFaces(HWND window);

// Makes the font that the settings fname, fsize, font_bold and font_italic ask for in place of the
// one before, and measures its cell: cell_height and cell_width (each at least 1) and
// underline_offset. A face that is not listed becomes the first one that is. The view is not laid
// out again: LayoutTerminal does that.
void CreateTerminalFont();

// The next size with another cell height; at 25 and at 1 the size stays. The view is laid out again
// in every case.
void LargerFont();
void SmallerFont();

// ---------------------------------------------------------------- the status line

// Below the terminal; it is rewritten together with the main window's title.

// Destroys the status window and, unless `hidestatus` is set, makes it anew; session.status_height
// is its height in pixels, 0 while hidden.
void RebuildStatusBar();

// The status window keeps the bottom of the client window after that changed its size.
void PlaceStatusBar();

// Rewrites the status text (state, cursor row and column) and the title (host). Without a status
// window both stay as they are.
void UpdateStatus();

// ---------------------------------------------------------------- the input panel

// The shell's keyboard or pad on the screen covers rows of the terminal.

// The panel came, went or changed: counts the rows that it covers and lays the terminal out anew.
void FollowInputPanel();

// Something else than the panel changed the count: the window's size, the font, the status bar. Or
// a session began under a panel that was there before. Does nothing while the panel is down.
void RecountCoveredRows();

#endif

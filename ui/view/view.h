// SPDX-License-Identifier: MIT
// The terminal window: its class, its view of the screen, painting, line drawing, the font, the
// status line, and the rows that the input panel covers. The view is the area of the 24x80 screen
// that the window shows; a small device shows only some rows and columns.
#ifndef QUILL_UI_VIEW_VIEW_H
#define QUILL_UI_VIEW_VIEW_H

#include "windows_ce.h"

// ---------------------------------------------------------------- the window

// Registers the window class "ClientWnd". A window of this class is a child of the main window and
// shows the screen. Returns FALSE if the system refuses the class.
//
// Creating a window of this class imports the configuration file, loads the settings, builds the
// status bar and lists the device's fonts. Its WM_CREATE sets session.client_window.
BOOL RegisterClientWindow(HINSTANCE instance);

// ---------------------------------------------------------------- the view

// How many cells fit into the window, which row and column is at its top left, and repaint
// requests. All procedures work on session.view and session.client_window. While there is no such
// window, a request only sets its flags.

// Repaint requests. They do not paint: WM_PAINT comes later, once for any number of requests.
void RepaintTerminal();  // the background and all rows
void RefreshTerminal();  // only the rows that changed, or where the cursor was or is
void LayoutTerminal();   // as RepaintTerminal; the next paint also measures the view again
void ShowChanges();      // follows the cursor if `followcursor` is set, then as RefreshTerminal

int ShownCursorColumn();  // column where the cursor is drawn; 0: not drawn

// Calculates visible_rows and visible_columns from the sizes of the window, the status bar and a
// cell, and from the rows that the input panel covers. Sets up both scroll bars, moves the view
// back to row 1, column 1, and places the status bar again. A scroll bar is shown only if fewer
// cells fit than the screen has; it reduces the room for cells. While the input panel covers rows
// and `followcursor` is set, the view then follows the cursor. The caller must make the next paint
// a full one.
void MeasureView();

// Sets how many rows the input panel covers (0 or more), for the next MeasureView. 0 also moves the
// view back to row 1, column 1.
void CoverRows(int rows);

// Handles a scroll bar's event. `code` is one of SB_...; `position` is used by SB_THUMBPOSITION
// only. A scroll step never moves the view past the screen's rows and columns.
void ScrollRows(int code, int position);
void ScrollColumns(int code, int position);

// If the cursor is outside the view, moves the view so that the cursor is in its last row or its
// last column. If the cursor is below row 24, the view moves past the screen's end.
void FollowCursor();

// Called at each tick of the main window's timer. Toggles blink_phase and requests a repaint of the
// rows with blinking cells.
void BlinkTick();

// ---------------------------------------------------------------- painting

// Handles WM_PAINT. Creates the font and measures the view if necessary. Then draws the rows that
// changed and the rows where the cursor is and was; while something is selected, every visible row.
// If a full repaint is requested, or no session is up, it fills the background and draws every
// visible row. Clears the flags of the visible rows in session.screen.row_changed.
void PaintTerminal(HWND window);

// ---------------------------------------------------------------- line drawing

// The DEC special graphics set: a character set of frame corners, lines and symbols, for codes
// 95..126.

inline constexpr BYTE kFirstGlyph = 95;
inline constexpr BYTE kLastGlyph = 126;

// Draws a one-pixel line from `from` up to, but not including, `to`, with a pen that it creates for
// the call.
void DrawLine(HDC dc, POINT from, POINT to, COLORREF color);

// Draws the glyph of a code 95..126 into a cell that is already blank. The pound sign and the
// centred dot (a full stop) are drawn as text in the colours of `dc`; all other glyphs are lines in
// `color`. A code without a glyph leaves the cell blank.
void DrawGlyph(HDC dc, const RECT& cell, BYTE code, COLORREF color);

// ---------------------------------------------------------------- the font

// The list of the device's fixed-pitch faces, and the current font with the size of its character
// cell. The font's size is the setting fsize; CreateTerminalFont, LargerFont and SmallerFont limit
// it to 1..25.

// Fills session.view.faces with the device's fixed-pitch families, at most 24, in the order in
// which the system lists them.
void ListFontFaces(HWND window);

// Replaces the current font by the one that the settings fname, fsize, font_bold and font_italic
// describe, and sets cell_height and cell_width (each at least 1) and underline_offset from it. If
// fname is not in the list of faces, the first face of the list is used. The caller then calls
// LayoutTerminal.
void CreateTerminalFont();

// Sets cell_height, cell_width and underline_offset from the current font. Its size may differ from
// that of the last measurement, because a system may draw fonts in the scale of the monitor. Each
// new geometry begins with it.
void MeasureTerminalFont();

// Change to the next larger or smaller size that has another cell height, but not above 25 or below
// 1. Both then call LayoutTerminal, even if the size did not change.
void LargerFont();
void SmallerFont();

// ---------------------------------------------------------------- the status line

// The status line is below the terminal. It is rewritten together with the main window's title.

// Destroys the status window and, unless `hidestatus` is set, creates a new one. Sets
// session.status_height to its height in pixels, 0 while hidden.
void RebuildStatusBar();

// Moves the status window to the bottom of the client window. Called after the client window
// changed its size.
void PlaceStatusBar();

// Rewrites the status text (state, cursor row and column) and the title (host). Does nothing while
// there is no status window.
void UpdateStatus();

// ---------------------------------------------------------------- the input panel

// The input panel is the shell's on-screen keyboard. It covers the lower rows of the terminal.

// The panel appeared, disappeared or changed. Counts the rows that it covers. Lays the terminal out
// again when the panel disappears, and when it appears while a session is up.
void FollowInputPanel();

// Counts the covered rows again and lays the terminal out again. Called after a change of the
// window's size, the font or the status bar, and when a session begins, because the panel may be up
// already. Does nothing while the panel is down.
void RecountCoveredRows();

#endif

// The glyphs of the DEC special graphics set, drawn as lines.
#ifndef QUILL_UI_VIEW_LINE_DRAWING_H
#define QUILL_UI_VIEW_LINE_DRAWING_H

#include "windows_ce.h"

inline constexpr BYTE kFirstGlyph = 95;
inline constexpr BYTE kLastGlyph = 126;

// A one-pixel line from one point up to, but not including, the other, with a pen of its own.
void DrawLine(HDC dc, POINT from, POINT to, COLORREF color);

// Draws the glyph of a code 95..126 into a cell that is already blank. The pound sign and the
// centred dot are text, in the colours that `dc` holds; all else is lines in `color`. Codes without
// a glyph leave the cell blank.
void DrawGlyph(HDC dc, const RECT& cell, BYTE code, COLORREF color);

#endif

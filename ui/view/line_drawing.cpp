// SPDX-License-Identifier: MIT
// Draws the glyphs of the DEC special graphics set. A table describes each glyph as lines between
// the edges and the centre of the cell.
#include "ui/view/view.h"

#include <algorithm>

// Positions in a cell. Across: left edge, centre, right edge. Down: top edge, centre, bottom edge,
// 2 pixels above the bottom edge.
enum Across { L, X, R };
enum Down { T, Y, B, B2 };

struct Line {
    Across from_x;
    Down from_y;
    Across to_x;
    Down to_y;
};

struct GlyphRow {
    BYTE code;
    void (*draw)(HDC, const RECT&, const GlyphRow&, COLORREF);
    WCHAR text;
    int line_count;
    Line lines[2];
};

void DrawLine(HDC dc, POINT from, POINT to, COLORREF color) {
    const POINT points[2] = {from, to};
    HPEN pen = CreatePen(PS_SOLID, 1, color);
    HGDIOBJ before = SelectObject(dc, pen);
    Polyline(dc, points, 2);
    SelectObject(dc, before);
    DeleteObject(pen);
}

// DrawLine leaves out the end point. A line that ends at the centre is made one pixel longer, so
// that the two lines of a corner always meet.
static void DrawLines(HDC dc, const RECT& cell, const GlyphRow& glyph, COLORREF color) {
    const LONG x[] = {cell.left, (cell.left + cell.right) / 2, cell.right};
    const LONG y[] = {cell.top, (cell.top + cell.bottom) / 2, cell.bottom,
                      std::max(cell.top, cell.bottom - 2)};
    for (int i = 0; i < glyph.line_count; ++i) {
        const Line& line = glyph.lines[i];
        POINT to = {x[line.to_x], y[line.to_y]};
        if (line.to_x == X && line.from_x != X) ++to.x;
        if (line.to_y == Y && line.from_y != Y) ++to.y;
        DrawLine(dc, {x[line.from_x], y[line.from_y]}, to, color);
    }
}

static void DrawEveryColumn(HDC dc, const RECT& cell, const GlyphRow&, COLORREF color) {
    for (LONG x = cell.left; x < cell.right; ++x) {
        DrawLine(dc, {x, cell.top}, {x, cell.bottom}, color);
    }
}

static void DrawCharacter(HDC dc, const RECT& cell, const GlyphRow& glyph, COLORREF) {
    ExtTextOutW(dc, cell.left, cell.top, ETO_OPAQUE | ETO_CLIPPED, &cell, &glyph.text, 1, nullptr);
}

// clang-format off
static const GlyphRow kGlyphs[] = {
    {'a', DrawEveryColumn, 0,   0, {}},                            // checkerboard
    {'j', DrawLines,       0,   2, {{L, Y, X, Y}, {X, T, X, Y}}},  // lower right corner
    {'k', DrawLines,       0,   2, {{L, Y, X, Y}, {X, Y, X, B}}},  // upper right corner
    {'l', DrawLines,       0,   2, {{X, Y, R, Y}, {X, Y, X, B}}},  // upper left corner
    {'m', DrawLines,       0,   2, {{X, T, X, Y}, {X, Y, R, Y}}},  // lower left corner
    {'n', DrawLines,       0,   2, {{L, Y, R, Y}, {X, T, X, B}}},  // crossing
    {'o', DrawLines,       0,   1, {{L, T, R, T}}},                // scan line 1
    {'p', DrawLines,       0,   1, {{L, Y, R, Y}}},                // scan line 3
    {'q', DrawLines,       0,   1, {{L, Y, R, Y}}},                // scan line 5
    {'r', DrawLines,       0,   1, {{L, Y, R, Y}}},                // scan line 7
    {'s', DrawLines,       0,   1, {{L, B2, R, B2}}},              // scan line 9
    {'t', DrawLines,       0,   2, {{X, T, X, B}, {X, Y, R, Y}}},  // left tee
    {'u', DrawLines,       0,   2, {{X, T, X, B}, {L, Y, X, Y}}},  // right tee
    {'v', DrawLines,       0,   2, {{L, Y, R, Y}, {X, T, X, Y}}},  // bottom tee
    {'w', DrawLines,       0,   2, {{L, Y, R, Y}, {X, Y, X, B}}},  // top tee
    {'x', DrawLines,       0,   1, {{X, T, X, B}}},                // vertical bar
    {'}', DrawCharacter,   163, 0, {}},                            // pound sign
    {'~', DrawCharacter,   '.', 0, {}},                            // centred dot
};
// clang-format on

void DrawGlyph(HDC dc, const RECT& cell, BYTE code, COLORREF color) {
    for (const GlyphRow& glyph : kGlyphs) {
        if (glyph.code == code) glyph.draw(dc, cell, glyph, color);
    }
}

// SPDX-License-Identifier: MIT
// Draws a glyph with the terminal's own procedure on doubles of the drawing calls, and tells from
// the lines which edges of the cell it reaches.
#include "tests/hosts/glyphs.h"

#include "session/terminal_types.h"
#include "ui/view/view.h"

static const LONG kWidth = 9;
static const LONG kHeight = 15;
static const int kFewLines = 4;

enum Edges { kLeft = 1, kRight = 2, kTop = 4, kBottom = 8, kFilled = 16, kHigh = 32, kLow = 64 };

static int line_count;
static int edges;
static WCHAR drawn_text;

HPEN CreatePen(int, int, COLORREF) { return nullptr; }
HGDIOBJ SelectObject(HDC, HGDIOBJ object) { return object; }
BOOL DeleteObject(HGDIOBJ) { return TRUE; }

BOOL Polyline(HDC, const POINT* points, int) {
    ++line_count;
    const POINT from = points[0], to = points[1];
    if (from.y == to.y) {
        edges |= (from.x == 0 ? kLeft : 0) | (to.x >= kWidth ? kRight : 0);
        edges |= (from.y == 0 ? kHigh : 0) | (from.y >= kHeight - 2 ? kLow : 0);
    } else {
        edges |= (from.y == 0 ? kTop : 0) | (to.y >= kHeight ? kBottom : 0);
    }
    return TRUE;
}

BOOL ExtTextOutW(HDC, int, int, UINT, const RECT*, LPCWSTR text, UINT, const INT*) {
    drawn_text = *text;
    return TRUE;
}

struct GlyphShape {
    char name;
    int edges;
    WCHAR text;
};

// clang-format off
static const GlyphShape kShapes[] = {
    {'0', kFilled,                          0  },  // solid block
    {'a', kFilled,                          0  },  // checkerboard
    {'h', kFilled,                          0  },  // board of squares
    {'j', kLeft | kTop,                     0  },
    {'k', kLeft | kBottom,                  0  },
    {'l', kRight | kBottom,                 0  },
    {'m', kRight | kTop,                    0  },
    {'n', kLeft | kRight | kTop | kBottom,  0  },
    {'o', kLeft | kRight | kHigh,           0  },
    {'p', kLeft | kRight,                   0  },
    {'q', kLeft | kRight,                   0  },
    {'r', kLeft | kRight,                   0  },
    {'s', kLeft | kRight | kLow,            0  },
    {'t', kTop | kBottom | kRight,          0  },
    {'u', kTop | kBottom | kLeft,           0  },
    {'v', kLeft | kRight | kTop,            0  },
    {'w', kLeft | kRight | kBottom,         0  },
    {'x', kTop | kBottom,                   0  },
    {'}', 0,                                163},
    {'~', 0,                                '.'},
};
// clang-format on

bool ShowsGlyph(DWORD cell, char name) {
    const DWORD code = cell & 0xFF;
    if (!(cell & kCellGraphic) || code < kFirstGlyph || code > kLastGlyph) return false;
    line_count = edges = 0;
    drawn_text = 0;
    DrawGlyph(nullptr, {0, 0, kWidth, kHeight}, static_cast<BYTE>(code), 0);
    if (line_count > kFewLines) edges = kFilled;
    for (const GlyphShape& shape : kShapes) {
        if (shape.name == name) return shape.edges == edges && shape.text == drawn_text;
    }
    return false;
}

std::string DrawnGlyphs() {
    std::string names;
    for (const GlyphShape& shape : kShapes) names += shape.name;
    return names;
}

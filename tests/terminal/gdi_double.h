// SPDX-License-Identifier: MIT
// A recording double of the windows and GDI calls that the terminal window uses: one window, whose
// size, scroll bars and fonts a test sets, and a readable list of what was drawn on it.
#ifndef QUILL_TESTS_TERMINAL_GDI_DOUBLE_H
#define QUILL_TESTS_TERMINAL_GDI_DOUBLE_H

#include <functional>
#include <string>
#include <vector>

#include "windows_ce.h"

struct DrawCall {
    int y;             // of its top edge
    std::string what;  // see GdiDouble::drawn
};

struct GdiDouble {
    // Drawing calls. Points and sizes in pixels, colours as bbggrr:
    //   fill LEFT,TOP WIDTHxHEIGHT COLOUR
    //   text LEFT,TOP WIDTHxHEIGHT 'TEXT' COLOUR on BACKGROUND     (beyond ASCII: <hex>)
    //   line FROMX,FROMY TOX,TOY COLOUR
    std::vector<DrawCall> drawn;

    // The device and the window, to be set by the test.
    RECT window = {0, 0, 640, 384};
    int screen_width = 640;
    int bar_width = 10;
    int bar_height = 12;
    bool erase_due = false;  // the next BeginPaint sends WM_ERASEBKGND
    std::vector<LOGFONTW> faces;
    std::vector<BYTE> pitches;  // tmPitchAndFamily of each face
    std::function<TEXTMETRICW(const LOGFONTW&)> metrics;
    std::function<int(const LOGFONTW&)> sample_width;  // of "JULEMANDEN"

    // What the program did.
    WNDCLASSW window_class = {};
    SCROLLINFO bars[2] = {};  // [SB_HORZ], [SB_VERT]
    bool bar_shown[2] = {true, true};
    int scroll_calls = 0;
    int invalidations = 0;
    int erasing_invalidations = 0;
    std::vector<std::string> invalid;    // each one as "all" or "LEFT,TOP WIDTHxHEIGHT"
    std::vector<UINT> default_messages;  // messages that reached DefWindowProcW
    std::vector<LOGFONTW> fonts_made;
    int pens_made = 0;
    std::vector<UINT> beeps;  // their types
    bool refuse_class = false;
    bool two_byte_page = false;  // bytes 0x81 to 0x9F begin a two-byte character
    bool utf8_page = false;      // each byte from 0x80 on becomes U+FFFD, as in the UTF-8 page
    bool refuse_fonts = false;
    bool refuse_paint = false;

    // Counts that must return to zero, and calls that must never happen.
    int open_dcs = 0;
    int open_paints = 0;
    std::vector<std::string> faults;
};

extern GdiDouble gdi;

void ResetGdi();
int LiveObjects(const char* kind);  // "font", "pen" or "brush"

// The window that a test may hand to the program.
HWND TestWindow();
LRESULT SendToWindow(UINT message, WPARAM wparam = 0, LPARAM lparam = 0);

// A fixed-pitch face of that name.
LOGFONTW Face(LPCWSTR name);

// What was drawn with its top in this row of the window; rows of that height count from 1.
std::vector<std::string> DrawnInRow(int row, int cell_height);
std::vector<std::string> AllDrawn();

#endif

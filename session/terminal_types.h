// SPDX-License-Identifier: MIT
// The terminal's sections of the session record: the screen grid, the interpreter's state, the
// modes, the split regions and the view. This file has only types and constants; the operations are
// in screen_buffer.h, interpreter.h, modes.h and view.h.
#ifndef QUILL_SESSION_TERMINAL_TYPES_H
#define QUILL_SESSION_TERMINAL_TYPES_H

#include "windows_ce.h"

// The grid has 24 rows and 80 columns, both counted from 1. It is stored in a ring of line slots;
// slot 0 is not used. A row number may be as large as kRingLines, but rows after the screen's last
// are never shown. So every array that a row number indexes has kRingSlots elements.
inline constexpr int kRingLines = 49;
inline constexpr int kRingSlots = kRingLines + 1;
inline constexpr int kScreenRows = 24;
inline constexpr int kScreenColumns = 80;
inline constexpr int kSlotWords = 1 + kScreenColumns;  // word 0: line attribute
inline constexpr int kTabColumns = 133;                // columns 0..132

// Cell bits. Bits 0..7 hold the character as received.
inline constexpr DWORD kCellBold = 0x0100;
inline constexpr DWORD kCellUnderline = 0x0200;
inline constexpr DWORD kCellBlink = 0x0400;
inline constexpr DWORD kCellReverse = 0x0800;
inline constexpr DWORD kCellCursor = 0x1000;  // only in the copy of a row that ui/view/paint draws
inline constexpr DWORD kCellGraphic = 0x2000;
inline constexpr DWORD kCellProtected = 0x8000;
inline constexpr DWORD kBlank = ' ';

// Line attribute bits.
inline constexpr DWORD kLineDoubleWidth = 1;
inline constexpr DWORD kLineDoubleTop = 2;
inline constexpr DWORD kLineDoubleBottom = 4;

struct ScreenBuffer {
    int rows = kScreenRows;
    int columns = kScreenColumns;
    int ring_origin = 0;  // 0..48; row r is in slot ring_origin + r, minus 49 if that is above 49
    DWORD slots[kRingSlots][kSlotWords] = {};
    WORD current_attr = 0;  // OR-ed into every character written
    int cursor_col = 1;     // 1..columns
    int cursor_row = 1;     // 1..kRingLines
    int top_margin = 1;     // the scrolling region, inclusive
    int bottom_margin = kScreenRows;
    DWORD row_changed[kRingSlots] = {};  // [row]: 1 = needs painting; the renderer clears it
    BYTE tab_stops[kTabColumns] = {};    // [column]: 0 = a stop, 1 = no stop
    DWORD selection_active = 0;          // 1: text is selected; the fields below keep the last one
    int selection_start_col = 0;
    int selection_start_row = 0;
    int selection_end_col = 0;
    int selection_end_row = 0;
    DWORD paint_row[kSlotWords] = {};  // what GetPaintRow returns while text is selected
};

// The interpreter.
inline constexpr int kParamTextSize = 20;  // a sequence with 20 is dropped
inline constexpr int kParamCount = 20;
inline constexpr int kReplySize = 64;

struct SavedCursor {  // saved by ESC 7
    WORD attr = 0;
    int pending_wrap = 0;
    int col = 1;
    int row = 1;
    int g0_set = 0;
    int g1_set = 0;
    int graphic_active = 0;
};

struct ParserState {
    int parser_state = 0;  // 0 ground .. 7 device control string
    char param_text[kParamTextSize] = {};
    int param_len = 0;
    int params[kParamCount] = {};
    int param_count = 1;
    DWORD private_flag = 0;    // ? seen
    DWORD secondary_flag = 0;  // > seen
    DWORD bang_flag = 0;       // ! seen
    DWORD quote_flag = 0;      // " seen
    DWORD space_flag = 0;      // ESC SP seen
    BYTE string_last = 0;      // the previous byte of a device control string
    BYTE vt52_address[2] = {};
    int vt52_address_count = 0;
    char reply_text[kReplySize] = {};  // NUL-terminated
    DWORD reply_pending = 0;
    DWORD pending_wrap = 0;  // 1: the next printable character goes to the next line first, if
                             // the cursor is still in the last column
    SavedCursor saved;
};

struct TerminalModes {
    DWORD insert_mode = 0;
    DWORD autowrap = 1;
    DWORD origin_mode = 0;
    DWORD newline_mode = 0;        // 1: the Enter key sends CR LF; a full reset keeps it
    DWORD localecho = 0;           // 1: typed characters are shown here; Telnet's ECHO also sets it
    DWORD keypad_application = 0;  // 1: application mode; stored, but the keys do not use it
    DWORD autorepeat = 1;          // stored, but not used
    DWORD cursor_visible = 1;
    DWORD screen_reverse = 0;  // stored, but not drawn
    DWORD vt52_mode = 0;
    DWORD vt100_level = 0;  // 1: ESC SP G is ignored
    DWORD c1_replies = 0;   // 1: control sequences in replies begin with 0x9B
    int g0_set = 0;         // 0 ASCII, else line drawing
    int g1_set = 0;
    DWORD g0_invoked = 1;
    int graphic_active = 0;
};

struct RegionCursor {  // the values of a split region from when it was left last
    int col = 1;
    int row = 1;
    int top_margin = 1;
    int bottom_margin = kScreenRows;
    WORD attr = 0;
    DWORD pending_wrap = 0;
};

struct SplitRegions {
    DWORD active_region = 1;  // 1 upper, 0 lower
    int upper_height = kScreenRows;
    int region_last_row = kScreenRows;
    RegionCursor upper;
    RegionCursor lower;
};

// The view: the area of the grid that the window shows. Lengths are in device pixels.
inline constexpr int kMaxFontFaces = 24;
inline constexpr int kFontSizeMin = 1;
inline constexpr int kFontSizeMax = 25;

struct FontFace {
    LOGFONTW font;  // as the font enumeration returned it, name included
};

struct ViewState {
    HFONT font = nullptr;  // null: to be created before the next paint
    int cell_height = 0;
    int cell_width = 0;
    int underline_offset = 0;    // from the cell's bottom
    int view_top = 0;            // rows hidden above the view, 0..kRingLines
    int view_left = 0;           // columns hidden to the left of the view
    int visible_rows = 0;        // 0..rows+1
    int visible_columns = 0;     // 0..columns
    int covered_rows = 0;        // rows that the input panel covers
    DWORD geometry_pending = 1;  // 1: the next paint measures the view again
    DWORD full_repaint = 1;      // 1: the next paint draws the background and all rows of the view
    DWORD blink_phase = 0;       // toggles with every timer tick
    int painted_cursor_row = 0;  // where the cursor was at the last paint
    int painted_cursor_col = 0;  // 0: not shown
    int face_count = 0;
    FontFace faces[kMaxFontFaces] = {};
};

#endif

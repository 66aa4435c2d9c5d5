// SPDX-License-Identifier: MIT
// The two resets, the mode tables, 7-bit or 8-bit replies, the accessors, and the graphic
// rendition.
#include "terminal/modes.h"

#include <algorithm>

#include "terminal/actions.h"
#include "terminal/screen_buffer.h"
#include "terminal/sequences.h"

// ---------------------------------------------------------------- resets

constexpr int kTabWidth = 8;

void SetDefaultTabStops() {
    std::fill_n(session.screen.tab_stops, kTabColumns, BYTE{1});
    for (int col = 1 + kTabWidth; col < kTabColumns; col += kTabWidth)
        session.screen.tab_stops[col] = 0;
}

// What both resets have in common.
static void ResetCommon() {
    TerminalModes& modes = session.modes;
    modes.insert_mode = 0;
    modes.autowrap = 1;
    modes.origin_mode = 0;
    modes.keypad_application = 0;
    modes.autorepeat = 1;
    modes.cursor_visible = 1;
    modes.vt52_mode = 0;
    modes.vt100_level = 0;
    modes.c1_replies = 0;
    modes.g0_set = 0;
    modes.g0_invoked = 1;
    modes.graphic_active = 0;

    session.parser.parser_state = kStateGround;
    session.parser.bang_flag = 0;
    session.parser.quote_flag = 0;

    session.screen.top_margin = 1;
    session.screen.bottom_margin = session.screen.rows;
    ResetSplit();
    SetDefaultTabStops();
    MoveCursor(1, 1);
}

void TerminalStart() {
    ResetCommon();
    session.modes.newline_mode = 0;
    session.modes.g1_set = 0;
    session.parser.param_len = 0;
    session.parser.reply_pending = 0;
    SavedCursor& saved = session.parser.saved;
    saved.attr = 0;
    saved.pending_wrap = 0;
    saved.g0_set = 0;
    saved.g1_set = 0;
    saved.graphic_active = 0;
}

void TerminalReset(int keep_screen) {
    if (!keep_screen) {
        BlankScreen(1);
        ResetAttr();
    }
    ResetCommon();
    session.modes.g1_set = 1;
    session.split.lower.row = 1;
}

// ---------------------------------------------------------------- set and reset mode

using ModeProcedure = void (*)();

struct ModeRow {
    int mode;
    ModeProcedure set;
    ModeProcedure reset;
};

static void InsertOn() { session.modes.insert_mode = 1; }
static void InsertOff() { session.modes.insert_mode = 0; }
static void EchoOff() { SetLocalEcho(0); }
static void EchoOn() { SetLocalEcho(1); }
static void NewlineOn() { session.modes.newline_mode = 1; }
static void NewlineOff() { session.modes.newline_mode = 0; }

static void KeypadOn() { session.modes.keypad_application = 1; }
static void KeypadOff() { session.modes.keypad_application = 0; }
static void IgnoreMode() {}
static void EnterVt52() { session.modes.vt52_mode = 1; }
static void WrapOn() { session.modes.autowrap = 1; }
static void WrapOff() { session.modes.autowrap = 0; }
static void RepeatOn() { session.modes.autorepeat = 1; }
static void RepeatOff() { session.modes.autorepeat = 0; }
static void CursorOn() { session.modes.cursor_visible = 1; }
static void CursorOff() { session.modes.cursor_visible = 0; }

// A request for 80 or 132 columns blanks the screen, but its width does not change.
static void ChangeWidth() {
    BlankScreen(0);
    session.parser.pending_wrap = 0;
    MoveCursor(1, 1);
}

static void ReverseOn() {
    session.modes.screen_reverse = 1;
    MarkAllRows();
}

static void ReverseOff() {
    session.modes.screen_reverse = 0;
    MarkAllRows();
}

static void OriginOn() {
    session.modes.origin_mode = 1;
    MoveCursor(session.screen.top_margin, session.screen.cursor_col);
}

static void OriginOff() {
    session.modes.origin_mode = 0;
    MoveCursor(1, 1);
}

// clang-format off
static const ModeRow kAnsiModes[] = {
    { 4, InsertOn,    InsertOff  },  // IRM
    {12, EchoOff,     EchoOn     },  // SRM
    {20, NewlineOn,   NewlineOff },  // LNM
};

static const ModeRow kPrivateModes[] = {
    { 1, KeypadOn,    KeypadOff  },  // DECCKM
    { 2, IgnoreMode,  EnterVt52  },  // DECANM: ESC < leaves it
    { 3, ChangeWidth, ChangeWidth},  // DECCOLM
    { 5, ReverseOn,   ReverseOff },  // DECSCNM
    { 6, OriginOn,    OriginOff  },  // DECOM
    { 7, WrapOn,      WrapOff    },  // DECAWM
    { 8, RepeatOn,    RepeatOff  },  // DECARM
    {25, CursorOn,    CursorOff  },  // DECTCEM
};
// clang-format on

template <size_t kRows>
static void ChangeMode(const ModeRow (&rows)[kRows], int mode, bool set) {
    for (const ModeRow& row : rows) {
        if (row.mode == mode) (set ? row.set : row.reset)();
    }
}

static void ChangeModes(bool set) {
    const ParserState& parser = session.parser;
    for (int i = 0; i < parser.param_count; ++i) {
        if (parser.private_flag) {
            ChangeMode(kPrivateModes, parser.params[i], set);
        } else {
            ChangeMode(kAnsiModes, parser.params[i], set);
        }
    }
    ClampColumn();
}

void SetModes() { ChangeModes(true); }
void ResetModes() { ChangeModes(false); }

// ---------------------------------------------------------------- 7-bit or 8-bit replies

constexpr int kVt100Level = 61;

void SetConformanceLevel() {
    ParserState& parser = session.parser;
    parser.quote_flag = 0;
    if (parser.params[0] == kVt100Level) {
        session.modes.vt100_level = 1;
        return;
    }
    session.modes.vt100_level = 0;
    session.modes.c1_replies = parser.params[1] == 1 ? 0 : 1;
}

void SelectReplies(int eight_bit) {
    if (eight_bit && session.modes.vt100_level) return;
    session.modes.c1_replies = eight_bit ? 1 : 0;
}

void LeaveVt52() {
    session.modes.vt52_mode = 0;
    session.modes.vt100_level = 1;
    session.modes.c1_replies = 0;
}

// ---------------------------------------------------------------- accessors

DWORD NewlineMode() { return session.modes.newline_mode; }
void SetNewlineMode(DWORD on) { session.modes.newline_mode = on; }
void SetLocalEcho(DWORD on) { session.modes.localecho = on; }
DWORD Autowrap() { return session.modes.autowrap; }
void SetAutowrap(DWORD on) { session.modes.autowrap = on; }
DWORD CursorVisible() { return session.modes.cursor_visible; }
DWORD KeypadApplication() { return session.modes.keypad_application; }
DWORD ScreenReverse() { return session.modes.screen_reverse; }

// ---------------------------------------------------------------- rendition

struct RenditionRow {
    int value;
    DWORD kept;  // bits of the current attribute that stay
    DWORD added;
};

// clang-format off
constexpr DWORD kAllBits = 0xFFFF;
static const RenditionRow kRenditions[] = {
    { 0, 0,                          0             },
    { 1, kAllBits,                   kCellBold     },
    { 4, kAllBits,                   kCellUnderline},
    { 5, kAllBits,                   kCellBlink    },
    { 7, kAllBits,                   kCellReverse  },
    {22, kAllBits & ~kCellBold,      0             },
    {24, kAllBits & ~kCellUnderline, 0             },
    {25, kAllBits & ~kCellBlink,     0             },
    {27, kAllBits & ~kCellReverse,   0             },
    {40, 0,                          0             },
};
// clang-format on

void SelectRendition() {
    DWORD attr = session.screen.current_attr;
    for (int i = 0; i < session.parser.param_count; ++i) {
        for (const RenditionRow& row : kRenditions) {
            if (row.value == session.parser.params[i]) attr = (attr & row.kept) | row.added;
        }
    }
    session.screen.current_attr = static_cast<WORD>(attr);
}

void SelectProtection() {
    if (!session.parser.quote_flag) return;
    const int value = session.parser.params[0];
    if (value >= 0 && value <= 2) SetProtected(value == 1);
}

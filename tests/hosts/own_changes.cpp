// SPDX-License-Identifier: MIT
// What each string of this terminal's entry that changes no cell leaves in the terminal, exactly:
// the one part that it is for, and nothing else, from every start.
#include <algorithm>
#include <iterator>
#include <map>

#include "terminal/screen_buffer.h"
#include "tests/hosts/changes.h"
#include "tests/hosts/own_entry.h"

// ---------------------------------------------------------------- what is left

typedef void (*Leaves)(TerminalSnapshot& state, const int* numbers);

static const WORD kSgrBits[kMostNumbers] = {
    kCellReverse, kCellUnderline, kCellReverse, kCellBlink, 0, kCellBold};
static const int kSgrGraphics = 8;

static void SetG0(TerminalSnapshot& state, int set) {
    state.modes.g0_set = set;
    if (state.modes.g0_invoked) state.modes.graphic_active = set;
}

// As the terminal has it after ESC ( 0.
static int LineDrawing() {
    static const int set = [] {
        NewTerminal();
        Feed("\033(0");
        return session.modes.g0_set;
    }();
    return set;
}

static void BlinkOn(TerminalSnapshot& s, const int*) { s.screen.current_attr |= kCellBlink; }
static void BoldOn(TerminalSnapshot& s, const int*) { s.screen.current_attr |= kCellBold; }
static void ReverseOn(TerminalSnapshot& s, const int*) { s.screen.current_attr |= kCellReverse; }
static void UnderlineOn(TerminalSnapshot& s, const int*) {
    s.screen.current_attr |= kCellUnderline;
}
static void ReverseOff(TerminalSnapshot& s, const int*) {
    s.screen.current_attr &= static_cast<WORD>(~kCellReverse);
}
static void UnderlineOff(TerminalSnapshot& s, const int*) {
    s.screen.current_attr &= static_cast<WORD>(~kCellUnderline);
}
static void AllOff(TerminalSnapshot& s, const int*) {
    s.screen.current_attr = 0;
    SetG0(s, 0);
}
static void JustThese(TerminalSnapshot& s, const int* n) {
    WORD pen = 0;
    for (int i = 0; i < kMostNumbers; ++i) pen |= n[i] ? kSgrBits[i] : WORD{0};
    s.screen.current_attr = pen;
    SetG0(s, n[kSgrGraphics] ? LineDrawing() : 0);
}
static void DrawsLines(TerminalSnapshot& s, const int*) { SetG0(s, LineDrawing()); }
static void WritesLetters(TerminalSnapshot& s, const int*) { SetG0(s, 0); }
static void Hidden(TerminalSnapshot& s, const int*) { s.modes.cursor_visible = 0; }
static void Shown(TerminalSnapshot& s, const int*) { s.modes.cursor_visible = 1; }
static void Inserts(TerminalSnapshot& s, const int*) { s.modes.insert_mode = 1; }
static void Overwrites(TerminalSnapshot& s, const int*) { s.modes.insert_mode = 0; }
static void Wraps(TerminalSnapshot& s, const int*) { s.modes.autowrap = 1; }
static void DoesNotWrap(TerminalSnapshot& s, const int*) { s.modes.autowrap = 0; }
static void StopHere(TerminalSnapshot& s, const int*) {
    s.screen.tab_stops[s.screen.cursor_col] = 0;
}
static void NoStops(TerminalSnapshot& s, const int*) {
    std::fill(std::begin(s.screen.tab_stops), std::end(s.screen.tab_stops), BYTE{1});
}
static void Saved(TerminalSnapshot& s, const int*) {
    s.parser.saved = {s.screen.current_attr, static_cast<int>(s.parser.pending_wrap),
                      s.screen.cursor_col,   s.screen.cursor_row,
                      s.modes.g0_set,        s.modes.g1_set,
                      s.modes.graphic_active};
}
static void Restored(TerminalSnapshot& s, const int*) {
    const SavedCursor& saved = s.parser.saved;
    s.screen.current_attr = saved.attr;
    s.parser.pending_wrap = static_cast<DWORD>(saved.pending_wrap);
    s.screen.cursor_col = saved.col;
    s.screen.cursor_row = saved.row;
    s.modes.g0_set = saved.g0_set;
    s.modes.g1_set = saved.g1_set;
    s.modes.graphic_active = saved.graphic_active;
}
static void RegionFromTo(TerminalSnapshot& s, const int* n) {
    if (n[1] <= n[0]) return;
    s.screen.top_margin = n[0] + 1;
    s.screen.bottom_margin = n[1] + 1;
    s.screen.cursor_row = n[0] + 1;
    s.screen.cursor_col = 1;
}
// Off the screen, too: below the region the cursor stops at the ring's end.
static void LineFeed(TerminalSnapshot& s, const int*) {
    ScreenBuffer& screen = s.screen;
    if (screen.cursor_row != screen.bottom_margin && screen.cursor_row < kRingLines)
        ++screen.cursor_row;
}
static void ReverseLineFeed(TerminalSnapshot& s, const int*) {
    ScreenBuffer& screen = s.screen;
    if (screen.cursor_row != screen.top_margin && screen.cursor_row > 1) --screen.cursor_row;
}
static void Nothing(TerminalSnapshot&, const int*) {}

static void ModesRight(TerminalSnapshot& s) {
    TerminalModes& modes = s.modes;
    modes.insert_mode = modes.origin_mode = modes.vt52_mode = modes.c1_replies = 0;
    modes.autowrap = modes.cursor_visible = modes.g0_invoked = 1;
    modes.g0_set = modes.graphic_active = 0;
    s.screen.current_attr = 0;
    s.screen.top_margin = 1;
    s.screen.bottom_margin = kScreenRows;
}

// ESC <, in the strings, leaves level 61; what is saved is from the middle of them.
static void SetUpAgain(TerminalSnapshot& s, const int*) {
    ModesRight(s);
    s.modes.newline_mode = 0;
    s.modes.vt100_level = 1;
    s.modes.g1_set = LineDrawing();
    Saved(s, nullptr);
}
static void SetUpAndQuiet(TerminalSnapshot& s, const int*) {
    SetUpAgain(s, nullptr);
    s.modes.localecho = 0;
}

static const TerminalSnapshot& ConnectedState() {
    static const TerminalSnapshot connected = [] {
        NewTerminal();
        return TakeSnapshot();
    }();
    return connected;
}

// Newline mode, local echo and what was saved stay; margins and stops are those of a connect.
static void FullReset(TerminalSnapshot& s, const int*) {
    const TerminalSnapshot& connected = ConnectedState();
    ModesRight(s);
    s.modes.g1_set = 1;
    s.modes.vt100_level = s.modes.keypad_application = 0;
    s.modes.autorepeat = 1;
    std::copy(std::begin(connected.screen.tab_stops), std::end(connected.screen.tab_stops),
              std::begin(s.screen.tab_stops));
    s.split = connected.split;
    s.screen.cursor_row = s.screen.cursor_col = 1;
}

// ---------------------------------------------------------------- the table

struct ExactRow {
    const char* capability;
    Leaves leaves;
    unsigned open;  // parts that are proven elsewhere
};

// clang-format off
static const ExactRow kExact[] = {
    {"bel",   Nothing,       kBeep       },
    {"blink", BlinkOn,       0           },
    {"bold",  BoldOn,        0           },
    {"civis", Hidden,        0           },
    {"cnorm", Shown,         0           },
    {"csr",   RegionFromTo,  0           },
    {"cud1", Nothing, kPlace},
    {"cuu1", Nothing, kPlace},
    {"hts",   StopHere,      0           },
    {"ind", LineFeed, kCells},
    {"is2",   SetUpAgain,    0           },
    {"rc",    Restored,      0           },
    {"rev",   ReverseOn,     0           },
    {"ri", ReverseLineFeed, kCells},
    {"rmacs", WritesLetters, 0           },
    {"rmam",  DoesNotWrap,   0           },
    {"rmir",  Overwrites,    0           },
    {"rmso",  ReverseOff,    0           },
    {"rmul",  UnderlineOff,  0           },
    {"rs1",   FullReset,     kCells|kWrap},  // byte 240 is a letter until the reset erases it
    {"rs2",   SetUpAndQuiet, 0           },
    {"sc",    Saved,         0           },
    {"sgr",   JustThese,     0           },
    {"sgr0",  AllOff,        0           },
    {"smacs", DrawsLines,    0           },
    {"smam",  Wraps,         0           },
    {"smir",  Inserts,       0           },
    {"smso",  ReverseOn,     0           },
    {"smul",  UnderlineOn,   0           },
    {"tbc",   NoStops,       0           },
    {"u7",    Nothing,       kAnswer     },
    {"u9",    Nothing,       kAnswer     },
};
// clang-format on

// ---------------------------------------------------------------- the comparison

struct Numbers {
    int n[kMostNumbers];
};

static std::vector<Numbers> NumbersFor(const std::string& capability) {
    std::vector<Numbers> all;
    if (capability == "csr")
        return {{{0, 23}}, {{4, 19}}, {{0, 1}}, {{22, 23}}, {{0, 22}}, {{1, 23}}, {{7, 7}}};
    if (capability != "sgr") return {{{}}};
    for (unsigned chosen = 0; chosen < 1u << kMostNumbers; ++chosen) {
        Numbers numbers = {};
        for (int i = 0; i < kMostNumbers; ++i) numbers.n[i] = chosen >> i & 1;
        all.push_back(numbers);
    }
    return all;
}

// A line feed scrolls at the margin only.
static unsigned OpenHere(const ExactRow& row) {
    const ScreenBuffer& screen = session.screen;
    if (row.leaves == LineFeed && screen.cursor_row != screen.bottom_margin) return 0;
    if (row.leaves == ReverseLineFeed && screen.cursor_row != screen.top_margin) return 0;
    return row.open;
}

static std::string DifferenceFrom(const ExactRow& row, const Numbers& numbers,
                                  const std::string& bytes, SetUpProcedure set_up,
                                  const Start& start) {
    set_up(start);
    Outcome wanted = OutcomeNow();
    const unsigned open = OpenHere(row);
    row.leaves(wanted.state, numbers.n);
    const std::string field = OutcomeDifference(wanted, OutcomeOf(bytes), open);
    return field.empty() ? "" : AsEscapeText(bytes) + " " + Describe(start) + " leaves " + field;
}

static std::string LeavesAnother(const TerminfoEntry& entry, const ExactRow& row) {
    std::string message;
    LineDrawing();
    ConnectedState();
    for (const Numbers& numbers : NumbersFor(row.capability)) {
        const std::string bytes = ExpandAny(entry, row.capability, numbers.n);
        const auto compare = [&](SetUpProcedure set_up, const Start& start) {
            if (message.empty()) message = DifferenceFrom(row, numbers, bytes, set_up, start);
        };
        ForSomeStates(compare);
        // Attributes are the same wherever the cursor is.
        if (row.leaves == JustThese) continue;
        ForEveryStart([&](const Start& start) { compare(SetUp, start); });
    }
    return message;
}

std::string FaultOfChanges(const TerminfoEntry& entry, const std::string& capability) {
    for (const ExactRow& row : kExact) {
        if (capability != row.capability) continue;
        static std::map<std::pair<std::string, std::string>, std::string> known;
        const auto key = std::pair(capability, entry.strings.at(capability));
        if (known.count(key) == 0) known[key] = LeavesAnother(entry, row);
        return known[key];
    }
    return "";
}

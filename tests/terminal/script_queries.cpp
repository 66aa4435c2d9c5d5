// SPDX-License-Identifier: MIT
// The queries of scripts: each returns a value of the terminal as text.
#include <cstring>

#include "terminal/modes.h"
#include "terminal/screen_buffer.h"
#include "tests/terminal/beep_double.h"
#include "tests/terminal/script.h"

typedef std::string (*QueryReader)(const ScriptWords& words);

struct QueryRow {
    const char* name;
    size_t numbers;  // the least count of numbers
    QueryReader read;
};

struct BitName {
    DWORD bit;
    const char* name;
};

struct FieldRow {
    const char* name;
    int (*read)();
};

template <typename Number>
static std::string Text(Number value) {
    return std::to_string(static_cast<long>(value));
}

// ---------------------------------------------------------------- attributes

// clang-format off
static const BitName kAttributes[] = {
    {kCellBold,    "bold"   }, {kCellUnderline, "underline"}, {kCellBlink,     "blink"    },
    {kCellReverse, "reverse"}, {kCellGraphic,   "graphic"  }, {kCellProtected, "protected"},
};
// clang-format on

static std::string Attributes(DWORD bits) {
    std::string text;
    for (const BitName& row : kAttributes) {
        if ((bits & row.bit) == 0) continue;
        if (!text.empty()) text += ' ';
        text += row.name;
    }
    return text.empty() ? "none" : text;
}

static std::string ReadAttr(const ScriptWords& words) {
    return Attributes(GetCell(words.numbers[0], words.numbers[1]));
}

static std::string ReadPen(const ScriptWords&) { return Attributes(GetAttr()); }

static std::string ReadChar(const ScriptWords& words) {
    return std::string(1, static_cast<char>(GetCell(words.numbers[0], words.numbers[1]) & 0xFF));
}

static std::string ReadCell(const ScriptWords& words) {
    return Text(GetCell(words.numbers[0], words.numbers[1]));
}

// ---------------------------------------------------------------- rows

static std::string ReadRow(const ScriptWords& words) {
    std::string text;
    for (int col = 1; col <= kScreenColumns; ++col) {
        text += static_cast<char>(GetCell(words.numbers[0], col) & 0xFF);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

static std::string ReadLineAttr(const ScriptWords& words) {
    const int row = words.numbers[0];
    if (IsDoubleTop(row)) return IsDoubleWidth(row) ? "top" : "top without double width";
    if (IsDoubleBottom(row)) return IsDoubleWidth(row) ? "bottom" : "bottom without double width";
    return IsDoubleWidth(row) ? "double" : "single";
}

static std::string ReadLineWord(const ScriptWords& words) {
    return Text(session.screen.slots[RowSlot(words.numbers[0])][0]);
}

static std::string ReadSlot(const ScriptWords& words) { return Text(RowSlot(words.numbers[0])); }

// "1 3-5", or "none".
static std::string Ranges(int last, bool (*holds)(int number, int context), int context) {
    std::string text;
    for (int first = 1; first <= last; ++first) {
        if (!holds(first, context)) continue;
        int end = first;
        while (end < last && holds(end + 1, context)) ++end;
        if (!text.empty()) text += ' ';
        text += Text(first);
        if (end > first) text.append(1, '-').append(Text(end));
        first = end;
    }
    return text.empty() ? "none" : text;
}

static std::string ReadChanged(const ScriptWords&) {
    return Ranges(
        kRingLines, [](int row, int) { return session.screen.row_changed[row] != 0; }, 0);
}

static bool IsBlankRow(int row, int) {
    for (int col = 1; col <= kScreenColumns; ++col) {
        if (GetCell(row, col) != kBlank) return false;
    }
    return true;
}

static std::string ReadBlank(const ScriptWords&) { return Ranges(kRingLines, IsBlankRow, 0); }

static std::string ReadSized(const ScriptWords&) {
    return Ranges(
        kRingLines, [](int row, int) { return (session.screen.slots[RowSlot(row)][0] & 7) != 0; },
        0);
}

static std::string ReadSelected(const ScriptWords& words) {
    return Ranges(
        kScreenColumns,
        [](int col, int row) { return (GetPaintRow(row)[col] & kCellReverse) != 0; },
        words.numbers[0]);
}

static std::string ReadTabs(const ScriptWords&) {
    return Ranges(
        kTabColumns - 1, [](int col, int) { return session.screen.tab_stops[col] == 0; }, 0);
}

// ---------------------------------------------------------------- single values

static std::string Pair(int first, int second) { return Text(first).append(1, ',') + Text(second); }

static std::string ReadCursor(const ScriptWords&) {
    return Pair(session.screen.cursor_row, session.screen.cursor_col);
}

static std::string ReadRegion(const ScriptWords&) {
    return Pair(session.screen.top_margin, session.screen.bottom_margin);
}

static std::string ReadOrigin(const ScriptWords&) { return Text(session.screen.ring_origin); }
static std::string ReadWrap(const ScriptWords&) { return Text(session.parser.pending_wrap); }
static std::string ReadState(const ScriptWords&) { return Text(session.parser.parser_state); }
static std::string ReadBlinking(const ScriptWords&) { return Text(AnyBlinking()); }
static std::string ReadBeeps(const ScriptWords&) { return Text(beep_count); }
static std::string ReadBeepType(const ScriptWords&) { return Text(beep_last_type); }
static std::string ReadPacked(const ScriptWords&) { return Text(CursorPosition()); }
static std::string ReadSelection(const ScriptWords&) {
    return Text(session.screen.selection_active);
}

static std::string ReadCollected(const ScriptWords&) {
    return std::string(session.parser.param_text, static_cast<size_t>(session.parser.param_len));
}

static std::string ReadParams(const ScriptWords&) {
    std::string text;
    for (int i = 0; i < session.parser.param_count; ++i) {
        if (i > 0) text += ' ';
        text += Text(session.parser.params[i]);
    }
    return text;
}

// ---------------------------------------------------------------- values by name

#define MODE(field)                                                  \
    {                                                                \
#field, [] { return static_cast<int>(session.modes.field); } \
    }
#define PARSER(name, field)                                         \
    {                                                               \
        name, [] { return static_cast<int>(session.parser.field); } \
    }
#define SPLIT(field)                                                 \
    {                                                                \
#field, [] { return static_cast<int>(session.split.field); } \
    }

// clang-format off
static const FieldRow kModes[] = {
    MODE(insert_mode),  MODE(autowrap),      MODE(origin_mode),        MODE(newline_mode),
    MODE(localecho),    MODE(autorepeat),    MODE(keypad_application), MODE(cursor_visible),
    MODE(vt52_mode),    MODE(vt100_level),   MODE(screen_reverse),     MODE(c1_replies),
    MODE(g0_set),       MODE(g1_set),        MODE(g0_invoked),         MODE(graphic_active),
    {"reader_newline",  [] { return static_cast<int>(NewlineMode()); }},
    {"reader_autowrap", [] { return static_cast<int>(Autowrap()); }},
    {"reader_visible",  [] { return static_cast<int>(CursorVisible()); }},
    {"reader_keypad",   [] { return static_cast<int>(KeypadApplication()); }},
    {"reader_reverse",  [] { return static_cast<int>(ScreenReverse()); }},
};

static const FieldRow kFlags[] = {
    PARSER("private", private_flag), PARSER("secondary", secondary_flag),
    PARSER("bang", bang_flag),       PARSER("quote", quote_flag),
    PARSER("space", space_flag),     PARSER("reply", reply_pending),
};

static const FieldRow kSaved[] = {
    PARSER("attr", saved.attr),     PARSER("wrap", saved.pending_wrap),
    PARSER("col", saved.col),       PARSER("row", saved.row),
    PARSER("g0_set", saved.g0_set), PARSER("g1_set", saved.g1_set),
    PARSER("graphic", saved.graphic_active),
};

static const FieldRow kSplit[] = {
    SPLIT(active_region),       SPLIT(upper_height),        SPLIT(region_last_row),
    SPLIT(upper.col),           SPLIT(upper.row),           SPLIT(upper.top_margin),
    SPLIT(upper.bottom_margin), SPLIT(upper.attr),          SPLIT(upper.pending_wrap),
    SPLIT(lower.col),           SPLIT(lower.row),           SPLIT(lower.top_margin),
    SPLIT(lower.bottom_margin), SPLIT(lower.attr),          SPLIT(lower.pending_wrap),
};
// clang-format on

template <size_t kRows>
static std::string ReadField(const FieldRow (&rows)[kRows], const std::string& name) {
    for (const FieldRow& row : rows) {
        if (name == row.name) return Text(row.read());
    }
    return "no such name";
}

static std::string ReadMode(const ScriptWords& words) { return ReadField(kModes, words.name); }
static std::string ReadFlag(const ScriptWords& words) { return ReadField(kFlags, words.name); }
static std::string ReadSaved(const ScriptWords& words) { return ReadField(kSaved, words.name); }
static std::string ReadSplit(const ScriptWords& words) { return ReadField(kSplit, words.name); }

// clang-format off
static const QueryRow kQueries[] = {
    {"attr",      2, ReadAttr     }, {"beeps",     0, ReadBeeps    }, {"beeptype",  0, ReadBeepType },
    {"blank",     0, ReadBlank    }, {"blinking",  0, ReadBlinking }, {"cell",      2, ReadCell     },
    {"changed",   0, ReadChanged  }, {"char",      2, ReadChar     }, {"collected", 0, ReadCollected},
    {"cursor",    0, ReadCursor   }, {"flag",      0, ReadFlag     }, {"lineattr",  1, ReadLineAttr },
    {"lineword",  1, ReadLineWord }, {"mode",      0, ReadMode     }, {"origin",    0, ReadOrigin   },
    {"packed",    0, ReadPacked   }, {"params",    0, ReadParams   }, {"pen",       0, ReadPen      },
    {"region",    0, ReadRegion   }, {"row",       1, ReadRow      }, {"saved",     0, ReadSaved    },
    {"selected",  1, ReadSelected }, {"selection", 0, ReadSelection}, {"sized",     0, ReadSized    },
    {"slot",      1, ReadSlot     }, {"split",     0, ReadSplit    }, {"state",     0, ReadState    },
    {"tabs",      0, ReadTabs     }, {"wrap",      0, ReadWrap     },
};
// clang-format on

bool ReadQuery(const std::string& query, const ScriptWords& words, std::string* value) {
    for (const QueryRow& row : kQueries) {
        if (query != row.name || words.numbers.size() < row.numbers) continue;
        *value = row.read(words);
        return true;
    }
    return false;
}

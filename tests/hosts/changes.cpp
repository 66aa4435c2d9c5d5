// SPDX-License-Identifier: MIT
// What a string changes anywhere in the terminal's state, held against a list of the parts that its
// capability may change.
#include "tests/hosts/changes.h"

#include <cstring>
#include <map>

#include "tests/hosts/proof.h"
#include "tests/terminal/beep_double.h"

// ---------------------------------------------------------------- states

Outcome OutcomeNow() { return {TakeSnapshot(), "", 0}; }

Outcome OutcomeOf(const std::string& bytes) {
    const int beeps = beep_count;
    std::string replies = Feed(bytes);
    return {TakeSnapshot(), replies, beep_count - beeps};
}

// Of the record `wanted`, a member of `found` with that name.
#define TAKE(member) wanted->state.member = found.state.member
#define TAKE_ARRAY(member) \
    memcpy(wanted->state.member, found.state.member, sizeof(found.state.member))

// Marks for the painter, and what is only read until a sequence has ended.
static void TakeScratch(const Outcome& found, Outcome* wanted) {
    TAKE_ARRAY(screen.row_changed);
    TAKE_ARRAY(screen.paint_row);
    TAKE_ARRAY(parser.param_text);
    TAKE_ARRAY(parser.params);
    TAKE_ARRAY(parser.reply_text);
    TAKE(parser.param_count);
    TAKE(parser.param_len);
    TAKE(parser.private_flag);
    TAKE(parser.secondary_flag);
    TAKE(parser.string_last);
}

static void TakeCells(const Outcome& found, Outcome* wanted) {
    TAKE_ARRAY(screen.slots);
    TAKE(screen.ring_origin);
}
static void TakePlace(const Outcome& found, Outcome* wanted) {
    TAKE(screen.cursor_row);
    TAKE(screen.cursor_col);
}
static void TakeG0(const Outcome& found, Outcome* wanted) {
    TAKE(modes.g0_set);
    TAKE(modes.g0_invoked);
    TAKE(modes.graphic_active);
}
static void TakeMargins(const Outcome& found, Outcome* wanted) {
    TAKE(screen.top_margin);
    TAKE(screen.bottom_margin);
}
static void TakeWrap(const Outcome& found, Outcome* wanted) { TAKE(parser.pending_wrap); }
static void TakePen(const Outcome& found, Outcome* wanted) { TAKE(screen.current_attr); }
static void TakeG1(const Outcome& found, Outcome* wanted) { TAKE(modes.g1_set); }
static void TakeStops(const Outcome& found, Outcome* wanted) { TAKE_ARRAY(screen.tab_stops); }
static void TakeSaved(const Outcome& found, Outcome* wanted) { TAKE(parser.saved); }
static void TakeInsert(const Outcome& found, Outcome* wanted) { TAKE(modes.insert_mode); }
static void TakeAutowrap(const Outcome& found, Outcome* wanted) { TAKE(modes.autowrap); }
static void TakeShown(const Outcome& found, Outcome* wanted) { TAKE(modes.cursor_visible); }
static void TakeKeypad(const Outcome& found, Outcome* wanted) { TAKE(modes.keypad_application); }
static void TakeReplies(const Outcome& found, Outcome* wanted) { wanted->replies = found.replies; }
static void TakeBeeps(const Outcome& found, Outcome* wanted) { wanted->beeps = found.beeps; }

struct PartRow {
    unsigned part;
    void (*take)(const Outcome& found, Outcome* wanted);
};

// clang-format off
static const PartRow kParts[] = {
    {kCells,   TakeCells  }, {kPlace,    TakePlace   }, {kWrap,  TakeWrap }, {kPen,    TakePen    },
    {kG0,      TakeG0     }, {kG1,       TakeG1      }, {kStops, TakeStops}, {kSaved,  TakeSaved  },
    {kMargins, TakeMargins}, {kAutowrap, TakeAutowrap}, {kShown, TakeShown}, {kInsert, TakeInsert },
    {kKeypad,  TakeKeypad }, {kAnswer,   TakeReplies }, {kBeep,  TakeBeeps},
};
// clang-format on

std::string OutcomeDifference(Outcome wanted, const Outcome& found, unsigned parts) {
    TakeScratch(found, &wanted);
    for (const PartRow& row : kParts) {
        if (parts & row.part) row.take(found, &wanted);
    }
    const std::string field = FirstDifference(wanted.state, found.state);
    if (!field.empty()) return field;
    if (wanted.replies != found.replies) return "a reply";
    return wanted.beeps == found.beeps ? "" : "a beep";
}

void ForSomeStates(const std::function<void(SetUpProcedure, const Start&)>& act) {
    const Start starts[] = {{12, 20, 5, 20, 0, false, false},
                            {1, 1, 1, 10, 0, false, false},
                            {24, 80, 1, kScreenRows, kCellReverse, false, true},
                            {20, 33, 5, 20, 0, true, false}};
    for (const Start& start : starts) {
        for (const SetUpProcedure set_up : {SetUp, SetUpTheOtherWay}) act(set_up, start);
    }
}

bool TakesNumbers(const TerminfoEntry& entry, const std::string& capability) {
    const auto found = entry.strings.find(capability);
    return found != entry.strings.end() && found->second.find("%p") != std::string::npos;
}

std::string ExpandAny(const TerminfoEntry& entry, const std::string& capability,
                      const int (&numbers)[kMostNumbers]) {
    return TakesNumbers(entry, capability) ? Expand(entry, capability, numbers)
                                           : Expand(entry, capability);
}

static const int kNumbersToSend[][kMostNumbers] = {
    {4, 19},
    {0, 23},
    {1, 1, 1, 1, 1, 1, 1, 1, 1},
    {},
};

void ForEachSending(const TerminfoEntry& entry, const std::string& capability,
                    const std::function<void(const std::string& bytes)>& act) {
    if (!TakesNumbers(entry, capability)) return act(Expand(entry, capability));
    for (const auto& numbers : kNumbersToSend) act(Expand(entry, capability, numbers));
}

// ---------------------------------------------------------------- what may change

struct MayChange {
    const char* capability;
    unsigned parts;
};

// What is not here may change anything (smcup), or is not sent to the terminal (acsc, u6, u8).
// clang-format off
static const MayChange kMayChange[] = {
    {"bel",   kBeep                },
    {"blink", kPen                 },
    {"bold",  kPen                 },
    {"cbt",   kPlace               },
    {"civis", kShown               },
    {"clear", kCells|kPlace|kWrap  },
    {"cnorm", kShown               },
    {"cr",    kPlace               },
    {"csr",   kMargins|kPlace      },
    {"cub",   kPlace               },
    {"cub1",  kPlace               },
    {"cud",   kPlace               },
    {"cud1",  kPlace|kCells        },  // may scroll where the manual leaves it open
    {"cuf",   kPlace               },
    {"cuf1",  kPlace               },
    {"cup",   kPlace|kWrap         },
    {"cuu",   kPlace               },
    {"cuu1",  kPlace|kCells        },
    {"cvvis", kShown               },
    {"dch",   kCells               },
    {"dch1",  kCells               },
    {"dl",    kCells|kPlace        },
    {"dl1",   kCells|kPlace        },
    {"ech",   kCells               },
    {"ed",    kCells               },
    {"el",    kCells               },
    {"el1",   kCells               },
    {"enacs", kG0|kG1              },
    {"home",  kPlace|kWrap         },
    {"hpa",   kPlace               },
    {"ht",    kPlace               },
    {"hts",   kStops               },
    {"ich",   kCells               },
    {"ich1",  kCells               },
    {"il",    kCells|kPlace        },
    {"il1",   kCells|kPlace        },
    {"ind",   kCells|kPlace        },
    {"indn",  kCells|kPlace        },
    {"ll",    kPlace|kWrap         },
    {"mrcup", kPlace|kWrap         },
    {"nel",   kCells|kPlace        },
    {"rc",    kPlace|kWrap|kPen|kG0|kG1},
    {"rep",   kCells|kPlace|kWrap  },
    {"rev",   kPen                 },
    {"ri",    kCells|kPlace        },
    {"rin",   kCells|kPlace        },
    {"rmacs", kG0                  },
    {"rmam",  kAutowrap            },
    {"rmir",  kInsert              },
    {"rmkx",  kKeypad              },
    {"rmso",  kPen|kG0             },  // where it is sgr0
    {"rmul",  kPen|kG0             },
    {"sc",    kSaved               },
    {"sgr",   kPen|kG0             },
    {"sgr0",  kPen|kG0             },
    {"smacs", kG0                  },
    {"smam",  kAutowrap            },
    {"smir",  kInsert              },
    {"smkx",  kKeypad              },
    {"smso",  kPen                 },
    {"smul",  kPen                 },
    {"tbc",   kStops               },
    {"u7",    kAnswer              },
    {"u9",    kAnswer              },
    {"vpa",   kPlace               },
};
// clang-format on

static std::string MoreThan(const TerminfoEntry& entry, const MayChange& row) {
    std::string message;
    ForEachSending(entry, row.capability, [&](const std::string& bytes) {
        ForSomeStates([&](SetUpProcedure set_up, const Start& start) {
            if (!message.empty()) return;
            set_up(start);
            const Outcome before = OutcomeNow();
            const std::string field = OutcomeDifference(before, OutcomeOf(bytes), row.parts);
            if (!field.empty())
                message = AsEscapeText(bytes) + " " + Describe(start) + " changes " + field;
        });
    });
    return message;
}

std::string ChangesMore(const TerminfoEntry& entry, const std::string& capability) {
    for (const MayChange& row : kMayChange) {
        if (capability != row.capability) continue;
        static std::map<std::pair<std::string, std::string>, std::string> known;
        const auto key = std::pair(capability, entry.strings.at(capability));
        if (known.count(key) == 0) known[key] = MoreThan(entry, row);
        return known[key];
    }
    return "";
}

// SPDX-License-Identifier: MIT
// Every byte in every state of the interpreter, on a screen in use: a byte that the state does not
// list changes nothing and ends the sequence, and a byte that it lists acts. Markers like ? change
// only the final characters that use them.
#include <gtest/gtest.h>

#include <algorithm>

#include "terminal/screen_buffer.h"
#include "terminal/sequences.h"
#include "tests/terminal/beep_double.h"
#include "tests/terminal/script.h"
#include "tests/terminal/terminal_state.h"

// Two used terminals with opposite settings, so that every byte that sets one shows in one of them.
static const char* const kUses[] = {
    // Every attribute, single width, G0 in use, ASCII designated, numeric keypad.
    "\x1b[5;20r\x1b[7;9H\x1b"
    "7\x1b[12;30H\x1b#5some text\x1b[12;30H",
    // Reverse alone, double width, G1 in use, line drawing designated, application keypad, a wrap
    // pending.
    "\x1b[m\x1b[7m\x1b(0\x1b)0\x0e\x1b=\x1b[62\"p\x1b[?6h\x1b[12H\x1b#5"
    "\x1b[12;80Hz\x1b#6",
};

static std::string Feed(const std::string& text) {
    std::string replies;
    FeedByteByByte(text, &replies);
    return replies;
}

static void Restore(const TerminalSnapshot& snapshot) {
    session.screen = snapshot.screen;
    session.parser = snapshot.parser;
    session.modes = snapshot.modes;
    session.split = snapshot.split;
    beep_count = 0;
}

static TerminalSnapshot UsedTerminal(const char* use, bool vt52) {
    NewTerminal();
    UseRing(60);
    Feed(use);
    if (vt52) Feed("\x1b[?2l");
    std::fill_n(session.screen.row_changed, kRingSlots, 0u);
    return TakeSnapshot();
}

// ---------------------------------------------------------------- one byte in one state

struct StateRow {
    const char* name;
    std::string prefix;  // the bytes that lead into the state
    std::string listed;  // the bytes that act there
    bool vt52;
};

static std::string Bytes(int first, int last) {
    std::string bytes;
    for (int b = first; b <= last; ++b) bytes += static_cast<char>(b);
    return bytes;
}

static const std::string kIntroducers = "\x84\x8d\x90\x9b";
static const std::string kInEveryEscape = "\x1b #()78<=>EMPZ[c";

static const StateRow kStates[] = {
    {"ground", "", "\x05\a\b\t\n\r\x0e\x0f\x1b" + kIntroducers, false},
    {"ground, VT52", "", "\x05\a\b\t\n\r\x0e\x0f\x1b" + kIntroducers, true},
    {"escape", "\x1b", kInEveryEscape + "DH", false},
    {"escape, VT52", "\x1b", kInEveryEscape + "ABCDHIJKY", true},
    {"space", "\x1b ", kInEveryEscape + "DHFG", false},
    {"space, VT52", "\x1b ", kInEveryEscape + "ABCDHIJKY", true},
    {"line size", "\x1b#", "34568\x1b", false},
    {"G0", "\x1b(", "0AB\x1b", false},
    {"G1", "\x1b)", "0AB\x1b", false},
    {"device control", "\x1bP", "", false},
    {"control sequence", "\x1b[2;3", Bytes('0', '9') + ";'?>!\"=\b\x1b@ABCDHJKLMPXcfghilmnpqrsxy",
     false},
    {"control sequence, VT52", "\x1b[2;3",
     Bytes('0', '9') + ";'?>!\"=\b\x1b@ABCDHJKLMPXcfghilmnpqrsxy", true},
};

static bool IsText(const StateRow& state, int b) {
    const std::string introducers = kIntroducers + '\x8f';
    return state.prefix.empty() && b >= 32 &&
           introducers.find(static_cast<char>(b)) == std::string::npos;
}

// What is left after a byte that the state does not list.
static TerminalSnapshot Dropped(const StateRow& state, int b) {
    TerminalSnapshot expected = TakeSnapshot();
    if (b == 0x8F && state.prefix.empty()) {  // as ESC O
        expected.parser.private_flag = expected.parser.secondary_flag = 0;
    }
    if (expected.parser.parser_state == kStateDeviceControl) {
        expected.parser.string_last = static_cast<BYTE>(b);
    } else {
        expected.parser.parser_state = kStateGround;
    }
    if (state.prefix == "\x1b#") expected.screen.row_changed[expected.screen.cursor_row] = 1;
    return expected;
}

// "" if the byte was dropped, else what it did.
static std::string Deed(const StateRow& state, int b) {
    Feed(state.prefix);
    const TerminalSnapshot expected = Dropped(state, b);
    const std::string reply = Feed(std::string(1, static_cast<char>(b)));
    if (!reply.empty()) return "reply " + reply;
    if (beep_count > 0) return "beep";
    return FirstDifference(expected, TakeSnapshot());
}

TEST(EveryByte, ActsInTheStatesThatListItAndIsDroppedInAllOthers) {
    for (const StateRow& state : kStates) {
        const TerminalSnapshot uses[] = {UsedTerminal(kUses[0], state.vt52),
                                         UsedTerminal(kUses[1], state.vt52)};
        for (int b = 0; b < 256; ++b) {
            if (IsText(state, b)) continue;
            std::string deeds;
            for (const TerminalSnapshot& use : uses) {
                Restore(use);
                deeds += Deed(state, b);
            }
            const bool listed = state.listed.find(static_cast<char>(b)) != std::string::npos;
            EXPECT_EQ(listed, !deeds.empty()) << state.name << ", byte " << b << ": " << deeds;
        }
    }
}

TEST(EveryByte, FromThirtyTwoOnIsWrittenIntoOneCell) {
    const TerminalSnapshot use = UsedTerminal(kUses[0], false);
    for (int b = 32; b < 256; ++b) {
        if (!IsText(kStates[0], b)) continue;
        Restore(use);
        TerminalSnapshot expected = use;
        expected.screen.slots[RowSlot(12)][30] = static_cast<DWORD>(b) | use.screen.current_attr;
        expected.screen.row_changed[12] = 1;
        expected.screen.cursor_col = 31;
        EXPECT_EQ("", Feed(std::string(1, static_cast<char>(b))));
        EXPECT_EQ("", FirstDifference(expected, TakeSnapshot())) << b;
    }
}

TEST(EveryByte, OfAVt52AddressIsItsRowOrItsColumn) {
    const TerminalSnapshot use = UsedTerminal(kUses[0], true);
    for (int b = 0; b < 256; ++b) {
        if (b == 27) continue;
        Restore(use);
        Feed(std::string("\x1bY") + static_cast<char>(b));
        EXPECT_EQ(kStateVt52Address, session.parser.parser_state) << b;
        EXPECT_EQ(12, session.screen.cursor_row) << b;
        Feed("%");
        EXPECT_EQ(std::clamp(b - 31, 1, 24), session.screen.cursor_row) << b;
        EXPECT_EQ('%' - 31, session.screen.cursor_col) << b;
        Restore(use);
        Feed(std::string("\x1bY+") + static_cast<char>(b));  // row 12 is of single width
        EXPECT_EQ(12, session.screen.cursor_row) << b;
        EXPECT_EQ(std::clamp(b - 31, 1, 80), session.screen.cursor_col) << b;
        EXPECT_EQ(kStateGround, session.parser.parser_state) << b;
    }
}

TEST(EveryByte, AfterAnEscapeInADeviceControlStringIsSwallowedAndABackslashEndsIt) {
    const TerminalSnapshot use = UsedTerminal(kUses[0], false);
    for (int b = 0; b < 256; ++b) {
        Restore(use);
        Feed("\x1bPtext\x1b");
        TerminalSnapshot expected = TakeSnapshot();
        expected.parser.string_last = static_cast<BYTE>(b);
        if (b == '\\') expected.parser.parser_state = kStateGround;
        EXPECT_EQ("", Feed(std::string(1, static_cast<char>(b))));
        EXPECT_EQ("", FirstDifference(expected, TakeSnapshot())) << b;
    }
}

// ---------------------------------------------------------------- markers before a final

// Some include a marker that a final requires.
static const std::string kParameters[] = {
    "",     "0",   "1",     "2",   "3",      "4",  "5",  "6", "7", "5;10",
    "61;1", "2;1", "1;2;3", "1\"", "62;1\"", "?1", "?4", "!", ">",
};

struct MarkOfFinals {
    char mark;
    std::string finals;  // the finals that use the marker
};

static const MarkOfFinals kMarks[] = {{'?', "JKhl"}, {'>', "c"}, {'!', "p"}, {'"', "pq"}};

struct Outcome {
    TerminalSnapshot state;
    std::string replies;
};

static Outcome OutcomeOf(const TerminalSnapshot& use, const std::string& text, ScriptFeed feed) {
    Outcome outcome;
    Restore(use);
    feed(text, &outcome.replies);
    outcome.state = TakeSnapshot();
    ParserState& parser = outcome.state.parser;
    parser.private_flag = parser.secondary_flag = parser.bang_flag = parser.quote_flag = 0;
    return outcome;
}

static const std::string kIgnored(12, '\0');  // text after the sequence shows that it has ended

static void ExpectAlike(const TerminalSnapshot& use, const MarkOfFinals& mark, ScriptFeed feed) {
    for (const std::string& parameters : kParameters) {
        for (int b = 0; b < 256; ++b) {
            const std::string final = std::string(1, static_cast<char>(b)) + kIgnored;
            const Outcome plain = OutcomeOf(use, "\x1b[" + parameters + final, feed);
            const Outcome marked = OutcomeOf(use, "\x1b[" + parameters + mark.mark + final, feed);
            const std::string difference = FirstDifference(plain.state, marked.state);
            const bool alike = difference.empty() && plain.replies == marked.replies;
            if (mark.finals.find(static_cast<char>(b)) != std::string::npos) continue;
            EXPECT_TRUE(alike) << "CSI " << parameters << ' ' << mark.mark << " and byte " << b
                               << ": " << difference;
        }
    }
}

TEST(EveryByte, IgnoresAMarkerThatItDoesNotUse) {
    for (const char* use : kUses) {
        const TerminalSnapshot terminal = UsedTerminal(use, false);
        for (const MarkOfFinals& mark : kMarks) {
            ExpectAlike(terminal, mark, FeedByteByByte);
            ExpectAlike(terminal, mark, FeedWhole);
        }
    }
}

TEST(EveryByte, EndsASequenceTheSameInAChunkAndByItself) {
    for (const char* use : kUses) {
        const TerminalSnapshot terminal = UsedTerminal(use, false);
        for (const std::string& parameters : kParameters) {
            for (int b = 0; b < 256; ++b) {
                const std::string text = "\x1b[" + parameters + static_cast<char>(b) + kIgnored;
                const Outcome alone = OutcomeOf(terminal, text, FeedByteByByte);
                const Outcome chunk = OutcomeOf(terminal, text, FeedWhole);
                EXPECT_EQ("", FirstDifference(alone.state, chunk.state)) << parameters << ' ' << b;
                EXPECT_EQ(alone.replies, chunk.replies) << parameters << ' ' << b;
            }
        }
    }
}

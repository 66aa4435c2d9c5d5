// SPDX-License-Identifier: MIT
// The terminal as a test drives it.
#include "tests/terminal/terminal_state.h"

#include <cstring>
#include <vector>

#include "terminal/interpreter.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"

void NewTerminal() {
    session.screen = ScreenBuffer();
    session.parser = ParserState();
    session.modes = TerminalModes();
    session.split = SplitRegions();
    session.settings.bell = 1;
    ClearAll();
    TerminalStart();
    memset(session.screen.row_changed, 0, sizeof session.screen.row_changed);
}

void UseRing(int lines) {
    std::string text = "\x1b[1;4;5;7m\x1b[1\"q", replies;
    for (int line = 1; line <= lines; ++line) {
        text += std::string(kScreenColumns, 'X') + "\x1b#6";
        if (line < lines) text += "\r\n";
    }
    FeedByteByByte(text + "\x1b[24;1H", &replies);
}

// Feeds from a block of exactly that size, so that AddressSanitizer sees a read past the end.
void FeedWhole(const std::string& text, std::string* replies) {
    const std::vector<BYTE> bytes(text.begin(), text.end());
    const int count = static_cast<int>(bytes.size());
    for (int done = 0; done < count;) {
        done += TerminalFeedText(bytes.data() + done, count - done);
        if (done < count && TerminalFeedByte(bytes[static_cast<size_t>(done++)]))
            *replies += TerminalTakeReply();
    }
}

void FeedByteByByte(const std::string& text, std::string* replies) {
    for (char c : text) {
        if (TerminalFeedByte(static_cast<BYTE>(c))) *replies += TerminalTakeReply();
    }
}

TerminalSnapshot TakeSnapshot() {
    return {session.screen, session.parser, session.modes, session.split};
}

#define COMPARE(field) \
    if (a.field != b.field) return #field
#define COMPARE_ARRAY(field) \
    if (memcmp(a.field, b.field, sizeof a.field) != 0) return #field

static std::string ScreenDifference(const ScreenBuffer& a, const ScreenBuffer& b) {
    COMPARE(rows);
    COMPARE(columns);
    COMPARE(ring_origin);
    COMPARE_ARRAY(slots);
    COMPARE(current_attr);
    COMPARE(cursor_col);
    COMPARE(cursor_row);
    COMPARE(top_margin);
    COMPARE(bottom_margin);
    COMPARE_ARRAY(row_changed);
    COMPARE_ARRAY(tab_stops);
    COMPARE(selection_active);
    COMPARE(selection_start_col);
    COMPARE(selection_start_row);
    COMPARE(selection_end_col);
    COMPARE(selection_end_row);
    COMPARE_ARRAY(paint_row);
    return "";
}

static std::string ParserDifference(const ParserState& a, const ParserState& b) {
    COMPARE(parser_state);
    COMPARE_ARRAY(param_text);
    COMPARE(param_len);
    COMPARE_ARRAY(params);
    COMPARE(param_count);
    COMPARE(private_flag);
    COMPARE(secondary_flag);
    COMPARE(bang_flag);
    COMPARE(quote_flag);
    COMPARE(space_flag);
    COMPARE(string_last);
    COMPARE_ARRAY(vt52_address);
    COMPARE(vt52_address_count);
    COMPARE_ARRAY(reply_text);
    COMPARE(reply_pending);
    COMPARE(pending_wrap);
    COMPARE(saved.attr);
    COMPARE(saved.pending_wrap);
    COMPARE(saved.col);
    COMPARE(saved.row);
    COMPARE(saved.g0_set);
    COMPARE(saved.g1_set);
    COMPARE(saved.graphic_active);
    return "";
}

static std::string ModesDifference(const TerminalModes& a, const TerminalModes& b) {
    COMPARE(insert_mode);
    COMPARE(autowrap);
    COMPARE(origin_mode);
    COMPARE(newline_mode);
    COMPARE(localecho);
    COMPARE(keypad_application);
    COMPARE(autorepeat);
    COMPARE(cursor_visible);
    COMPARE(screen_reverse);
    COMPARE(vt52_mode);
    COMPARE(vt100_level);
    COMPARE(c1_replies);
    COMPARE(g0_set);
    COMPARE(g1_set);
    COMPARE(g0_invoked);
    COMPARE(graphic_active);
    return "";
}

static std::string RegionDifference(const RegionCursor& a, const RegionCursor& b) {
    COMPARE(col);
    COMPARE(row);
    COMPARE(top_margin);
    COMPARE(bottom_margin);
    COMPARE(attr);
    COMPARE(pending_wrap);
    return "";
}

static std::string SplitDifference(const SplitRegions& a, const SplitRegions& b) {
    COMPARE(active_region);
    COMPARE(upper_height);
    COMPARE(region_last_row);
    const std::string upper = RegionDifference(a.upper, b.upper);
    if (!upper.empty()) return "upper." + upper;
    const std::string lower = RegionDifference(a.lower, b.lower);
    return lower.empty() ? "" : "lower." + lower;
}

std::string FirstDifference(const TerminalSnapshot& a, const TerminalSnapshot& b) {
    std::string difference = ScreenDifference(a.screen, b.screen);
    if (difference.empty()) difference = ParserDifference(a.parser, b.parser);
    if (difference.empty()) difference = ModesDifference(a.modes, b.modes);
    if (difference.empty()) difference = SplitDifference(a.split, b.split);
    return difference;
}

std::string FieldOutOfBounds() {
    const ScreenBuffer& screen = session.screen;
    const ParserState& parser = session.parser;
    if (screen.ring_origin < 0 || screen.ring_origin >= kRingLines) return "ring_origin";
    if (screen.cursor_row < 1 || screen.cursor_row > kRingLines) return "cursor_row";
    const int last = IsDoubleWidth(screen.cursor_row) ? kScreenColumns / 2 : kScreenColumns;
    if (screen.cursor_col < 1 || screen.cursor_col > last) return "cursor_col";
    if (screen.top_margin < 1 || screen.top_margin > kScreenRows) return "top_margin";
    if (screen.bottom_margin < 1 || screen.bottom_margin > kScreenRows) return "bottom_margin";
    if (parser.parser_state < 0 || parser.parser_state > 7) return "parser_state";
    if (parser.param_len < 0 || parser.param_len >= kParamTextSize) return "param_len";
    if (parser.param_count < 1 || parser.param_count > kParamCount) return "param_count";
    if (memchr(parser.reply_text, 0, kReplySize) == nullptr) return "reply_text";
    return "";
}

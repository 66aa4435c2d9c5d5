// SPDX-License-Identifier: MIT
// The terminal as a test drives it: made new, fed in several ways, and compared as a whole. Also
// linked by the fuzz target.
#ifndef QUILL_TESTS_TERMINAL_TERMINAL_STATE_H
#define QUILL_TESTS_TERMINAL_TERMINAL_STATE_H

#include <string>

#include "session/session_state.h"

struct TerminalSnapshot {
    ScreenBuffer screen;
    ParserState parser;
    TerminalModes modes;
    SplitRegions split;
};

// As after program start and a connect: an empty screen, no row marked, the bell setting on.
void NewTerminal();

// Scrolls that many lines (at least 1) through the ring as a host would: each of double width, with
// 80 cells of X that have every attribute, which stays on. The cursor ends at row 24, column 1.
// From 49 lines on every slot has been in use.
void UseRing(int lines);

// Feeding appends the replies, one after the other, to *replies.
void FeedWhole(const std::string& bytes, std::string* replies);  // as TerminalWrite does
void FeedByteByByte(const std::string& bytes, std::string* replies);

TerminalSnapshot TakeSnapshot();

// The name of the first field in which the two differ, or an empty text.
std::string FirstDifference(const TerminalSnapshot& a, const TerminalSnapshot& b);

// What must hold after any input: an empty text, or the name of the field that is out of bounds.
std::string FieldOutOfBounds();

#endif

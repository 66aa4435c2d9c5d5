// SPDX-License-Identifier: MIT
// The terminal as a test drives it: create it, feed it in several ways, compare all of its state.
// The fuzz target links this file too.
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

// Scrolls that many lines (at least 1) through the ring as a host would. Each line has double width
// and 80 cells of X with every attribute; the attributes stay on. The cursor ends at row 24,
// column 1. After 49 lines every slot of the ring has been used.
void UseRing(int lines);

// Feeding appends the replies, one after the other, to *replies.
void FeedWhole(const std::string& bytes, std::string* replies);  // as TerminalWrite does
void FeedByteByByte(const std::string& bytes, std::string* replies);

TerminalSnapshot TakeSnapshot();

// The name of the first field in which the two differ; empty if they are equal.
std::string FirstDifference(const TerminalSnapshot& a, const TerminalSnapshot& b);

// Checks what must be true after any input. Returns the field that is out of bounds, or "".
std::string FieldOutOfBounds();

#endif

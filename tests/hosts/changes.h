// SPDX-License-Identifier: MIT
// The terminal's whole state before and after a string, with what follows from it: replies, beeps.
#ifndef QUILL_TESTS_HOSTS_CHANGES_H
#define QUILL_TESTS_HOSTS_CHANGES_H

#include <functional>
#include <string>

#include "tests/hosts/picture.h"
#include "tests/hosts/terminfo_entry.h"
#include "tests/terminal/terminal_state.h"

// The parts of the state that a capability may change.
enum Part : unsigned {
    kCells = 1 << 0,
    kPlace = 1 << 1,  // the cursor's
    kWrap = 1 << 2,   // the wait in the last column
    kPen = 1 << 3,
    kG0 = 1 << 4,  // and whether it is in use
    kG1 = 1 << 5,
    kMargins = 1 << 6,
    kStops = 1 << 7,
    kSaved = 1 << 8,
    kInsert = 1 << 9,
    kAutowrap = 1 << 10,
    kShown = 1 << 11,  // the cursor
    kKeypad = 1 << 12,
    kAnswer = 1 << 13,  // it is answered
    kBeep = 1 << 14,
};

struct Outcome {
    TerminalSnapshot state;
    std::string replies;
    int beeps;
};

// The terminal as it is, and after bytes.
Outcome OutcomeNow();
Outcome OutcomeOf(const std::string& bytes);

// The first field in which the two differ, except for `parts`, marks of what has to be painted,
// and numbers of sequences that have ended. Empty if nothing does.
std::string OutcomeDifference(Outcome wanted, const Outcome& found, unsigned parts);

// Some starts with each kind of edge, each with `set_up` SetUp and SetUpTheOtherWay.
typedef void (*SetUpProcedure)(const Start& start);
void ForSomeStates(const std::function<void(SetUpProcedure, const Start&)>& act);

bool TakesNumbers(const TerminfoEntry& entry, const std::string& capability);
std::string ExpandAny(const TerminfoEntry& entry, const std::string& capability,
                      const int (&numbers)[kMostNumbers]);

// A string as it is sent, with several numbers if it takes some.
void ForEachSending(const TerminfoEntry& entry, const std::string& capability,
                    const std::function<void(const std::string& bytes)>& act);

#endif

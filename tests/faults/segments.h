// SPDX-License-Identifier: MIT
// What the user does while calls fail, in pieces. A user of these does not mind what does not come:
// each step goes on after a short while.
#ifndef QUILL_TESTS_FAULTS_SEGMENTS_H
#define QUILL_TESTS_FAULTS_SEGMENTS_H

#include <string>
#include <vector>

#include "tests/support/person.h"

struct Segment {
    const char* name;
    void (*stage)(Stage& stage);  // null: nothing special
    void (*act)();                // the person's
};
extern const std::vector<Segment> segments;

struct RunResult {
    int code = 0;
    bool ended_early = false;        // the program had ended before the last step
    std::vector<std::string> boxes;  // that were shown
    std::string first_try;           // empty, or what did not work afterwards: the fault came there
    std::string unwell;              // the same at the second try
};

// Runs the program for the piece, and then sees whether a session works as ever.
RunResult RunSegment(const Segment& segment);

#endif

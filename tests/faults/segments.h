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
    void (*stage)(Stage& stage);  // prepares the device
    void (*act)();                // the person's
    const char* broken;  // a call that fails each time until the session afterwards; or null
};
extern const std::vector<Segment> segments;

struct RunResult {
    int code = 0;
    bool in_segment = false;         // the fault came before the session afterwards
    bool ended_early = false;        // the program had ended before the last step
    std::vector<std::string> boxes;  // that were shown
    std::string first_try;           // empty, or what did not work in the session afterwards
    std::string second_try;          // the same in one more session, if that was not empty
    int unsaved = 0;                 // settings that the file does not have as the program had them
    std::string integrity = "ok";    // of the registry's file
};

// Runs the program for the piece, and then sees whether a session works as before.
RunResult RunSegment(const Segment& segment);

#endif

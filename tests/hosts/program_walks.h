// SPDX-License-Identifier: MIT
// Programs of a host, walked through step by step on a pseudo-terminal. After each step the screen
// has two judges: libvterm, which got the same bytes, and the program itself, which redraws it.
#ifndef QUILL_TESTS_HOSTS_PROGRAM_WALKS_H
#define QUILL_TESTS_HOSTS_PROGRAM_WALKS_H

#include <string>
#include <vector>

// Keys: characters as they are, and <up>, <down>, <left>, <right>, <home>, <end>, <pgup>, <pgdn>,
// <del>, <f1> .. <f20> as the key table sends them. A redraw of nullptr: the program draws anew
// only what changes by itself, or cannot.
struct ProgramWalk {
    const char* name;
    const char* program;
    std::vector<std::string> arguments;  // run in the walk's folder
    const char* redraw;
    const char* term;  // the entry of this terminal that the program needs
    std::vector<std::string> steps;
};

const std::vector<ProgramWalk>& ProgramWalks();

struct WalkResult {
    int steps = 0;
    int wrong = 0;  // screens that a judge does not agree with
    bool finished = false;
    std::string first_difference;
    std::string screen;  // the last one, rows with LF
};

// The keys are those of the entry `keys`: "quill", or another name for a key table that is set up
// for it. The folder is made for the walk, with the files that the walks use, and removed.
WalkResult WalkThrough(const ProgramWalk& walk, const std::string& term, const std::string& keys,
                       int patience = 1);

// The same, up to three times, each with more patience. On a busy machine, the kernel may hand a
// byte over so late that both sides of the pseudo-terminal seem to rest. A fault of the terminal is
// there each time.
WalkResult WalkUntilRight(const ProgramWalk& walk, const std::string& term,
                          const std::string& keys);

std::string KeysOf(const std::string& step, const std::string& entry);

#endif

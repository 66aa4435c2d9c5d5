// SPDX-License-Identifier: MIT
// What host, user and network do, chosen at random. The calls are the person's: [person's thread].
#ifndef QUILL_TESTS_LONG_RUNS_STEPS_H
#define QUILL_TESTS_LONG_RUNS_STEPS_H

#include <atomic>
#include <string>

#include "tests/long_runs/hosts.h"
#include "tests/long_runs/streams.h"

struct LongRun {
    Random random{1};
    LongHost host;
    std::string root;   // the device's
    std::string dial;   // folder of the dial-up program
    bool tame = false;  // of this session's streams
    bool dialled = false;
    std::atomic<const char*> doing{"starting"};
    std::atomic<long> steps{0};
};

struct Step {
    const char* name;
    unsigned weight;
    void (*run)(LongRun& run);
};

// One of the table by its weights.
const Step& ChooseStep(LongRun& run);

void BeginRandomSession(LongRun& run);
void RestOnline(LongRun& run);  // everything has arrived and is as it must be
void EndSession(LongRun& run);
void WhileOffline(
    LongRun& run);  // a refused, a cancelled or a dialled connection; may begin nothing

void StageDialUp(LongRun& run);  // before the program starts, on the window thread

void Tell(LongRun& run, const char* doing);

inline const char kClosed[] = "Error: Connection to the UNIX Host has been closed...";
inline const char kNotPossible[] = "Error: Not possible to create a session to the UNIX Host";

#endif

// SPDX-License-Identifier: MIT
// What the program has taken from the slice and not given back, counted at the calls by the linker.
#ifndef QUILL_TESTS_LONG_RUNS_COUNTS_H
#define QUILL_TESTS_LONG_RUNS_COUNTS_H

#include <atomic>

struct Counts {
    std::atomic<long> handles{0};   // threads and events
    std::atomic<long> objects{0};   // fonts, brushes, pens
    std::atomic<long> contexts{0};  // of drawing
    std::atomic<long> sockets{0};
    std::atomic<long> keys{0};  // of the registry
};
extern Counts counts;

#endif

// SPDX-License-Identifier: MIT
// The byte streams that the engine benchmark feeds, each a quarter of a megabyte or a recording.
#ifndef QUILL_BENCH_WORKLOADS_H
#define QUILL_BENCH_WORKLOADS_H

#include <string>
#include <vector>

struct Workload {
    const char* name;
    std::string text;
};

// Returns the same bytes in every run. Ends the program with a message if a recording is
// unreadable.
std::vector<Workload> MakeWorkloads();

#endif

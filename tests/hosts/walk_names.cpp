// SPDX-License-Identifier: MIT
// Walks through the programs under a terminal name and prints the figures.
// Usage: walk_names NAME KEYS [PROGRAM...]   KEYS: the entry whose keys are typed; quill is the
//        key table's defaults
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/hosts/program_walks.h"
#include "tests/hosts/pty_program.h"

static bool IsWanted(const char* name, int argc, char** argv) {
    if (argc <= 3) return true;
    for (int i = 3; i < argc; ++i) {
        if (strcmp(argv[i], name) == 0) return true;
    }
    return false;
}

int main(int argc, char** argv) {
    if (argc < 3) {
        fprintf(stderr, "usage: walk_names NAME KEYS [PROGRAM...]\n");
        return 2;
    }
    setenv("TERMINFO", QUILL_TERMINFO, 0);
    for (const ProgramWalk& walk : ProgramWalks()) {
        if (!IsWanted(walk.name, argc, argv) || !IsInstalled(walk.program)) continue;
        const WalkResult result = WalkThrough(walk, argv[1], argv[2]);
        printf("%-16s %-12s %3d steps %3d wrong%s  %s\n", argv[1], walk.name, result.steps,
               result.wrong, result.finished ? "" : ", ended early",
               result.first_difference.c_str());
        if (getenv("QUILL_SHOW_SCREEN")) printf("%s", result.screen.c_str());
        fflush(stdout);
    }
    return 0;
}

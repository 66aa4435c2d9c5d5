// SPDX-License-Identifier: MIT
// Paints at random under terminal names and prints the figures.
// Usage: paint_names STEPS SEEDS NAME...
#include <cstdio>
#include <cstdlib>

#include "tests/hosts/painting.h"

int main(int argc, char** argv) {
    if (argc < 4) {
        fprintf(stderr, "usage: paint_names STEPS SEEDS NAME...\n");
        return 2;
    }
    setenv("TERMINFO", QUILL_TERMINFO, 0);
    for (int i = 3; i < argc; ++i) {
        Painting all;
        for (int seed = 1; seed <= atoi(argv[2]); ++seed) {
            const Painting one = Paint(argv[i], static_cast<unsigned long>(seed), atoi(argv[1]));
            all.steps += one.steps;
            all.wrong += one.wrong;
            all.bytes += one.bytes;
            if (all.first_difference.empty()) all.first_difference = one.first_difference;
        }
        printf("%-16s %5d steps %5d wrong %8ld bytes  %s\n", argv[i], all.steps, all.wrong,
               all.bytes, all.first_difference.c_str());
        fflush(stdout);
    }
    return 0;
}

// SPDX-License-Identifier: MIT
// The random painter on a pseudo-terminal, judged by curses' own idea of the screen.
#ifndef QUILL_TESTS_HOSTS_PAINTING_H
#define QUILL_TESTS_HOSTS_PAINTING_H

#include <string>

struct Painting {
    int steps = 0;  // that the painter finished
    int wrong = 0;  // screens that differ from curses' idea
    long bytes = 0;
    std::string first_difference;
};

Painting Paint(const std::string& term, unsigned long seed, int steps);

#endif

// SPDX-License-Identifier: MIT
// What hosts show, at random: tame streams mean the same to every terminal of the kind, wild ones
// are made of everything, some of which no host sends. No byte is 255.
#ifndef QUILL_TESTS_LONG_RUNS_STREAMS_H
#define QUILL_TESTS_LONG_RUNS_STREAMS_H

#include <random>
#include <string>

using Random = std::mt19937;

inline unsigned Below(Random& random, unsigned bound) {
    return static_cast<unsigned>(random() % bound);
}

std::string WildStream(Random& random, int pieces);
std::string TameStream(Random& random, int pieces);

#endif

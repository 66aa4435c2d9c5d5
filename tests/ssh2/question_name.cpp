// SPDX-License-Identifier: MIT
// Names the questions to the judge by a hash of their inputs.
#include <cinttypes>
#include <cstdio>

#include "tests/ssh2/judge.h"

namespace {

// FNV-1a.
uint64_t HashFrom(uint64_t hash, const std::string& bytes) {
    for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

}  // namespace

std::string QuestionName(const std::string& kind, const std::string& inputs) {
    char text[40];
    snprintf(text, sizeof text, "%016" PRIx64 "%016" PRIx64,
             HashFrom(0xcbf29ce484222325, kind + inputs), HashFrom(inputs.size(), inputs + kind));
    return kind + "-" + text;
}

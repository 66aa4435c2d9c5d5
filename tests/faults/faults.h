// SPDX-License-Identifier: MIT
// The places where the program calls what can fail, and one of them made to fail. A place is the
// address behind the call instruction; only places in the program's own folders count. A call that
// the compiler has inlined into several procedures has several places.
#ifndef QUILL_TESTS_FAULTS_FAULTS_H
#define QUILL_TESTS_FAULTS_FAULTS_H

#include <cstdint>
#include <map>
#include <string>

struct Place {
    std::string line;       // "connection/connection.cpp:80"
    std::string procedure;  // that has the call in its source
    std::string call;       // the call's name for the linker
};
using Places = std::map<uintptr_t, Place>;

// All of them, out of this program's own code, by objdump and addr2line.
const Places& AllPlaces();

// How many times each place was reached since StartCounting.
void StartCounting();
std::map<uintptr_t, int> Reached();

// The place fails once, the `time`-th time from now that it is reached; 0: no place fails.
void FailAt(uintptr_t place, int time = 1);
bool HasFailed();  // since then

// Every such call of the program fails from now on; null: no call fails.
void FailEvery(const char* call);

#endif

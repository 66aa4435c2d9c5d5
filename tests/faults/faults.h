// SPDX-License-Identifier: MIT
// The places where the program calls what can fail, and one of them made to fail. A place is the
// address behind the call instruction; only places in the program's own folders count.
#ifndef QUILL_TESTS_FAULTS_FAULTS_H
#define QUILL_TESTS_FAULTS_FAULTS_H

#include <cstdint>
#include <map>
#include <set>
#include <string>

struct Place {
    std::string where;  // "connection/connection.cpp:80 in OpenSocket"
    std::string call;   // the call's name for the linker
};
using Places = std::map<uintptr_t, Place>;

// All of them, out of this program's own code, by objdump and addr2line.
const Places& AllPlaces();

void ForgetReached();
std::set<uintptr_t> Reached();  // since then

// The place fails once, the next time it is reached; 0: none does.
void FailAt(uintptr_t place);
bool HasFailed();  // it was reached since

#endif

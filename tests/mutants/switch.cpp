// SPDX-License-Identifier: MIT
// Which mutant is on, and where the mutants that were reached are noted: a file that is mapped, so
// that the processes which a test starts note theirs too. Linked into each program of tests/mutate.
#include "tests/mutants/switch.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cstdlib>

namespace mutants {

int g_on = -1;
unsigned char* g_reached = nullptr;
unsigned char g_phase = 1;

// Runs before the initial values of every other file are computed.
__attribute__((constructor(101))) static void Begin() {
    if (const char* number = getenv("QUILL_MUTANT")) g_on = atoi(number);
    const char* name = getenv("QUILL_MUTANTS_REACHED");
    const int file = name != nullptr ? open(name, O_RDWR) : -1;
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0) return;
    void* bytes = mmap(nullptr, static_cast<size_t>(status.st_size), PROT_READ | PROT_WRITE,
                       MAP_SHARED, file, 0);
    if (bytes != MAP_FAILED) g_reached = static_cast<unsigned char*>(bytes);
    close(file);
}

// Runs after them: this object is the last one that is linked.
__attribute__((constructor)) static void MainBegins() { g_phase = 2; }

}  // namespace mutants

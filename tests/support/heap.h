// SPDX-License-Identifier: MIT
// How much memory the program has allocated on the heap, and how often it allocates.
#ifndef QUILL_TESTS_SUPPORT_HEAP_H
#define QUILL_TESTS_SUPPORT_HEAP_H

#include <cstddef>
#include <functional>

size_t HeapInUse();  // bytes that are allocated and not yet released, by all threads

// Counts the allocations of this thread while `work` runs. `program` counts those by the program's
// code, directly or through the C++ library; `libraries` counts those by other libraries.
struct Allocations {
    int program;
    int libraries;
};
bool CanCountAllocations();  // only in a build with the address sanitizer
Allocations CountAllocations(const std::function<void()>& work);

#endif

// SPDX-License-Identifier: MIT
// What the program holds on the heap, and how often it asks for memory.
#ifndef QUILL_TESTS_SUPPORT_HEAP_H
#define QUILL_TESTS_SUPPORT_HEAP_H

#include <cstddef>
#include <functional>

size_t HeapInUse();  // bytes that are allocated and not released, of all threads

// Allocations that this thread makes while `work` runs. Those of the program are made by its own
// code, directly or through the language's library; those of the libraries by other libraries.
struct Allocations {
    int program;
    int libraries;
};
bool CanCountAllocations();  // only in a build with the address sanitizer
Allocations CountAllocations(const std::function<void()>& work);

#endif

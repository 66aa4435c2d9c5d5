// SPDX-License-Identifier: MIT
// What the program holds on the heap.
#ifndef QUILL_TESTS_SUPPORT_HEAP_H
#define QUILL_TESTS_SUPPORT_HEAP_H

#include <cstddef>

size_t HeapInUse();  // bytes that are allocated and not released, of all threads

#endif

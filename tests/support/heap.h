// SPDX-License-Identifier: MIT
// How much memory the program has allocated on the heap.
#ifndef QUILL_TESTS_SUPPORT_HEAP_H
#define QUILL_TESTS_SUPPORT_HEAP_H

#include <cstddef>

size_t HeapInUse();  // bytes that are allocated and not yet released, by all threads

#endif

// SPDX-License-Identifier: MIT
// Asks the sanitizers' allocator, or the C library's.
#include "tests/support/heap.h"

#include <malloc.h>

extern "C" {
// Of the sanitizers' runtime; null in a build without one.
[[gnu::weak]] size_t __sanitizer_get_current_allocated_bytes();
}

size_t HeapInUse() {
    if (__sanitizer_get_current_allocated_bytes) return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

// SPDX-License-Identifier: MIT
// Asks the allocator of the sanitizers or of the C library for the heap in use.
#include "tests/support/heap.h"

#include <malloc.h>

extern "C" {
// A function of the sanitizer runtime; null in a build without sanitizers.
[[gnu::weak]] size_t __sanitizer_get_current_allocated_bytes();
}

size_t HeapInUse() {
    if (__sanitizer_get_current_allocated_bytes) return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

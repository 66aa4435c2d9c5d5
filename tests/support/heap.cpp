// SPDX-License-Identifier: MIT
// Asks the sanitizers' allocator, or the C library's.
#include "tests/support/heap.h"

#include <malloc.h>

extern "C" {
// Of the sanitizers' runtime; null in a build without one.
[[gnu::weak]] size_t __sanitizer_get_current_allocated_bytes();
[[gnu::weak]] int __sanitizer_install_malloc_and_free_hooks(
    void (*allocated)(const volatile void* memory, size_t size),
    void (*released)(const volatile void* memory));
}

namespace {

thread_local bool t_counting = false;
thread_local long t_allocations = 0;

void CountAllocation(const volatile void*, size_t) {
    if (t_counting) t_allocations++;
}

void IgnoreRelease(const volatile void*) {}

}  // namespace

size_t HeapInUse() {
    if (__sanitizer_get_current_allocated_bytes) return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

bool CanCountAllocations() { return __sanitizer_install_malloc_and_free_hooks != nullptr; }

// The hooks stay: the runtime has no way to take them out.
void StartCountingAllocations() {
    static const int hooks =
        __sanitizer_install_malloc_and_free_hooks(CountAllocation, IgnoreRelease);
    t_allocations = 0;
    t_counting = hooks != 0;
}

long StopCountingAllocations() {
    t_counting = false;
    return t_allocations;
}

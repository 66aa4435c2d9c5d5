// SPDX-License-Identifier: MIT
// Asks the allocator of the sanitizers or of the C library for the heap in use.
#include "tests/support/heap.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <malloc.h>

#include <cstring>

extern "C" {
// A function of the sanitizer runtime; null in a build without sanitizers.
[[gnu::weak]] size_t __sanitizer_get_current_allocated_bytes();
[[gnu::weak]] int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                            void (*)(const volatile void*));
}

size_t HeapInUse() {
    if (__sanitizer_get_current_allocated_bytes) return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

// The count of this thread; null while it counts nothing.
static thread_local Allocations* g_count;

static bool IsAllocator(const char* file) {
    return std::strstr(file, "/libasan") || std::strstr(file, "/libstdc++");
}

// True if the nearest caller outside the allocator and the language's library is the program. The
// first frames are the hook's own, up to the allocator that called it.
static bool ProgramAsks() {
    void* callers[24];
    const int count = backtrace(callers, 24);
    Dl_info program = {}, caller = {};
    dladdr(reinterpret_cast<void*>(&HeapInUse), &program);
    bool hook = false, allocator = false;
    for (int i = 0; i < count; ++i) {
        if (!dladdr(callers[i], &caller) || !caller.dli_fname) continue;
        if (IsAllocator(caller.dli_fname)) {
            allocator = hook;
        } else if (allocator) {
            return caller.dli_fbase == program.dli_fbase;
        } else {
            hook = true;
        }
    }
    return false;
}

static void CountOne(const volatile void*, size_t) {
    Allocations* count = g_count;
    if (!count) return;
    g_count = nullptr;  // what follows may allocate
    ++(ProgramAsks() ? count->program : count->libraries);
    g_count = count;
}

static void CountNothing(const volatile void*) {}

bool CanCountAllocations() { return __sanitizer_install_malloc_and_free_hooks != nullptr; }

Allocations CountAllocations(const std::function<void()>& work) {
    static const bool installed =
        CanCountAllocations() && __sanitizer_install_malloc_and_free_hooks(CountOne, CountNothing);
    Allocations count = {};
    if (installed) g_count = &count;
    work();
    g_count = nullptr;
    return count;
}

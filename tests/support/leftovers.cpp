// SPDX-License-Identifier: MIT
// Searches the stack, and each heap block when it is released, for copies of a secret.
#include "tests/support/leftovers.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" {
// A function of the sanitizer runtime; null in a build without sanitizers.
[[gnu::weak]] int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                            void (*)(const volatile void*));
[[gnu::weak]] size_t __sanitizer_get_allocated_size(const volatile void*);
}

namespace {

const size_t kStackSize = 1 << 20;
const size_t kPatternSize = 16;  // long enough that a match is not chance

// Reads memory that the sanitizer may consider unused.
__attribute__((no_sanitize("address"))) int Occurrences(const uint8_t* memory, size_t size,
                                                        const uint8_t* pattern) {
    int count = 0;
    for (size_t at = 0; at + kPatternSize <= size; at++) {
        size_t same = 0;
        while (same < kPatternSize && memory[at + same] == pattern[same]) same++;
        if (same == kPatternSize) count++;
    }
    return count;
}

const std::string* g_secret = nullptr;  // watched for; null: nothing is
int g_found = 0;

void SeeAllocation(const volatile void*, size_t) {}

void SeeRelease(const volatile void* block) {
    if (!g_secret || !block) return;
    const auto* bytes = const_cast<const char*>(static_cast<const volatile char*>(block));
    const char* end = bytes + __sanitizer_get_allocated_size(block);
    g_found += std::search(bytes, end, g_secret->begin(), g_secret->end()) != end;
}

}  // namespace

int LeftOnStack(const void* secret, const std::function<void()>& work) {
    static uint8_t* const kStack = static_cast<uint8_t*>(aligned_alloc(4096, kStackSize));
    memset(kStack, 0, kStackSize);
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    EXPECT_EQ(pthread_attr_setstack(&attributes, kStack, kStackSize), 0);
    auto run = [](void* argument) -> void* {
        volatile uint8_t depth[kStackSize / 4];  // keeps what the end of a thread does off the rest
        depth[0] = 0;
        (*static_cast<const std::function<void()>*>(argument))();
        return reinterpret_cast<void*>(uintptr_t{depth[0]});
    };
    EXPECT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)),
              0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
    return Occurrences(kStack, kStackSize, static_cast<const uint8_t*>(secret));
}

int ReleasedWith(const std::string& secret, const std::function<void()>& work) {
    if (!__sanitizer_install_malloc_and_free_hooks) return -1;
    static const int kInstalled =
        __sanitizer_install_malloc_and_free_hooks(SeeAllocation, SeeRelease);
    EXPECT_NE(kInstalled, 0);
    g_found = 0;
    g_secret = &secret;
    work();
    g_secret = nullptr;
    return g_found;
}

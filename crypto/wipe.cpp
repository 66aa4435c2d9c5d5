// Wiping of secrets.
#include "crypto/wipe.h"

#include <cstdlib>
#include <cstring>

// Read anew at each call, so the compiler cannot know what is called and cannot leave it out.
static void* (*const volatile kSetMemory)(void*, int, size_t) = memset;

void Wipe(void* memory, size_t size) {
    if (size != 0) kSetMemory(memory, 0, size);
}

void WipeAndFree(void* memory, size_t size) {
    if (memory == nullptr) return;
    Wipe(memory, size);
    free(memory);
}

// Wiping of memory that held a key, a secret number or anything that would give one away.
#ifndef QUILL_CRYPTO_WIPE_H
#define QUILL_CRYPTO_WIPE_H

#include <cstddef>

// Sets `size` bytes to zero, and does so even when nothing reads them again.
void Wipe(void* memory, size_t size);

// Wipes a block of malloc or calloc and releases it. Null is allowed.
void WipeAndFree(void* memory, size_t size);

#endif

// What the program holds on the heap, and takes of it.
#ifndef QUILL_TESTS_SUPPORT_HEAP_H
#define QUILL_TESTS_SUPPORT_HEAP_H

#include <cstddef>

size_t HeapInUse();  // bytes that are allocated and not released, of all threads

// How often the calling thread allocates memory, by the program or by any library.
bool CanCountAllocations();  // false in a build without the sanitizers' allocator
void StartCountingAllocations();
long StopCountingAllocations();

#endif

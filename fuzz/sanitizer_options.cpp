// SPDX-License-Identifier: MIT
// Options of the address sanitizer that suit many short runs: an input frees less than the memory
// that is held back here, and short stacks of allocations save time and memory. The variable
// ASAN_OPTIONS takes precedence, for example malloc_context_size=30 to read a report.
extern "C" const char* __asan_default_options() {
    return "quarantine_size_mb=16:malloc_context_size=6";
}

// SPDX-License-Identifier: MIT
// Finds copies of a secret that a piece of work left on the stack or in released memory.
#ifndef QUILL_TESTS_SUPPORT_LEFTOVERS_H
#define QUILL_TESTS_SUPPORT_LEFTOVERS_H

#include <functional>
#include <string>

// Counts how often the first 16 bytes at `secret` occur on the stack on which `work` has run.
int LeftOnStack(const void* secret, const std::function<void()>& work);

// Counts the heap blocks that were released with the secret in them while `work` ran. Returns a
// negative number in a build whose allocator has no hook for this.
int ReleasedWith(const std::string& secret, const std::function<void()>& work);

#endif

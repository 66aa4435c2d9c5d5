// SPDX-License-Identifier: MIT
// What a piece of work left of a secret where it no longer belongs.
#ifndef QUILL_TESTS_SUPPORT_LEFTOVERS_H
#define QUILL_TESTS_SUPPORT_LEFTOVERS_H

#include <functional>
#include <string>

// How often the first 16 bytes at `secret` stand on the stack on which `work` has run.
int LeftOnStack(const void* secret, const std::function<void()>& work);

// How many heap blocks were released with the secret in them while `work` ran; below 0 in a build
// whose allocator does not tell.
int ReleasedWith(const std::string& secret, const std::function<void()>& work);

#endif

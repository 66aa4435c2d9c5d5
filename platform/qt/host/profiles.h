// SPDX-License-Identifier: MIT
// Profiles: each is a settings folder of its own, below the user's own one, and has a window of its
// own.
#ifndef QUILL_PLATFORM_QT_PROFILES_H
#define QUILL_PLATFORM_QT_PROFILES_H

#include <string>
#include <vector>

// 1 to 40 ASCII letters, digits, '.', '-' and '_'; the first one is a letter or a digit.
bool IsProfileName(const std::string& name);
std::string ProfileFolder(const std::string& name);  // of a good name; it need not exist
std::vector<std::string> ProfileNames();             // sorted

// The window's icon gets the name's first letter, and a task bar its text. After OpenDevice; the
// title is the program's alone.
void MarkWindow(const std::string& profile);

#endif

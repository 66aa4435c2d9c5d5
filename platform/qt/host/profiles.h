// SPDX-License-Identifier: MIT
// Profiles: each is a separate settings folder below the user's default one, and has its own
// window.
#ifndef QUILL_PLATFORM_QT_PROFILES_H
#define QUILL_PLATFORM_QT_PROFILES_H

#include <string>
#include <vector>

#include "platform/qt/host/command_line.h"

// 1 to 40 ASCII letters, digits, '.', '-' and '_'; the first one is a letter or a digit.
bool IsProfileName(const std::string& name);
std::string ProfileFolder(const std::string& name);  // of a valid name; it need not exist
std::vector<std::string> ProfileNames();             // sorted

// Draws the name's first letter on the window's icon and sets the name as the text of the task
// bar's entry. Call it after OpenDevice. The window's title does not change: it belongs to Quill.
void MarkWindow(const std::string& profile);

// For a start with a host, or for a picture or the text of a session: true if a program already
// runs on these settings, whose session is not touched. Says so in one line on stderr. Without a
// file to write it also brings that program to the front, says how to open a second window, and
// shows the same in a message box if stderr is no terminal.
bool IsProfileBusy(const CommandLine& line);

// For any other start: says in one line on stderr that a program that already runs on these
// settings keeps its size and scale, if the command line names others.
void TellIfSizeIsKept(const HostOptions& options);

#endif

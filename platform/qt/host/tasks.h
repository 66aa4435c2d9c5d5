// SPDX-License-Identifier: MIT
// What the command line can want besides a window: help, version, the list of profiles, an export.
#ifndef QUILL_PLATFORM_QT_TASKS_H
#define QUILL_PLATFORM_QT_TASKS_H

#include "platform/qt/host/command_line.h"

// Needs no display, and writes nothing but to stdout and stderr. The result is the exit code: 0, or
// 1 where something was left out that --with-passwords does not bring, or could not be read or
// printed.
int DoTask(const CommandLine& line);

#endif

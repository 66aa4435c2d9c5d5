// SPDX-License-Identifier: MIT
// Tasks of the command line that open no window: help, version, the list of profiles, an export.
#ifndef QUILL_PLATFORM_QT_TASKS_H
#define QUILL_PLATFORM_QT_TASKS_H

#include "platform/qt/host/command_line.h"

// Needs no display and writes only to stdout and stderr. Returns the exit code: 0, or 1 if an
// export lacks something other than the passwords that --with-passwords adds, or if settings cannot
// be read or the output cannot be written.
int DoTask(const CommandLine& line);

#endif

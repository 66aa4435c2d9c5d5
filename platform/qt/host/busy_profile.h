// SPDX-License-Identifier: MIT
// A start with a host while the window of these settings is open already.
#ifndef QUILL_PLATFORM_QT_BUSY_PROFILE_H
#define QUILL_PLATFORM_QT_BUSY_PROFILE_H

#include "platform/qt/host/command_line.h"

// If a program runs on these settings, brings it to the front and tells the user how to open a
// second window: on stderr, and in a box where nobody reads that. Its session is not touched.
bool IsProfileBusy(const CommandLine& line);

#endif

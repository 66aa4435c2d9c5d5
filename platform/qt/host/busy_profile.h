// SPDX-License-Identifier: MIT
// Handles a start with a host while another Quill already runs on the same settings.
#ifndef QUILL_PLATFORM_QT_BUSY_PROFILE_H
#define QUILL_PLATFORM_QT_BUSY_PROFILE_H

#include "platform/qt/host/command_line.h"

// If a program runs on these settings, brings it to the front and tells the user how to open a
// second window: on stderr, and also in a message box if stderr is no terminal. The other program's
// session is not touched.
bool IsProfileBusy(const CommandLine& line);

#endif

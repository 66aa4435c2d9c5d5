// SPDX-License-Identifier: MIT
// The terminal's text for screen readers: the one place where the desktop program looks into the
// session record.
#ifndef QUILL_PLATFORM_QT_TERMINAL_SOURCE_H
#define QUILL_PLATFORM_QT_TERMINAL_SOURCE_H

void ServeTerminalText();  // from now on

#endif

// SPDX-License-Identifier: MIT
// Gives the terminal's text to screen readers, and saves the settings when the desktop ends. This
// is the only place where the desktop program reads the session record.
#ifndef QUILL_PLATFORM_QT_TERMINAL_SOURCE_H
#define QUILL_PLATFORM_QT_TERMINAL_SOURCE_H

void ServeTerminalText();  // installs the source of the text
// Saves the settings as the program does at its end; none before they are loaded.
void SaveLoadedSettings();

#endif

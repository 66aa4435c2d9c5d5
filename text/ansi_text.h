// Text between UTF-16, in which everything is shown and stored, and the ANSI code page, in which
// everything goes over the wire.
#ifndef QUILL_TEXT_ANSI_TEXT_H
#define QUILL_TEXT_ANSI_TEXT_H

#include "windows_ce.h"

// Converts up to `capacity` - 1 units, fewer where the text ends before, and terminates. Returns
// the length in bytes. What the code page does not hold becomes its default character.
int AnsiFromWide(LPCWSTR text, char* bytes, int capacity);

// The other way; returns the length in units.
int WideFromAnsi(const char* bytes, LPWSTR text, int capacity);

#endif

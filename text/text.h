// SPDX-License-Identifier: MIT
// Conversion between UTF-16, which the user interface and the registry use, and the ANSI code page,
// which the wire uses. Also escape text, which writes bytes as readable text.
#ifndef QUILL_TEXT_TEXT_H
#define QUILL_TEXT_TEXT_H

#include "windows_ce.h"

// Converts at most `capacity` - 1 units, up to the text's terminator, and terminates the result.
// Returns the length in bytes. A character that is not in the code page becomes its default
// character.
int AnsiFromWide(LPCWSTR text, char* bytes, int capacity);

// Converts in the other direction, in the same way. Returns the length in units.
int WideFromAnsi(const char* bytes, LPWSTR text, int capacity);

// Copies at most `capacity` - 1 units, up to the text's terminator, and terminates the result. The
// device's API has no call for this.
void CopyBounded(LPWSTR to, LPCWSTR from, int capacity);

// ---------------------------------------------------------------- escape text

// Escape text writes bytes as text: a backslash and up to three octal digits mean one byte.

// Converts escape text to bytes, without a terminator, and returns how many there are. Bytes after
// the first `capacity` are dropped. There are never more bytes than characters in the text.
//
// A backslash begins an escape. Up to three octal digits after it are the byte's value; only the
// low 8 bits are used. The next character is an ordinary one again: \033[A is ESC [ A, \0101 is the
// byte 8 and "1", \x is the byte 0 and "x", and a backslash alone is the byte 0.
int ExpandEscapeText(const char* text, BYTE* bytes, int capacity);

#endif

// SPDX-License-Identifier: MIT
// Text between UTF-16, in which everything is shown and stored, and the ANSI code page, in which
// everything goes over the wire; and escape text, in which bytes are written as text.
#ifndef QUILL_TEXT_TEXT_H
#define QUILL_TEXT_TEXT_H

#include "windows_ce.h"

// Converts up to `capacity` - 1 units, fewer where the text ends before, and terminates. Returns
// the length in bytes. What the code page does not hold becomes its default character.
int AnsiFromWide(LPCWSTR text, char* bytes, int capacity);

// The other way; returns the length in units.
int WideFromAnsi(const char* bytes, LPWSTR text, int capacity);

// Copies up to `capacity` - 1 units, fewer where the text ends before, and terminates. The device
// has no call for this.
void CopyBounded(LPWSTR to, LPCWSTR from, int capacity);

// ---------------------------------------------------------------- escape text

// Bytes written as text: a backslash and up to three octal digits stand for one byte.

// Writes the bytes that `text` stands for, at most `capacity` of them (the rest is dropped),
// without a terminator, and returns how many. Never more than the text has characters.
//
// A backslash opens an escape, up to three octal digits are its value (its low 8 bits count), and
// whatever comes next ends it and stands for itself: \033[A is ESC [ A, \0101 is the byte 8 and
// "1", \x is the byte 0 and "x", a lone backslash is the byte 0.
int ExpandEscapeText(const char* text, BYTE* bytes, int capacity);

#endif

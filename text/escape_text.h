// Escape text: bytes written as text, in which a backslash and up to three octal digits stand for
// one byte.
#ifndef QUILL_TEXT_ESCAPE_TEXT_H
#define QUILL_TEXT_ESCAPE_TEXT_H

#include "windows_ce.h"

// Writes the bytes that `text` stands for, at most `capacity` of them (the rest is dropped),
// without a terminator, and returns how many. Never more than the text has characters.
//
// A backslash opens an escape, up to three octal digits are its value (its low 8 bits count), and
// whatever comes next ends it and stands for itself: \033[A is ESC [ A, \0101 is the byte 8 and
// "1", \x is the byte 0 and "x", a lone backslash is the byte 0.
int ExpandEscapeText(const char* text, BYTE* bytes, int capacity);

#endif

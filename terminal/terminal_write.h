// The way of the host's bytes, and of the program's own, into the terminal.
#ifndef QUILL_TERMINAL_TERMINAL_WRITE_H
#define QUILL_TERMINAL_TERMINAL_WRITE_H

#include "windows_ce.h"

// Shows `count` bytes: drops a selection, runs the bytes through the interpreter, sends each reply
// to the host as it arises, and asks for a paint of what changed.
void TerminalWrite(const BYTE* bytes, int count);

#endif

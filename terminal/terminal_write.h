// The way of the host's bytes, and of the program's own, into the terminal.
#ifndef QUILL_TERMINAL_TERMINAL_WRITE_H
#define QUILL_TERMINAL_TERMINAL_WRITE_H

#include "windows_ce.h"

// Shows `count` bytes: drops a selection, runs the bytes through the interpreter, sends each reply
// to the host as it arises, and asks for a paint of what changed.
void TerminalWrite(const BYTE* bytes, int count);

// What every write ends with: the view follows the cursor where it is to, what changed is painted,
// and the status line tells the cursor's place unless it is the one before the write
// (CursorPosition).
void ShowWritten(int cursor_before);

#endif

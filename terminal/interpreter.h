// SPDX-License-Identifier: MIT
// The interpreter of the host's byte stream: VT100 and VT220 control functions (ECMA-48, DEC) with
// 7-bit and 8-bit introducers, and a VT52 mode. It works on session.screen, session.parser,
// session.modes and session.split; rows to paint are marked in session.screen.row_changed, and the
// bell is its one call to the platform. No byte is an error: what it does not know it drops.
#ifndef QUILL_TERMINAL_INTERPRETER_H
#define QUILL_TERMINAL_INTERPRETER_H

#include "session/session_state.h"
#include "windows_ce.h"

// Runs one byte through the current state. Returns reply_pending: 1 when a reply waits to be taken.
int TerminalFeedByte(BYTE b);

// The waiting reply, NUL-terminated and good until the next byte is fed, or null if there is none.
const char* TerminalTakeReply();

// The quick way for a whole chunk: feeds bytes from the front, with the effect of feeding them one
// by one, up to the first that can produce a reply, and returns how many it fed. That next byte is
// for TerminalFeedByte, so
//     int fed = TerminalFeedText(bytes, count);
//     if (fed < count && TerminalFeedByte(bytes[fed])) ... take the reply
// is the loop's body. Returns 0 when the very first byte is such a byte, or count is below 1.
int TerminalFeedText(const BYTE* bytes, int count);

// ---------------------------------------------------------------- whole writes

// The way of the host's bytes, and of the program's own, into the terminal.

// Shows `count` bytes: drops a selection, runs the bytes through the interpreter, sends each reply
// to the host as it arises, and asks for a paint of what changed.
void TerminalWrite(const BYTE* bytes, int count);

// What every write ends with: the view follows the cursor where it is to, what changed is painted,
// and the status line tells the cursor's place unless it is the one before the write
// (CursorPosition, terminal/modes.h).
void ShowWritten(int cursor_before);

#endif

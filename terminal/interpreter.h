// SPDX-License-Identifier: MIT
// The interpreter of the host's byte stream: VT100 and VT220 control functions (ECMA-48, DEC) with
// 7-bit and 8-bit introducers, and a VT52 mode. It works on session.screen, session.parser,
// session.modes and session.split, and marks the rows to paint in session.screen.row_changed. The
// bell is its only call to the platform. No byte is an error: the interpreter drops what it does
// not know.
#ifndef QUILL_TERMINAL_INTERPRETER_H
#define QUILL_TERMINAL_INTERPRETER_H

#include "session/session_state.h"
#include "windows_ce.h"

// Runs one byte through the current state. Returns reply_pending: 1 while a reply waits for
// TerminalTakeReply.
int TerminalFeedByte(BYTE b);

// Returns the waiting reply, or null if there is no reply, and clears reply_pending. The text is
// NUL-terminated and valid until the next byte is fed.
const char* TerminalTakeReply();

// The fast path for a whole chunk. It feeds bytes from the front, up to the first byte that can
// produce a reply, and returns how many it fed. The effect is the same as feeding them one by one.
// The caller passes the next byte to TerminalFeedByte, so
//     int fed = TerminalFeedText(bytes, count);
//     if (fed < count && TerminalFeedByte(bytes[fed])) ... take the reply
// is the body of the loop. Returns 0 if the first byte can produce a reply, or if count is below 1.
int TerminalFeedText(const BYTE* bytes, int count);

// ---------------------------------------------------------------- whole writes

// How bytes from the host, and text that the program shows itself, reach the terminal.

// Shows `count` bytes: drops the selection, runs the bytes through the interpreter, sends each
// reply to the host at once, and then calls ShowWritten.
void TerminalWrite(const BYTE* bytes, int count);

// The last step of every write. The view follows the cursor if the setting asks for it, and the
// changed rows are painted. The status line is updated if the cursor has moved: cursor_before is
// CursorPosition (terminal/modes.h) from before the write.
void ShowWritten(int cursor_before);

#endif

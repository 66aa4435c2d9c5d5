// SPDX-License-Identifier: MIT
// Terminal modes, the two resets, and what other folders read of them.
#ifndef QUILL_TERMINAL_MODES_H
#define QUILL_TERMINAL_MODES_H

#include "session/session_state.h"

// At every connect: modes, cursor, margins, interpreter, tab stops and split regions to their
// values for a new session. The screen's contents and the current attribute stay, and so do
// localecho, screen_reverse and the saved cursor's row and column.
void TerminalStart();

// The full reset, asked for by the host. keep_screen 0 blanks the screen and clears the current
// attribute first. Differs from TerminalStart: G1 holds line drawing; newline_mode and the saved
// cursor stay.
void TerminalReset(int keep_screen);

// One stop every eight columns: 9, 17 .. 129.
void SetDefaultTabStops();

// CSI h and CSI l: every parameter of session.parser in turn, ANSI or DEC private.
void SetModes();
void ResetModes();

// The conformance level, ESC SP F and G, ESC <, and DEC private mode 2 (VT52).
void SetConformanceLevel();
void SelectReplies(int eight_bit);
void LeaveVt52();

// Readers.
inline int CursorPosition() {  // column + 256 * row
    return session.screen.cursor_col + 256 * session.screen.cursor_row;
}
DWORD NewlineMode();  // 1: Enter sends CR LF
void SetNewlineMode(DWORD on);
void SetLocalEcho(DWORD on);  // 1: typed characters are shown here
DWORD Autowrap();
void SetAutowrap(DWORD on);
DWORD CursorVisible();
DWORD KeypadApplication();
DWORD ScreenReverse();

#endif

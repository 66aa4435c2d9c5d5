// SPDX-License-Identifier: MIT
// The terminal's modes (autowrap, insert, VT52 and so on), the two resets, and the accessors that
// other folders use.
#ifndef QUILL_TERMINAL_MODES_H
#define QUILL_TERMINAL_MODES_H

#include "session/session_state.h"

// Runs at every connect. Sets modes, cursor, margins, interpreter, tab stops and split regions to
// their values for a new session. It keeps the screen's contents, the current attribute, localecho,
// screen_reverse and the saved cursor's row and column.
void TerminalStart();

// The full reset that the host asks for. With keep_screen 0 it first blanks the screen and clears
// the current attribute. It differs from TerminalStart in that G1 holds line drawing and that
// newline_mode and the saved cursor keep their values.
void TerminalReset(int keep_screen);

// Sets one tab stop every eight columns: 9, 17 .. 129.
void SetDefaultTabStops();

// CSI h and CSI l: every parameter of session.parser in turn, ANSI or DEC private.
void SetModes();
void ResetModes();

void SetConformanceLevel();         // CSI " p
void SelectReplies(int eight_bit);  // ESC SP F (7-bit) and ESC SP G (8-bit)
void LeaveVt52();                   // ESC <

// Accessors for other folders.
inline int CursorPosition() {  // column + 256 * row
    return session.screen.cursor_col + 256 * session.screen.cursor_row;
}
DWORD NewlineMode();  // 1: the Enter key sends CR LF
void SetNewlineMode(DWORD on);
void SetLocalEcho(DWORD on);  // 1: typed characters are shown here
DWORD Autowrap();
void SetAutowrap(DWORD on);
DWORD CursorVisible();
DWORD KeypadApplication();
DWORD ScreenReverse();

#endif

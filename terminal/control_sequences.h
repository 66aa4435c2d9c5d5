// Control sequences: what stands between ESC [ and the final character, and the finals' table.
#ifndef QUILL_TERMINAL_CONTROL_SEQUENCES_H
#define QUILL_TERMINAL_CONTROL_SEQUENCES_H

#include "session/session_state.h"

void BeginControlSequence();       // ESC [
void ControlSequenceByte(BYTE b);  // one byte in state 2

// In the ground state: runs the whole control sequence that the bytes begin with, ESC [ included,
// with the effect of feeding them one by one. Takes only the common kind, at most two numbers of at
// most two digits and a final that reads them and sends no reply; of any other it takes nothing.
// Needs ten bytes to look at. Returns how many bytes it took.
int RunCommonSequence(const BYTE* bytes, int count);

// In state 2: appends the parameter characters at the front as ControlSequenceByte would one by
// one, as far as there is room, and returns how many bytes it took.
int CollectParameters(const BYTE* bytes, int count);

#endif

// The screen divided into an upper and a lower region, each with its own cursor, margins and
// attribute. One of them is active; it is the one whose values stand in session.screen.
#ifndef QUILL_TERMINAL_SPLIT_REGIONS_H
#define QUILL_TERMINAL_SPLIT_REGIONS_H

#include "session/session_state.h"

// The upper region active and as high as the screen, for TerminalStart and TerminalReset.
void ResetSplit();

void DefineSplit();   // CSI n p: rows 1..n and the rest
void SwitchRegion();  // CSI 1 s to the lower region, CSI 0 s to the upper

#endif

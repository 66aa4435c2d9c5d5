// Graphic rendition (CSI m) and character protection (CSI n " q): what they set in the current
// attribute.
#ifndef QUILL_TERMINAL_RENDITION_H
#define QUILL_TERMINAL_RENDITION_H

#include "session/session_state.h"

void SelectRendition();  // every parameter in turn; colours and the rest are ignored
void SelectProtection();

#endif

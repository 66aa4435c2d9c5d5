// Hotspots: a double tap on a menu's number sends that number and Enter.
#ifndef QUILL_UI_VIEW_HOTSPOTS_H
#define QUILL_UI_VIEW_HOTSPOTS_H

#include "windows_ce.h"

// A double tap at a stylus message's position. With the `hotspot` setting and on the blank before a
// number of one or two digits followed by a full stop or a colon, or on the number's first digit,
// its digits go to the host and then what the Enter key sends. Without the setting it beeps.
void TapHotspot(LPARAM position);

#endif

// UTF-16 text of the device.
#ifndef QUILL_TEXT_WIDE_TEXT_H
#define QUILL_TEXT_WIDE_TEXT_H

#include "windows_ce.h"

// Copies up to `capacity` - 1 units, fewer where the text ends before, and terminates. The device
// has no call for this.
void CopyBounded(LPWSTR to, LPCWSTR from, int capacity);

#endif

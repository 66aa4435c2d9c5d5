// SPDX-License-Identifier: MIT
// The platform's beep, counted instead of sounded.
#include "tests/terminal/beep_double.h"

int beep_count = 0;
UINT beep_last_type = 0;

BOOL MessageBeep(UINT type) {
    ++beep_count;
    beep_last_type = type;
    return TRUE;
}

// SPDX-License-Identifier: MIT
// The platform's beep, counted instead of sounded.
#ifndef QUILL_TESTS_TERMINAL_BEEP_DOUBLE_H
#define QUILL_TESTS_TERMINAL_BEEP_DOUBLE_H

#include "windows_ce.h"

extern int beep_count;  // calls since it was last set to 0
extern UINT beep_last_type;

#endif

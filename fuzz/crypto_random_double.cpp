// SPDX-License-Identifier: MIT
// The clock behind SeedRandom, for the targets that reach no platform.
#include "windows_ce.h"

void GetSystemTime(SYSTEMTIME* time) { *time = {}; }

// SPDX-License-Identifier: MIT
// The clock behind SeedRandom, for targets that do not link the platform.
#include "windows_ce.h"

void GetSystemTime(SYSTEMTIME* time) { *time = {}; }

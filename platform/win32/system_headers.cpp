// SPDX-License-Identifier: MIT
// The system's headers, compiled once for every file of the program.
#include "system.h"

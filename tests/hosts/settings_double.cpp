// SPDX-License-Identifier: MIT
// The key table is read here for its defaults alone, so no settings and no keyboard are behind it.
#include "settings/settings.h"

LPCWSTR ReadString(LPCWSTR, LPCWSTR fallback) { return fallback; }
void WriteString(LPCWSTR, LPCWSTR) {}
void DeleteNumberedValues(LPCWSTR, int) {}
SHORT GetKeyState(int) { return 0; }

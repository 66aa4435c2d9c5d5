// SPDX-License-Identifier: MIT
// What a cell of line drawing shows, found by drawing it.
#ifndef QUILL_TESTS_HOSTS_GLYPHS_H
#define QUILL_TESTS_HOSTS_GLYPHS_H

#include <string>

#include "windows_ce.h"

// `name` is the VT100's character of the glyph, as in acsc. False for a glyph that is not drawn.
bool ShowsGlyph(DWORD cell, char name);

// The names of those that are drawn.
std::string DrawnGlyphs();

#endif

// SPDX-License-Identifier: MIT
// The key table: which bytes a special key sends. Each row's sequence is escape text
// (text/text.h), kept in the registry as "key%d" with the row's number, and turned into bytes at
// each key press.
#ifndef QUILL_SETTINGS_KEY_MAP_H
#define QUILL_SETTINGS_KEY_MAP_H

#include "windows_ce.h"

inline constexpr int kKeyRows = 66;
inline constexpr int kLongestKeyText = 255;  // characters of a row's sequence

struct KeyMapEntry {
    const char* name;      // as the Keyboard page shows it; null ends the table
    char defaultText[12];  // escape text
    char* text;            // the current escape text, malloc'ed by SetKeyText; null: none, as empty
};

extern KeyMapEntry key_map[kKeyRows + 1];

// The bytes of the row of a virtual key, with the modifiers that are down, NUL-terminated, so that
// a 0 byte among them ends them. Null for a key that is not mapped. Good until the next call of
// this or of UnescapeKeyText.
//
// Shift moves function keys on by 20 rows (so Shift+F13 to F20 are rows 32 to 39) and Tab to
// SHIFTTAB; digits count only with Ctrl. A modifier counts as down if its left or right key has any
// state at all, toggled included.
const char* TranslateVirtualKey(int virtual_key);

// Whether the table takes the key, with the modifiers that are down: its character then never
// reaches the host, whatever the row holds. BACKSPACE with its default sequence is left to its
// character.
bool TableTakesKey(int virtual_key);

// The bytes of an escape text, at most 255 and a NUL, in the same buffer. Null is the empty text.
const char* UnescapeKeyText(const char* text);

// Gives a row a sequence, in the ANSI code page. Returns 0, and changes nothing, for a text of more
// than kLongestKeyText characters or without memory; else 1.
int SetKeyText(KeyMapEntry* row, LPCWSTR text);

// Reads all rows with their defaults. A text that is too long ends the loading: its row and all
// later ones are left without a sequence.
void LoadKeyMap();
// Writes all rows, of each at most 80 characters.
void SaveKeyMap();
void DeleteKeyMap();

#endif

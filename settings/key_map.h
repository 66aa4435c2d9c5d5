// SPDX-License-Identifier: MIT
// The key table: which bytes a special key sends. Each row has a sequence, written as escape text
// (text/text.h). The registry value "key%d", with the row's number, stores it. It is converted to
// bytes at each key press.
#ifndef QUILL_SETTINGS_KEY_MAP_H
#define QUILL_SETTINGS_KEY_MAP_H

#include "windows_ce.h"

inline constexpr int kKeyRows = 66;
inline constexpr int kLongestKeyText = 255;  // characters of a row's sequence

struct KeyMapEntry {
    const char* name;      // as the Keyboard page shows it; null ends the table
    char defaultText[12];  // escape text
    char* text;            // current escape text, from malloc; null means an empty text
};

extern KeyMapEntry key_map[kKeyRows + 1];

// Returns the bytes that a virtual key sends with the modifiers that are down, or null if the key
// has no row. The bytes are NUL-terminated, so a 0 byte among them ends them. They are valid until
// the next call of this or of UnescapeKeyText.
//
// Shift selects the row 20 later for function keys (so Shift+F13 to F20 use rows 32 to 39) and
// SHIFTTAB for Tab. Digits have rows only with Ctrl. A modifier counts as down if the state of its
// left or right key is not 0; this includes the toggled state.
const char* TranslateVirtualKey(int virtual_key);

// True if the table handles the key with the modifiers that are down. The key's character is then
// not sent to the host, even if the row's sequence is empty. BACKSPACE with its default sequence is
// the exception: it sends its character.
bool TableTakesKey(int virtual_key);

// Converts an escape text to at most 255 bytes and a NUL, in the buffer of TranslateVirtualKey.
// Null means an empty text.
const char* UnescapeKeyText(const char* text);

// Sets a row's sequence, converted to the ANSI code page. Returns 1. If the text has more than
// kLongestKeyText characters or there is no memory, it changes nothing and returns 0.
int SetKeyText(KeyMapEntry* row, LPCWSTR text);

// Reads all rows; a missing value gets the row's default. If a text cannot be set, loading stops:
// that row and all later rows have no sequence.
void LoadKeyMap();
// Writes all rows, at most 80 characters of each.
void SaveKeyMap();
void DeleteKeyMap();

#endif

// The keyboard's way to the host: the key table for special keys, one byte for a typed character.
#ifndef QUILL_UI_VIEW_KEYS_H
#define QUILL_UI_VIEW_KEYS_H

#include "windows_ce.h"

// A key press: sends the key table's sequence while a session is up. Remembers whether the table
// takes the key, so that the character of the same press does not reach the host.
void OnKeyDown(int virtual_key);

// A command or a button that stands for a key.
void SendVirtualKey(int virtual_key);

// A typed character (WM_CHAR), in the ANSI code page; what it lacks goes as a question mark.
void OnTypedCharacter(WCHAR character);

#endif

// SPDX-License-Identifier: MIT
// The settings: session.settings in the registry, one value a field; their place there, and the
// configuration file with which an administrator sets them.
#ifndef QUILL_SETTINGS_SETTINGS_H
#define QUILL_SETTINGS_SETTINGS_H

#include "windows_ce.h"

// All fields, then the toolbars, then the key table.
void LoadSettings();
void SaveSettings();

// The settings are not saved any more: not at the program's end and not by a dialog.
void LeaveSettingsUnsaved();

// The dial-up entry to dial becomes `name`, and the settings are to be saved.
void SetDialEntry(LPCWSTR name);

// Deletes every value, so that the next LoadSettings finds the defaults. The record keeps what it
// holds. Returns the error of opening the key (nothing is deleted then), or ERROR_SUCCESS.
LONG ResetSettings();

// ---------------------------------------------------------------- the store

// The key "Software\QUILLWARE\TELNET" of HKEY_LOCAL_MACHINE.
// Numbers are REG_DWORD, strings REG_SZ. Every read and every write opens and closes the key on its
// own, and every write is flushed; a read that fails yields the default, a write that fails goes
// unnoticed.

// The first four bytes of a value of any type; bytes that it does not have count as 0. A value of
// more bytes is unreadable.
DWORD ReadNumber(LPCWSTR name, DWORD fallback);

// A value of any type as text of at most kSettingUnits - 1 units, cut there if it has no
// terminator. A value of more than 80 bytes is unreadable. The result is good until the next call,
// or is `fallback` itself.
LPCWSTR ReadString(LPCWSTR name, LPCWSTR fallback);

void WriteNumber(LPCWSTR name, DWORD value);
void WriteString(LPCWSTR name, LPCWSTR text);

// Opens the settings key, which must exist. Returns the error of RegOpenKeyExW.
LONG OpenSettings(DWORD access, HKEY* key);

// Deletes the values that `format` (with one %d) names, from 0 to `count` - 1.
void DeleteNumberedValues(LPCWSTR format, int count);

// ---------------------------------------------------------------- the configuration file

// If "\mconfig.cfg" is there, tells so in a message box over `owner`, writes its entries under the
// settings key and deletes it. To be called before LoadSettings.
//
// The file is text in the ANSI code page, taken in lines of at most 79 characters; a longer line
// counts as several. An entry is NAME = VALUE, with blanks around the equals sign:
//     # a comment
//     port = 0x17            a number: decimal, 0x hexadecimal, or octal after a 0
//     host = "my host"       a string: between the line's first two double quotes, not empty
// Numbers hold 32 bits, signed or not, and stop at these bounds; what is no number is 0. Any name
// is taken. All other lines are passed over without a word.
void ImportConfigFile(HWND owner);

#endif

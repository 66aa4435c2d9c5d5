// SPDX-License-Identifier: MIT
// The settings: loading session.settings from the registry and saving it there, one value for each
// field. Also the access to the registry, and the configuration file with which an administrator
// presets values.
#ifndef QUILL_SETTINGS_SETTINGS_H
#define QUILL_SETTINGS_SETTINGS_H

#include "windows_ce.h"

// These load or save all fields, then the toolbars, then the key table.
void LoadSettings();
void SaveSettings();

// From now on the settings are not saved: not by a dialog and not when the program ends.
void LeaveSettingsUnsaved();

// Makes `name` the dial-up entry to dial. From now on the settings are saved again.
void SetDialEntry(LPCWSTR name);

// Deletes every value from the registry, so that the next LoadSettings uses the defaults.
// session.settings does not change. Returns ERROR_SUCCESS, or the error of opening the key; nothing
// is deleted then.
LONG ResetSettings();

// ---------------------------------------------------------------- the store

// The key "Software\QUILLWARE\TELNET" of HKEY_LOCAL_MACHINE.
// Numbers are REG_DWORD, strings REG_SZ. Each read and each write opens and closes the key, and
// each write is flushed. A read that fails returns the default. A write that fails is ignored.

// Reads up to four bytes of a value of any type; missing bytes count as 0. A value with more bytes
// cannot be read, so the result is `fallback`.
DWORD ReadNumber(LPCWSTR name, DWORD fallback);

// Reads a value of any type as text. The text has at most kSettingUnits - 1 units and is cut there
// if it has no terminator. A value of more than 80 bytes cannot be read, so the result is
// `fallback`. Any other result is valid until the next call.
LPCWSTR ReadString(LPCWSTR name, LPCWSTR fallback);

void WriteNumber(LPCWSTR name, DWORD value);
void WriteString(LPCWSTR name, LPCWSTR text);

// Opens the settings key, which must exist. Returns the error of RegOpenKeyExW.
LONG OpenSettings(DWORD access, HKEY* key);

// Deletes the values whose names `format` (with one %d) makes of the numbers 0 to `count` - 1.
void DeleteNumberedValues(LPCWSTR format, int count);

// ---------------------------------------------------------------- the configuration file

// If the file "\mconfig.cfg" exists, shows a message box over `owner`, writes the file's entries to
// the settings key and deletes the file. Call this before LoadSettings.
//
// The file is text in the ANSI code page. It is read in lines of at most 79 characters; a longer
// line counts as several lines. An entry is NAME = VALUE, with a blank before the equals sign:
//     # a comment
//     port = 0x17            a number: decimal, 0x hexadecimal, or octal after a 0
//     host = "my host"       a string: between the line's first two double quotes, not empty
// Numbers have 32 bits, signed or unsigned; a number outside that range becomes its nearest bound.
// A value that is not a number counts as 0. Any name is accepted. All other lines are ignored.
void ImportConfigFile(HWND owner);

#endif

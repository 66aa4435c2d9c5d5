// The settings' place in the registry: the key "Software\QUILLWARE\TELNET" of HKEY_LOCAL_MACHINE.
// Numbers are REG_DWORD, strings REG_SZ. Every read and every write opens and closes the key on its
// own, and every write is flushed; a read that fails yields the default, a write that fails goes
// unnoticed.
#ifndef QUILL_SETTINGS_STORE_H
#define QUILL_SETTINGS_STORE_H

#include "windows_ce.h"

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

#endif

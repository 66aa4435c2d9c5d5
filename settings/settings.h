// The settings: session.settings in the registry (store.h), one value a field.
#ifndef QUILL_SETTINGS_SETTINGS_H
#define QUILL_SETTINGS_SETTINGS_H

#include "settings/store.h"
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

#endif

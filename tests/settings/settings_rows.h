// SPDX-License-Identifier: MIT
// All expected settings, written independently of the product: value name, default, field.
#ifndef QUILL_TESTS_SETTINGS_SETTINGS_ROWS_H
#define QUILL_TESTS_SETTINGS_SETTINGS_ROWS_H

#include "windows_ce.h"

struct NumberSetting {
    const char* name;
    DWORD fallback;
    DWORD* field;
};

struct TextSetting {
    const char* name;
    const char* fallback;
    LPWSTR field;
};

extern const NumberSetting number_settings[24];
extern const TextSetting text_settings[15];

#endif

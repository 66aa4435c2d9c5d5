// SPDX-License-Identifier: MIT
// Doubles of the two window calls that these tests need: message boxes are recorded, and the test
// sets the state of keys.
#ifndef QUILL_TESTS_SETTINGS_WINDOW_DOUBLES_H
#define QUILL_TESTS_SETTINGS_WINDOW_DOUBLES_H

#include <map>
#include <string>
#include <vector>

#include "windows_ce.h"

struct ShownMessage {
    HWND owner;
    std::u16string text;
    std::u16string caption;
    UINT type;
    bool file_present;  // the configuration file still existed
};

extern std::vector<ShownMessage> shown_messages;
extern std::map<int, SHORT> key_states;  // by virtual key; 0 if missing

inline constexpr SHORT kKeyDown = static_cast<SHORT>(0x8000);
inline constexpr SHORT kKeyToggled = 1;

void ForgetWindowCalls();

#endif

// SPDX-License-Identifier: MIT
// The two calls of the windows that these tests need: message boxes are written down, and keys are
// in the state that a test gives them.
#ifndef QUILL_TESTS_CONFIG_WINDOW_DOUBLES_H
#define QUILL_TESTS_CONFIG_WINDOW_DOUBLES_H

#include <map>
#include <string>
#include <vector>

#include "windows_ce.h"

struct ShownMessage {
    HWND owner;
    std::u16string text;
    std::u16string caption;
    UINT type;
    bool file_present;  // the configuration file still was there
};

extern std::vector<ShownMessage> shown_messages;
extern std::map<int, SHORT> key_states;  // by virtual key; 0 where missing

inline constexpr SHORT kKeyDown = static_cast<SHORT>(0x8000);
inline constexpr SHORT kKeyToggled = 1;

void ForgetWindowCalls();

#endif

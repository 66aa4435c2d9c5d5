// SPDX-License-Identifier: MIT
// A double of the command bar that records its buttons, bitmaps and tips.
#ifndef QUILL_TESTS_SETTINGS_COMMAND_BAR_DOUBLE_H
#define QUILL_TESTS_SETTINGS_COMMAND_BAR_DOUBLE_H

#include <string>
#include <vector>

#include "windows_ce.h"

struct BarButton {
    int bitmap;  // the number of the resource
    int command;
    std::string tip;
};

struct CommandBarDouble {
    std::vector<BarButton> buttons;
    std::vector<int> bitmaps;  // in the order in which they were added
    LPWSTR* tips = nullptr;
    size_t room = 1000;  // the count of buttons that it accepts
};

extern CommandBarDouble command_bar;
extern const HWND kCommandBar;  // its handle

#endif

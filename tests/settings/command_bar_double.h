// SPDX-License-Identifier: MIT
// A command bar that writes down what it is given.
#ifndef QUILL_TESTS_CONFIG_COMMAND_BAR_DOUBLE_H
#define QUILL_TESTS_CONFIG_COMMAND_BAR_DOUBLE_H

#include <string>
#include <vector>

#include "windows_ce.h"

struct BarButton {
    int bitmap;  // the resource
    int command;
    std::string tip;
};

struct CommandBarDouble {
    std::vector<BarButton> buttons;
    std::vector<int> bitmaps;  // in the order of their adding
    LPWSTR* tips = nullptr;
    size_t room = 1000;  // buttons that it takes
};

extern CommandBarDouble command_bar;
extern const HWND kCommandBar;  // its handle

#endif

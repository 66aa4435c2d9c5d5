// SPDX-License-Identifier: MIT
// Records the calls of the command bar.
#include "tests/settings/command_bar_double.h"

#include <gtest/gtest.h>

CommandBarDouble command_bar;
const HWND kCommandBar = reinterpret_cast<HWND>(static_cast<UINT_PTR>(0x77));

int CommandBar_AddBitmap(HWND bar, HINSTANCE, int id, int count, int width, int height) {
    EXPECT_EQ(kCommandBar, bar);
    EXPECT_EQ(1, count);
    EXPECT_EQ(16, width);
    EXPECT_EQ(16, height);
    command_bar.bitmaps.push_back(id);
    return static_cast<int>(command_bar.bitmaps.size()) - 1;
}

BOOL CommandBar_InsertButton(HWND bar, int index, const TBBUTTON* button) {
    EXPECT_EQ(kCommandBar, bar);
    EXPECT_EQ(static_cast<int>(command_bar.buttons.size()), index);
    EXPECT_EQ(TBSTATE_ENABLED, button->fsState);
    EXPECT_EQ(TBSTYLE_BUTTON, button->fsStyle);
    if (command_bar.buttons.size() >= command_bar.room) return FALSE;
    command_bar.buttons.push_back(
        {command_bar.bitmaps.at(static_cast<size_t>(button->iBitmap)), button->idCommand, ""});
    return TRUE;
}

BOOL CommandBar_AddToolTips(HWND bar, UINT count, LPWSTR* tips) {
    EXPECT_EQ(kCommandBar, bar);
    EXPECT_EQ(command_bar.buttons.size(), count);
    for (UINT i = 0; i < count; i++)
        for (LPCWSTR unit = tips[i]; *unit; unit++)
            command_bar.buttons[i].tip += static_cast<char>(*unit);
    command_bar.tips = tips;
    return TRUE;
}

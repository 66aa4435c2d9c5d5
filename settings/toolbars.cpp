// SPDX-License-Identifier: MIT
// The table of the toolbar buttons, and loading and saving which bars show them.
#include "settings/toolbars.h"

#include "session/session_state.h"
#include "settings/settings.h"

// NOLINTBEGIN(readability-magic-numbers)
// clang-format off
ToolbarButton toolbar_buttons[kToolbarRows + 1] = {
    // name                    wide       narrow     bitmap action
    {"swap toolbar", 0, 0, 0, {1, 1, 1}, {1, 1, 1}, 1545, kActionSwapToolbar},
    {"connect",      0, 0, 0, {1, 0, 0}, {1, 0, 0}, 1540, kActionConnect},
    {"cut",          0, 0, 0, {1, 0, 0}, {0, 1, 0}, 1541, kActionCut},
    {"paste",        0, 0, 0, {1, 0, 0}, {0, 1, 0}, 1542, kActionPaste},
    {"larger font",  0, 0, 0, {1, 0, 0}, {1, 0, 0}, 1543, kActionLargerFont},
    {"smaller font", 0, 0, 0, {1, 0, 0}, {1, 0, 0}, 1544, kActionSmallerFont},
    {"ENTER",        0, 0, 0, {1, 1, 1}, {1, 1, 1}, 1550, VK_RETURN},
    {"P1",           0, 0, 0, {1, 1, 0}, {1, 0, 0}, 1558, VK_F1},
    {"P2",           0, 0, 0, {1, 1, 0}, {1, 0, 0}, 1559, VK_F1 + 1},
    {"P3",           0, 0, 0, {1, 1, 0}, {1, 0, 0}, 1560, VK_F1 + 2},
    {"P4",           0, 0, 0, {1, 1, 0}, {1, 0, 0}, 1561, VK_F1 + 3},
    {"P5",           0, 0, 0, {1, 1, 0}, {1, 0, 0}, 1562, VK_F1 + 4},
    {"P6",           0, 0, 0, {1, 1, 0}, {0, 0, 0}, 1563, VK_F1 + 5},
    {"P7",           0, 0, 0, {1, 1, 0}, {0, 1, 0}, 1564, VK_F1 + 6},
    {"P8",           0, 0, 0, {1, 1, 0}, {0, 1, 0}, 1565, VK_F1 + 7},
    {"P9",           0, 0, 0, {1, 1, 0}, {0, 1, 0}, 1566, VK_F1 + 8},
    {"P10",          0, 0, 0, {1, 1, 0}, {0, 1, 0}, 1567, VK_F1 + 9},
    {"P11",          0, 0, 0, {0, 1, 1}, {0, 1, 0}, 1568, VK_F1 + 10},
    {"P12",          0, 0, 0, {1, 1, 1}, {0, 1, 0}, 1569, VK_F1 + 11},
    {"P13",          0, 0, 0, {0, 1, 1}, {0, 0, 1}, 1570, VK_F1 + 12},
    {"P14",          0, 0, 0, {0, 1, 1}, {0, 0, 1}, 1571, VK_F1 + 13},
    {"P15",          0, 0, 0, {0, 1, 1}, {0, 0, 1}, 1572, VK_F1 + 14},
    {"P16",          0, 0, 0, {0, 1, 1}, {0, 0, 1}, 1573, VK_F1 + 15},
    {"P17",          0, 0, 0, {0, 1, 1}, {0, 0, 1}, 1574, VK_F1 + 16},
    {"P18",          0, 0, 0, {0, 1, 1}, {0, 0, 1}, 1575, VK_F1 + 17},
    {"P19",          0, 0, 0, {0, 1, 1}, {0, 0, 1}, 1576, VK_F1 + 18},
    {"P20",          0, 0, 0, {1, 1, 1}, {0, 0, 1}, 1577, VK_F20},
    {nullptr,        0, 0, 0, {0, 0, 0}, {0, 0, 0}, 0,    0},
};
// clang-format on
// NOLINTEND(readability-magic-numbers)

constexpr DWORD kBit1 = 4;
constexpr DWORD kBit2 = 2;
constexpr DWORD kBit3 = 1;
constexpr int kNameSize = 16;
constexpr LPCWSTR kValueFormat = TEXT("tbar%d");

static DWORD Compose(DWORD bar1, DWORD bar2, DWORD bar3) {
    return (bar1 ? kBit1 : 0) | (bar2 ? kBit2 : 0) | (bar3 ? kBit3 : 0);
}

static DWORD DefaultValue(const ToolbarButton& button) {
    const BYTE* bars = session.narrow_screen ? button.narrowDefault : button.wideDefault;
    return Compose(bars[0], bars[1], bars[2]);
}

DWORD OnBar(const ToolbarButton& button, int barNumber) {
    const DWORD bars[kToolbars] = {button.onBar1, button.onBar2, button.onBar3};
    return barNumber >= 1 && barNumber <= kToolbars ? bars[barNumber - 1] : 0;
}

int ToolbarAction(int position, int barNumber) {
    if (position < 0) return 0;
    for (const ToolbarButton* button = toolbar_buttons; button->name; ++button)
        if (OnBar(*button, barNumber) && position-- == 0) return button->action;
    return 0;
}

void LoadToolbars() {
    for (int i = 0; toolbar_buttons[i].name; ++i) {
        ToolbarButton& button = toolbar_buttons[i];
        WCHAR name[kNameSize];
        wsprintfW(name, kValueFormat, i);
        const DWORD value = ReadNumber(name, DefaultValue(button));
        button.onBar1 = value & kBit1;
        button.onBar2 = value & kBit2;
        button.onBar3 = value & kBit3;
    }
}

void SaveToolbars() {
    for (int i = 0; toolbar_buttons[i].name; ++i) {
        const ToolbarButton& button = toolbar_buttons[i];
        WCHAR name[kNameSize];
        wsprintfW(name, kValueFormat, i);
        WriteNumber(name, Compose(button.onBar1, button.onBar2, button.onBar3));
    }
}

void DeleteToolbars() { DeleteNumberedValues(kValueFormat, kToolbarRows); }

// SPDX-License-Identifier: MIT
// The three toolbars: one table of 27 actions that says which bars show each action. The registry
// value "tbar%d", with the row's number, stores the bars.
#ifndef QUILL_SETTINGS_TOOLBARS_H
#define QUILL_SETTINGS_TOOLBARS_H

#include "windows_ce.h"

inline constexpr int kToolbarRows = 27;
inline constexpr int kToolbars = 3;

// The actions of the program. Every other code is a virtual key, which the key table sends.
inline constexpr int kActionConnect = 29;
inline constexpr int kActionCut = 30;
inline constexpr int kActionPaste = 31;
inline constexpr int kActionLargerFont = 32;
inline constexpr int kActionSmallerFont = 33;
inline constexpr int kActionSwapToolbar = 34;

struct ToolbarButton {
    const char* name;  // text in the list and on the button; null ends the table
    DWORD onBar1;      // non-zero: on that bar
    DWORD onBar2;
    DWORD onBar3;
    BYTE wideDefault[kToolbars];    // 1: by default on bar 1, 2, 3; for 350 pixels or wider
    BYTE narrowDefault[kToolbars];  // the same for narrower screens (session.narrow_screen)
    WORD bitmapId;
    int action;
};

extern ToolbarButton toolbar_buttons[kToolbarRows + 1];

DWORD OnBar(const ToolbarButton& button, int barNumber);  // non-zero: on bar 1, 2 or 3

// Returns the action of the button at `position`, counted from 0, on bar 1, 2 or 3. Returns 0 if
// there is no such button.
int ToolbarAction(int position, int barNumber);

// The bits of a value: 4 on bar 1, 2 on bar 2, 1 on bar 3; other bits are not saved.
void LoadToolbars();
void SaveToolbars();
void DeleteToolbars();

#endif

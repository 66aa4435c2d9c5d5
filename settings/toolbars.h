// SPDX-License-Identifier: MIT
// The three toolbars: one table of 27 actions, and for each the bars that show it, kept in the
// registry as "tbar%d" with the row's number.
#ifndef QUILL_SETTINGS_TOOLBARS_H
#define QUILL_SETTINGS_TOOLBARS_H

#include "windows_ce.h"

inline constexpr int kToolbarRows = 27;
inline constexpr int kToolbars = 3;

// The toolbar's own actions; every other code is a virtual key, to be sent by the key table.
inline constexpr int kActionConnect = 29;
inline constexpr int kActionCut = 30;
inline constexpr int kActionPaste = 31;
inline constexpr int kActionLargerFont = 32;
inline constexpr int kActionSmallerFont = 33;
inline constexpr int kActionSwapToolbar = 34;

struct ToolbarButton {
    const char* name;  // list text and label; null ends the table
    DWORD onBar1;      // non-zero: on that bar
    DWORD onBar2;
    DWORD onBar3;
    BYTE wideDefault[kToolbars];    // 1: on bar 1, 2, 3 at first, from 350 pixels of width on
    BYTE narrowDefault[kToolbars];  // the same on narrower screens (session.narrow_screen)
    WORD bitmapId;
    int action;
};

extern ToolbarButton toolbar_buttons[kToolbarRows + 1];

DWORD OnBar(const ToolbarButton& button, int barNumber);  // non-zero: on bar 1, 2 or 3

// The action of the button at `position` (from 0) among those on bar 1, 2 or 3; 0 if there is none.
int ToolbarAction(int position, int barNumber);

// The values' bits: 4 on bar 1, 2 on bar 2, 1 on bar 3; others are not kept.
void LoadToolbars();
void SaveToolbars();
void DeleteToolbars();

#endif

// SPDX-License-Identifier: MIT
// What the device's shell gives to a program: the foot of the screen, the input panel, the bars
// that a program puts on its window, dialling.
#ifndef QUILL_PLATFORM_QT_SHELL_SHELL_H
#define QUILL_PLATFORM_QT_SHELL_SHELL_H

#include "platform/qt/window/window.h"

void FurnishShell();  // puts the menu strip and the input panel on the screen that was opened
void RegisterMenuBar();

// Shows or hides the input panel, and tells the program's window by WM_SETTINGCHANGE.
void ShowInputPanel(bool show);
bool InputPanelShown();
// A window under a dialog hears no mouse. While the panel is shown it therefore stands in a window
// of its own before the dialog on top, unless that one lies over it; null: on the screen again.
void LendInputPanel(QWidget* dialog);
// In the middle of the screen; what fits above the input panel stands there.
QRect CenteredPlace(QSize size);

// command_bar.cpp
inline constexpr int kCommandBarHeight = 26;
void RegisterCommandBar();
void ForgetBarPictures();

// status_window.cpp
int StatusHeight();  // pixels
void RegisterStatusWindow();

// dial_up.cpp
void EndDialUps();  // hangs up whatever the program has left

#endif

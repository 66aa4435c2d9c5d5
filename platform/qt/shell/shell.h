// SPDX-License-Identifier: MIT
// The device's shell: the foot of the screen, the input panel, the bars that a program puts on its
// window, and dialling.
#ifndef QUILL_PLATFORM_QT_SHELL_SHELL_H
#define QUILL_PLATFORM_QT_SHELL_SHELL_H

#include "platform/qt/window/window.h"

void FurnishShell();  // puts the menu strip and the input panel on the open screen
void RegisterMenuBar();

// Shows or hides the input panel, and sends WM_SETTINGCHANGE to the program's window.
void ShowInputPanel(bool show);
bool InputPanelShown();
// While a dialog is open, the windows below it get no mouse events. So if the panel is shown, this
// call moves it to a separate window in front of `dialog`, unless the dialog covers it; null moves
// it back to the screen.
void LendInputPanel(QWidget* dialog);
// The screen, or the area above a shown input panel if a dialog can be used there.
QSize RoomForDialogs();
QRect CenteredPlace(QSize size);  // the middle of that room

// command_bar.cpp
inline constexpr int kCommandBarHeight = 26;
void RegisterCommandBar();
void ForgetBarPictures();

// status_window.cpp
int StatusHeight();  // pixels
void RegisterStatusWindow();

// dial_up.cpp
void EndDialUps();  // hangs up all dials that the program has left

#endif

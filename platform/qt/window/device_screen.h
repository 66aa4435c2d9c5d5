// SPDX-License-Identifier: MIT
// The desktop window that is the device's screen: the program's window on top, below it the shell's
// strip, and the input panel over the window's foot while it is shown.
#ifndef QUILL_PLATFORM_QT_WINDOW_DEVICE_SCREEN_H
#define QUILL_PLATFORM_QT_WINDOW_DEVICE_SCREEN_H

#include "platform/qt/window/window.h"

inline constexpr int kMenuBarHeight = 26;
inline constexpr int kInputPanelHeight = 80;  // pixels, five rows of keys

// What the shell puts on the screen; the widgets are the screen's from then on.
struct ScreenFoot {
    QWidget* strip = nullptr;
    QWidget* panel = nullptr;
    bool (*open_menu)() = nullptr;  // of the strip, by the keyboard; false: there is none
};

void OpenDeviceScreen(QSize size);
void FurnishScreen(const ScreenFoot& foot);
void ArrangeScreen();  // puts the foot into its place again
void CloseDeviceScreen();

QWidget* DeviceScreen();  // null while it is not open
void SetDeviceTitle(const QString& title);
bool OpenScreenMenu();
QRect MainWindowArea();   // the room of a top-level window: the screen above the menu bar
QRect InputPanelPlace();  // on the device's screen, shown or not

// Dialogs that are open over the screen, the one on top last.
void PutOverScreen(HWND dialog);
void TakeFromScreen(HWND dialog);
Window* TopMostDialog();   // null: none is open
QWidget* TopMostWidget();  // where a box over everything belongs: that dialog, else the screen
void ReturnFocus();        // to the program's window, after a box or dialog over it has closed

#endif

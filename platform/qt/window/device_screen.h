// SPDX-License-Identifier: MIT
// The desktop window that shows the device's screen: the program's window at the top, the shell's
// strip below it, and the input panel, which covers the foot of the program's window while it is
// shown.
#ifndef QUILL_PLATFORM_QT_WINDOW_DEVICE_SCREEN_H
#define QUILL_PLATFORM_QT_WINDOW_DEVICE_SCREEN_H

#include "platform/qt/window/window.h"

inline constexpr int kMenuBarHeight = 26;
inline constexpr int kInputPanelHeight = 80;  // pixels, five rows of keys

// What the shell puts at the foot of the screen. From then on the screen owns the widgets.
struct ScreenFoot {
    QWidget* strip = nullptr;
    QWidget* panel = nullptr;
    bool (*open_menu)() = nullptr;  // opens the menu by the keyboard; false: there is no menu
};

void OpenDeviceScreen(QSize size);
void FurnishScreen(const ScreenFoot& foot);
void ArrangeScreen();  // moves the foot to its place
void CloseDeviceScreen();

QWidget* DeviceScreen();  // null while it is not open
void SetDeviceTitle(const QString& title);
bool OpenScreenMenu();
QRect MainWindowArea();   // room of a top-level window: the screen above the menu bar
QRect InputPanelPlace();  // on the device's screen, shown or not

// Dialogs that are open over the screen; the last one is on top.
void PutOverScreen(HWND dialog);
void TakeFromScreen(HWND dialog);
Window* TopMostDialog();    // null: no dialog is open
QWidget* TopMostWidget();   // that dialog, else the screen
QWidget* ParentOfBox();     // the topmost dialog that has appeared, else the screen
bool DesktopTellsPlaces();  // false on Wayland, whose compositor alone places windows
// True if an area of the window that is painted anew can end between two units of the compositor.
bool EndsBetweenUnits(const QWidget* top);
// Repaints the area at once, or the whole window where the area can end so.
void RepaintPart(QWidget* widget, const QRegion& area);
void ReturnFocus();  // to the dialog that is still open, or else to the program's window

#endif

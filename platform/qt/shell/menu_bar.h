// SPDX-License-Identifier: MIT
// The shell's strip at the bottom of the device: the program's menu bar and the input panel's
// button.
#ifndef QUILL_PLATFORM_QT_SHELL_MENU_BAR_H
#define QUILL_PLATFORM_QT_SHELL_MENU_BAR_H

#include <QMenuBar>
#include <QToolButton>

#include "platform/qt/window/window.h"

struct MenuItem;

class MenuStrip : public QWidget {
    Q_OBJECT
  public:
    explicit MenuStrip(QWidget* screen);

    // Takes the place of the menus before; the commands go to `window`.
    void ShowMenus(HWND bar, HWND window, const std::vector<MenuItem>& menus);
    void RemoveMenus(HWND bar);  // does nothing when another bar's menus are shown
    QMenuBar* bar() const { return bar_; }
    QToolButton* panel_button() const { return panel_button_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QMenuBar* bar_;
    QToolButton* panel_button_;
    HWND owner_ = nullptr;  // the menu bar window whose menus are shown
};

MenuStrip* ShellMenuStrip();  // of the device's screen; null while that is not open
bool ActivateMenuBar();       // opens the first menu, as F10 does; false: there is none

#endif

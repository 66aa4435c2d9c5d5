// SPDX-License-Identifier: MIT
// The shell's strip at the bottom of the device: it holds the program's menu bar and the button of
// the input panel.
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

    // Replaces the menus that are shown. Their commands go to `window`.
    void ShowMenus(HWND bar, HWND window, const std::vector<MenuItem>& menus);
    void RemoveMenus(HWND bar);  // does nothing if another bar's menus are shown
    QMenuBar* bar() const { return bar_; }
    QToolButton* panel_button() const { return panel_button_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QMenuBar* bar_;
    QToolButton* panel_button_;
    HWND owner_ = nullptr;  // the menu bar window whose menus are shown
};

MenuStrip* ShellMenuStrip();  // null while the device's screen is not open
bool ActivateMenuBar();       // opens the first menu, as F10 does; false: there is no menu

#endif

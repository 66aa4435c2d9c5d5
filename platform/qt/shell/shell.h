// SPDX-License-Identifier: MIT
// The device's shell: the foot of the screen, the input panel, the bars that a program puts on its
// window, and dialling.
#ifndef QUILL_PLATFORM_QT_SHELL_SHELL_H
#define QUILL_PLATFORM_QT_SHELL_SHELL_H

#include <functional>
#include <QAbstractButton>
#include <QMenuBar>
#include <QToolButton>
#include <QWidget>
#include <vector>

#include "platform/qt/window/window.h"

class QLineEdit;

void FurnishShell();  // puts the menu strip and the input panel on the open screen
void RegisterMenuBar();

// Shows or hides the input panel, and sends WM_SETTINGCHANGE to the program's window.
void ShowInputPanel(bool show);
bool InputPanelShown();
// While a dialog is open, the windows below it get no mouse events. So if the panel is shown, this
// call moves it to a separate window in front of `dialog`, unless the dialog covers it. On Wayland,
// where a program cannot place a window, the panel goes to the foot of the dialog, which grows.
// Null moves it back to the screen, or hides it if a tap into a field has shown it.
void LendInputPanel(QWidget* dialog);
void TakeInputPanelFrom(const QWidget* dialog);  // before a dialog is deleted
// The size of a dialog whose own part has that size: with the foot, if the panel has been there.
QSize WithFoot(const QWidget& dialog, QSize size);
// From now on a tap into the field by a finger or a stylus shows the panel. `make_room` then fits
// the open dialogs into RoomForDialogs.
void OfferInputPanel(QLineEdit* field, const std::function<void()>& make_room);
// The screen, or the area above a shown input panel if a dialog can be used there.
QSize RoomForDialogs();
QRect CenteredPlace(QSize size);  // the middle of that room

// command_bar.cpp
inline constexpr int kCommandBarHeight = 26;
void RegisterCommandBar();
void ForgetBarPictures();
int StatusHeight();  // pixels
void RegisterStatusWindow();

// dial_up.cpp
void EndDialUps();  // hangs up all dials that the program has left

// ---------------------------------------------------------------- the menu bar

// The shell's strip at the bottom of the device: it holds the program's menu bar and the button of
// the input panel.

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

void UseDeviceStyle();        // for all windows; call it before the first one is made
MenuStrip* ShellMenuStrip();  // null while the device's screen is not open
bool ActivateMenuBar();       // opens the first menu, as F10 does; false: there is no menu

// ---------------------------------------------------------------- the input panel

// A soft keyboard above the menu bar, for a device without keys. Its keys send key events, like
// those of a real keyboard, to the widget that has the focus.

struct PanelKeyRow;

class PanelKey : public QAbstractButton {
    Q_OBJECT
  public:
    PanelKey(QWidget* panel, const PanelKeyRow& key);
    const PanelKeyRow& key() const { return key_; }
    void Show(const QString& label, bool lit);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QFont LabelFont() const;

    const PanelKeyRow& key_;
    bool lit_ = false;  // true for a latch that is on
};

class InputPanel : public QWidget {
    Q_OBJECT
  public:
    explicit InputPanel(QWidget* screen);

    void LetGo();  // releases a key that is held down
    void setVisible(bool visible) override;
    void FillFoot();  // of the dialog that the panel is in
    bool eventFilter(QObject* dialog, QEvent* event) override;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void MakeKeys();  // when it is first shown
    void PlaceKeys();
    void Press(PanelKey* key);
    void Label();  // labels every key for the latches that are on
    bool Latched(int key) const;
    bool Shifted() const;

    std::vector<PanelKey*> keys_;
    std::vector<int> latches_;  // latch keys that are on, until the next key
    bool capitals_ = false;
};

InputPanel* ShellInputPanel();  // null while the device's screen is not open

#endif

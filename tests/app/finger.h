// SPDX-License-Identifier: MIT
// A person who has a finger, and neither mouse nor keys, on a device that fills the desktop's
// screen. A finger reaches only what the screen shows and nothing covers. Every call is made on the
// person's thread unless it says otherwise.
#ifndef QUILL_TESTS_APP_FINGER_H
#define QUILL_TESTS_APP_FINGER_H

#include <functional>
#include <QMenu>
#include <QMessageBox>
#include <string>

#include "tests/support/fake_host.h"

// Where the finger goes, if there is such a place by now.
struct Target {
    QWidget* widget = nullptr;
    QPoint at = {};
};
using Finder = std::function<Target()>;  // runs on the window thread

// The finger comes down on `from`, and goes up at `to`. Window thread only.
void Drag(QWidget* widget, QPoint from, QPoint to);
void TapPlace(QWidget* widget, QPoint at);  // window thread only

bool InSight(const Finder& find);  // scrolls there by taps on scroll bars; false: in vain
void TapTarget(const Finder& find, const std::string& what);
void Tap(const std::function<QWidget*()>& find, const std::string& what);

// The titles and lines of menus, by their texts without "&".
QAction* ActionNamed(const QList<QAction*>& actions, const QString& name);
QMenu* OpenMenu();  // null: no menu is open
void TapMenu(const QString& title, const QString& entry);

// The buttons of the bar, which a narrow device has on three bars, and of the shell's strip.
QAbstractButton* ButtonNamed(const QString& name);  // null while it is not shown
void TapBar(const QString& name);

// The soft keyboard.
void ShowPanel();
void TapKey(const QString& label);
void TapKeys(const QString& text);  // a key for each character

// The topmost dialog.
void TapControl(int id);
Finder ControlFinder(int id);
void TapTab(const QString& name);
void TapRow(int list, int row);
bool DialogShown(const QString& title);  // waits for it
bool DialogGone();                       // waits until no dialog is open
void AnswerBox(QMessageBox::StandardButton button);

// The colour chooser: the first widget in it that is shown and wanted; null: there is none.
QWidget* InChooser(const std::function<bool(const QWidget&)>& wanted);
bool IsOk(const QWidget& widget);
bool HasColors(const QWidget& widget);  // the squares, or the field that a small chooser has alone
bool HasBrightness(const QWidget& widget);

// Run the program on a device as large as the desktop's screen; in a session, the host has sent
// "hello 42".
void OnDevice(const std::function<void(FakeHost&)>& person);
void InSession(const std::function<void(FakeHost&)>& person);

#endif

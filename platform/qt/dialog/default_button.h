// The push button of a window that Enter presses.
#ifndef QUILL_PLATFORM_QT_DIALOG_DEFAULT_BUTTON_H
#define QUILL_PLATFORM_QT_DIALOG_DEFAULT_BUTTON_H

#include <functional>

class QPushButton;
class QWidget;

// From now on the push button with the focus is the window's default button, and the `usual` one
// while the focus is elsewhere. It is the one that is drawn so: QPushButton::isDefault tells it.
// The usual one may be null.
void FollowFocusWithDefault(QWidget* window, const std::function<QPushButton*()>& usual);

// The window's default button, if it can be seen; else null.
QPushButton* ShownDefault(const QWidget& window);

#endif

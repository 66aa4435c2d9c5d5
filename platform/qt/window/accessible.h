// SPDX-License-Identifier: MIT
// What screen readers see of the windows that the program paints: their roles and names, and the
// text of the one that shows text. Dialogs, menus and buttons are the toolkit's, which speak for
// themselves. Window thread only.
//
// Nothing of it is made, kept or compared before a screen reader asks.
#ifndef QUILL_PLATFORM_QT_WINDOW_ACCESSIBLE_H
#define QUILL_PLATFORM_QT_WINDOW_ACCESSIBLE_H

#include "platform/qt/window/text_screen.h"
#include "platform/qt/window/window.h"

// Where the text comes from. Null procedures: no window shows text.
struct TextScreenSource {
    HWND (*window)() = nullptr;
    TextScreen (*read)() = nullptr;  // as the window shows it, or will at its next paint
};
extern TextScreenSource text_screen_source;

// Before the first widget is made: the toolkit keeps what it has once found for one.
void OfferToScreenReaders();

// A widget has come, with all that is in it; one is about to go.
void TellWidgetMade(QWidget* widget);
void TellWidgetGone(QWidget* widget);

// Something may have been drawn: tells a screen reader what has changed since the last time. What
// comes sooner after that than it can be listened to is told together.
void TellTextChanges();
void ForgetTextChanges();  // before the windows go

#endif

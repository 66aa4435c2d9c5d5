// SPDX-License-Identifier: MIT
// What screen readers see of the windows that the program paints: their roles and names, and the
// text of the window that shows text. Dialogs and menus are the toolkit's, which serves screen
// readers itself; a few kinds of buttons get an interface here. Window thread only.
//
// Nothing here is made, stored or compared before a screen reader asks.
#ifndef QUILL_PLATFORM_QT_WINDOW_ACCESSIBLE_H
#define QUILL_PLATFORM_QT_WINDOW_ACCESSIBLE_H

#include "platform/qt/window/text_screen.h"
#include "platform/qt/window/window.h"

// Where the text comes from. Null procedures: no window shows text.
struct TextScreenSource {
    HWND (*window)() = nullptr;
    TextScreen (*read)() = nullptr;  // as the window shows it, or will after its next paint
};
extern TextScreenSource text_screen_source;

// Call it before the first widget is made: the toolkit keeps the interface that it first finds for
// a widget.
void OfferToScreenReaders();

// Report that a widget has been made, with all its children, or is about to be destroyed.
void TellWidgetMade(QWidget* widget);
void TellWidgetGone(QWidget* widget);

// Call it when something may have been drawn. Reports to a screen reader what has changed since the
// last report. Changes that follow too soon to be listened to are reported together.
void TellTextChanges();
void ForgetTextChanges();  // before the windows are destroyed

#endif

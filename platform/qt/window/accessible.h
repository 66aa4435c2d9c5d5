// SPDX-License-Identifier: MIT
// What screen readers see of the windows that the program paints: their roles and names, and the
// text of the window that shows text. Dialogs and menus are the toolkit's, which serves screen
// readers itself; a few kinds of buttons get an interface here. Window thread only.
//
// Nothing here is made, stored or compared before a screen reader asks.
#ifndef QUILL_PLATFORM_QT_WINDOW_ACCESSIBLE_H
#define QUILL_PLATFORM_QT_WINDOW_ACCESSIBLE_H

#include <QPoint>
#include <QRect>
#include <QStringList>
#include <vector>

#include "platform/qt/window/window.h"

// ---------------------------------------------------------------- the text

// The text of a window in the form that screen readers get.
//
// Rows have no trailing blanks, except those before the cursor, so the cursor is always at a place
// in the text. The text is the rows joined by line feeds; an offset counts its UTF-16 units from 0.

struct TextScreen {
    QStringList rows;
    QPoint cursor;   // column and row, from 0
    QRect selected;  // columns and rows, from 0; empty: nothing is selected
    QRect cell;      // of row 0, column 0, in the window's pixels; the others follow without gaps
};

// Replaces one piece of text by another; at most one of the two is empty.
struct TextChange {
    int offset;
    QString removed;
    QString inserted;
};

QString TextOf(const TextScreen& screen);
int OffsetOf(const TextScreen& screen, QPoint place);  // the nearest offset that exists
QPoint PlaceOf(const TextScreen& screen, int offset);  // column and row
int CursorOffset(const TextScreen& screen);

struct TextRange {
    int start, end;
};
std::vector<TextRange> SelectedRanges(const TextScreen& screen);  // one for each row

// Returns the changes that turn the text of `before` into that of `now`. Each has its offset in the
// text that the changes before it left. Rows that moved up, as when the host writes a line below
// the last one, are reported as lines removed at the top and lines added at the bottom.
std::vector<TextChange> ChangesBetween(const TextScreen& before, const TextScreen& now);

// ---------------------------------------------------------------- screen readers

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

// SPDX-License-Identifier: MIT
// The text of a window that the program paints, in the form that screen readers get.
//
// Rows have no trailing blanks, except those before the cursor, so the cursor is always at a place
// in the text. The text is the rows joined by line feeds; an offset counts its UTF-16 units from 0.
#ifndef QUILL_PLATFORM_QT_WINDOW_TEXT_SCREEN_H
#define QUILL_PLATFORM_QT_WINDOW_TEXT_SCREEN_H

#include <QPoint>
#include <QRect>
#include <QStringList>
#include <vector>

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

#endif

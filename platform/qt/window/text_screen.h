// SPDX-License-Identifier: MIT
// The text of a window that the program paints, as screen readers get it.
//
// Rows come without the blanks at their ends, but for those before the cursor, so that its place is
// always one of the text. The text is the rows with line feeds between them, and an offset counts
// its UTF-16 units from 0.
#ifndef QUILL_PLATFORM_QT_WINDOW_TEXT_SCREEN_H
#define QUILL_PLATFORM_QT_WINDOW_TEXT_SCREEN_H

#include <QPoint>
#include <QRect>
#include <QStringList>
#include <vector>

struct TextScreen {
    QStringList rows;
    QPoint cursor;   // column and row, from 0
    QRect selected;  // columns and rows, from 0; empty: nothing is
    QRect cell;      // of row 0, column 0, in the window's pixels; the others follow without gaps
};

// One piece of text in place of another: at most one of the two is empty.
struct TextChange {
    int offset;
    QString removed;
    QString inserted;
};

QString TextOf(const TextScreen& screen);
int OffsetOf(const TextScreen& screen, QPoint place);  // the nearest one there is
QPoint PlaceOf(const TextScreen& screen, int offset);  // column and row
int CursorOffset(const TextScreen& screen);

struct TextRange {
    int start, end;
};
std::vector<TextRange> SelectedRanges(const TextScreen& screen);  // one for each row

// The changes that make the text of `now` out of that of `before`, each with its offset in the text
// as the changes before it left it. Rows that moved up, as when the host writes a line below the
// last one, are told as lines that went at the top and lines that came at the bottom.
std::vector<TextChange> ChangesBetween(const TextScreen& before, const TextScreen& now);

#endif

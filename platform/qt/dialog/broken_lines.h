// Entries of a list that are too wide for it, broken over several lines.
#ifndef QUILL_PLATFORM_QT_DIALOG_BROKEN_LINES_H
#define QUILL_PLATFORM_QT_DIALOG_BROKEN_LINES_H

#include <QListView>

// From now on the list's entries are broken at blanks to its width, further lines set in a little.
// It has no bar to move it sideways.
void BreakLines(QListView* list);

#endif

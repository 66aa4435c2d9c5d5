// SPDX-License-Identifier: MIT
// The text of a window that the program paints, and how it changes.
#include "platform/qt/window/text_screen.h"

#include <algorithm>

// Counts the rows with text that `now` has in common with `before` when `before` is moved up by
// `shift`.
static int SharedRows(const QStringList& before, const QStringList& now, int shift) {
    int shared = 0;
    for (int i = 0; i < now.size() && i + shift < before.size(); ++i)
        shared += !now[i].isEmpty() && now[i] == before[i + shift];
    return shared;
}

static int RowsMovedUp(const QStringList& before, const QStringList& now) {
    int best = 0;
    for (int shift = 1; shift < before.size(); ++shift)
        if (SharedRows(before, now, shift) > SharedRows(before, now, best)) best = shift;
    return best;
}

// Adds what differs between two rows; `offset` is where the first one begins.
static void AddRowChange(std::vector<TextChange>* changes, int offset, const QString& before,
                         const QString& now) {
    if (before == now) return;
    const auto most = std::min(before.size(), now.size());
    qsizetype head = 0, tail = 0;
    while (head < most && before[head] == now[head]) ++head;
    while (tail < most - head && before[before.size() - 1 - tail] == now[now.size() - 1 - tail])
        ++tail;
    changes->push_back({offset + static_cast<int>(head),
                        before.mid(head, before.size() - tail - head),
                        now.mid(head, now.size() - tail - head)});
}

QString TextOf(const TextScreen& screen) { return screen.rows.join('\n'); }

int OffsetOf(const TextScreen& screen, QPoint place) {
    if (screen.rows.isEmpty()) return 0;
    const int row = std::clamp(place.y(), 0, static_cast<int>(screen.rows.size()) - 1);
    int offset = 0;
    for (int i = 0; i < row; ++i) offset += static_cast<int>(screen.rows[i].size()) + 1;
    return offset + std::clamp(place.x(), 0, static_cast<int>(screen.rows[row].size()));
}

QPoint PlaceOf(const TextScreen& screen, int offset) {
    int row = 0;
    while (row + 1 < screen.rows.size() && offset > screen.rows[row].size())
        offset -= static_cast<int>(screen.rows[row++].size()) + 1;
    return QPoint(std::max(offset, 0), row);
}

int CursorOffset(const TextScreen& screen) { return OffsetOf(screen, screen.cursor); }

std::vector<TextRange> SelectedRanges(const TextScreen& screen) {
    std::vector<TextRange> ranges;
    const QRect& area = screen.selected;
    for (int row = area.top(); !area.isEmpty() && row <= area.bottom(); ++row)
        ranges.push_back({OffsetOf(screen, QPoint(area.left(), row)),
                          OffsetOf(screen, QPoint(area.right() + 1, row))});
    return ranges;
}

std::vector<TextChange> ChangesBetween(const TextScreen& before, const TextScreen& now) {
    std::vector<TextChange> changes;
    QStringList rows = before.rows;
    const int up = RowsMovedUp(rows, now.rows);
    if (up > 0) {
        changes.push_back({0, rows.mid(0, up).join('\n') + '\n', QString()});
        rows = rows.mid(up);
    }
    int offset = 0;
    const auto common = std::min(rows.size(), now.rows.size());
    for (qsizetype i = 0; i < common; ++i) {
        AddRowChange(&changes, offset, rows[i], now.rows[i]);
        offset += static_cast<int>(now.rows[i].size()) + 1;
    }
    const QString feed = common > 0 ? "\n" : "";
    if (rows.size() > common)
        changes.push_back({std::max(offset - 1, 0), feed + rows.mid(common).join('\n'), QString()});
    if (now.rows.size() > common)
        changes.push_back(
            {std::max(offset - 1, 0), QString(), feed + now.rows.mid(common).join('\n')});
    return changes;
}

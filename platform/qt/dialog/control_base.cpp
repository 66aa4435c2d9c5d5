// SPDX-License-Identifier: MIT
// What all kinds of controls share: notices to the dialog, texts, entries and dialog units.
#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/window/messages.h"

static int Scaled(int units, int base, int divisor) {
    return (units * base + divisor / 2) / divisor;
}

// The pixels of 4 dialog units across and 8 down: the mean width of a letter and the height of the
// dialogs' font.
static QSize DialogBase() {
    static const QString letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const QFontMetrics metrics(QApplication::font());
    const int width = metrics.horizontalAdvance(letters);
    return QSize(static_cast<int>((width * 2 / letters.size() + 1) / 2), metrics.height());
}

QSize DialogPixels(int width, int height) {
    const QSize base = DialogBase();
    return QSize(Scaled(width, base.width(), 4), Scaled(height, base.height(), 8));
}

QString WithoutMnemonic(const QString& text) {
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && ++i == text.size()) break;
        plain += text[i];
    }
    return plain;
}

void QueueNotice(HWND control, WORD code) {
    const Window* window = FindWindowRecord(control);
    if (window)
        QueueInput(window->parent, WM_COMMAND, MAKEWPARAM(window->id, code),
                   reinterpret_cast<LPARAM>(control));
}

void SendNotice(HWND control, WORD code) {
    const Window* window = FindWindowRecord(control);
    if (window)
        SendMessageW(window->parent, WM_COMMAND, MAKEWPARAM(window->id, code),
                     reinterpret_cast<LPARAM>(control));
}

LRESULT CopyText(const QString& text, WPARAM size, LPARAM buffer) {
    if (size == 0 || !buffer) return 0;
    auto* units = reinterpret_cast<LPWSTR>(buffer);
    const std::u16string wide = ToWide(text);
    const size_t count = std::min<size_t>(wide.size(), size - 1);
    std::copy_n(wide.begin(), count, units);
    units[count] = 0;
    return static_cast<LRESULT>(count);
}

int FindEntry(const QStringList& entries, int after, const QString& wanted, bool whole) {
    const int count = static_cast<int>(entries.size());
    const int first = after < 0 || after >= count ? 0 : after + 1;
    for (int i = 0; i < count; ++i) {
        const QString& entry = entries[(first + i) % count];
        const QString head = whole ? entry : entry.left(wanted.size());
        if (head.compare(wanted, Qt::CaseInsensitive) == 0) return (first + i) % count;
    }
    return LB_ERR;
}

int SortedPlace(const QStringList& entries, const QString& text) {
    int row = 0;
    while (row < entries.size() && entries[row].compare(text, Qt::CaseInsensitive) <= 0) ++row;
    return row;
}

int PlaceOf(WPARAM row, int count) {
    const int place = static_cast<int>(row) == -1 ? count : static_cast<int>(row);
    return place > count || place < 0 ? -1 : place;
}

// SPDX-License-Identifier: MIT
// The status window: a line of text at the bottom of its parent.
#include <cmath>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/gdi.h"
#include "platform/qt/window/window.h"

// Keeps the status window at the bottom of its parent, one line high. The parent may be in the
// middle of a paint that began when that area was still its own.
static void PlaceStatus(Window& window) {
    const Window* parent = FindWindowRecord(window.parent);
    if (!parent) return;
    const QRect room = ClientArea(*parent);
    const int height = StatusHeight();
    const QRect place(0, room.height() - height, room.width(), height);
    if (window.widget->geometry() == place) return;
    window.widget->setGeometry(place);
    InvalidateRect(window.handle, nullptr, TRUE);
}

static bool IsAscii(const std::u16string& text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 128; });
}

static void DrawStatusText(QPainter& painter, const QFont& font, const QRect& area,
                           const std::u16string& text) {
    if (!IsAscii(text)) {
        painter.setFont(font);
        painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft, FromWide(text.c_str()));
        return;
    }
    const LineFont& line = LineFontOf(font);
    const double ascent = line.raw.ascent(), height = ascent + line.raw.descent();
    const double baseline = std::round(area.top() + (area.height() - height) / 2 + ascent);
    DrawLineOfText(painter, line, QPointF(area.left(), baseline), text);
}

static void PaintStatus(Window& window) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window.handle, &paint);
    if (!dc) return;
    const QRect area = window.widget->rect();
    const QPalette& colors = window.widget->palette();
    dc->painter->fillRect(area, colors.color(QPalette::Window));
    dc->painter->fillRect(area.left(), area.top(), area.width(), 1, colors.color(QPalette::Mid));
    dc->painter->setPen(colors.color(QPalette::WindowText));
    DrawStatusText(*dc->painter, window.widget->font(), area.adjusted(4, 1, -4, 0), window.text);
    window.widget->setAccessibleName(FromWide(window.text.c_str()).simplified());
    const RECT whole = {0, 0, area.width(), area.height()};
    if (drawing_observer.text)
        drawing_observer.text({window.handle, 0, 0, whole, window.text.c_str(),
                               static_cast<UINT>(window.text.size()), 0, 0, 0});
    EndPaint(window.handle, &paint);
}

static LRESULT CALLBACK StatusProcedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
    Window* window = FindWindowRecord(handle);
    if (message == WM_PAINT) return PaintStatus(*window), 0;
    if (message == WM_ERASEBKGND) return 1;
    if (message != WM_CREATE && message != WM_SIZE)
        return DefWindowProcW(handle, message, wparam, lparam);
    PlaceStatus(*window);
    return 0;
}

int StatusHeight() { return QFontMetrics(QApplication::font()).height() + 4; }

void RegisterStatusWindow() { RegisterSystemClass(STATUSCLASSNAME, StatusProcedure); }

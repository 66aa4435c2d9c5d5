// The controls that windows carry: scroll bars and the status window.
#include <cmath>
#include <QScrollBar>

#include "platform/qt/window/drawing_observer.h"
#include "platform/qt/window/gdi.h"
#include "platform/qt/window/window_widget.h"

namespace {

constexpr int kScrollBarSize = 13;

ScrollBarState* BarOf(Window* window, int bar) {
    return !window ? nullptr : bar == SB_VERT ? &window->vertical : &window->horizontal;
}

struct ActionRow {
    QAbstractSlider::SliderAction action;
    WORD code;
};

const ActionRow kActions[] = {
    {QAbstractSlider::SliderSingleStepSub, SB_LINEUP},
    {QAbstractSlider::SliderSingleStepAdd, SB_LINEDOWN},
    {QAbstractSlider::SliderPageStepSub, SB_PAGEUP},
    {QAbstractSlider::SliderPageStepAdd, SB_PAGEDOWN},
    {QAbstractSlider::SliderMove, SB_THUMBPOSITION},
};

// The program decides where the bar goes: it hears the action, and sets the position itself.
void QueueScroll(HWND handle, int bar, QScrollBar* widget, int action) {
    Window* window = FindWindowRecord(handle);
    if (!window) return;
    const int wanted = widget->sliderPosition();
    for (const ActionRow& row : kActions)
        if (row.action == action)
            QueueInput(handle, bar == SB_VERT ? WM_VSCROLL : WM_HSCROLL,
                       static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(row.code, wanted))), 0);
    if (action != QAbstractSlider::SliderMove)
        widget->setSliderPosition(BarOf(window, bar)->position);
}

void AttachBar(Window& window, int bar) {
    ScrollBarState& state = *BarOf(&window, bar);
    const HWND handle = window.handle;
    auto* widget =
        new QScrollBar(bar == SB_VERT ? Qt::Vertical : Qt::Horizontal, window.widget.data());
    widget->setFocusPolicy(Qt::NoFocus);
    widget->hide();
    QObject::connect(widget, &QScrollBar::actionTriggered, widget,
                     [=](int action) { QueueScroll(handle, bar, widget, action); });
    state.bar = widget;
}

bool BarWanted(const ScrollBarState& state) {
    const int span = state.maximum - state.minimum;
    return state.bar && span > 0 && static_cast<int>(state.page) <= span;
}

// The status window keeps itself at the bottom of its parent, one line high. Its parent may be in
// the middle of a paint that began when this place was its own.
void PlaceStatus(Window& window) {
    const Window* parent = FindWindowRecord(window.parent);
    if (!parent) return;
    const QRect room = ClientArea(*parent);
    const int height = StatusHeight();
    const QRect place(0, room.height() - height, room.width(), height);
    if (window.widget->geometry() == place) return;
    window.widget->setGeometry(place);
    InvalidateRect(window.handle, nullptr, TRUE);
}

bool IsAscii(const std::u16string& text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 128; });
}

void DrawStatusText(QPainter& painter, const QFont& font, const QRect& area,
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

void PaintStatus(Window& window) {
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

LRESULT CALLBACK StatusProcedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
    Window* window = FindWindowRecord(handle);
    if (message == WM_PAINT) return PaintStatus(*window), 0;
    if (message == WM_ERASEBKGND) return 1;
    if (message != WM_CREATE && message != WM_SIZE)
        return DefWindowProcW(handle, message, wparam, lparam);
    PlaceStatus(*window);
    return 0;
}

struct MetricRow {
    int index;
    int (*pixels)();
};

const MetricRow kMetrics[] = {
    {SM_CXSCREEN, [] { return DeviceScreen()->width(); }},
    {SM_CYSCREEN, [] { return DeviceScreen()->height(); }},
    {SM_CXVSCROLL, [] { return kScrollBarSize; }},
    {SM_CYHSCROLL, [] { return kScrollBarSize; }},
};

}  // namespace

int StatusHeight() { return QFontMetrics(QApplication::font()).height() + 4; }

void InitCommonControls() {
    RegisterSystemClass(STATUSCLASSNAME, StatusProcedure);
    RegisterCommandBar();
}

void AttachScrollBars(Window& window, DWORD style) {
    if (style & WS_VSCROLL) AttachBar(window, SB_VERT);
    if (style & WS_HSCROLL) AttachBar(window, SB_HORZ);
    if (!window.vertical.bar || !window.horizontal.bar) return;
    window.corner = new QWidget(window.widget);
    window.corner->setAutoFillBackground(true);
    window.corner->hide();
}

void ArrangeScrollBars(Window& window) {
    if (!window.widget) return;
    const QRect area = ClientArea(window);
    if (window.vertical.bar) {
        window.vertical.bar->setGeometry(area.width(), 0, kScrollBarSize, area.height());
        window.vertical.bar->setVisible(window.vertical.shown);
    }
    if (window.horizontal.bar) {
        window.horizontal.bar->setGeometry(0, area.height(), area.width(), kScrollBarSize);
        window.horizontal.bar->setVisible(window.horizontal.shown);
    }
    if (window.corner) {
        window.corner->setGeometry(area.width(), area.height(), kScrollBarSize, kScrollBarSize);
        window.corner->setVisible(window.vertical.shown && window.horizontal.shown);
    }
}

int SetScrollInfo(HWND handle, int bar, const SCROLLINFO* info, BOOL) {
    Window* window = FindWindowRecord(handle);
    ScrollBarState* state = BarOf(window, bar);
    if (!state || !state->bar || !info) return 0;
    if (info->fMask & SIF_RANGE) state->minimum = info->nMin, state->maximum = info->nMax;
    if (info->fMask & SIF_PAGE) state->page = info->nPage;
    if (info->fMask & SIF_POS) state->position = info->nPos;
    const int last =
        std::max(state->minimum, state->maximum - std::max(static_cast<int>(state->page) - 1, 0));
    state->position = std::clamp(state->position, state->minimum, last);
    {
        const QSignalBlocker quiet(state->bar);
        state->bar->setRange(state->minimum, last);
        state->bar->setPageStep(static_cast<int>(state->page));
        state->bar->setSingleStep(1);
        state->bar->setValue(state->position);
    }
    const bool wanted = BarWanted(*state);
    if (wanted != state->shown) {
        state->shown = wanted;
        ArrangeScrollBars(*window);
        InvalidateRect(handle, nullptr, TRUE);
        SendSize(*window);
    }
    return state->position;
}

BOOL GetScrollInfo(HWND handle, int bar, SCROLLINFO* info) {
    const ScrollBarState* state = BarOf(FindWindowRecord(handle), bar);
    if (!state || !state->bar || !info) return FALSE;
    info->nMin = state->minimum;
    info->nMax = state->maximum;
    info->nPage = state->page;
    info->nPos = state->position;
    info->nTrackPos = state->bar->sliderPosition();
    return TRUE;
}

int GetSystemMetrics(int index) {
    for (const MetricRow& row : kMetrics)
        if (row.index == index) return row.pixels();
    return 0;
}

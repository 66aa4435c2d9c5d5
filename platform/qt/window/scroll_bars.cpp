// The scroll bars that windows carry.
#include <QScrollBar>

#include "platform/qt/window/messages.h"
#include "platform/qt/window/window_widget.h"

namespace {

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

}  // namespace

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

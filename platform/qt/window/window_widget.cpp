// SPDX-License-Identifier: MIT
// The widget behind every window that the program paints, and its scroll bars.
#include "platform/qt/window/window_widget.h"

#include <QBackingStore>
#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPaintEvent>
#include <QScrollBar>
#include <QStyleHints>
#include <QTouchEvent>
#include <QWindow>

#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"

// Returns the region of `part` that no other widget covers, in coordinates of the desktop window.
static QRegion UncoveredPart(const QWidget* widget, QRegion part) {
    part -= widget->childrenRegion();
    for (; !widget->isWindow(); widget = widget->parentWidget()) {
        part = (part & widget->rect()).translated(widget->pos());
        bool above = false;
        for (const QObject* each : widget->parentWidget()->children()) {
            const auto* other = qobject_cast<const QWidget*>(each);
            if (above && other && other->isVisible() && !other->isWindow())
                part -= other->geometry();
            above |= other == widget;
        }
    }
    return part & widget->rect();
}

WindowWidget::WindowWidget(HWND window, QWidget* parent) : QWidget(parent), window_(window) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setAttribute(Qt::WA_AcceptTouchEvents);
    // Only the program moves the focus; a tap on a child does not.
    setFocusPolicy(FindWindowRecord(window)->parent ? Qt::NoFocus : Qt::StrongFocus);
}

void WindowWidget::PaintInvalid() {
    Window* window = FindWindowRecord(window_);
    if (!window || window->invalid.isEmpty()) return;
    own_paint_ = true;
    paint_came_ = false;
    if (!PaintStraight(window->invalid)) RepaintPart(this, window->invalid);
    own_paint_ = false;
    // The desktop does not show the window, which is painted whole when it comes back.
    window = FindWindowRecord(window_);
    if (window && !paint_came_) window->invalid = QRegion();
}

// Paints into the desktop window's store and flushes that part. This leaves out the toolkit's
// search for everything that might need a paint, which takes longer than a row of text. A window
// that others cover draws nothing: the toolkit would draw it over them. Returns false if the store
// is not in the state that this needs.
bool WindowWidget::PaintStraight(const QRegion& invalid) {
    QWidget* top = QWidget::window();
    QBackingStore* store = ReadyStore(top);
    if (!store || !isVisible() || EndsBetweenUnits(top)) return false;
    const QPoint corner = mapTo(top, QPoint(0, 0));
    store_region_ = UncoveredPart(this, invalid);
    const QRegion region = store_region_;
    store->beginPaint(region);
    store_ = store->paintDevice();
    PaintWindow(region.translated(-corner));
    store_ = nullptr;
    store->endPaint();
    if (!region.isEmpty()) store->flush(region, top->windowHandle());
    return true;
}

std::unique_ptr<QPainter> WindowWidget::MakePainter() {
    if (!store_) return std::make_unique<QPainter>(this);
    auto painter = std::make_unique<QPainter>(store_);
    painter->setClipRegion(store_region_);
    painter->translate(mapTo(QWidget::window(), QPoint(0, 0)));
    return painter;
}

void WindowWidget::paintEvent(QPaintEvent* event) {
    Window* window = FindWindowRecord(window_);
    if (!window || painting_) return;
    if (!own_paint_) {
        // The window was uncovered or resized, or is drawn into a picture: its old content is not
        // valid.
        window->invalid = rect();
        window->erase = true;
    } else {
        window->invalid += event->region();
    }
    PaintWindow(event->region());
}

// `reachable` is the region of a paint that reaches the screen. The program takes all of its paint
// for drawn, so a visible part that was missed makes the window invalid again.
void WindowWidget::PaintWindow(const QRegion& reachable) {
    Window* window = FindWindowRecord(window_);
    window->painted = QRegion();
    painting_ = paint_came_ = true;
    CallWindowProcedure(*window, WM_PAINT, 0, 0);
    painting_ = false;
    window = FindWindowRecord(window_);
    if (!window) return;
    const QRegion missed = (window->painted & ClientArea(*window)) - reachable;
    if (missed.isEmpty() || UncoveredPart(this, missed).isEmpty()) return;
    window->invalid = rect();
    window->erase = true;
}

void WindowWidget::keyPressEvent(QKeyEvent* event) { QueueKeyEvent(window_, event, true); }

void WindowWidget::keyReleaseEvent(QKeyEvent* event) { QueueKeyEvent(window_, event, false); }

// From now on, another window of the desktop gets the keys.
void WindowWidget::focusOutEvent(QFocusEvent* event) {
    if (event->reason() == Qt::ActiveWindowFocusReason) ReleaseModifiers();
    QWidget::focusOutEvent(event);
}

void WindowWidget::inputMethodEvent(QInputMethodEvent* event) {
    QueueCommittedText(window_, event->commitString());
    event->accept();
}

QVariant WindowWidget::inputMethodQuery(Qt::InputMethodQuery query) const {
    if (query == Qt::ImEnabled) return true;
    if (query == Qt::ImHints) return int(Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    return QWidget::inputMethodQuery(query);
}

void WindowWidget::QueueMouse(UINT message, const QPointF& position, Qt::MouseButtons buttons) {
    const auto x = static_cast<int>(position.x()), y = static_cast<int>(position.y());
    QueueInput(window_, message, buttons & Qt::LeftButton ? 1 : 0, MAKELPARAM(x, y));
}

void WindowWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    QueueMouse(WM_LBUTTONDOWN, event->position(), event->buttons());
}

void WindowWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    QueueMouse(WM_LBUTTONUP, event->position(), event->buttons());
}

void WindowWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton)) return;
    QueueMouse(WM_MOUSEMOVE, event->position(), event->buttons());
}

void WindowWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const Window* window = FindWindowRecord(window_);
    const bool wanted = window && (window->window_class->style & CS_DBLCLKS);
    QueueMouse(wanted ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN, event->position(), event->buttons());
}

// Keeps every key but those with Alt, which open the menus by their letters. The toolkit's search
// for any other key among the menus takes more than half of that key's way to its window.
static bool KeepsKey(const QKeyEvent& event) { return !(event.modifiers() & Qt::AltModifier); }

bool WindowWidget::event(QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::ShortcutOverride && KeepsKey(*static_cast<QKeyEvent*>(event)))
        return event->accept(), true;
    if (type == QEvent::TouchCancel) finger_ = -1;
    if (type != QEvent::TouchBegin && type != QEvent::TouchUpdate && type != QEvent::TouchEnd)
        return QWidget::event(event);
    const auto& touch = *static_cast<QTouchEvent*>(event);
    if (type == QEvent::TouchBegin && childAt(touch.points().first().position().toPoint()))
        return false;  // on a scroll bar or a button: the toolkit makes mouse events of it
    TakeTouch(touch);
    event->accept();
    return true;
}

// The finger that touches first acts as the stylus; others do nothing until all are up. A touch
// that begins is always the first, even if the end of the one before was lost.
void WindowWidget::TakeTouch(const QTouchEvent& touch) {
    if (touch.type() == QEvent::TouchBegin) finger_ = -1;
    for (const QEventPoint& point : touch.points()) {
        if (touch.type() == QEvent::TouchBegin && finger_ < 0) {
            finger_ = point.id();
            TakeFirstTouch(point.position());
        } else if (point.id() == finger_ && point.state() == QEventPoint::Updated) {
            QueueMouse(WM_MOUSEMOVE, point.position(), Qt::LeftButton);
        } else if (point.id() == finger_ && point.state() == QEventPoint::Released) {
            QueueMouse(WM_LBUTTONUP, point.position(), Qt::NoButton);
            finger_ = -1;
        }
    }
}

void WindowWidget::TakeFirstTouch(const QPointF& position) {
    const Window* window = FindWindowRecord(window_);
    const bool second = IsSecondTap(position);
    const bool wanted = second && window && (window->window_class->style & CS_DBLCLKS);
    QueueMouse(wanted ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN, position, Qt::LeftButton);
    if (second) return since_tap_.invalidate();  // a third tap counts as a first one
    since_tap_.start();
    tap_ = position;
}

bool WindowWidget::IsSecondTap(const QPointF& position) {
    const QStyleHints* hints = QGuiApplication::styleHints();
    return since_tap_.isValid() && since_tap_.elapsed() < hints->mouseDoubleClickInterval() &&
           (position - tap_).manhattanLength() < hints->touchDoubleTapDistance();
}

// Tab is an ordinary key here.
bool WindowWidget::focusNextPrevChild(bool) { return false; }

static ScrollBarState* BarOf(Window* window, int bar) {
    return !window ? nullptr : bar == SB_VERT ? &window->vertical : &window->horizontal;
}

namespace {

struct ActionRow {
    QAbstractSlider::SliderAction action;
    WORD code;
};

}  // namespace

static const ActionRow kActions[] = {
    {QAbstractSlider::SliderSingleStepSub, SB_LINEUP},
    {QAbstractSlider::SliderSingleStepAdd, SB_LINEDOWN},
    {QAbstractSlider::SliderPageStepSub, SB_PAGEUP},
    {QAbstractSlider::SliderPageStepAdd, SB_PAGEDOWN},
    {QAbstractSlider::SliderMove, SB_THUMBPOSITION},
};

// Only reports the action. The program decides where the bar goes, and sets the position itself.
static void QueueScroll(HWND handle, int bar, QScrollBar* widget, int action) {
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

static void AttachBar(Window& window, int bar) {
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

static bool BarWanted(const ScrollBarState& state) {
    const int span = state.maximum - state.minimum;
    return state.bar && span > 0 && static_cast<int>(state.page) <= span;
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

#include "moc_window_widget.cpp"

// The widget behind every window.
#include "platform/qt/window/window_widget.h"

#include <QBackingStore>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPaintEvent>
#include <QStyleHints>
#include <QTouchEvent>
#include <QWindow>

namespace {

// What of a part of a widget no other widget covers, in the coordinates of its desktop window.
QRegion UncoveredPart(const QWidget* widget, QRegion part) {
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

}  // namespace

QBackingStore* ReadyStore(const QWidget* top) {
    QBackingStore* store = top->backingStore();
    const QWindow* surface = top->windowHandle();
    const bool ready = store && surface && surface->isExposed() && store->size() == top->size();
    return ready ? store : nullptr;
}

WindowWidget::WindowWidget(HWND window, QWidget* parent) : QWidget(parent), window_(window) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setAttribute(Qt::WA_AcceptTouchEvents);
    // The focus is the program's to give; a tap on a child leaves it where it is.
    setFocusPolicy(FindWindowRecord(window)->parent ? Qt::NoFocus : Qt::StrongFocus);
}

void WindowWidget::PaintInvalid() {
    Window* window = FindWindowRecord(window_);
    if (!window || window->invalid.isEmpty()) return;
    own_paint_ = true;
    paint_came_ = false;
    if (!PaintStraight(window->invalid)) repaint(window->invalid);
    own_paint_ = false;
    // A window that the desktop does not show is painted whole when it comes back.
    window = FindWindowRecord(window_);
    if (window && !paint_came_) window->invalid = QRegion();
}

// Paints into the desktop window's store and hands that part over, without the toolkit's search for
// everything that might be due: it takes longer than a row of text. False where the store is not in
// the state that this needs.
bool WindowWidget::PaintStraight(const QRegion& invalid) {
    QWidget* top = QWidget::window();
    QBackingStore* store = ReadyStore(top);
    if (!store) return false;
    const QPoint corner = mapTo(top, QPoint(0, 0));
    store_region_ = UncoveredPart(this, invalid);
    if (store_region_.isEmpty()) return false;
    const QRegion region = store_region_;
    store->beginPaint(region);
    store_ = store->paintDevice();
    PaintWindow(region.translated(-corner));
    store_ = nullptr;
    store->endPaint();
    store->flush(region, top->windowHandle());
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
        // Uncovered, resized or drawn into a picture: nothing of the old content counts.
        window->invalid = rect();
        window->erase = true;
    } else {
        window->invalid += event->region();
    }
    PaintWindow(event->region());
}

// `reachable`: what of a painting reaches the screen. The program holds all of it for drawn.
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

bool WindowWidget::event(QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::TouchCancel) finger_ = -1;
    if (type != QEvent::TouchBegin && type != QEvent::TouchUpdate && type != QEvent::TouchEnd)
        return QWidget::event(event);
    const auto& touch = *static_cast<QTouchEvent*>(event);
    if (type == QEvent::TouchBegin && childAt(touch.points().first().position().toPoint()))
        return false;  // a scroll bar's or a button's, for which the toolkit makes a mouse of it
    TakeTouch(touch);
    event->accept();
    return true;
}

// The finger that touches first is the stylus; others do nothing until all are up. A touch that
// begins is the first, even if the end of the one before was never told.
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
    if (second) return since_tap_.invalidate();  // a third tap is a first one
    since_tap_.start();
    tap_ = position;
}

bool WindowWidget::IsSecondTap(const QPointF& position) {
    const QStyleHints* hints = QGuiApplication::styleHints();
    return since_tap_.isValid() && since_tap_.elapsed() < hints->mouseDoubleClickInterval() &&
           (position - tap_).manhattanLength() < hints->touchDoubleTapDistance();
}

// Tab is a key like any other here.
bool WindowWidget::focusNextPrevChild(bool) { return false; }

// The widget behind every window.
#include "window_widget.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QStyleHints>
#include <QTouchEvent>

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
    repaint(window->invalid);
    own_paint_ = false;
    // A window that the desktop does not show is painted whole when it comes back.
    window = FindWindowRecord(window_);
    if (window) window->invalid = QRegion();
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
    painting_ = true;
    CallWindowProcedure(*window, WM_PAINT, 0, 0);
    painting_ = false;
    window = FindWindowRecord(window_);
    if (own_paint_ || !window) return;
    // Only what the toolkit asked for has reached the screen; the program holds all of it for
    // drawn.
    if (QRegion(ClientArea(*window)).subtracted(event->region()).isEmpty()) return;
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

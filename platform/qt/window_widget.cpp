// The widget behind every window.
#include "window_widget.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>

WindowWidget::WindowWidget(HWND window, QWidget* parent) : QWidget(parent), window_(window) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    // A tap on a child leaves the keys with the program's window.
    setFocusPolicy(qobject_cast<WindowWidget*>(parent) ? Qt::NoFocus : Qt::StrongFocus);
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

// Tab is a key like any other here.
bool WindowWidget::focusNextPrevChild(bool) { return false; }

// SPDX-License-Identifier: MIT
// The widget behind every window that the program paints. It turns Qt's events into messages of the
// queue, and carries the scroll bars.
#ifndef QUILL_PLATFORM_QT_WINDOW_WINDOW_WIDGET_H
#define QUILL_PLATFORM_QT_WINDOW_WINDOW_WIDGET_H

#include <QElapsedTimer>
#include <QPointF>

#include "platform/qt/window/window.h"

class QPainter;
class QTouchEvent;

class WindowWidget : public QWidget {
    Q_OBJECT
  public:
    WindowWidget(HWND window, QWidget* parent);

    // Paints at once what InvalidateRect has collected.
    void PaintInvalid();
    bool painting() const { return painting_; }
    // While the window paints, returns a painter in this widget's coordinates that draws only on
    // the region to be painted.
    std::unique_ptr<QPainter> MakePainter();

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool focusNextPrevChild(bool next) override;

  private:
    void QueueMouse(UINT message, const QPointF& position, Qt::MouseButtons buttons);
    void TakeTouch(const QTouchEvent& touch);
    void TakeFirstTouch(const QPointF& position);
    bool IsSecondTap(const QPointF& position);

    bool PaintStraight(const QRegion& invalid);
    void PaintWindow(const QRegion& reachable);

    HWND window_;
    QPaintDevice* store_ = nullptr;  // painted on directly; null: the toolkit paints
    QRegion store_region_;           // in the store's coordinates
    bool own_paint_ = false;         // the program asked for this paint
    bool painting_ = false;
    bool paint_came_ = false;  // since the program asked for a paint
    int finger_ = -1;          // the touch point that acts as the stylus; -1: no finger is down
    QElapsedTimer since_tap_;
    QPointF tap_;
};

// Null if the program does not paint the window.
inline WindowWidget* PaintedWidget(const Window& window) {
    return PaintedByProgram(window) ? static_cast<WindowWidget*>(window.widget.data()) : nullptr;
}

// Scroll bars of a painted window.
void AttachScrollBars(Window& window, DWORD style);
void ArrangeScrollBars(Window& window);

#endif

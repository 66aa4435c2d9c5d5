// SPDX-License-Identifier: MIT
// The widget behind every window that the program paints: turns Qt's events into the queue's
// messages. Its scroll bars.
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

    // Paints what InvalidateRect collected, at once.
    void PaintInvalid();
    bool painting() const { return painting_; }
    // While painting: a painter in this widget's coordinates, on what is painted and nothing else.
    std::unique_ptr<QPainter> MakePainter();

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
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
    QPaintDevice* store_ = nullptr;  // that is painted on straight; null: the toolkit paints
    QRegion store_region_;           // in its coordinates
    bool own_paint_ = false;         // the paint was asked for by the program
    bool painting_ = false;
    bool paint_came_ = false;  // since the program asked for one
    int finger_ = -1;          // the touch point that is the stylus; -1: none is down
    QElapsedTimer since_tap_;
    QPointF tap_;
};

// Null where the program does not paint.
inline WindowWidget* PaintedWidget(const Window& window) {
    return PaintedByProgram(window) ? static_cast<WindowWidget*>(window.widget.data()) : nullptr;
}

// Scroll bars of a painted window.
void AttachScrollBars(Window& window, DWORD style);
void ArrangeScrollBars(Window& window);

#endif

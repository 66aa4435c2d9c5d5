// The widget behind every window: turns Qt's events into the queue's messages.
#ifndef QUILL_PLATFORM_QT_WINDOW_WINDOW_WIDGET_H
#define QUILL_PLATFORM_QT_WINDOW_WINDOW_WIDGET_H

#include <QElapsedTimer>
#include <QPointF>

#include "platform/qt/window/slice.h"

class QBackingStore;
class QPainter;
class QTouchEvent;

// The store of a desktop window that is ready to be drawn on; null while it has none yet, or has
// one of another size.
QBackingStore* ReadyStore(const QWidget* top);

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

#endif

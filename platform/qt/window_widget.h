// The widget behind every window: turns Qt's events into the queue's messages.
#ifndef QUILL_PLATFORM_QT_WINDOW_WIDGET_H
#define QUILL_PLATFORM_QT_WINDOW_WIDGET_H

#include "slice.h"

class WindowWidget : public QWidget {
    Q_OBJECT
  public:
    WindowWidget(HWND window, QWidget* parent);

    // Paints what InvalidateRect collected, at once.
    void PaintInvalid();
    bool painting() const { return painting_; }

  protected:
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

    HWND window_;
    bool own_paint_ = false;  // the paint was asked for by the program
    bool painting_ = false;
};

#endif

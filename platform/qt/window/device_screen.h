// The desktop window that is the device's screen: the program's window on top, the shell's menu
// bar below it, and the input panel over the window's foot while it is shown.
#ifndef QUILL_PLATFORM_QT_WINDOW_DEVICE_SCREEN_H
#define QUILL_PLATFORM_QT_WINDOW_DEVICE_SCREEN_H

#include "platform/qt/shell/input_panel.h"
#include "platform/qt/shell/menu_bar.h"
#include "platform/qt/window/slice.h"

class ScreenWidget : public QWidget {
    Q_OBJECT
  public:
    explicit ScreenWidget(QSize size);
    MenuStrip* strip() const { return strip_; }
    InputPanel* panel() const { return panel_; }
    QRect PanelPlace() const;
    void Arrange();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

  private:
    MenuStrip* strip_;
    InputPanel* panel_;
};

#endif

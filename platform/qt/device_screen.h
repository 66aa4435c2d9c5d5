// The desktop window that is the device's screen: the program's window on top, the shell's menu
// bar below it.
#ifndef QUILL_PLATFORM_QT_DEVICE_SCREEN_H
#define QUILL_PLATFORM_QT_DEVICE_SCREEN_H

#include "slice.h"

class ScreenWidget : public QWidget {
    Q_OBJECT
  public:
    explicit ScreenWidget(QSize size);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
};

#endif

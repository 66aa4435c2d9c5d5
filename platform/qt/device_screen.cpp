// The desktop window that is the device's screen.
#include "device_screen.h"

#include <QCloseEvent>

#include "window_widget.h"

namespace {

std::unique_ptr<ScreenWidget> g_screen;

Window* ProgramWindow() {
    for (Window* window : AllWindows())
        if (IsProgramWindow(*window)) return window;
    return nullptr;
}

}  // namespace

ScreenWidget::ScreenWidget(QSize size) {
    setObjectName("device");
    setMinimumSize(100, 80);
    resize(size);
}

// A resized screen is a device of another size: the program's window goes on filling it.
void ScreenWidget::resizeEvent(QResizeEvent*) {
    if (Window* window = ProgramWindow()) PlaceWindow(*window, MainWindowArea());
}

// The program decides whether it closes.
void ScreenWidget::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (Window* window = ProgramWindow()) QueueInput(window->handle, WM_CLOSE, 0, 0);
}

void ScreenWidget::changeEvent(QEvent* event) {
    Window* window = ProgramWindow();
    if (event->type() != QEvent::WindowStateChange || !window) return;
    if (isMinimized()) QueueInput(window->handle, WM_SIZE, SIZE_MINIMIZED, 0);
}

void ScreenWidget::focusInEvent(QFocusEvent*) {
    if (Window* window = ProgramWindow()) window->widget->setFocus();
}

QWidget* DeviceScreen() { return g_screen.get(); }

void OpenDeviceScreen(QSize size) { g_screen = std::make_unique<ScreenWidget>(size); }

void CloseDeviceScreen() { g_screen.reset(); }

void SetDeviceTitle(const QString& title) { g_screen->setWindowTitle(title); }

QRect MainWindowArea() {
    return QRect(0, 0, g_screen->width(), std::max(g_screen->height() - kMenuBarHeight, 0));
}

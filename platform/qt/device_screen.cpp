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
    strip_ = new MenuStrip(this);
    panel_ = new InputPanel(this);
    resize(size);
    Arrange();
}

void ScreenWidget::Arrange() {
    const int top = std::max(height() - kMenuBarHeight, 0);
    strip_->setGeometry(0, top, width(), kMenuBarHeight);
    panel_->setGeometry(0, top - kInputPanelHeight, width(), kInputPanelHeight);
    panel_->raise();
}

// A resized screen is a device of another size: the program's window goes on filling it.
void ScreenWidget::resizeEvent(QResizeEvent*) {
    Arrange();
    if (Window* window = ProgramWindow()) PlaceWindow(*window, MainWindowArea());
}

// The program decides whether it closes.
void ScreenWidget::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (Window* window = ProgramWindow()) QueueInput(window->handle, WM_CLOSE, 0, 0);
}

// Under a box the program's window is disabled, and so is its close button.
void ScreenWidget::changeEvent(QEvent* event) {
    Window* window = ProgramWindow();
    if (event->type() != QEvent::WindowStateChange || !window) return;
    if (isMinimized() && !QApplication::activeModalWidget())
        QueueInput(window->handle, WM_SIZE, SIZE_MINIMIZED, 0);
}

void ScreenWidget::focusInEvent(QFocusEvent*) {
    if (Window* window = ProgramWindow()) window->widget->setFocus();
}

// Until the focus has come back from a box that closed, the keys come here.
void ScreenWidget::keyPressEvent(QKeyEvent* event) {
    if (Window* window = ProgramWindow()) QueueKeyEvent(window->handle, event, true);
}

void ScreenWidget::keyReleaseEvent(QKeyEvent* event) {
    if (Window* window = ProgramWindow()) QueueKeyEvent(window->handle, event, false);
}

QWidget* DeviceScreen() { return g_screen.get(); }

MenuStrip* ShellMenuStrip() { return g_screen ? g_screen->strip() : nullptr; }

InputPanel* ShellInputPanel() { return g_screen ? g_screen->panel() : nullptr; }

void OpenDeviceScreen(QSize size) { g_screen = std::make_unique<ScreenWidget>(size); }

void CloseDeviceScreen() { g_screen.reset(); }

void SetDeviceTitle(const QString& title) { g_screen->setWindowTitle(title); }

// Not every desktop gives the focus back by itself.
void ReturnFocus() {
    if (!g_screen || QApplication::activeModalWidget()) return;
    g_screen->activateWindow();
    if (Window* window = ProgramWindow()) window->widget->setFocus();
}

QRect MainWindowArea() {
    return QRect(0, 0, g_screen->width(), std::max(g_screen->height() - kMenuBarHeight, 0));
}

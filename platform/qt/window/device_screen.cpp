// The desktop window that is the device's screen.
#include "platform/qt/window/device_screen.h"

#include <QCloseEvent>
#include <QWindow>

#include "platform/qt/window/window_widget.h"

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

QRect ScreenWidget::PanelPlace() const {
    const int bottom = std::max(height() - kMenuBarHeight, 0);
    return QRect(0, bottom - kInputPanelHeight, width(), kInputPanelHeight);
}

void ScreenWidget::Arrange() {
    const QRect panel = PanelPlace();
    strip_->setGeometry(0, panel.bottom() + 1, width(), kMenuBarHeight);
    const QPoint corner = panel_->isWindow() ? mapToGlobal(panel.topLeft()) : panel.topLeft();
    panel_->setGeometry(QRect(corner, panel.size()));
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

QRect InputPanelPlace() { return g_screen->PanelPlace(); }

void LendInputPanel(QWidget* dialog) {
    constexpr Qt::WindowFlags kOwnWindow =
        Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus;
    InputPanel* panel = ShellInputPanel();
    if (!panel || panel->isHidden()) return;
    const QRect place = g_screen->PanelPlace();
    const QRect on_desktop(g_screen->mapToGlobal(place.topLeft()), place.size());
    const bool free = dialog && !dialog->geometry().intersects(on_desktop);
    if (!free && !panel->isWindow()) return;
    panel->LetGo();  // its mouse button is let go elsewhere
    panel->setParent(g_screen.get(), free ? kOwnWindow : Qt::Widget);
    panel->setAttribute(Qt::WA_ShowWithoutActivating);
    if (free) {
        panel->winId();  // makes the window, which then follows the dialog
        panel->windowHandle()->setTransientParent(dialog->windowHandle());
    }
    g_screen->Arrange();
    panel->show();
}

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

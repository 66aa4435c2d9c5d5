// SPDX-License-Identifier: MIT
// The desktop window that shows the device's screen.
#include "platform/qt/window/device_screen.h"

#include <QCloseEvent>
#include <QScreen>
#include <QWindow>

#include "platform/qt/window/messages.h"

constexpr QSize kLeastSize(100, 80);

namespace {

class ScreenWidget : public QWidget {
  public:
    explicit ScreenWidget(QSize size) {
        setObjectName("device");
        setMinimumSize(kLeastSize);
        resize(size);
    }
    QRect PanelPlace() const;
    void Furnish(const ScreenFoot& foot);
    void Arrange();
    const ScreenFoot& foot() const { return foot_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

  private:
    ScreenFoot foot_;
};

}  // namespace

static std::unique_ptr<ScreenWidget> g_screen;
static std::vector<HWND> g_over;  // the last one is on top

QRect ScreenWidget::PanelPlace() const {
    const int bottom = std::max(height() - kMenuBarHeight, 0);
    return QRect(0, bottom - kInputPanelHeight, width(), kInputPanelHeight);
}

void ScreenWidget::Furnish(const ScreenFoot& foot) {
    foot_ = foot;
    Arrange();
}

void ScreenWidget::Arrange() {
    if (!foot_.strip || !foot_.panel) return;
    const QRect place = PanelPlace();
    foot_.strip->setGeometry(0, place.bottom() + 1, width(), kMenuBarHeight);
    if (foot_.panel->parentWidget() != this) return;
    const bool apart = foot_.panel->isWindow();
    const QPoint corner = apart ? mapToGlobal(place.topLeft()) : place.topLeft();
    foot_.panel->setGeometry(QRect(corner, place.size()));
    foot_.panel->raise();
}

// A resized screen is a device of another size: the program's window still fills it.
void ScreenWidget::resizeEvent(QResizeEvent*) {
    Arrange();
    if (Window* window = ProgramWindow()) window->operations->place(*window, MainWindowArea());
}

// Asks the program, which decides whether it closes.
void ScreenWidget::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (Window* window = ProgramWindow()) QueueInput(window->handle, WM_CLOSE, 0, 0);
}

// While a box is open, the program's window is disabled, so it does not get the message.
void ScreenWidget::changeEvent(QEvent* event) {
    Window* window = ProgramWindow();
    if (event->type() != QEvent::WindowStateChange || !window) return;
    if (isMinimized() && !QApplication::activeModalWidget())
        QueueInput(window->handle, WM_SIZE, SIZE_MINIMIZED, 0);
}

void ScreenWidget::focusInEvent(QFocusEvent*) {
    if (Window* window = ProgramWindow()) window->widget->setFocus();
}

// The keys come here until the focus returns from a box that has closed.
void ScreenWidget::keyPressEvent(QKeyEvent* event) {
    if (Window* window = ProgramWindow()) QueueKeyEvent(window->handle, event, true);
}

void ScreenWidget::keyReleaseEvent(QKeyEvent* event) {
    if (Window* window = ProgramWindow()) QueueKeyEvent(window->handle, event, false);
}

// The toolkit follows a window that moves to a monitor of another density, but not a monitor that
// changes its own. A window that the toolkit makes again has the monitor's. Only the QWindow is
// made again: a dialog whose widget is hidden has been answered.
static void TakeDensityOfMonitors() {
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        QWindow* window = widget->windowHandle();
        if (!window || !widget->isVisible() || !window->isVisible()) continue;
        if (window->devicePixelRatio() == window->screen()->devicePixelRatio()) continue;
        window->destroy();
        window->setVisible(true);
    }
}

// Queued, because a monitor changes one value after the other.
static void FollowMonitor(const QScreen* monitor) {
    QObject::connect(monitor, &QScreen::geometryChanged, g_screen.get(), TakeDensityOfMonitors,
                     Qt::QueuedConnection);
}

void OpenDeviceScreen(QSize size) {
    g_screen = std::make_unique<ScreenWidget>(size);
    for (const QScreen* monitor : QGuiApplication::screens()) FollowMonitor(monitor);
    QObject::connect(qApp, &QGuiApplication::screenAdded, g_screen.get(), FollowMonitor);
}

void FurnishScreen(const ScreenFoot& foot) { g_screen->Furnish(foot); }

void ArrangeScreen() { g_screen->Arrange(); }

void CloseDeviceScreen() { g_screen.reset(); }

QWidget* DeviceScreen() { return g_screen.get(); }

void SetDeviceTitle(const QString& title) { g_screen->setWindowTitle(title); }

bool OpenScreenMenu() {
    const auto open = g_screen->foot().open_menu;
    return open && open();
}

QRect MainWindowArea() {
    return QRect(0, 0, g_screen->width(), std::max(g_screen->height() - kMenuBarHeight, 0));
}

QRect InputPanelPlace() { return g_screen->PanelPlace(); }

void PutOverScreen(HWND dialog) { g_over.push_back(dialog); }

void TakeFromScreen(HWND dialog) { std::erase(g_over, dialog); }

Window* TopMostDialog() { return g_over.empty() ? nullptr : FindWindowRecord(g_over.back()); }

QWidget* TopMostWidget() {
    const Window* top = TopMostDialog();
    return top && top->widget ? top->widget.data() : DeviceScreen();
}

bool DesktopTellsPlaces() { return !QGuiApplication::platformName().startsWith("wayland"); }

// Not every desktop returns the focus by itself.
void ReturnFocus() {
    if (!g_screen || QApplication::activeModalWidget()) return;
    g_screen->activateWindow();
    if (Window* window = ProgramWindow()) window->widget->setFocus();
}

// SPDX-License-Identifier: MIT
// The desktop window that shows the device's screen.
#include "platform/qt/window/device_screen.h"

#include <algorithm>
#include <cmath>
#include <QBackingStore>
#include <QCloseEvent>
#include <QPainter>
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

// ---------------------------------------------------------------- scales with a fraction

// Before the toolkit paints an area of a window on Wayland, it clears that area in whole units of
// the compositor. At a scale with a fraction the area can end between two units. If the screen is
// dense, so that a unit is several of its pixels, some pixels would be cleared and not painted:
// black lines. So a window is painted whole there. An area that is larger than what changed would
// not do: it touches a window beside it, which then becomes invalid, and so on without end.
static double g_units = 1;       // of the compositor in a pixel of the program
static bool g_painting = false;  // a window is being painted whole
static bool g_edges_due = false;

bool EndsBetweenUnits(const QWidget* top) {
    const QWindow* window = top->windowHandle();
    return std::trunc(g_units) != g_units && window && window->devicePixelRatio() > g_units;
}

// The toolkit leaves out the children that cover the window, so each of them is named.
static void RepaintTop(QWidget* top) {
    for (QWidget* child : top->findChildren<QWidget*>())
        if (child->window() == top) child->update();
    g_painting = g_edges_due = true;
    top->repaint();
    g_painting = g_edges_due = false;
    QCoreApplication::removePostedEvents(top, QEvent::UpdateRequest);
}

void RepaintPart(QWidget* widget, const QRegion& area) {
    EndsBetweenUnits(widget->window()) ? RepaintTop(widget->window()) : widget->repaint(area);
}

// The window itself can end between two units. What is left of the last ones gets its colour, by a
// view of the surface's pixels that is not clipped to the window.
static void PaintEdges(const QWidget* top) {
    g_edges_due = false;
    QBackingStore* store = EndsBetweenUnits(top) ? top->backingStore() : nullptr;
    auto* image = store ? dynamic_cast<QImage*>(store->paintDevice()) : nullptr;
    if (!image || image->isNull()) return;
    QImage pixels(image->bits(), image->width(), image->height(), image->bytesPerLine(),
                  image->format());
    const QSize painted = QSizeF(QSizeF(top->size()) * image->devicePixelRatio()).toSize();
    const QColor color = top->palette().color(QPalette::Window);
    QPainter painter(&pixels);
    painter.fillRect(0, painted.height(), pixels.width(), pixels.height(), color);
    painter.fillRect(painted.width(), 0, pixels.width(), pixels.height(), color);
}

namespace {

class WholePaints : public QObject {
  public:
    using QObject::QObject;
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Expose) g_edges_due = true;
        if (!object->isWidgetType()) return false;
        auto* widget = static_cast<QWidget*>(object);
        if (event->type() == QEvent::UpdateRequest) return PaintsWhole(widget);
        if (event->type() == QEvent::Paint && g_edges_due) PaintEdges(widget->window());
        return false;
    }

  private:
    static bool PaintsWhole(QWidget* top) {
        if (g_painting || !top->isVisible() || !EndsBetweenUnits(top)) return false;
        RepaintTop(top);
        return true;
    }
};

}  // namespace

static void PaintWholeUnits() {
    g_units = DesktopTellsPlaces() ? 1 : qEnvironmentVariable("QT_SCALE_FACTOR").toDouble();
    if (std::trunc(g_units) != g_units) qApp->installEventFilter(new WholePaints(g_screen.get()));
}

// ---------------------------------------------------------------- the screen

void OpenDeviceScreen(QSize size) {
    g_screen = std::make_unique<ScreenWidget>(size);
    PaintWholeUnits();
    for (const QScreen* monitor : QGuiApplication::screens()) FollowMonitor(monitor);
    QObject::connect(qApp, &QGuiApplication::screenAdded, g_screen.get(), FollowMonitor);
}

void FurnishScreen(const ScreenFoot& foot) { g_screen->Furnish(foot); }

void ArrangeScreen() { g_screen->Arrange(); }

void CloseDeviceScreen() { g_screen.reset(); }

QWidget* DeviceScreen() { return g_screen.get(); }

// The toolkit takes "[*]" for its mark of a changed document, and shows "[*][*]" as "[*]".
void SetDeviceTitle(const QString& title) {
    g_screen->setWindowTitle(QString(title).replace("[*]", "[*][*]"));
}

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

static bool IsShown(HWND dialog) {
    const Window* window = FindWindowRecord(dialog);
    return window && window->widget && window->widget->isVisible();
}

QWidget* ParentOfBox() {
    const auto shown = std::find_if(g_over.rbegin(), g_over.rend(), IsShown);
    return shown == g_over.rend() ? DeviceScreen() : FindWindowRecord(*shown)->widget.data();
}

bool DesktopTellsPlaces() { return !QGuiApplication::platformName().startsWith("wayland"); }

// Not every desktop returns the focus by itself.
void ReturnFocus() {
    if (!g_screen) return;
    if (QWidget* modal = QApplication::activeModalWidget()) return modal->activateWindow();
    g_screen->activateWindow();
    if (Window* window = ProgramWindow()) window->widget->setFocus();
}

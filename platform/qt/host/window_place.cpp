// SPDX-License-Identifier: MIT
// Reads and writes the file of the window's place, and fits the place to the present screens.
#include "platform/qt/host/host.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <optional>
#include <QScreen>

#include "platform/qt/services/services.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"

constexpr int kLongestSide = 4000;
constexpr int kSmallestSide = 80;
constexpr int kTitleHeight = 20;     // a title bar has at least as many desktop pixels
constexpr int kBorder = 8;           // both sides of the frame together
constexpr int kTitleReachable = 60;  // width of the title bar that must be on a screen

namespace {

struct WindowPlace {
    QSize size;
    std::optional<QPoint> place;
    QSize desktop;  // size of all screens together when the place was saved
    bool maximized = false;
};

}  // namespace

// Where RestoreWindowPlace put the window. A device pixel is several desktop pixels, so the
// position that is read back can be off by rounding. SaveWindowPlace then writes this one again, or
// a window that nobody moves would wander from run to run.
static std::optional<QPoint> g_restored;
constexpr int kRounding = 2;

static std::string PlaceFile() { return DeviceRoot() + "/window.cfg"; }

static void TakeLine(const char* line, WindowPlace* place) {
    int a = 0, b = 0;
    if (std::sscanf(line, "size %6d %6d", &a, &b) == 2) place->size = QSize(a, b);
    if (std::sscanf(line, "place %6d %6d", &a, &b) == 2) place->place = QPoint(a, b);
    if (std::sscanf(line, "desktop %6d %6d", &a, &b) == 2) place->desktop = QSize(a, b);
    if (std::sscanf(line, "maximized %6d", &a) == 1) place->maximized = a == 1;
}

// O_NONBLOCK: if the name is that of a pipe, open must not block the start.
static bool ReadPlace(WindowPlace* place) {
    const int file = open(PlaceFile().c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return false;
    char text[512];
    const ssize_t count = read(file, text, sizeof(text) - 1);
    close(file);
    text[std::max<ssize_t>(count, 0)] = 0;
    for (const QByteArray& line : QByteArray(text).split('\n')) TakeLine(line.constData(), place);
    return place->size.width() >= kSmallestSide && place->size.height() >= kSmallestSide &&
           place->size.width() <= kLongestSide && place->size.height() <= kLongestSide;
}

static const QScreen* ScreenOf(const WindowPlace& place) {
    if (!place.place) return nullptr;
    const QRect title(*place.place, QSize(place.size.width(), kTitleHeight));
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect seen = screen->availableGeometry() & title;
        const int wanted = std::min(kTitleReachable, title.width());
        if (seen.width() >= wanted && seen.height() * 2 > kTitleHeight) return screen;
    }
    return nullptr;
}

static QSize DesktopSize() { return QGuiApplication::primaryScreen()->virtualGeometry().size(); }

// If the desktop is the same as before, the user has put the window over the edge: it stays there.
// Only a title bar above the screen comes back: nothing else can move the window on every desktop.
static void FitInto(const QRect& screen, WindowPlace* place) {
    const QRect room = screen.adjusted(0, 0, -kBorder, -kBorder);
    const QSize wanted = place->size;
    place->size = wanted.boundedTo(room.size() - QSize(0, kTitleHeight));
    if (!place->place) return;
    place->place->setY(std::max(place->place->y(), room.top()));
    if (place->size == wanted && place->desktop == DesktopSize()) return;
    const QPoint farthest(room.right() + 1 - place->size.width(),
                          room.bottom() + 1 - place->size.height() - kTitleHeight);
    place->place = QPoint(std::max(std::min(place->place->x(), farthest.x()), room.left()),
                          std::max(std::min(place->place->y(), farthest.y()), room.top()));
}

static WindowPlace PlaceOf(const QWidget& window) {
    WindowPlace place;
    place.maximized = window.isMaximized();
    const QRect normal = place.maximized ? window.normalGeometry() : window.geometry();
    place.size = normal.size();
    const QPoint frame = window.geometry().topLeft() - window.frameGeometry().topLeft();
    if (!DesktopTellsPlaces()) return place;
    place.place = normal.topLeft() - frame;
    if (g_restored && (*place.place - *g_restored).manhattanLength() <= kRounding)
        place.place = g_restored;
    return place;
}

static std::string LineOf(const char* name, int a, int b) {
    return std::string(name) + ' ' + std::to_string(a) + ' ' + std::to_string(b) + '\n';
}

static std::string TextOf(const WindowPlace& place) {
    std::string text = LineOf("size", place.size.width(), place.size.height());
    if (place.place) text += LineOf("place", place.place->x(), place.place->y());
    text += LineOf("desktop", DesktopSize().width(), DesktopSize().height());
    return text + (place.maximized ? "maximized 1\n" : "maximized 0\n");
}

void RestoreWindowPlace() {
    WindowPlace place;
    if (!ReadPlace(&place)) return;
    const QScreen* screen = ScreenOf(place);
    if (!screen) place.place.reset(), screen = QGuiApplication::primaryScreen();
    FitInto(screen->availableGeometry(), &place);
    QWidget* window = DeviceScreen();
    window->resize(place.size);
    if (DesktopTellsPlaces()) g_restored = place.place;
    if (g_restored) window->move(*g_restored);
    if (place.maximized) window->setWindowState(Qt::WindowMaximized);
}

// Writes a new file and renames it, so that the old one stays until the new one is complete.
void SaveWindowPlace() {
    const QWidget* window = DeviceScreen();
    if (!window || !window->isVisible()) return;
    const std::string text = TextOf(PlaceOf(*window)), fresh = PlaceFile() + ".new";
    const int file = open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0) return;
    const bool whole = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (close(file) == 0 && whole && rename(fresh.c_str(), PlaceFile().c_str()) == 0) return;
    unlink(fresh.c_str());
}

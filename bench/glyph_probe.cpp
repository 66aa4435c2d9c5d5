// SPDX-License-Identifier: MIT
// Measures from outside what a person sees of a terminal on an X server. bench/terminals.py runs
// it.
//
//   glyph_probe keys SOCKET PRESSES RATE SEED   presses the key x at random times and prints for
//       each press the microseconds until the pixels of the echoed glyph have changed, and the
//       times of the press and of the change on the monotonic clock. SOCKET is the descriptor of
//       the connection to a terminal's telnet. This program is its host and echoes at once. RATE:
//       bytes per second of a stream that scrolls below the glyph; 0: no stream.
//   glyph_probe start COMMAND...           starts a program, prints the microseconds until its
//       window shows more than one colour and the processor time used until then, and ends it.
//
// The X server makes real key events (XTEST) and reports drawing (DAMAGE), so that the probe does
// not poll while a terminal works.
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/wait.h>
#include <unistd.h>
#include <X11/extensions/Xdamage.h>
#include <X11/extensions/XShm.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

struct Area {
    int x = 0, y = 0, width = 0, height = 0;
};

struct Screen {
    Display* display = nullptr;
    Window root = 0;
    Damage damage = 0;
    int damage_event = 0;
    XImage* image = nullptr;  // the whole screen, in shared memory
    XShmSegmentInfo shared = {};
};

using Pixels = std::vector<uint32_t>;

Screen screen;
int host = -1;
std::mutex host_mutex;
std::atomic<bool> done{false};

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "glyph_probe: %s\n", what);
    std::exit(1);
}

long Microseconds(Clock::duration span) {
    return static_cast<long>(std::chrono::duration_cast<std::chrono::microseconds>(span).count());
}

void Rest(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// ---------------------------------------------------------------- the screen

// The server starts again when its last program ends, and refuses programs until it has.
void OpenDisplay() {
    constexpr int kTries = 100, kRestBetween = 20;
    for (int i = 0; i < kTries && !screen.display; ++i) {
        screen.display = XOpenDisplay(nullptr);
        if (!screen.display) Rest(kRestBetween);
    }
    if (!screen.display) Fail("no display");
}

void OpenScreen() {
    OpenDisplay();
    screen.root = DefaultRootWindow(screen.display);
    int error = 0;
    if (!XDamageQueryExtension(screen.display, &screen.damage_event, &error))
        Fail("the X server has no DAMAGE");
    screen.damage = XDamageCreate(screen.display, screen.root, XDamageReportNonEmpty);
    const int number = DefaultScreen(screen.display);
    const auto width = static_cast<unsigned>(DisplayWidth(screen.display, number));
    const auto height = static_cast<unsigned>(DisplayHeight(screen.display, number));
    screen.image = XShmCreateImage(screen.display, DefaultVisual(screen.display, number), 24,
                                   ZPixmap, nullptr, &screen.shared, width, height);
    const size_t bytes = static_cast<size_t>(screen.image->bytes_per_line) * height;
    screen.shared.shmid = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    screen.shared.shmaddr = static_cast<char*>(shmat(screen.shared.shmid, nullptr, 0));
    screen.image->data = screen.shared.shmaddr;
    if (!XShmAttach(screen.display, &screen.shared)) Fail("no shared memory");
    XSync(screen.display, False);
    shmctl(screen.shared.shmid, IPC_RMID, nullptr);
}

// The pixels of an area in the image's format, row by row. Fetches only these rows.
Pixels Look(const Area& area) {
    XImage part = *screen.image;
    part.width = area.width;
    part.height = area.height;
    part.bytes_per_line = area.width * 4;
    XShmGetImage(screen.display, screen.root, &part, area.x, area.y, AllPlanes);
    const auto* first = reinterpret_cast<const uint32_t*>(screen.image->data);
    return Pixels(first,
                  first + static_cast<size_t>(area.width) * static_cast<size_t>(area.height));
}

// Waits until something is drawn; false after the given time. `when` is the time of the report.
bool AwaitDamage(int milliseconds, Clock::time_point* when) {
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        while (XPending(screen.display)) {
            XEvent event;
            XNextEvent(screen.display, &event);
            if (event.type != screen.damage_event + XDamageNotify) continue;
            *when = Clock::now();
            XDamageSubtract(screen.display, screen.damage, None, None);
            return true;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) return false;
        pollfd wait = {ConnectionNumber(screen.display), POLLIN, 0};
        poll(&wait, 1, static_cast<int>(left.count()) + 1);
    }
}

// Compares at once and after each drawing, until the area shows the wanted pixels.
bool AwaitPixels(const Area& area, const Pixels& wanted, int milliseconds,
                 Clock::time_point* when) {
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    *when = Clock::now();
    while (Look(area) != wanted) {
        if (Clock::now() > end || !AwaitDamage(milliseconds, when)) return false;
    }
    return true;
}

struct Shown {
    Window window = 0;
    Area area;
};

// The largest window on the screen.
Shown LargestWindow() {
    Shown best;
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(screen.display, screen.root, &root, &parent, &children, &count)) return best;
    for (unsigned i = 0; i < count; i++) {
        XWindowAttributes at;
        if (!XGetWindowAttributes(screen.display, children[i], &at) || at.map_state != IsViewable)
            continue;
        if (at.width * at.height <= best.area.width * best.area.height) continue;
        const int left = std::max(at.x, 0), top = std::max(at.y, 0);
        best.window = children[i];
        best.area = {left, top, std::min(at.x + at.width, screen.image->width) - left,
                     std::min(at.y + at.height, screen.image->height) - top};
    }
    XFree(children);
    return best;
}

// ---------------------------------------------------------------- the host

void HostWrite(const std::string& bytes) {
    const std::lock_guard<std::mutex> lock(host_mutex);
    for (size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = write(host, bytes.data() + sent, bytes.size() - sent);
        if (count <= 0) Fail("the terminal has closed its connection");
        sent += static_cast<size_t>(count);
    }
}

constexpr const char* kPlace = "\033[12;40H";

// The stream moves the cursor, so the echo begins with a cursor position.
void EchoKeys(bool placed) {
    char bytes[4096];
    for (ssize_t count; (count = read(host, bytes, sizeof bytes)) > 0;) {
        for (ssize_t i = 0; i < count; i++)
            if (bytes[i] == 'x') HostWrite(placed ? std::string(kPlace) + 'x' : "x");
    }
}

std::string StreamOfLines(size_t bytes) {
    static unsigned number = 0;
    std::string text = "\033[24;1H";
    char line[100];
    while (text.size() < bytes) {
        std::snprintf(line, sizeof line, "%08u the quick brown fox jumps over the lazy dog\r\n",
                      number++);
        text += line;
    }
    return text;
}

void Stream(long rate) {
    constexpr long kPieces = 1000;  // a second
    auto next = Clock::now();
    while (!done) {
        HostWrite(StreamOfLines(static_cast<size_t>(rate / kPieces)));
        next += std::chrono::microseconds(1000000 / kPieces);
        std::this_thread::sleep_until(next);
    }
}

// ---------------------------------------------------------------- keys

void PressX(bool down) {
    const KeyCode code = XKeysymToKeycode(screen.display, XK_x);
    XTestFakeKeyEvent(screen.display, code, down, CurrentTime);
    XFlush(screen.display);
}

// The area of the cell in row 12, column 40: the pixels that change when only it is reversed.
Area FindCell(const Area& window) {
    HostWrite("\033[2J\033[12;40H\033[7m \033[m\033[H");
    Rest(500);
    const Pixels with = Look(window);
    HostWrite("\033[12;40H \033[H");
    Rest(500);
    const Pixels without = Look(window);
    int left = window.width, right = -1, top = window.height, bottom = -1;
    for (int y = 0; y < window.height; y++) {
        for (int x = 0; x < window.width; x++) {
            const auto i = static_cast<size_t>(y * window.width + x);
            if (with[i] == without[i]) continue;
            left = std::min(left, x), right = std::max(right, x);
            top = std::min(top, y), bottom = std::max(bottom, y);
        }
    }
    if (right < left || right - left > 60 || bottom - top > 60) Fail("the cell is not to be found");
    return {window.x + left, window.y + top, right - left + 1, bottom - top + 1};
}

// The pixels of the cell after the echo of the key.
Pixels PixelsOfEcho(const Area& cell) {
    HostWrite(kPlace);
    Rest(300);
    const Pixels before = Look(cell);
    PressX(true);
    PressX(false);
    Rest(500);
    const Pixels after = Look(cell);
    if (before == after) Fail("the key is not echoed");
    return after;
}

void TakeBack(const Area& cell, const Pixels& echoed) {
    Clock::time_point when;
    while (Look(cell) == echoed) {
        if (!AwaitDamage(3000, &when)) Fail("the glyph was not taken back");
    }
    while (AwaitDamage(0, &when)) {
    }
    Rest(1);  // the X server sleeps again
}

void MeasurePresses(const Area& cell, const Pixels& echoed, int presses, bool placed,
                    unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> pause(30000, 80000);
    Clock::time_point when;
    for (int i = 0; i < presses; i++) {
        HostWrite(placed ? std::string(kPlace) + ' ' : "\b \b");
        std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
        TakeBack(cell, echoed);
        const auto pressed = Clock::now();
        PressX(true);
        if (!AwaitPixels(cell, echoed, 3000, &when)) Fail("a key was not echoed in time");
        PressX(false);
        std::printf("%ld %ld %ld\n", Microseconds(when - pressed),
                    Microseconds(pressed.time_since_epoch()),
                    Microseconds(when.time_since_epoch()));
    }
}

int Keys(int presses, long rate, unsigned seed) {
    const Shown shown = LargestWindow();
    if (!shown.window) Fail("there is no window");
    XSetInputFocus(screen.display, shown.window, RevertToPointerRoot, CurrentTime);
    XSync(screen.display, False);
    Rest(300);
    std::thread(EchoKeys, rate > 0).detach();
    HostWrite("\033[r\033[m");
    const Area cell = FindCell(shown.area);
    const Pixels echoed = PixelsOfEcho(cell);
    std::thread stream;
    if (rate > 0) {
        HostWrite("\033[14;24r");
        stream = std::thread(Stream, rate);
    }
    MeasurePresses(cell, echoed, presses, rate > 0, seed);
    done = true;
    if (stream.joinable()) stream.join();
    std::fflush(stdout);
    _exit(0);  // the thread that echoes still waits for keys
}

// ---------------------------------------------------------------- start

bool Painted() {
    const Shown shown = LargestWindow();
    if (shown.area.width < 50 || shown.area.height < 20) return false;
    const Pixels pixels = Look(shown.area);
    return std::adjacent_find(pixels.begin(), pixels.end(), std::not_equal_to<>()) != pixels.end();
}

long ProcessorMicroseconds(pid_t pid) {
    clockid_t clock;
    timespec time = {};
    if (clock_getcpuclockid(pid, &clock) || clock_gettime(clock, &time)) return -1;
    return time.tv_sec * 1000000 + time.tv_nsec / 1000;
}

int Start(char** command) {
    Clock::time_point when;
    while (AwaitDamage(50, &when)) {
    }
    const auto began = Clock::now();
    pid_t pid = 0;
    if (posix_spawnp(&pid, command[0], nullptr, nullptr, command, environ)) Fail("cannot start");
    bool painted = false;
    while (!painted && AwaitDamage(20000, &when)) painted = Painted();
    const long processor = ProcessorMicroseconds(pid);
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
    if (!painted) Fail("nothing was painted");
    std::printf("%ld %ld\n", Microseconds(when - began), processor);
    return 0;
}

int Ignore(Display*, XErrorEvent*) { return 0; }  // windows may disappear at any time

}  // namespace

int main(int argc, char** argv) {
    const std::string what = argc > 1 ? argv[1] : "";
    signal(SIGPIPE, SIG_IGN);
    XSetErrorHandler(Ignore);
    OpenScreen();
    if (what == "keys" && argc == 6) {
        host = std::atoi(argv[2]);
        return Keys(std::atoi(argv[3]), std::atol(argv[4]),
                    static_cast<unsigned>(std::atol(argv[5])));
    }
    if (what == "start" && argc > 2) return Start(argv + 2);
    Fail("usage: glyph_probe keys SOCKET PRESSES RATE SEED | start COMMAND...");
}

// SPDX-License-Identifier: MIT
// Allows one program per device root. The first program holds a lock file and listens on a local
// socket; a second one finds it there and hands over to it. The socket's name exists only in the
// kernel, so the socket leaves nothing on the disk.
#include <map>
#include <QCryptographicHash>
#include <QLockFile>
#include <QSocketNotifier>

#include "platform/qt/services/posix_sockets.h"
#include "platform/qt/services/services.h"
#include "platform/qt/window/window.h"

static const HWND kOtherInstance = reinterpret_cast<HWND>(static_cast<UINT_PTR>(4));
constexpr int kConnectMilliseconds = 2000;
constexpr int kConnectStep = 50;  // milliseconds
constexpr int kAnswerMilliseconds = 5000;
constexpr qsizetype kLongestRequest = 64;

namespace {

// A socket that is watched while the program runs; it is closed together with its watch.
struct Watch {
    explicit Watch(int socket) : descriptor(socket), notifier(socket, QSocketNotifier::Read) {}
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch() {
        notifier.setEnabled(false);
        CloseLocally(descriptor);
    }

    int descriptor;
    QSocketNotifier notifier;
    QByteArray heard;
};

}  // namespace

static std::unique_ptr<QLockFile> g_lock;
static std::unique_ptr<Watch> g_server;
static std::map<int, std::unique_ptr<Watch>> g_callers;  // by socket
static HWND g_window = nullptr;  // the window that others ask for; null until it is made

static std::string SocketName() {
    const QByteArray root = QByteArray::fromStdString(DeviceRoot());
    const QByteArray hash = QCryptographicHash::hash(root, QCryptographicHash::Sha1);
    return "quill-" + hash.toHex().toStdString();
}

// The user must see what lies over the window, a box or a dialog. A first box may appear before the
// window does.
static void Foreground() {
    if (Window* window = FindWindowRecord(g_window)) window->operations->foreground(*window);
    QWidget* above = QApplication::activeModalWidget();
    if (!above) return;
    above->raise();
    above->activateWindow();
}

static void Show() {
    if (Window* window = FindWindowRecord(g_window)) window->operations->show(*window, SW_SHOW);
    if (QWidget* above = QApplication::activeModalWidget()) above->activateWindow();
}

static void Paint() {
    if (Window* window = FindWindowRecord(g_window))
        window->operations->send(*window, WM_PAINT, 0, 0);
}

namespace {

struct RequestRow {
    const char* request;
    void (*carry_out)();
};

}  // namespace

static const RequestRow kRequests[] = {
    {"foreground", Foreground},
    {"show", Show},
    {"paint", Paint},
};

static void Answer(Watch& caller) {
    for (qsizetype end; (end = caller.heard.indexOf('\n')) >= 0; caller.heard.remove(0, end + 1)) {
        const QByteArray line = caller.heard.left(end).trimmed();
        for (const RequestRow& row : kRequests)
            if (line == row.request) row.carry_out();
        SayLocally(caller.descriptor, "done\n");
    }
}

static void Hear(int socket) {
    const auto found = g_callers.find(socket);
    if (found == g_callers.end()) return;
    Watch& caller = *found->second;
    char bytes[kLongestRequest];
    const long count = HearLocally(socket, bytes, sizeof(bytes));
    if (count < 0) return;
    caller.heard.append(bytes, count);
    Answer(caller);
    if (count > 0 && caller.heard.size() <= kLongestRequest) return;
    caller.notifier.setEnabled(false);
    // The notifier is still in its call, so the caller is erased later.
    QMetaObject::invokeMethod(
        qApp, [socket] { g_callers.erase(socket); }, Qt::QueuedConnection);
}

static void Accept() {
    const int socket = AcceptLocally(g_server->descriptor);
    if (socket < 0) return;
    auto caller = std::make_unique<Watch>(socket);
    QObject::connect(&caller->notifier, &QSocketNotifier::activated, qApp,
                     [socket] { Hear(socket); });
    g_callers[socket] = std::move(caller);
}

static void Listen() {
    if (g_server) return;
    const int socket = ListenLocally(SocketName());
    if (socket < 0) return;
    g_server = std::make_unique<Watch>(socket);
    QObject::connect(&g_server->notifier, &QSocketNotifier::activated, qApp, Accept);
}

// The kernel releases the lock when its holder ends, however it ends.
static bool TakeLock() {
    if (!g_lock)
        g_lock =
            std::make_unique<QLockFile>(QString::fromStdString(DeviceRoot()) + "/instance.lock");
    g_lock->setStaleLockTime(0);
    return g_lock->isLocked() || g_lock->tryLock(0);
}

// Sends a request and returns whether the other program has answered. That program may not listen
// yet, so the call is repeated.
static bool TellOther(const char* request) {
    int socket = CallLocally(SocketName());
    for (int waited = 0; socket < 0 && waited < kConnectMilliseconds; waited += kConnectStep) {
        Sleep(kConnectStep);
        socket = CallLocally(SocketName());
    }
    if (socket < 0) return false;
    char byte = 0;
    const bool answered = SayLocally(socket, std::string(request) + '\n') &&
                          AwaitLocally(socket, kAnswerMilliseconds) &&
                          HearLocally(socket, &byte, 1) > 0;
    CloseLocally(socket);
    return answered;
}

static void Ask(const char* request) {
    static bool given_up = false;
    if (given_up || TellOther(request)) return;
    given_up = true;
    std::fprintf(stderr, "quill: the program that runs on %s does not answer\n",
                 Printable(DeviceRoot()).c_str());
}

constexpr WindowOperations kOtherOperations = {
    nullptr,
    nullptr,  // only windows of the table are moved
    [](Window&, int) { return Ask("show"), BOOL{TRUE}; },
    [](Window&) { return Ask("foreground"), BOOL{TRUE}; },
    [](Window&, UINT message, WPARAM, LPARAM) {
        if (message == WM_PAINT) Ask("paint");
        return LRESULT{0};
    },
};

// The program that gets the lock listens at once, because a box may hold up the rest of its start.
HWND FindOtherInstance() {
    static Window other;
    if (TakeLock()) return Listen(), nullptr;
    if (g_lock->error() != QLockFile::LockFailedError) return nullptr;  // no folder to lock in
    other.handle = kOtherInstance;
    other.operations = &kOtherOperations;
    SetForeignWindow(&other);
    return kOtherInstance;
}

void ServeOtherInstances(HWND window) {
    if (!TakeLock()) return;
    Listen();
    g_window = window;
}

void StopServingInstances() {
    g_window = nullptr;
    g_callers.clear();
    g_server.reset();
    g_lock.reset();
}

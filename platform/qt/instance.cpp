// One program a device root: the first one holds a lock file and listens on a local socket; a
// second one finds it there and hands over to it.
#include <memory>
#include <QCryptographicHash>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>

#include "device_root.h"
#include "window_widget.h"

namespace {

const HWND kOtherInstance = reinterpret_cast<HWND>(static_cast<UINT_PTR>(4));
constexpr int kConnectMilliseconds = 2000;
constexpr int kAnswerMilliseconds = 5000;

std::unique_ptr<QLockFile> g_lock;
std::unique_ptr<QLocalServer> g_server;
HWND g_window = nullptr;  // the one that others ask for; null until it is made

QString SocketName() {
    const QByteArray root = QByteArray::fromStdString(DeviceRoot());
    return "quill-" + QCryptographicHash::hash(root, QCryptographicHash::Sha1).toHex();
}

// What lies over the window is what the user is to see: a box or a dialog. The first box, and what
// it asks, may come before the window.
void Foreground() {
    if (g_window) SetForegroundWindow(g_window);
    QWidget* above = QApplication::activeModalWidget();
    if (!above) return;
    above->raise();
    above->activateWindow();
}

void Show() {
    if (g_window) ShowWindow(g_window, SW_SHOW);
    if (QWidget* above = QApplication::activeModalWidget()) above->activateWindow();
}

void Paint() {
    if (g_window) SendMessageW(g_window, WM_PAINT, 0, 0);
}

struct RequestRow {
    const char* request;
    void (*carry_out)();
};

const RequestRow kRequests[] = {
    {"foreground", Foreground},
    {"show", Show},
    {"paint", Paint},
};

void Answer(QLocalSocket* socket) {
    while (socket->canReadLine()) {
        const QByteArray line = socket->readLine(64).trimmed();
        for (const RequestRow& row : kRequests)
            if (line == row.request) row.carry_out();
        socket->write("done\n");
    }
}

void Accept() {
    while (QLocalSocket* socket = g_server->nextPendingConnection()) {
        QObject::connect(socket, &QLocalSocket::readyRead, socket, [socket] { Answer(socket); });
        QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        Answer(socket);
    }
}

void Listen() {
    if (g_server) return;
    g_server = std::make_unique<QLocalServer>();
    g_server->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(SocketName());
    if (!g_server->listen(SocketName())) return g_server.reset();
    QObject::connect(g_server.get(), &QLocalServer::newConnection, qApp, Accept);
}

// The lock is the kernel's and ends with its holder, however that ends.
bool TakeLock() {
    if (!g_lock)
        g_lock =
            std::make_unique<QLockFile>(QString::fromStdString(DeviceRoot()) + "/instance.lock");
    g_lock->setStaleLockTime(0);
    return g_lock->isLocked() || g_lock->tryLock(0);
}

// The other program may still be on its way to listening. Whether it has answered.
bool TellOther(const char* request) {
    QLocalSocket socket;
    for (int waited = 0; waited < kConnectMilliseconds; waited += 50) {
        socket.connectToServer(SocketName());
        if (socket.waitForConnected(500)) break;
        Sleep(50);
    }
    if (socket.state() != QLocalSocket::ConnectedState) return false;
    socket.write(QByteArray(request) + "\n");
    socket.flush();
    return socket.waitForReadyRead(kAnswerMilliseconds);
}

}  // namespace

// Who holds the lock listens from then on: a box may keep the start from its end.
HWND FindOtherInstance() {
    if (TakeLock()) return Listen(), nullptr;
    if (g_lock->error() != QLockFile::LockFailedError) return nullptr;  // no folder to lock in
    return kOtherInstance;
}

bool IsOtherInstance(HWND window) { return window == kOtherInstance; }

void AskOtherInstance(const char* request) {
    static bool given_up = false;
    if (given_up || TellOther(request)) return;
    given_up = true;
    std::fprintf(stderr, "quill: the program that runs on %s does not answer\n",
                 DeviceRoot().c_str());
}

void ServeOtherInstances(HWND window) {
    if (!TakeLock()) return;
    Listen();
    g_window = window;
}

void StopServingInstances() {
    g_window = nullptr;
    g_server.reset();
    g_lock.reset();
}

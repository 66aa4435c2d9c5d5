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
constexpr int kHandOverMilliseconds = 2000;

std::unique_ptr<QLockFile> g_lock;
std::unique_ptr<QLocalServer> g_server;

QString SocketName() {
    const QByteArray root = QByteArray::fromStdString(DeviceRoot());
    return "quill-" + QCryptographicHash::hash(root, QCryptographicHash::Sha1).toHex();
}

struct RequestRow {
    const char* request;
    void (*carry_out)(HWND window);
};

void Foreground(HWND window) { SetForegroundWindow(window); }
void Show(HWND window) { ShowWindow(window, SW_SHOW); }
void Paint(HWND window) { SendMessageW(window, WM_PAINT, 0, 0); }

const RequestRow kRequests[] = {
    {"foreground", Foreground},
    {"show", Show},
    {"paint", Paint},
};

void Answer(QLocalSocket* socket, HWND window) {
    while (socket->canReadLine()) {
        const QByteArray line = socket->readLine(64).trimmed();
        for (const RequestRow& row : kRequests)
            if (line == row.request) row.carry_out(window);
        socket->write("done\n");
    }
}

void Accept(HWND window) {
    while (QLocalSocket* socket = g_server->nextPendingConnection()) {
        QObject::connect(socket, &QLocalSocket::readyRead, socket,
                         [socket, window] { Answer(socket, window); });
        QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        Answer(socket, window);
    }
}

// The lock is the kernel's and ends with its holder, however that ends.
bool TakeLock() {
    if (!g_lock)
        g_lock =
            std::make_unique<QLockFile>(QString::fromStdString(DeviceRoot()) + "/instance.lock");
    g_lock->setStaleLockTime(0);
    return g_lock->isLocked() || g_lock->tryLock(0);
}

}  // namespace

HWND FindOtherInstance() {
    if (TakeLock()) return nullptr;
    if (g_lock->error() != QLockFile::LockFailedError) return nullptr;  // no folder to lock in
    return kOtherInstance;
}

bool IsOtherInstance(HWND window) { return window == kOtherInstance; }

// The other program may still be on its way to listening.
void AskOtherInstance(const char* request) {
    QLocalSocket socket;
    for (int waited = 0; waited < kHandOverMilliseconds; waited += 50) {
        socket.connectToServer(SocketName());
        if (socket.waitForConnected(500)) break;
        Sleep(50);
    }
    if (socket.state() != QLocalSocket::ConnectedState) return;
    socket.write(QByteArray(request) + "\n");
    socket.flush();
    socket.waitForReadyRead(kHandOverMilliseconds);
}

void ServeOtherInstances(HWND window) {
    if (g_server || !TakeLock()) return;
    g_server = std::make_unique<QLocalServer>();
    g_server->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(SocketName());
    if (!g_server->listen(SocketName())) return g_server.reset();
    QObject::connect(g_server.get(), &QLocalServer::newConnection, qApp,
                     [window] { Accept(window); });
}

void StopServingInstances() {
    g_server.reset();
    g_lock.reset();
}

// Stream sockets between programs of one user.
#include "platform/qt/services/local_socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

struct LocalAddress {
    sockaddr_un address = {};
    socklen_t length = 0;
    const sockaddr* Generic() const { return reinterpret_cast<const sockaddr*>(&address); }
};

// A name that begins with a zero byte is the kernel's, and no file's.
LocalAddress AddressOf(const std::string& name) {
    LocalAddress local;
    local.address.sun_family = AF_UNIX;
    const size_t length = name.copy(local.address.sun_path + 1, sizeof local.address.sun_path - 1);
    local.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
    return local;
}

int NewSocket(int flags) { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0); }

// Anybody on the machine may call a name.
bool IsOwnUser(int socket) {
    ucred peer = {};
    socklen_t size = sizeof peer;
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == getuid();
}

}  // namespace

int ListenLocally(const std::string& name) {
    const LocalAddress local = AddressOf(name);
    const int listener = NewSocket(SOCK_NONBLOCK);
    if (listener < 0) return -1;
    if (bind(listener, local.Generic(), local.length) == 0 && listen(listener, 8) == 0)
        return listener;
    close(listener);
    return -1;
}

int AcceptLocally(int listener) {
    const int caller = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (caller < 0 || IsOwnUser(caller)) return caller;
    close(caller);
    return -1;
}

int CallLocally(const std::string& name) {
    const LocalAddress local = AddressOf(name);
    const int caller = NewSocket(0);
    if (caller < 0 || connect(caller, local.Generic(), local.length) == 0) return caller;
    close(caller);
    return -1;
}

bool SayLocally(int socket, const std::string& bytes) {
    return send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
}

long HearLocally(int socket, char* bytes, size_t size) {
    const ssize_t count = recv(socket, bytes, size, 0);
    return count >= 0 ? count : errno == EAGAIN || errno == EINTR ? -1 : 0;
}

bool AwaitLocally(int socket, int milliseconds) {
    pollfd wait = {socket, POLLIN, 0};
    return poll(&wait, 1, milliseconds) > 0;
}

void CloseLocally(int socket) { close(socket); }

// SPDX-License-Identifier: MIT
// A host on loopback.
#include "tests/support/fake_host.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>

namespace {

int Bind(int* port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    ::bind(fd, reinterpret_cast<sockaddr*>(&address), size);
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
    *port = ntohs(address.sin_port);
    return fd;
}

bool Readable(int fd, int milliseconds) {
    pollfd entry = {fd, POLLIN, 0};
    return ::poll(&entry, 1, milliseconds) > 0;
}

int Left(std::chrono::steady_clock::time_point end) {
    const auto left = end - std::chrono::steady_clock::now();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(left).count();
    return milliseconds > 0 ? static_cast<int>(milliseconds) : 0;
}

}  // namespace

FakeHost::FakeHost() {
    listener = Bind(&port);
    ::listen(listener, 16);
}

FakeHost::~FakeHost() {
    Drop();
    ::close(listener);
}

bool FakeHost::Accept(int milliseconds) {
    Drop();
    if (!Readable(listener, milliseconds)) return false;
    connection = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    const int on = 1;
    ::setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    return connection >= 0;
}

bool FakeHost::Send(const std::string& bytes) {
    size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t n =
            ::send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n <= 0) return false;
        sent += static_cast<size_t>(n);
    }
    return true;
}

void FakeHost::SendUrgent(char byte) { ::send(connection, &byte, 1, MSG_OOB | MSG_NOSIGNAL); }

size_t FakeHost::TrySend(const std::string& bytes) {
    const ssize_t n = ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    return n > 0 ? static_cast<size_t>(n) : 0;
}

std::string FakeHost::Read(size_t count, int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    std::string bytes;
    while (bytes.size() < count && Readable(connection, Left(end))) {
        char buffer[4096];
        const ssize_t n =
            ::recv(connection, buffer, std::min(sizeof(buffer), count - bytes.size()), 0);
        if (n <= 0) break;
        bytes.append(buffer, static_cast<size_t>(n));
    }
    return bytes;
}

std::string FakeHost::ReadSome(int milliseconds) {
    return Read(static_cast<size_t>(1) << 30, milliseconds);
}

bool FakeHost::Closed(int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    char buffer[4096];
    while (Readable(connection, Left(end)))
        if (::recv(connection, buffer, sizeof(buffer), 0) <= 0) return true;
    return false;
}

void FakeHost::Drop() {
    if (connection >= 0) ::close(connection);
    connection = -1;
}

void FakeHost::Reset() {
    const linger now = {1, 0};
    ::setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
    Drop();
}

std::string FakeHost::Config(const std::string& more) const {
    return "host = \"127.0.0.1\"\nport = " + std::to_string(port) + "\nautoconnect = 1\n" + more;
}

// Bound for the rest of the run, so that nobody else comes to listen there.
int RefusingPort() {
    static int port = 0;
    static const int kBound = Bind(&port);
    return kBound < 0 ? 0 : port;
}

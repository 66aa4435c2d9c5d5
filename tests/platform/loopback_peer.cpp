// SPDX-License-Identifier: MIT
// The loopback peer on POSIX sockets.
#include "tests/platform/loopback_peer.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int Number(intptr_t socket) { return static_cast<int>(socket); }

intptr_t Bind(uint16_t* port) {
    const int bound = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    bind(bound, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(bound, reinterpret_cast<sockaddr*>(&address), &size);
    *port = ntohs(address.sin_port);
    return bound;
}

}  // namespace

LoopbackPeer::LoopbackPeer() {
    listening_ = Bind(&port_);
    listen(Number(listening_), 16);
}

LoopbackPeer::~LoopbackPeer() {
    CloseConnection();
    StopListening();
}

bool LoopbackPeer::Accept() {
    CloseConnection();
    connection_ = accept4(Number(listening_), nullptr, nullptr, SOCK_CLOEXEC);
    return connection_ >= 0;
}

void LoopbackPeer::Send(const std::string& bytes) {
    size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count =
            send(Number(connection_), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return;
        sent += static_cast<size_t>(count);
    }
}

void LoopbackPeer::SendUrgent(char byte) {
    send(Number(connection_), &byte, 1, MSG_OOB | MSG_NOSIGNAL);
}

std::string LoopbackPeer::Receive(size_t size) {
    std::string bytes(size, '\0');
    size_t received = 0;
    while (received < size) {
        const ssize_t count =
            recv(Number(connection_), bytes.data() + received, size - received, 0);
        if (count <= 0) break;
        received += static_cast<size_t>(count);
    }
    bytes.resize(received);
    return bytes;
}

void LoopbackPeer::CloseConnection() {
    if (connection_ >= 0) close(Number(connection_));
    connection_ = -1;
}

void LoopbackPeer::ResetConnection() {
    const linger at_once = {1, 0};
    setsockopt(Number(connection_), SOL_SOCKET, SO_LINGER, &at_once, sizeof(at_once));
    CloseConnection();
}

void LoopbackPeer::StopListening() {
    if (listening_ >= 0) close(Number(listening_));
    listening_ = -1;
}

// Bound for the rest of the run, so that nobody else comes to listen there.
uint16_t UnusedPort() {
    static uint16_t port = 0;
    static const intptr_t kBound = Bind(&port);
    return kBound < 0 ? uint16_t{0} : port;
}

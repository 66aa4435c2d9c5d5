// SPDX-License-Identifier: MIT
// The loopback peer on the system's sockets.
#include "tests/platform/loopback_peer.h"

#include <winsock2.h>

namespace {

SOCKET Number(intptr_t socket) { return static_cast<SOCKET>(socket); }

}  // namespace

LoopbackPeer::LoopbackPeer() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    const SOCKET listening = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof(address);
    bind(listening, reinterpret_cast<sockaddr*>(&address), size);
    listen(listening, 16);
    getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
    listening_ = static_cast<intptr_t>(listening);
}

LoopbackPeer::~LoopbackPeer() {
    CloseConnection();
    StopListening();
    WSACleanup();
}

bool LoopbackPeer::Accept() {
    CloseConnection();
    connection_ = static_cast<intptr_t>(accept(Number(listening_), nullptr, nullptr));
    return connection_ != -1;
}

void LoopbackPeer::Send(const std::string& bytes) {
    size_t sent = 0;
    while (sent < bytes.size()) {
        const int count = send(Number(connection_), bytes.data() + sent,
                               static_cast<int>(bytes.size() - sent), 0);
        if (count <= 0) return;
        sent += static_cast<size_t>(count);
    }
}

void LoopbackPeer::SendUrgent(char byte) { send(Number(connection_), &byte, 1, MSG_OOB); }

std::string LoopbackPeer::Receive(size_t size) {
    std::string bytes(size, '\0');
    size_t received = 0;
    while (received < size) {
        const int count = recv(Number(connection_), bytes.data() + received,
                               static_cast<int>(size - received), 0);
        if (count <= 0) break;
        received += static_cast<size_t>(count);
    }
    bytes.resize(received);
    return bytes;
}

void LoopbackPeer::CloseConnection() {
    if (connection_ != -1) closesocket(Number(connection_));
    connection_ = -1;
}

void LoopbackPeer::ResetConnection() {
    const linger at_once = {1, 0};
    setsockopt(Number(connection_), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&at_once),
               sizeof(at_once));
    CloseConnection();
}

void LoopbackPeer::StopListening() {
    if (listening_ != -1) closesocket(Number(listening_));
    listening_ = -1;
}

uint16_t UnusedPort() { return LoopbackPeer().port(); }

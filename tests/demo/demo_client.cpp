// SPDX-License-Identifier: MIT
// Child process and socket handling of the demo host's tests.
#include "tests/demo/demo_client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kPatience = 30000;

std::string ReadLine(int pipe) {
    std::string line;
    char byte = 0;
    while (read(pipe, &byte, 1) == 1 && byte != '\n') line += byte;
    return line;
}

[[noreturn]] void RunHost(const std::vector<std::string>& options) {
    std::vector<char*> arguments = {const_cast<char*>(DEMO_HOST)};
    for (const std::string& option : options)
        arguments.push_back(const_cast<char*>(option.c_str()));
    arguments.push_back(nullptr);
    execv(DEMO_HOST, arguments.data());
    _exit(127);
}

// Waits for data and reads what has arrived; false if nothing came or the host closed.
bool ReadMore(Client& client) {
    pollfd polled = {client.socket, POLLIN, 0};
    if (client.closed || poll(&polled, 1, kPatience) < 1) return false;
    char bytes[4096];
    const ssize_t count = recv(client.socket, bytes, sizeof bytes, 0);
    if (count < 1) {
        client.closed = true;
        return false;
    }
    client.received.append(bytes, static_cast<size_t>(count));
    return true;
}

}  // namespace

Host StartHost(const std::vector<std::string>& options) {
    Host host;
    int ends[2];
    if (pipe(ends) != 0) return host;
    host.pid = fork();
    if (host.pid == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        RunHost(options);
    }
    close(ends[1]);
    host.first_line = ReadLine(ends[0]);
    close(ends[0]);
    sscanf(host.first_line.c_str(), "listening on 127.0.0.1:%d", &host.port);
    return host;
}

int WaitForEnd(Host& host) {
    for (int waited = 0; host.pid > 0 && waited < kPatience; waited += 10) {
        int status = 0;
        if (waitpid(host.pid, &status, WNOHANG) == host.pid) {
            host.pid = -1;
            return status;
        }
        usleep(10000);
    }
    return -1;
}

void StopHost(Host& host) {
    if (host.pid <= 0) return;
    kill(host.pid, SIGTERM);
    WaitForEnd(host);
}

Client Connect(const Host& host, int receive_buffer) {
    Client client;
    client.socket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (receive_buffer > 0) {
        setsockopt(client.socket, SOL_SOCKET, SO_RCVBUF, &receive_buffer, sizeof receive_buffer);
    }
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(host.port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(client.socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        Disconnect(client);
    }
    return client;
}

void Disconnect(Client& client) {
    if (client.socket >= 0) close(client.socket);
    client.socket = -1;
    client.closed = true;
}

// Reads while it sends, so that the two sides never wait for each other.
bool Send(Client& client, const std::string& bytes) {
    size_t sent = 0;
    while (sent < bytes.size() && !client.closed) {
        pollfd polled = {client.socket, POLLIN | POLLOUT, 0};
        if (poll(&polled, 1, kPatience) < 1) return false;
        if ((polled.revents & POLLIN) != 0) ReadMore(client);
        if ((polled.revents & POLLOUT) == 0) continue;
        const ssize_t count = send(client.socket, bytes.data() + sent, bytes.size() - sent,
                                   MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0) return false;
        sent += static_cast<size_t>(count);
    }
    return sent == bytes.size();
}

size_t Expect(Client& client, const std::string& text, size_t from) {
    for (;;) {
        const size_t at = client.received.find(text, from);
        if (at != std::string::npos) return at + text.size();
        if (!ReadMore(client)) return std::string::npos;
    }
}

bool ExpectClose(Client& client) {
    while (ReadMore(client)) continue;
    return client.closed;
}

size_t LogIn(Client& client) {
    if (!Send(client, "\xff\xfd\x01\xff\xfd\x03\xff\xfb\x18")) return std::string::npos;
    if (Expect(client, "login: ") == std::string::npos) return std::string::npos;
    Send(client, std::string("\xff\xfa\x18\x00vt220\xff\xf0", 11) + "ada\r");
    if (Expect(client, "Password: ") == std::string::npos) return std::string::npos;
    Send(client, "secret\r");
    return Expect(client, "Choice: ");
}

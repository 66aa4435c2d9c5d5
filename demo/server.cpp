// SPDX-License-Identifier: MIT
// quill_demo_host: a Telnet server for 127.0.0.1 that shows what the terminal can do. Usage:
// quill_demo_host [--port N] [--once]. The first line that it prints says on which port it listens.
// It ends on SIGTERM or SIGINT, when its parent process dies, and with --once after the first
// session.
//
// This file has the sockets and the poll loop. While a client does not read, the host does not read
// from that client either, and its page sends nothing more. So no client can make the host buffer
// much more than kOutLimit bytes.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "demo/session.h"

constexpr size_t kMostSessions = 64;

namespace {

using Sessions = std::vector<std::unique_ptr<Session>>;

}  // namespace

static volatile sig_atomic_t g_stop = 0;

static void OnStopSignal(int) { g_stop = 1; }

// Blocks SIGTERM and SIGINT except while ppoll waits. Returns the signal mask for ppoll.
static sigset_t CatchStopSignals() {
    struct sigaction action = {};
    action.sa_handler = OnStopSignal;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigaddset(&blocked, SIGINT);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    sigdelset(&before, SIGTERM);
    sigdelset(&before, SIGINT);
    return before;
}

static void Accept(int listener, Sessions& sessions) {
    const int client = accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (client < 0) return;
    const int on = 1;
    setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    // A small send buffer keeps little data in flight, so a key pressed during a stream takes
    // effect at once.
    const int on_its_way = 32768;
    setsockopt(client, SOL_SOCKET, SO_SNDBUF, &on_its_way, sizeof(on_its_way));
    sessions.push_back(std::make_unique<Session>());
    SessionStart(*sessions.back(), client);
}

static bool WouldBlock() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

static void Drop(Session& session) {
    close(session.socket);
    session.socket = -1;
}

static void Flush(Session& session) {
    while (!session.out.empty()) {
        const ssize_t sent =
            send(session.socket, session.out.data(), session.out.size(), MSG_NOSIGNAL);
        if (sent < 0 && WouldBlock()) return;
        if (sent <= 0) return Drop(session);
        session.out.erase(0, static_cast<size_t>(sent));
    }
    if (session.ending) Drop(session);
}

static void Read(Session& session) {
    char bytes[256];
    const ssize_t count = recv(session.socket, bytes, sizeof(bytes), 0);
    if (count < 0 && WouldBlock()) return;
    if (count <= 0) return Drop(session);
    SessionReceive(session, bytes, static_cast<size_t>(count));
}

static bool HasRoom(const Session& session) { return session.out.size() < kOutLimit; }

// A session that is ending is still read, so that the host notices when the client disconnects.
static short WantedEvents(const Session& session) {
    const int read = HasRoom(session) ? POLLIN : 0;
    const int write = session.out.empty() ? 0 : POLLOUT;
    return static_cast<short>(read | write);
}

static void Attend(Session& session, int events) {
    if ((events & (POLLERR | POLLNVAL)) != 0) return Drop(session);
    if ((events & (POLLIN | POLLHUP)) != 0) Read(session);
    if (session.socket < 0) return;
    const bool due = session.wake != 0 && session.wake <= Now() && HasRoom(session);
    if (due && session.screen->tick != nullptr) session.screen->tick(session);
    Flush(session);
}

// Returns the milliseconds until the next `tick` is due, -1 if none is.
static long long Wait(const Sessions& sessions) {
    long long first = -1;
    for (const auto& session : sessions) {
        if (session->wake == 0 || !HasRoom(*session)) continue;
        const long long left = std::max(0LL, session->wake - Now());
        if (first < 0 || left < first) first = left;
    }
    return first;
}

static void PollOnce(int listener, bool accepting, Sessions& sessions, const sigset_t& mask) {
    const bool room = accepting && sessions.size() < kMostSessions;
    std::vector<pollfd> polled;
    polled.push_back({room ? listener : -1, POLLIN, 0});
    for (const auto& session : sessions) {
        polled.push_back({session->socket, WantedEvents(*session), 0});
    }
    const long long wait = Wait(sessions);
    const timespec limit = {static_cast<time_t>(wait / 1000),
                            static_cast<long>(wait % 1000) * 1000000L};
    if (ppoll(polled.data(), polled.size(), wait < 0 ? nullptr : &limit, &mask) < 0) return;
    for (size_t i = 0; i < sessions.size(); ++i) Attend(*sessions[i], polled[i + 1].revents);
    std::erase_if(sessions, [](const auto& session) { return session->socket < 0; });
    if ((polled[0].revents & POLLIN) != 0) Accept(listener, sessions);
}

// Opens a listening socket on 127.0.0.1. With `port` 0 the system chooses a free port. Stores the
// port in use in `port`. Returns the socket, or -1 with errno set.
static int ListenOnLoopback(int& port) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (listener < 0) return -1;
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) < 0 ||
        listen(listener, 32) < 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) < 0) {
        close(listener);
        return -1;
    }
    port = ntohs(address.sin_port);
    return listener;
}

// Serves sessions until SIGTERM or SIGINT comes, or, with `once`, until the first session has
// ended. Closes the listening socket.
static void Serve(int listener, bool once) {
    const sigset_t mask = CatchStopSignals();
    Sessions sessions;
    bool accepting = true;
    while (g_stop == 0) {
        PollOnce(listener, accepting, sessions, mask);
        if (once && !sessions.empty()) accepting = false;
        if (!accepting && sessions.empty()) break;
    }
    close(listener);
    for (const auto& session : sessions) close(session->socket);
}

// ---------------------------------------------------------------- the program

namespace {

struct Options {
    int port = 0;
    bool once = false;
};

}  // namespace

static bool ParsePort(const char* text, int& port) {
    char* end = nullptr;
    const long value = strtol(text, &end, 10);
    if (end == text || *end != '\0' || value < 0 || value > 65535) return false;
    port = static_cast<int>(value);
    return true;
}

static bool ParseOptions(int count, char** arguments, Options& options) {
    for (int i = 1; i < count; ++i) {
        if (strcmp(arguments[i], "--once") == 0) {
            options.once = true;
        } else if (strcmp(arguments[i], "--port") == 0 && i + 1 < count) {
            if (!ParsePort(arguments[++i], options.port)) return false;
        } else {
            return false;
        }
    }
    return true;
}

// Asks the system to send SIGTERM to this process when its parent dies. Returns false if the parent
// has died already.
static bool EndWithParent(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    return getppid() == parent;
}

int main(int count, char** arguments) {
    const pid_t parent = getppid();
    Options options;
    if (!ParseOptions(count, arguments, options)) {
        fprintf(stderr, "usage: quill_demo_host [--port N] [--once]\n");
        return 2;
    }
    if (!EndWithParent(parent)) return 0;
    const int listener = ListenOnLoopback(options.port);
    if (listener < 0) {
        fprintf(stderr, "quill_demo_host: cannot listen on 127.0.0.1:%d: %s\n", options.port,
                strerror(errno));
        return 1;
    }
    printf("listening on 127.0.0.1:%d\n", options.port);
    fflush(stdout);
    Serve(listener, options.once);
    return 0;
}

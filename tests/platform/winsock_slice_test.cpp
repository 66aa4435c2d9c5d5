// SPDX-License-Identifier: MIT
// The implementation of sockets: numbers, descriptors, threads, a machine without a network.
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <set>
#include <system_error>
#include <thread>
#include <vector>

#include "tests/platform/loopback_peer.h"
#include "tests/support/services_test_hooks.h"
#include "windows_ce.h"

// The linker leads the starts of threads here.
static bool g_no_threads = false;

void RealStart(std::thread* thread, void* state, void (*depends)()) asm(
    "__real__ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE");
void StartOrFail(std::thread* thread, void* state, void (*depends)()) asm(
    "__wrap__ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE");
void StartOrFail(std::thread* thread, void* state, void (*depends)()) {
    if (g_no_threads) throw std::system_error(EAGAIN, std::system_category());
    RealStart(thread, state, depends);
}

namespace {

size_t OpenDescriptors() {
    const std::filesystem::directory_iterator list("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(list), end(list)));
}

SOCKET NewSocket() {
    const SOCKET number = socket(AF_INET, SOCK_STREAM, 0);
    u_long on = 1;
    ioctlsocket(number, FIONBIO, &on);
    return number;
}

int Connect(SOCKET number, const char* address, uint16_t port) {
    SOCKADDR_IN peer = {};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr.s_addr = inet_addr(address);
    return connect(number, reinterpret_cast<SOCKADDR*>(&peer), sizeof(peer)) == 0
               ? 0
               : WSAGetLastError();
}

class WinsockInside : public testing::Test {
  protected:
    void SetUp() override {
        WSADATA data;
        services_test_hooks = ServicesTestHooks();
        ASSERT_EQ(0, WSAStartup(MAKEWORD(1, 1), &data));
    }
    void TearDown() override {
        services_test_hooks = ServicesTestHooks();
        WSACleanup();
    }
};

TEST_F(WinsockInside, AnAddressOfAnotherFamilyIsRefusedWhereAHostListens) {
    LoopbackPeer host;
    const SOCKET number = NewSocket();
    SOCKADDR_IN peer = {};
    peer.sin_port = htons(host.port());
    peer.sin_addr.s_addr = inet_addr("127.0.0.1");
    for (const short family : {short{0}, short{1}, short{23}}) {
        peer.sin_family = family;
        EXPECT_EQ(SOCKET_ERROR, connect(number, reinterpret_cast<SOCKADDR*>(&peer), sizeof(peer)));
        EXPECT_EQ(10047, WSAGetLastError()) << family;
    }
    EXPECT_EQ(10035, Connect(number, "127.0.0.1", host.port())) << "under way";
    EXPECT_TRUE(host.Accept());
    closesocket(number);
}

int SelectForReading(SOCKET number) {
    fd_set read, except;
    FD_ZERO(&read);
    FD_ZERO(&except);
    FD_SET(number, &read);
    FD_SET(number, &except);
    TIMEVAL timeout = {100, 0};
    return select(0, &read, nullptr, &except, &timeout);
}

int SelectForWriting(SOCKET number, const TIMEVAL* timeout) {
    fd_set write;
    FD_ZERO(&write);
    FD_SET(number, &write);
    return select(0, nullptr, &write, nullptr, timeout);
}

// Waits and reads until another thread closes the socket.
void ReadUntilClosed(SOCKET number, std::atomic<int>* error) {
    char bytes[3000];
    while (SelectForReading(number) >= 0) {
        const int count = recv(number, bytes, sizeof(bytes), 0);
        if (count < 0 && WSAGetLastError() != WSAEWOULDBLOCK) break;
    }
    *error = WSAGetLastError();
}

// Runs the procedure in a child process, in a network name space without an interface.
template <typename Procedure>
int WithoutNetwork(Procedure procedure) {
    const pid_t child = fork();
    if (child == 0) _exit(unshare(CLONE_NEWNET) == 0 ? procedure() : 77);
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status);
}

}  // namespace

TEST_F(WinsockInside, SocketNumbersAreNeverReused) {
    std::set<SOCKET> seen;
    for (int i = 0; i < 1000; i++) {
        const SOCKET number = NewSocket();
        EXPECT_TRUE(seen.insert(number).second);
        closesocket(number);
    }
}

// Bytes that contain their own offsets.
std::string Numbered(size_t size) {
    std::string bytes;
    while (bytes.size() < size) bytes.append(std::to_string(bytes.size())).append(" ");
    bytes.resize(size);
    return bytes;
}

size_t Threads() {
    const std::filesystem::directory_iterator list("/proc/self/task");
    return static_cast<size_t>(std::distance(begin(list), end(list)));
}

// A thread ends shortly after it has released everything else; one of an earlier test may end now,
// too.
bool ThreadsBecome(size_t count) {
    for (int i = 0; i < 3000 && Threads() > count; i++) Sleep(10);
    return Threads() <= count;
}

TEST_F(WinsockInside, MoreThanTheKernelHoldsArrivesInOrder) {
    LoopbackPeer peer;
    const SOCKET number = NewSocket();
    Connect(number, "127.0.0.1", peer.port());
    ASSERT_TRUE(peer.Accept());
    const size_t before = Threads();
    const std::string bytes = Numbered(20000000);
    size_t sent = 0;
    for (size_t piece = 1; sent < bytes.size(); piece = piece * 7 % 100003) {
        const size_t size = std::min(piece, bytes.size() - sent);
        ASSERT_EQ(static_cast<int>(size),
                  send(number, bytes.data() + sent, static_cast<int>(size), 0));
        sent += size;
    }
    EXPECT_TRUE(peer.Receive(bytes.size()) == bytes);
    EXPECT_TRUE(ThreadsBecome(before));
    EXPECT_EQ(4, send(number, "more", 4, 0));
    EXPECT_EQ("more", peer.Receive(4));
    closesocket(number);
}

TEST_F(WinsockInside, WithoutAThreadForTheBacklogASendTakesWhatTheKernelHolds) {
    constexpr size_t kPiece = 1000000, kMost = 20 * kPiece;
    LoopbackPeer peer;
    const SOCKET number = NewSocket();
    Connect(number, "127.0.0.1", peer.port());
    ASSERT_TRUE(peer.Accept());
    const std::string bytes = Numbered(kMost);
    g_no_threads = true;
    size_t sent = 0;
    int count = 1;
    while (count > 0 && sent + kPiece <= kMost) {
        count = send(number, bytes.data() + sent, static_cast<int>(kPiece), 0);
        sent += static_cast<size_t>(std::max(count, 0));
    }
    const int error = WSAGetLastError();
    g_no_threads = false;
    ASSERT_EQ(SOCKET_ERROR, count);
    EXPECT_EQ(WSAEWOULDBLOCK, error);
    EXPECT_EQ(3, send(number, "end", 3, 0));
    EXPECT_TRUE(peer.Receive(sent) == bytes.substr(0, sent));
    EXPECT_EQ("end", peer.Receive(3));
    closesocket(number);
}

TEST_F(WinsockInside, SmallPiecesDuringAndAfterABacklogArriveInOrder) {
    LoopbackPeer peer;
    const SOCKET number = NewSocket();
    Connect(number, "127.0.0.1", peer.port());
    ASSERT_TRUE(peer.Accept());
    const std::string bytes = Numbered(12000000);
    // Reads slowly, so that the kernel has a little room now and then while the backlog waits.
    std::thread reader([&] {
        std::string received;
        while (received.size() < bytes.size()) {
            received += peer.Receive(std::min<size_t>(60000, bytes.size() - received.size()));
            Sleep(1);
        }
        EXPECT_TRUE(received == bytes);
    });
    ASSERT_EQ(11900000, send(number, bytes.data(), 11900000, 0));
    for (size_t i = 11900000; i < bytes.size(); i++) ASSERT_EQ(1, send(number, &bytes[i], 1, 0));
    reader.join();
    closesocket(number);
}

TEST_F(WinsockInside, ClosingWithABacklogEndsItsThread) {
    LoopbackPeer peer;
    const size_t before = Threads();
    const SOCKET number = NewSocket();
    Connect(number, "127.0.0.1", peer.port());
    ASSERT_TRUE(peer.Accept());
    const std::string bytes(20000000, 'x');
    EXPECT_EQ(20000000, send(number, bytes.data(), 20000000, 0));
    EXPECT_EQ(before + 1, Threads());
    closesocket(number);
    EXPECT_TRUE(ThreadsBecome(before));
}

TEST_F(WinsockInside, APeerThatClosesDuringABacklogFailsTheNextSend) {
    LoopbackPeer peer;
    const size_t before = Threads();
    const SOCKET number = NewSocket();
    Connect(number, "127.0.0.1", peer.port());
    ASSERT_TRUE(peer.Accept());
    const std::string bytes(20000000, 'x');
    EXPECT_EQ(20000000, send(number, bytes.data(), 20000000, 0));
    peer.ResetConnection();
    EXPECT_TRUE(ThreadsBecome(before));
    EXPECT_EQ(SOCKET_ERROR, send(number, "x", 1, 0));
    closesocket(number);
}

TEST_F(WinsockInside, ManyConnectionsLeaveNoDescriptorOpen) {
    LoopbackPeer peer;
    const size_t before = OpenDescriptors();
    for (int i = 0; i < 500; i++) {
        const SOCKET number = NewSocket();
        const int error = Connect(number, "127.0.0.1", peer.port());
        ASSERT_TRUE(error == 0 || error == WSAEWOULDBLOCK) << error;
        ASSERT_TRUE(peer.Accept());
        shutdown(number, SD_BOTH);
        ASSERT_EQ(0, closesocket(number));
    }
    peer.CloseConnection();
    EXPECT_EQ(before, OpenDescriptors());
}

// A socket takes two descriptors.
TEST_F(WinsockInside, WithoutDescriptorsASocketDoesNotOpen) {
    const size_t open = OpenDescriptors();
    rlimit before = {};
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &before));
    const int next = dup(0);
    close(next);
    for (const int room : {0, 1}) {
        rlimit few = before;
        few.rlim_cur = static_cast<rlim_t>(next + room);
        ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &few));
        const SOCKET number = socket(AF_INET, SOCK_STREAM, 0);
        const int error = WSAGetLastError();
        ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &before));
        EXPECT_EQ(INVALID_SOCKET, number) << room;
        EXPECT_EQ(10024, error) << room;
    }
    EXPECT_EQ(open, OpenDescriptors());
}

TEST_F(WinsockInside, RefusedConnectionsLeaveNoDescriptorOpen) {
    const uint16_t port = UnusedPort();
    const size_t before = OpenDescriptors();
    for (int i = 0; i < 200; i++) {
        const SOCKET number = NewSocket();
        ASSERT_EQ(WSAEWOULDBLOCK, Connect(number, "127.0.0.1", port));
        ASSERT_EQ(1, SelectForReading(number));
        closesocket(number);
    }
    EXPECT_EQ(before, OpenDescriptors());
}

TEST_F(WinsockInside, CleanupClosesWhatIsOpen) {
    const size_t before = OpenDescriptors();
    WSADATA data;
    const SOCKET number = NewSocket();
    WSACleanup();
    EXPECT_EQ(before, OpenDescriptors());
    ASSERT_EQ(0, WSAStartup(MAKEWORD(1, 1), &data));
    EXPECT_EQ(SOCKET_ERROR, closesocket(number));
    EXPECT_EQ(WSAENOTSOCK, WSAGetLastError());
}

TEST_F(WinsockInside, ThreadsOfClosedSessionsNeverReadTheNextOne) {
    LoopbackPeer peer;
    for (int i = 0; i < 50; i++) {
        const SOCKET number = NewSocket();
        Connect(number, "127.0.0.1", peer.port());
        ASSERT_TRUE(peer.Accept());
        peer.Send("text of the host");
        std::atomic<int> error = 0;
        std::thread reader(ReadUntilClosed, number, &error);
        if (i % 2) std::this_thread::yield();
        shutdown(number, SD_BOTH);
        closesocket(number);
        const SOCKET next = NewSocket();
        reader.join();
        EXPECT_EQ(WSAENOTSOCK, error);
        EXPECT_EQ(0, closesocket(next));
    }
}

TEST_F(WinsockInside, SeveralThreadsWaitForOneSocket) {
    LoopbackPeer peer;
    const SOCKET number = NewSocket();
    Connect(number, "127.0.0.1", peer.port());
    ASSERT_TRUE(peer.Accept());
    std::atomic<int> errors[4] = {};
    std::vector<std::thread> readers;
    for (std::atomic<int>& error : errors) readers.emplace_back(ReadUntilClosed, number, &error);
    for (int i = 0; i < 20; i++) {
        peer.Send("x");
        send(number, "y", 1, 0);
    }
    closesocket(number);
    for (std::thread& reader : readers) reader.join();
    for (std::atomic<int>& error : errors) EXPECT_EQ(WSAENOTSOCK, error);
}

// A peer whose queue of callers is full answers when it has accepted one.
TEST_F(WinsockInside, AWaitEndsWithARequestThatTakesItsTime) {
    constexpr size_t kPlaces = 16, kMostCallers = 200;  // places of its queue
    const TIMEVAL moment = {0, 200000};
    LoopbackPeer peer;
    std::vector<SOCKET> callers;
    do {
        callers.push_back(NewSocket());
        Connect(callers.back(), "127.0.0.1", peer.port());
    } while (SelectForWriting(callers.back(), &moment) > 0 && callers.size() < kMostCallers);
    ASSERT_GT(callers.size(), kPlaces);
    ASSERT_LT(callers.size(), kMostCallers);
    std::thread accepts([&] {
        for (size_t i = 0; i < callers.size(); ++i) peer.Accept();
    });
    EXPECT_EQ(1, SelectForWriting(callers.back(), nullptr));
    accepts.join();
    for (const SOCKET each : callers) closesocket(each);
}

TEST_F(WinsockInside, SignalsDoNotEndAWait) {
    constexpr int kSignals = 100;
    struct sigaction action = {}, before = {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(0, sigaction(SIGUSR1, &action, &before));
    LoopbackPeer peer;
    const SOCKET number = NewSocket();
    Connect(number, "127.0.0.1", peer.port());
    ASSERT_TRUE(peer.Accept());
    std::atomic<int> ready{-2};
    std::thread waits([&] { ready = SelectForReading(number); });
    for (int i = 0; i < kSignals; ++i) {
        pthread_kill(waits.native_handle(), SIGUSR1);
        Sleep(2);
    }
    EXPECT_EQ(-2, ready) << "it still waits";
    peer.Send("x");
    waits.join();
    EXPECT_EQ(1, ready);
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(WinsockInside, EndOfAConnectionDoesNotKeepAnIdleWaitBusy) {
    LoopbackPeer peer;
    const SOCKET number = NewSocket();
    Connect(number, "127.0.0.1", peer.port());
    ASSERT_TRUE(peer.Accept());
    peer.ResetConnection();
    ASSERT_EQ(1, SelectForReading(number));
    fd_set except;
    FD_ZERO(&except);
    FD_SET(number, &except);
    TIMEVAL timeout = {0, 100000};
    rusage before, after;
    getrusage(RUSAGE_THREAD, &before);
    EXPECT_EQ(0, select(0, nullptr, nullptr, &except, &timeout));
    getrusage(RUSAGE_THREAD, &after);
    EXPECT_GT(after.ru_nvcsw, before.ru_nvcsw);  // the wait did not spin
}

TEST_F(WinsockInside, ZeroAddressOrPortIsRefused) {
    EXPECT_EQ(10049, Connect(NewSocket(), "0.0.0.0", 23));
    EXPECT_EQ(10049, Connect(NewSocket(), "127.0.0.1", 0));
}

TEST_F(WinsockInside, SecondRequestOnOneSocketIsRefused) {
    LoopbackPeer peer;
    const SOCKET number = NewSocket();
    Connect(number, "127.0.0.1", peer.port());
    ASSERT_TRUE(peer.Accept());
    const int error = Connect(number, "127.0.0.1", peer.port());
    EXPECT_EQ(10056, error);
}

TEST_F(WinsockInside, WithoutAnInterfaceEveryAddressIsUnreachableAtOnce) {
    const int result = WithoutNetwork([] {
        if (Connect(NewSocket(), "127.0.0.1", 23) != WSAEHOSTUNREACH) return 1;
        if (Connect(NewSocket(), "192.0.2.1", 23) != WSAEHOSTUNREACH) return 2;
        const SOCKET blocking = socket(AF_INET, SOCK_STREAM, 0);
        return Connect(blocking, "127.0.0.1", 23) == WSAEHOSTUNREACH ? 0 : 3;
    });
    if (result == 77) GTEST_SKIP() << "no right to make a network of its own";
    EXPECT_EQ(0, result);
}

TEST_F(WinsockInside, UnreachableSocketCanTryAgain) {
    const int result = WithoutNetwork([] {
        const SOCKET number = NewSocket();
        if (Connect(number, "192.0.2.1", 23) != WSAEHOSTUNREACH) return 1;
        return Connect(number, "192.0.2.1", 23) == WSAEHOSTUNREACH ? 0 : 2;
    });
    if (result == 77) GTEST_SKIP() << "no right to make a network of its own";
    EXPECT_EQ(0, result);
}

TEST_F(WinsockInside, EmptyNameDoesNotResolve) {
    EXPECT_EQ(nullptr, gethostbyname(""));
    EXPECT_EQ(nullptr, gethostbyname(nullptr));
    EXPECT_EQ(2, services_test_hooks.host_lookups);
}

TEST_F(WinsockInside, OtherKindsOfSocketAreRefused) {
    EXPECT_EQ(INVALID_SOCKET, socket(23, SOCK_STREAM, 0));
    EXPECT_EQ(INVALID_SOCKET, socket(AF_INET, 2, 0));
    EXPECT_EQ(INVALID_SOCKET, socket(AF_INET, SOCK_STREAM, 17));
}

TEST_F(WinsockInside, WrongArgumentsAreErrors) {
    const SOCKET number = NewSocket();
    char byte = 0;
    SOCKADDR short_address = {};
    EXPECT_EQ(SOCKET_ERROR, connect(number, nullptr, 16));
    EXPECT_EQ(SOCKET_ERROR, connect(number, &short_address, 3));
    EXPECT_EQ(SOCKET_ERROR, connect(number, &short_address, 16));
    EXPECT_EQ(SOCKET_ERROR, recv(number, nullptr, 5, 0));
    EXPECT_EQ(SOCKET_ERROR, recv(number, &byte, -1, 0));
    EXPECT_EQ(SOCKET_ERROR, recv(number, &byte, 1, 0x4000));
    EXPECT_EQ(SOCKET_ERROR, send(number, &byte, -1, 0));
    EXPECT_EQ(SOCKET_ERROR, ioctlsocket(number, FIONBIO, nullptr));
    EXPECT_EQ(SOCKET_ERROR, ioctlsocket(number, 5, nullptr));
    EXPECT_EQ(SOCKET_ERROR, shutdown(number, 3));
    TIMEVAL negative = {-1, 0};
    fd_set set = {65, {number}};
    EXPECT_EQ(SOCKET_ERROR, select(0, &set, nullptr, nullptr, nullptr));
    set.fd_count = 1;
    EXPECT_EQ(SOCKET_ERROR, select(0, &set, nullptr, nullptr, &negative));
}

TEST_F(WinsockInside, HooksMakeCallsFail) {
    WSADATA data;
    const SOCKET number = NewSocket();
    services_test_hooks.fail_startup = services_test_hooks.fail_socket = true;
    services_test_hooks.fail_host_lookup = true;
    services_test_hooks.force_connect_error = WSAEHOSTUNREACH;
    EXPECT_EQ(10091, WSAStartup(MAKEWORD(1, 1), &data));
    EXPECT_EQ(INVALID_SOCKET, socket(AF_INET, SOCK_STREAM, 0));
    EXPECT_EQ(WSAEHOSTUNREACH, Connect(number, "127.0.0.1", 1));
    EXPECT_EQ(nullptr, gethostbyname("localhost"));
}

TEST(WinsockVersion, OlderThanOneOneIsRefused) {
    WSADATA data;
    EXPECT_EQ(10092, WSAStartup(MAKEWORD(1, 0), &data));
    EXPECT_EQ(10093, [] {
        socket(AF_INET, SOCK_STREAM, 0);
        return WSAGetLastError();
    }());
}

// SPDX-License-Identifier: MIT
// The program's calls of the socket library. A layer records the calls, passes them on, and answers
// look-ups with the addresses of the test.
#include <gtest/gtest.h>

#include <atomic>

#include "connection/connection.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/services_test_hooks.h"
#include "tests/support/sessions.h"

namespace {

struct SelectCall {
    bool reads;
    long seconds, microseconds;  // -1: no time-out
    std::vector<SOCKET> excepts;
};

// A wait that leaves other sockets in its sets than those that it was called with.
std::atomic<bool> g_leaves_others = false;
constexpr SOCKET kOther = 0x5A5A;

struct SocketLog {
    std::mutex mutex;
    std::vector<WORD> versions;
    std::vector<std::string> names;
    std::vector<uint32_t> addresses;  // the answers to look-ups; empty: the real ones
    std::vector<int> reads;           // the buffer size of each recv
    std::vector<SelectCall> selects;
    std::vector<std::pair<SOCKET, int>> ends;  // a shutdown and its direction; -1: a close
};
SocketLog g_log;

void ForgetCalls() {
    const std::lock_guard<std::mutex> lock(g_log.mutex);
    g_log.versions.clear();
    g_log.names.clear();
    g_log.addresses.clear();
    g_log.reads.clear();
    g_log.selects.clear();
    g_log.ends.clear();
}

std::vector<SelectCall> Selects() {
    const std::lock_guard<std::mutex> lock(g_log.mutex);
    return g_log.selects;
}

HOSTENT* AnswerOf(const std::vector<uint32_t>& addresses) {
    static std::vector<uint32_t> kept;
    static std::vector<char*> list;
    static char* aliases[] = {nullptr};
    static char name[] = "answer";
    static HOSTENT entry;
    kept = addresses;
    list.clear();
    for (uint32_t& address : kept) list.push_back(reinterpret_cast<char*>(&address));
    list.push_back(nullptr);
    entry = {name, aliases, AF_INET, sizeof(uint32_t), list.data()};
    return &entry;
}

}  // namespace

int RealStartup(WORD version, WSADATA* data) asm("__real__Z12SliceStartuptP7WSADATA");
HOSTENT* RealHostByName(const char* name) asm("__real__Z15SliceHostByNamePKc");
int RealSelect(
    int ignored, SliceSocketSet* read, SliceSocketSet* write, SliceSocketSet* except,
    const TIMEVAL* timeout) asm("__real__Z11SliceSelectiP14SliceSocketSetS0_S0_PK7timeval");
int RealReceive(SOCKET socket, char* bytes, int size,
                int flags) asm("__real__Z12SliceReceivemPcii");

int LoggedStartup(WORD version, WSADATA* data) asm("__wrap__Z12SliceStartuptP7WSADATA");
int LoggedStartup(WORD version, WSADATA* data) {
    g_log.versions.push_back(version);
    return RealStartup(version, data);
}

HOSTENT* LoggedHostByName(const char* name) asm("__wrap__Z15SliceHostByNamePKc");
HOSTENT* LoggedHostByName(const char* name) {
    g_log.names.push_back(name);
    return g_log.addresses.empty() ? RealHostByName(name) : AnswerOf(g_log.addresses);
}

int LoggedSelect(
    int ignored, SliceSocketSet* read, SliceSocketSet* write, SliceSocketSet* except,
    const TIMEVAL* timeout) asm("__wrap__Z11SliceSelectiP14SliceSocketSetS0_S0_PK7timeval");
bool g_connects_at_once = false;

int RealConnect(SOCKET socket, const SOCKADDR* address,
                int size) asm("__real__Z12SliceConnectmPK8SOCKADDRi");
int LoggedConnect(SOCKET socket, const SOCKADDR* address,
                  int size) asm("__wrap__Z12SliceConnectmPK8SOCKADDRi");
int LoggedConnect(SOCKET socket, const SOCKADDR* address, int size) {
    const int result = RealConnect(socket, address, size);
    return g_connects_at_once ? 0 : result;
}

int RealShutdown(SOCKET socket, int how) asm("__real__Z13SliceShutdownmi");
int LoggedShutdown(SOCKET socket, int how) asm("__wrap__Z13SliceShutdownmi");
int LoggedShutdown(SOCKET socket, int how) {
    g_log.ends.emplace_back(socket, how);
    return RealShutdown(socket, how);
}

int RealClose(SOCKET socket) asm("__real__Z16SliceCloseSocketm");
int LoggedClose(SOCKET socket) asm("__wrap__Z16SliceCloseSocketm");
int LoggedClose(SOCKET socket) {
    g_log.ends.emplace_back(socket, -1);
    return RealClose(socket);
}

int LoggedSelect(int ignored, SliceSocketSet* read, SliceSocketSet* write, SliceSocketSet* except,
                 const TIMEVAL* timeout) {
    {
        const std::lock_guard<std::mutex> lock(g_log.mutex);
        if (g_log.selects.size() < 100000)
            g_log.selects.push_back(
                {read != nullptr && read->fd_count > 0,
                 timeout ? timeout->tv_sec : -1,
                 timeout ? timeout->tv_usec : -1,
                 {except->fd_array, except->fd_array + std::min(except->fd_count, 64u)}});
    }
    if (g_leaves_others.exchange(false)) {
        for (SliceSocketSet* set : {read, except})
            for (set->fd_count = 0; set->fd_count < 3;) set->fd_array[set->fd_count++] = kOther;
        return 0;
    }
    return RealSelect(ignored, read, write, except, timeout);
}

int LoggedReceive(SOCKET socket, char* bytes, int size,
                  int flags) asm("__wrap__Z12SliceReceivemPcii");
int LoggedReceive(SOCKET socket, char* bytes, int size, int flags) {
    {
        const std::lock_guard<std::mutex> lock(g_log.mutex);
        g_log.reads.push_back(size);
    }
    return RealReceive(socket, bytes, size, flags);
}

namespace {

TEST(SocketCalls, LibraryIsAskedForVersion1Point1) {
    ForgetCalls();
    RunProgram({}, [] {});
    ASSERT_EQ(g_log.versions.size(), 1u);
    EXPECT_EQ(g_log.versions[0], 0x0101);
}

TEST(SocketCalls, HostNameOf40To59CharactersIsLookedUpWhole) {
    ForgetCalls();
    RunProgram({}, [] {
        for (const size_t length : {39u, 40u, 41u, 58u, 59u}) {
            const std::u16string wide = std::u16string(length - 8, u'h') + u".invalid";
            SetHost(wide.c_str(), 23);
            ConnectLater();
            DismissBox("Error: Cannot connect to the UNIX Host");
            ASSERT_FALSE(g_log.names.empty());
            EXPECT_EQ(g_log.names.back(), std::string(length - 8, 'h') + ".invalid");
        }
        EXPECT_EQ(g_log.names.size(), 5u);
    });
}

TEST(SocketCalls, DottedAddressOf59CharactersIsTakenWhole) {
    FakeHost host;
    ForgetCalls();
    RunProgram({}, [&] {
        const std::u16string zeros(59 - 9, u'0');
        SetHost((zeros + u"177.0.0.1").c_str(), host.port);
        Connect();
        EXPECT_TRUE(host.Accept());
        EXPECT_TRUE(g_log.names.empty());
    });
}

// Nobody listens at the other addresses.
TEST(SocketCalls, FirstAddressOfAnAnswerIsConnectedTo) {
    FakeHost host;
    ForgetCalls();
    RunProgram({}, [&] {
        const uint32_t here = inet_addr("127.0.0.1");
        for (int times = 0; times < 2; times++) {
            g_log.addresses = {here, inet_addr("127.0.0.2"), inet_addr("127.0.0.3")};
            SetHost(u"several.invalid", host.port);
            Connect();
            ASSERT_TRUE(host.Accept());
            OnWindowThread([=] { EXPECT_EQ(session.peer.sin_addr.s_addr, here); });
            host.Send("hello");
            ASSERT_TRUE(TerminalShows("hello"));
            Close();
            ASSERT_TRUE(Offline());
        }
    });
    ForgetCalls();
}

// The layer answers the connect call, so the request does not reach the network.
TEST(SocketCalls, PortOf65559Is23OnTheWire) {
    RunProgram({}, [] {
        for (const DWORD port : {23u, 65559u, 0x80000017u, 0xFFFF0017u}) {
            services_test_hooks.force_connect_error = 10061;
            SetHost(u"127.0.0.1", static_cast<int>(port));
            ConnectLater();
            ASSERT_EQ(AwaitBox(), "Error: Connection to the UNIX Host has failed (10061)");
            OnWindowThread([&] {
                const auto* bytes = reinterpret_cast<const BYTE*>(&session.peer.sin_port);
                EXPECT_EQ(bytes[0], 0) << port;
                EXPECT_EQ(bytes[1], 23) << port;
            });
            PressOk();
            ASSERT_TRUE(Offline());
        }
        services_test_hooks = {};
    });
}

TEST(SocketCalls, ReadTakes3000BytesWhenThatManyAreAvailable) {
    FakeHost host;
    WithSession(host, [&] {
        ForgetCalls();
        const auto taken = [] {
            for (int i = 0; i < 2000 && session.receive_ready == 1; i++) Sleep(5);
            return session.receive_ready == 0;
        };
        OnWindowThread([&] {
            host.Send("first");
            ASSERT_TRUE(taken());
            host.Send("\033[2J\033[H" + std::string(6001, 'x'));
            for (const int count : {5, 3000, 3000, 8}) {
                MSG message;
                ASSERT_TRUE(taken());
                EXPECT_EQ(session.receive_count, count);
                while (!PeekMessageW(&message, session.main_window, 105, 105, PM_REMOVE)) Sleep(5);
                DispatchMessageW(&message);
            }
        });
        const std::lock_guard<std::mutex> lock(g_log.mutex);
        for (const int size : g_log.reads) EXPECT_EQ(size, 3000);
    });
}

TEST(SocketCalls, ConnectThatSucceedsAtOnceRewritesStatusAndTitle) {
    FakeHost host;
    RunProgram({}, [&] {
        OnWindowThread([] { std::memset(&session.peer, 0xFF, sizeof(session.peer)); });
        for (int times = 0; times < 2; times++) {
            SetHost(u"127.0.0.1", host.port);
            OnWindowThread([] {
                g_connects_at_once = true;
                SessionConnect();
                g_connects_at_once = false;
                EXPECT_EQ(StatusText().substr(0, 10), "   request");
                EXPECT_EQ(Title(), "Quill Telnet  [127.0.0.1]");
                EXPECT_EQ(sizeof(session.peer), 16u);
                EXPECT_EQ(session.peer.sin_family, 2);
                for (const auto padding : session.peer.sin_zero) EXPECT_EQ(padding, 0);
            });
            ASSERT_TRUE(host.Accept());
            host.Send("hello");
            ASSERT_TRUE(TerminalShows("hello"));
            Close();
            ASSERT_TRUE(Offline());
        }
    });
}

TEST(SocketCalls, ClosingShutsTheSocketDownInBothDirectionsFirst) {
    FakeHost host;
    WithSession(host, [] {
        ForgetCalls();
        OnWindowThread([] {
            const SOCKET open = session.socket;
            SessionClose();
            const std::vector<std::pair<SOCKET, int>> expected = {{open, 2}, {open, -1}};
            EXPECT_EQ(g_log.ends, expected);
            SessionClose();
            EXPECT_EQ(g_log.ends, expected) << "there is none any more";
        });
        ASSERT_TRUE(Offline());
    });
}

TEST(SocketCalls, EachWaitForTheSocketEndsAfterAFifthOfASecond) {
    FakeHost host;
    RunProgram({}, [&] {
        for (int times = 0; times < 2; times++) {
            ForgetCalls();
            SetHost(u"127.0.0.1", host.port);
            Connect();
            ASSERT_TRUE(host.Accept());
            ASSERT_TRUE(Eventually([] { return Selects().size() >= 3; })) << "it waits in turns";
            for (const SelectCall& call : Selects()) {
                EXPECT_TRUE(call.reads);
                EXPECT_EQ(call.seconds, 0);
                EXPECT_EQ(call.microseconds, 200000);
            }
            host.Send("hello");
            ASSERT_TRUE(TerminalShows("hello"));
            Close();
            ASSERT_TRUE(Offline());
        }
    });
}

TEST(SocketCalls, EachWaitIsForTheSessionsSocketAlone) {
    FakeHost host;
    RunProgram({}, [&] {
        ForgetCalls();
        g_leaves_others = true;
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        ASSERT_TRUE(Eventually([] { return Selects().size() >= 3; }));
        EXPECT_FALSE(g_leaves_others);
        OnWindowThread([] {
            for (const SelectCall& call : Selects())
                EXPECT_EQ(std::vector<SOCKET>{session.socket}, call.excepts);
        });
        host.Send("hello");
        EXPECT_TRUE(TerminalShows("hello"));
    });
}

// The test counts calls, not time: a thread that spins makes thousands of calls.
TEST(SocketCalls, ThreadWaitsForTheBufferWithoutReadingOrSpinning) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([&] {
            host.Send("held");
            for (int i = 0; i < 2000 && session.receive_ready == 1; i++) Sleep(5);
            ASSERT_EQ(session.receive_ready, 0u);
            host.Send(" and waiting");
            ForgetCalls();
            Sleep(700);
            const std::vector<SelectCall> calls = Selects();
            EXPECT_GE(calls.size(), 1u) << "a broken line is still noticed";
            EXPECT_LE(calls.size(), 100u);
            for (const SelectCall& call : calls) EXPECT_FALSE(call.reads);
        });
        EXPECT_TRUE(TerminalShows("held and waiting"));
    });
}

}  // namespace

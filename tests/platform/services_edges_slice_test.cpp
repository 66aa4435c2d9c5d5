// SPDX-License-Identifier: MIT
// Threads that wait together, a system that has no more descriptors, and errors that have no number
// of their own.
#include <gtest/gtest.h>
#include <netdb.h>
#include <sys/resource.h>

#include <atomic>

#include "platform/qt/services/posix_sockets.h"
#include "windows_ce.h"

namespace {

struct Gate {
    HANDLE open = nullptr;
    std::atomic<int> passed{0};
};

DWORD WINAPI PassGate(LPVOID gate) {
    Gate* own = static_cast<Gate*>(gate);
    if (WaitForSingleObject(own->open, INFINITE) == WAIT_OBJECT_0) own->passed++;
    return 0;
}

}  // namespace

// They sleep by then: a wait looks at its event for a moment only.
TEST(EventEdges, AManualOneWakesAllThatSleep) {
    static Gate gate;  // outlives threads that were not woken
    gate.open = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    for (int i = 0; i < 8; ++i) CloseHandle(CreateThread(nullptr, 0, PassGate, &gate, 0, nullptr));
    Sleep(100);
    EXPECT_EQ(0, gate.passed.load());
    SetEvent(gate.open);
    for (int i = 0; i < 1000 && gate.passed.load() < 8; ++i) Sleep(10);
    EXPECT_EQ(8, gate.passed.load());
    CloseHandle(gate.open);
}

TEST(LocalSocketEdges, WithoutADescriptorNobodyListens) {
    rlimit before = {};
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &before));
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &none));
    const int listener = ListenLocally("quill-test-without-a-descriptor");
    const int caller = CallLocally("quill-test-without-a-descriptor");
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &before));
    EXPECT_LT(listener, 0);
    EXPECT_LT(caller, 0);
}

TEST(SocketErrors, OneWithoutANumberIsAnInvalidArgumentOrANameThatIsUnknown) {
    EXPECT_EQ(10061, WinsockError(ECONNREFUSED));
    EXPECT_EQ(10022, WinsockError(ENOTBLK));
    EXPECT_EQ(11002, WinsockLookupError(EAI_AGAIN));
    EXPECT_EQ(11001, WinsockLookupError(EAI_SERVICE));
}

// SPDX-License-Identifier: MIT
// Threads, events and time.
#include <gtest/gtest.h>

#include <atomic>

#include "windows_ce.h"

namespace {

struct Gate {
    HANDLE open = nullptr;
    std::atomic<int> passed{0};
};

DWORD WINAPI PassGate(LPVOID gate) {
    Gate* own = static_cast<Gate*>(gate);
    WaitForSingleObject(own->open, INFINITE);
    own->passed++;
    return 1;
}

DWORD WINAPI SignalSoon(LPVOID event) {
    Sleep(20);
    SetEvent(static_cast<HANDLE>(event));
    return 0;
}

}  // namespace

TEST(Events, AutomaticOneIsTakenByOneWait) {
    HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event, 0));
    EXPECT_TRUE(SetEvent(event));
    EXPECT_TRUE(SetEvent(event));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, 0));
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event, 0));
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Events, ManualOneStaysUntilReset) {
    HANDLE event = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, 0));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, 0));
    EXPECT_TRUE(ResetEvent(event));
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event, 5));
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Events, WaitEndsWhenAnotherThreadSignals) {
    HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    HANDLE thread = CreateThread(nullptr, 0, SignalSoon, event, 0, nullptr);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, INFINITE));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, INFINITE));
    CloseHandle(thread);
    CloseHandle(event);
}

TEST(Events, AutomaticOneLetsOneThreadThroughASignal) {
    Gate gate;
    gate.open = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    HANDLE threads[4];
    for (HANDLE& thread : threads) thread = CreateThread(nullptr, 0, PassGate, &gate, 0, nullptr);
    for (int i = 1; i <= 4; i++) {
        SetEvent(gate.open);
        while (gate.passed < i) Sleep(1);
        EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(gate.open, 0));
        EXPECT_EQ(i, gate.passed);
    }
    for (HANDLE thread : threads) {
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, INFINITE));
        CloseHandle(thread);
    }
    CloseHandle(gate.open);
}

TEST(Events, ManualOneLetsAllThrough) {
    Gate gate;
    gate.open = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE threads[4];
    for (HANDLE& thread : threads) thread = CreateThread(nullptr, 0, PassGate, &gate, 0, nullptr);
    SetEvent(gate.open);
    for (HANDLE thread : threads) {
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, INFINITE));
        CloseHandle(thread);
    }
    EXPECT_EQ(4, gate.passed);
    CloseHandle(gate.open);
}

TEST(Threads, RunsOnAfterItsHandleIsClosed) {
    Gate gate;
    gate.open = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    DWORD id = 0;
    HANDLE thread = CreateThread(nullptr, 0, PassGate, &gate, 0, &id);
    EXPECT_NE(0u, id);
    EXPECT_TRUE(CloseHandle(thread));
    EXPECT_EQ(0, gate.passed);
    SetEvent(gate.open);
    while (gate.passed == 0) Sleep(1);
    EXPECT_EQ(1, gate.passed);
    CloseHandle(gate.open);
}

TEST(Threads, WaitEndsWithTheThread) {
    Gate gate;
    gate.open = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE thread = CreateThread(nullptr, 0, PassGate, &gate, 0, nullptr);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(thread, 5));
    SetEvent(gate.open);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, INFINITE));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, 0));
    CloseHandle(thread);
    CloseHandle(gate.open);
}

TEST(Handles, ClosedOneIsInvalid) {
    HANDLE event = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_FALSE(CloseHandle(event));
    EXPECT_FALSE(SetEvent(event));
    EXPECT_FALSE(ResetEvent(event));
    EXPECT_EQ(WAIT_FAILED, WaitForSingleObject(event, 0));
}

TEST(Handles, NullIsInvalid) {
    EXPECT_FALSE(CloseHandle(nullptr));
    EXPECT_FALSE(SetEvent(nullptr));
    EXPECT_EQ(WAIT_FAILED, WaitForSingleObject(nullptr, 0));
}

TEST(Handles, ThreadIsNoEvent) {
    HANDLE thread = CreateThread(nullptr, 0, SignalSoon, nullptr, 0, nullptr);
    EXPECT_FALSE(SetEvent(thread));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, INFINITE));
    CloseHandle(thread);
}

TEST(TickCount, AdvancesWhileTheThreadSleeps) {
    const DWORD before = GetTickCount();
    Sleep(30);
    EXPECT_NE(before, GetTickCount());
}

TEST(SystemTime, IsADate) {
    SYSTEMTIME now = {};
    GetSystemTime(&now);
    EXPECT_GE(now.wYear, 2024);
    EXPECT_TRUE(now.wMonth >= 1 && now.wMonth <= 12);
    EXPECT_TRUE(now.wDay >= 1 && now.wDay <= 31);
    EXPECT_LT(now.wDayOfWeek, 7);
    EXPECT_LT(now.wHour, 24);
    EXPECT_LT(now.wMilliseconds, 1000);
}

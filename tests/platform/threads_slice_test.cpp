// SPDX-License-Identifier: MIT
// A clock set by the test, and threads that no other thread waits for.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

#include "tests/support/services_test_hooks.h"
#include "windows_ce.h"

namespace {

SYSTEMTIME TimeAt(int64_t milliseconds) {
    services_test_hooks.system_time = milliseconds;
    SYSTEMTIME time = {};
    GetSystemTime(&time);
    services_test_hooks.system_time = -1;
    return time;
}

DWORD WINAPI CloseItself(LPVOID event) {
    SetEvent(static_cast<HANDLE>(event));
    return 0;
}

}  // namespace

TEST(SystemTimeSet, FirstMomentIsAThursday) {
    const SYSTEMTIME time = TimeAt(0);
    EXPECT_EQ(1970, time.wYear);
    EXPECT_EQ(1, time.wMonth);
    EXPECT_EQ(1, time.wDay);
    EXPECT_EQ(4, time.wDayOfWeek);
    EXPECT_EQ(0, time.wMilliseconds);
}

TEST(SystemTimeSet, IsALeapDayToTheMillisecond) {
    const SYSTEMTIME time = TimeAt(951868799987);  // 2000-02-29 23:59:59.987, a Tuesday
    EXPECT_EQ(2000, time.wYear);
    EXPECT_EQ(2, time.wMonth);
    EXPECT_EQ(29, time.wDay);
    EXPECT_EQ(2, time.wDayOfWeek);
    EXPECT_EQ(23, time.wHour);
    EXPECT_EQ(59, time.wMinute);
    EXPECT_EQ(59, time.wSecond);
    EXPECT_EQ(987, time.wMilliseconds);
}

TEST(Threads, ManyShortThreadsStartAndEnd) {
    for (int i = 0; i < 300; i++) {
        HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        HANDLE thread = CreateThread(nullptr, 0, CloseItself, event, 0, nullptr);
        ASSERT_NE(nullptr, thread);
        CloseHandle(thread);
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, INFINITE));
        CloseHandle(event);
    }
}

// A stack for which there is no room among the addresses.
TEST(Threads, OneThatCannotStartHasNoHandle) {
    constexpr rlim_t kRoom = rlim_t{1} << 30;
    constexpr DWORD kStack = 0xF0000000;
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit before = {};
    ASSERT_EQ(0, getrlimit(RLIMIT_AS, &before));
    rlimit little = before;
    little.rlim_cur = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + kRoom;
    ASSERT_EQ(0, setrlimit(RLIMIT_AS, &little));
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE thread = CreateThread(nullptr, kStack, CloseItself, event, 0, nullptr);
    ASSERT_EQ(0, setrlimit(RLIMIT_AS, &before));
    EXPECT_EQ(nullptr, thread);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event, 0));
    CloseHandle(event);
}

TEST(Threads, SuspendedStartIsRefused) {
    EXPECT_EQ(nullptr, CreateThread(nullptr, 0, CloseItself, nullptr, 4, nullptr));
}

TEST(Events, SameNameOpensTheSameEvent) {
    HANDLE one = CreateEventW(nullptr, TRUE, FALSE, TEXT("quill test"));
    HANDLE other = CreateEventW(nullptr, TRUE, FALSE, TEXT("quill test"));
    EXPECT_NE(one, other);
    SetEvent(one);
    CloseHandle(one);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(other, 0));
    CloseHandle(other);
}

// The time of day, and the time since the start of the device.
#include <time.h>

#include <chrono>
#include <thread>

#include "platform/qt/testing_services.h"
#include "windows_ce.h"

namespace {

int64_t MillisecondsOf(clockid_t clock) {
    timespec now = {};
    clock_gettime(clock, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

}  // namespace

DWORD GetTickCount() { return static_cast<DWORD>(MillisecondsOf(CLOCK_MONOTONIC)); }

void Sleep(DWORD milliseconds) {
    if (milliseconds == 0) return std::this_thread::yield();
    do std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    while (milliseconds == INFINITE);
}

void GetSystemTime(SYSTEMTIME* time) {
    if (!time) return;
    const int64_t set = services_test_hooks.system_time;
    const int64_t now = set >= 0 ? set : MillisecondsOf(CLOCK_REALTIME);
    const time_t seconds = static_cast<time_t>(now / 1000);
    tm utc = {};
    gmtime_r(&seconds, &utc);
    time->wYear = static_cast<WORD>(utc.tm_year + 1900);
    time->wMonth = static_cast<WORD>(utc.tm_mon + 1);
    time->wDayOfWeek = static_cast<WORD>(utc.tm_wday);
    time->wDay = static_cast<WORD>(utc.tm_mday);
    time->wHour = static_cast<WORD>(utc.tm_hour);
    time->wMinute = static_cast<WORD>(utc.tm_min);
    time->wSecond = static_cast<WORD>(utc.tm_sec);
    time->wMilliseconds = static_cast<WORD>(now % 1000);
}

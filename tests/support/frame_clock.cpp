// SPDX-License-Identifier: MIT
// A steady clock that can be stopped for one thread.
#include "tests/support/frame_clock.h"

#include <algorithm>
#include <chrono>

using Clock = std::chrono::steady_clock;

static thread_local bool g_stopped = false;
static thread_local Clock::duration g_shown{};  // while it is stopped
static thread_local Clock::duration g_ahead{};  // of the real clock, while it goes

Clock::time_point RealNow() asm("__real__ZNSt6chrono3_V212steady_clock3nowEv");
Clock::time_point ShownNow() asm("__wrap__ZNSt6chrono3_V212steady_clock3nowEv");
Clock::time_point ShownNow() {
    if (g_stopped) return Clock::time_point(g_shown);
    return RealNow() + g_ahead;
}

void StopFrameClock() {
    g_shown = ShownNow().time_since_epoch();
    g_stopped = true;
}

void AdvanceFrameClock(int milliseconds) { g_shown += std::chrono::milliseconds(milliseconds); }

// The frames' clock never goes back, so it stays ahead if the test has advanced it.
void StartFrameClock() {
    g_stopped = false;
    g_ahead = std::max(g_ahead, g_shown - RealNow().time_since_epoch());
}

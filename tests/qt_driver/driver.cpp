// SPDX-License-Identifier: MIT
// What tests observe of a running program, and which of its calls they make fail.
#include "tests/qt_driver/driver.h"

#include <map>
#include <utility>

#include "platform/qt/window/window.h"

namespace {

std::u16string g_refused;
bool g_libraries_missing = false;
bool g_asked = false;  // for the queue to be empty
bool g_idle = false;   // it was, since
int g_beeps = 0;
UINT g_last_beep = 0;
int g_silent_keys = 0;
SilentKey g_silent_key = {};
std::map<std::pair<HWND, UINT_PTR>, int> g_timers;

bool Refuse(LPCWSTR class_name) { return !g_refused.empty() && g_refused == class_name; }

bool HideLibrary(LPCWSTR) { return g_libraries_missing; }

void SeeTimer(HWND window, UINT_PTR id, int milliseconds) { g_timers[{window, id}] = milliseconds; }

void SeeSilentKey(BYTE virtual_key, DWORD flags) {
    g_silent_keys++;
    g_silent_key = {virtual_key, flags};
}

void HearBeep(UINT type) {
    g_beeps++;
    g_last_beep = type;
}

void SeeIdle() { g_idle = true; }

const bool g_installed = [] {
    WindowObserver& observer = window_observer;
    observer.refuse = Refuse;
    observer.hide_library = HideLibrary;
    observer.timer = SeeTimer;
    observer.silent_key = SeeSilentKey;
    observer.beep = HearBeep;
    observer.idle = SeeIdle;
    return true;
}();

}  // namespace

bool MessagesWaiting() {
    if (!std::exchange(g_asked, true)) g_idle = false;
    if (g_idle) g_asked = false;
    return !g_idle;
}

int BeepCount() { return g_beeps; }
UINT LastBeep() { return g_last_beep; }
int SilentKeyCount() { return g_silent_keys; }
SilentKey LastSilentKey() { return g_silent_key; }

int TimerMilliseconds(HWND window, UINT_PTR id) {
    const auto found = g_timers.find({window, id});
    return found == g_timers.end() ? -1 : found->second;
}

void TakeLibrariesAway(bool missing) { g_libraries_missing = missing; }

void RefuseWindows(LPCWSTR class_name) { g_refused = class_name ? class_name : u""; }

void ForgetRecords() {
    g_refused.clear();
    g_silent_keys = 0;
    g_timers.clear();
    ForgetDialogs();
    TakeLibrariesAway(false);
}

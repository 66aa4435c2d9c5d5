// SPDX-License-Identifier: MIT
// The services of a device's kernel: threads, events, memory blocks and time. A run never uses the
// same HANDLE number twice. The object behind a handle lives as long as a thread runs it or waits
// for it, even after the handle is closed.
#include <pthread.h>
#include <ctime>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <thread>

#include "platform/qt/services/services.h"
#include "windows_ce.h"

constexpr std::chrono::microseconds kMoment{50};
constexpr int kRestsAfterMiss = 8;
constexpr int64_t kMostMisses = 1000;

namespace {

struct Waitable {
    std::mutex mutex;
    std::condition_variable changed;
    bool is_event = false;
    bool manual_reset = true;            // a thread that has ended stays signalled
    std::atomic<bool> signalled{false};  // written with the lock held
    std::atomic<int> rests{0};           // this many waits from now on sleep at once
    std::u16string name;
};
using WaitablePointer = std::shared_ptr<Waitable>;

struct ThreadStart {
    LPTHREAD_START_ROUTINE procedure;
    LPVOID argument;
    WaitablePointer self;
};

struct HandleTable {
    std::mutex mutex;
    std::map<HANDLE, WaitablePointer> open;
    UINT_PTR last = 0;
};

}  // namespace

// Never destroyed: a detached thread may still close its handles while the program ends.
static HandleTable& Table() {
    static HandleTable* table = new HandleTable;
    return *table;
}

static HANDLE AddHandle(const WaitablePointer& waitable) {
    HandleTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const HANDLE handle = reinterpret_cast<HANDLE>(table.last += 4);
    table.open[handle] = waitable;
    return handle;
}

static WaitablePointer FindHandle(HANDLE handle) {
    HandleTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const auto found = table.open.find(handle);
    return found == table.open.end() ? nullptr : found->second;
}

static WaitablePointer FindNamed(const std::u16string& name) {
    HandleTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    for (const auto& [handle, waitable] : table.open)
        if (waitable->name == name) return waitable;
    return nullptr;
}

static void Signal(Waitable& waitable, bool signalled) {
    const std::lock_guard<std::mutex> lock(waitable.mutex);
    waitable.signalled = signalled;
    if (!signalled) return;
    if (waitable.manual_reset)
        waitable.changed.notify_all();
    else
        waitable.changed.notify_one();
}

static void* RunThread(void* start) {
    const std::unique_ptr<ThreadStart> own(static_cast<ThreadStart*>(start));
    own->procedure(own->argument);
    Signal(*own->self, true);
    return nullptr;
}

static bool StartThread(ThreadStart* start, DWORD stack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    if (stack > 0x10000) pthread_attr_setstacksize(&attributes, stack);
    pthread_t thread;
    const int error = pthread_create(&thread, &attributes, RunThread, start);
    pthread_attr_destroy(&attributes);
    return error == 0;
}

// When a host streams, the two threads of a session signal each other within microseconds. To poll
// for so short a time costs less than to sleep and be woken up. Where the other thread works
// longer, as on encrypted packets, polling only takes the processor from the host's side of the
// connection. A poll that takes many times as long as it may has given the processor to other
// programs, and counts as so many misses: then a thread that sleeps gets the processor back sooner
// than one that yields.
static void WatchForAMoment(Waitable& waitable) {
    if (waitable.rests > 0) {
        --waitable.rests;
        return;
    }
    const auto start = std::chrono::steady_clock::now();
    std::chrono::steady_clock::duration spent{0};
    while (!waitable.signalled && spent < kMoment) {
        std::this_thread::yield();
        spent = std::chrono::steady_clock::now() - start;
    }
    const int64_t misses = std::min<int64_t>(spent / kMoment, kMostMisses);
    waitable.rests = static_cast<int>(misses) * kRestsAfterMiss;
}

static bool SetEventState(HANDLE event, bool signalled) {
    const WaitablePointer waitable = FindHandle(event);
    if (!waitable || !waitable->is_event) return false;
    Signal(*waitable, signalled);
    return true;
}

HANDLE CreateThread(LPVOID, DWORD stack, LPTHREAD_START_ROUTINE procedure, LPVOID argument,
                    DWORD flags, DWORD* id) {
    if (!procedure || flags != 0) return nullptr;
    const auto waitable = std::make_shared<Waitable>();
    const HANDLE handle = AddHandle(waitable);
    if (id) *id = static_cast<DWORD>(reinterpret_cast<UINT_PTR>(handle));
    auto start = std::make_unique<ThreadStart>(ThreadStart{procedure, argument, waitable});
    if (!StartThread(start.get(), stack)) {
        CloseHandle(handle);
        return nullptr;
    }
    static_cast<void>(start.release());  // RunThread owns it now
    return handle;
}

// If an event of this program has the name already, opens that event.
HANDLE CreateEventW(LPVOID, BOOL manual_reset, BOOL signalled, LPCWSTR name) {
    const std::u16string wanted = name ? name : u"";
    WaitablePointer waitable = wanted.empty() ? nullptr : FindNamed(wanted);
    if (!waitable) {
        waitable = std::make_shared<Waitable>();
        waitable->is_event = true;
        waitable->manual_reset = manual_reset != FALSE;
        waitable->signalled = signalled != FALSE;
        waitable->name = wanted;
    }
    return AddHandle(waitable);
}

BOOL SetEvent(HANDLE event) { return SetEventState(event, true); }

BOOL ResetEvent(HANDLE event) { return SetEventState(event, false); }

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    const WaitablePointer waitable = FindHandle(handle);
    if (!waitable) return WAIT_FAILED;
    if (milliseconds > 0) WatchForAMoment(*waitable);
    std::unique_lock<std::mutex> lock(waitable->mutex);
    const auto ready = [&] { return waitable->signalled.load(); };
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    if (milliseconds == INFINITE)
        waitable->changed.wait(lock, ready);
    else if (!waitable->changed.wait_until(lock, end, ready))
        return WAIT_TIMEOUT;
    if (!waitable->manual_reset) waitable->signalled = false;
    return WAIT_OBJECT_0;
}

BOOL CloseHandle(HANDLE handle) {
    HandleTable& table = Table();
    WaitablePointer last_use;  // released after the lock
    const std::lock_guard<std::mutex> lock(table.mutex);
    const auto found = table.open.find(handle);
    if (found == table.open.end()) return FALSE;
    last_use = std::move(found->second);
    table.open.erase(found);
    return TRUE;
}

namespace {

struct Block {
    std::unique_ptr<BYTE[]> bytes;
    size_t size;
};

}  // namespace

static std::map<HLOCAL, Block> g_blocks;
static UINT_PTR g_next_block = 0x10;

static Block* FindBlock(HLOCAL handle) {
    const auto found = g_blocks.find(handle);
    return found == g_blocks.end() ? nullptr : &found->second;
}

HLOCAL LocalAlloc(UINT, size_t bytes) {
    Block block = {std::unique_ptr<BYTE[]>(new (std::nothrow) BYTE[bytes]), bytes};
    if (!block.bytes) return nullptr;
    g_next_block += 4;
    const auto handle = reinterpret_cast<HLOCAL>(g_next_block);
    g_blocks.emplace(handle, std::move(block));
    return handle;
}

LPVOID LocalLock(HLOCAL handle) {
    const Block* block = FindBlock(handle);
    return block ? block->bytes.get() : nullptr;
}

BOOL LocalUnlock(HLOCAL) { return FALSE; }  // the block is not locked any more

size_t LocalSize(HLOCAL handle) {
    const Block* block = FindBlock(handle);
    return block ? block->size : 0;
}

HLOCAL LocalFree(HLOCAL handle) { return g_blocks.erase(handle) ? nullptr : handle; }

static int64_t MillisecondsOf(clockid_t clock) {
    timespec now = {};
    clock_gettime(clock, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

DWORD GetTickCount() { return static_cast<DWORD>(MillisecondsOf(CLOCK_MONOTONIC)); }

void Sleep(DWORD milliseconds) {
    if (milliseconds == 0) return std::this_thread::yield();
    // NOLINTNEXTLINE(bugprone-infinite-loop): INFINITE asks for it
    do std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    while (milliseconds == INFINITE);
}

constexpr int kFirstYear = 1900;  // of tm

void GetSystemTime(SYSTEMTIME* time) {
    if (!time) return;
    const int64_t set = services_observer.system_time ? services_observer.system_time() : -1;
    const int64_t now = set >= 0 ? set : MillisecondsOf(CLOCK_REALTIME);
    const time_t seconds = static_cast<time_t>(now / 1000);
    tm utc = {};
    gmtime_r(&seconds, &utc);
    time->wYear = static_cast<WORD>(utc.tm_year + kFirstYear);
    time->wMonth = static_cast<WORD>(utc.tm_mon + 1);
    time->wDayOfWeek = static_cast<WORD>(utc.tm_wday);
    time->wDay = static_cast<WORD>(utc.tm_mday);
    time->wHour = static_cast<WORD>(utc.tm_hour);
    time->wMinute = static_cast<WORD>(utc.tm_min);
    time->wSecond = static_cast<WORD>(utc.tm_sec);
    time->wMilliseconds = static_cast<WORD>(now % 1000);
}

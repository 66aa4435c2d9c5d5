// Threads and events. A HANDLE is a number that is never given out twice in a run; what it stands
// for lives on while a thread runs it or waits for it.
#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "windows_ce.h"

namespace {

constexpr std::chrono::microseconds kMoment{50};

struct Waitable {
    std::mutex mutex;
    std::condition_variable changed;
    bool is_event = false;
    bool manual_reset = true;  // a thread that has ended stays signalled
    bool signalled = false;
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

// Never destroyed: a detached thread may still close its handles while the program ends.
HandleTable& Table() {
    static HandleTable* table = new HandleTable;
    return *table;
}

HANDLE AddHandle(const WaitablePointer& waitable) {
    HandleTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const HANDLE handle = reinterpret_cast<HANDLE>(table.last += 4);
    table.open[handle] = waitable;
    return handle;
}

WaitablePointer FindHandle(HANDLE handle) {
    HandleTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const auto found = table.open.find(handle);
    return found == table.open.end() ? nullptr : found->second;
}

WaitablePointer FindNamed(const std::u16string& name) {
    HandleTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    for (const auto& [handle, waitable] : table.open)
        if (waitable->name == name) return waitable;
    return nullptr;
}

void Signal(Waitable& waitable, bool signalled) {
    const std::lock_guard<std::mutex> lock(waitable.mutex);
    waitable.signalled = signalled;
    if (!signalled) return;
    if (waitable.manual_reset)
        waitable.changed.notify_all();
    else
        waitable.changed.notify_one();
}

void* RunThread(void* start) {
    const std::unique_ptr<ThreadStart> own(static_cast<ThreadStart*>(start));
    own->procedure(own->argument);
    Signal(*own->self, true);
    return nullptr;
}

bool StartThread(ThreadStart* start, DWORD stack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    if (stack > 0x10000) pthread_attr_setstacksize(&attributes, stack);
    pthread_t thread;
    const int error = pthread_create(&thread, &attributes, RunThread, start);
    pthread_attr_destroy(&attributes);
    return error == 0;
}

bool IsSignalled(Waitable& waitable) {
    const std::lock_guard<std::mutex> lock(waitable.mutex);
    return waitable.signalled;
}

// What is signalled within microseconds, as between the two threads of a session whose host
// streams, costs less to look for than to be woken up by.
void WatchForAMoment(Waitable& waitable) {
    const auto end = std::chrono::steady_clock::now() + kMoment;
    while (!IsSignalled(waitable) && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
}

bool SetEventState(HANDLE event, bool signalled) {
    const WaitablePointer waitable = FindHandle(event);
    if (!waitable || !waitable->is_event) return false;
    Signal(*waitable, signalled);
    return true;
}

}  // namespace

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
    start.release();  // RunThread's now
    return handle;
}

// A name joins an event of this program that has it.
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
    const auto ready = [&] { return waitable->signalled; };
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
    WaitablePointer last_use;  // let go of after the lock
    const std::lock_guard<std::mutex> lock(table.mutex);
    const auto found = table.open.find(handle);
    if (found == table.open.end()) return FALSE;
    last_use = std::move(found->second);
    table.open.erase(found);
    return TRUE;
}

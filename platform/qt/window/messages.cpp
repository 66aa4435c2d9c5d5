// SPDX-License-Identifier: MIT
// The message queue of the window thread: posted messages, input, paints and timers in the order of
// the real queue, on top of Qt's event loop.
//
// A frame (frames.cpp) comes when the queue is idle. While messages keep coming, it comes when it
// has waited for a frame's time.
#include <atomic>
#include <deque>
#include <map>
#include <mutex>
#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QTimer>
#include <set>
#include <thread>
#include <utility>

#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"

constexpr qint64 kSoonNanoseconds = 100000;
constexpr int kRestsAfterMiss = 8;
constexpr qint64 kMostMisses = 1000;

namespace {

struct QueuedMessage {
    MSG message;
    QString characters;  // of a key press
    KeyStates keys;      // when it happened
};

}  // namespace

static std::mutex g_posted_mutex;
static std::deque<MSG> g_posted;
static std::atomic<bool> g_something_posted{false};  // true while g_posted has a message
static std::set<HWND> g_takers;                      // the windows that messages can be posted to
static std::atomic<bool> g_waiting{false};
static std::atomic<QAbstractEventDispatcher*> g_dispatcher{nullptr};

static std::deque<QueuedMessage> g_input;
static std::deque<MSG> g_timers;
static QString g_key_characters;  // what TranslateMessage makes of the last key taken
static bool g_quit = false;
static int g_quit_code = 0;
static KeyStates g_keys_down;   // after the last event
static KeyStates g_keys_taken;  // as they were for the last message taken
static bool g_took_posted =
    false;               // true if a posted message was taken since the queue last waited
static int g_rests = 0;  // this many times from now on PostedSoon does not poll
static QElapsedTimer g_since_collected;  // since the toolkit's events were last processed

namespace {

using TimerKey = std::pair<HWND, UINT_PTR>;

}  // namespace
static std::map<TimerKey, std::unique_ptr<QTimer>> g_running_timers;

static MSG MakeMessage(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    return MSG{window, message, wparam, lparam, GetTickCount(), POINT{0, 0}};
}

static bool Fits(const MSG& message, HWND window, UINT first, UINT last) {
    if (window && message.hwnd != window) return false;
    return (first == 0 && last == 0) || (message.message >= first && message.message <= last);
}

// Call it after each change of g_posted, with the lock held.
static void PostedChanged() { g_something_posted.store(!g_posted.empty()); }

static bool TakePosted(MSG* message, HWND window, UINT first, UINT last, bool remove) {
    const std::lock_guard<std::mutex> lock(g_posted_mutex);
    for (auto entry = g_posted.begin(); entry != g_posted.end(); ++entry) {
        if (!Fits(*entry, window, first, last)) continue;
        *message = *entry;
        if (remove) g_posted.erase(entry);
        PostedChanged();
        g_took_posted = true;
        return true;
    }
    return false;
}

static bool TakeInput(MSG* message, HWND window, UINT first, UINT last, bool remove) {
    for (auto entry = g_input.begin(); entry != g_input.end(); ++entry) {
        if (!Fits(entry->message, window, first, last)) continue;
        *message = entry->message;
        g_key_characters = entry->characters;
        g_keys_taken = entry->keys;
        if (remove) g_input.erase(entry);
        return true;
    }
    return false;
}

static bool TakeTimer(MSG* message, HWND window, UINT first, UINT last, bool remove) {
    for (auto entry = g_timers.begin(); entry != g_timers.end(); ++entry) {
        if (!Fits(*entry, window, first, last)) continue;
        *message = *entry;
        if (remove) g_timers.erase(entry);
        return true;
    }
    return false;
}

static bool TakePaint(MSG* message, HWND window, UINT first, UINT last) {
    const Window* invalid = WindowToPaint();
    if (!invalid) return false;
    *message = MakeMessage(invalid->handle, WM_PAINT, 0, 0);
    return Fits(*message, window, first, last);
}

// Takes no lock, so that a thread that polls does not hold up the one that posts.
static bool SomethingPosted() { return g_something_posted.load(); }

// While a host streams, its next chunk is posted within microseconds. To sleep and be woken up
// would take many times longer. After a chunk that did not come so soon, the next ones are not
// expected to. A poll that takes many times as long as it may has given the processor to other
// programs, and counts as so many misses: then a thread that sleeps gets the processor back sooner
// than one that yields.
static bool PostedSoon() {
    if (!std::exchange(g_took_posted, false)) return false;
    if (g_rests > 0) {
        --g_rests;
        return false;
    }
    QElapsedTimer since;
    since.start();
    while (!SomethingPosted() && since.nsecsElapsed() < kSoonNanoseconds) std::this_thread::yield();
    const qint64 misses = std::min(since.nsecsElapsed() / kSoonNanoseconds, kMostMisses);
    g_rests = static_cast<int>(misses) * kRestsAfterMiss;
    return SomethingPosted();
}

static void CollectInput(bool wait) {
    g_since_collected.start();
    // Only the toolkit's own loop deletes such objects by itself, and it never runs here.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (wait && g_dispatcher.load() == nullptr)
        g_dispatcher.store(QAbstractEventDispatcher::instance());
    if (!wait) return QCoreApplication::processEvents();
    const bool outer = g_waiting.exchange(true);
    QCoreApplication::processEvents(SomethingPosted() ? QEventLoop::AllEvents
                                                      : QEventLoop::WaitForMoreEvents);
    g_waiting.store(outer);
}

// While messages keep coming, the toolkit's events are processed only once per frame's time,
// because that takes longer than most messages do.
static bool CollectedLately() {
    return g_since_collected.isValid() && g_since_collected.elapsed() < kFrameMilliseconds;
}

// Wakes the queue when the time of a frame that has to wait has come.
static void WakeForFrame() {
    static QPointer<QTimer> timer;
    const int milliseconds = MillisecondsToFrame();
    if (milliseconds < 0) return;
    if (!timer) timer = new QTimer(qApp);
    if (timer->isActive()) return;
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(true);
    timer->start(milliseconds);
}

// Takes a paint that goes before posted messages: the rest of a frame, or a frame that has waited
// too long. In the second case, the toolkit's events are processed first.
static bool TakeDuePaint(MSG* message, HWND window, UINT first, UINT last) {
    if (FrameUnderWay()) return TakePaint(message, window, first, last);
    if (!FrameOverdue()) return false;
    CollectInput(false);
    return TakePaint(message, window, first, last);
}

// One step of the queue: takes a message, or returns false after Qt's events have been processed.
// The events may bring what the caller waits for, so `may_wait` is asked last.
static bool Step(MSG* message, HWND window, UINT first, UINT last, bool remove,
                 const std::function<bool()>& may_wait) {
    if (TakeDuePaint(message, window, first, last) ||
        TakePosted(message, window, first, last, remove) ||
        TakeInput(message, window, first, last, remove))
        return true;
    if (g_quit) {
        *message = MakeMessage(nullptr, WM_QUIT, static_cast<WPARAM>(g_quit_code), 0);
        return true;
    }
    if (g_took_posted && CollectedLately() && may_wait()) {
        if (TakePaint(message, window, first, last)) return true;
        if (PostedSoon()) return false;
    }
    CollectInput(false);
    if (!g_input.empty()) return TakeInput(message, window, first, last, remove);
    if (TakePosted(message, window, first, last, remove) ||
        TakePaint(message, window, first, last) || TakeTimer(message, window, first, last, remove))
        return true;
    if (g_quit || !may_wait() || PostedSoon()) return false;
    if (window_observer.idle) window_observer.idle();
    WakeForFrame();
    SettleFrames();
    CollectInput(true);
    return false;
}

void QueueInput(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    g_input.push_back({MakeMessage(window, message, wparam, lparam), QString(), g_keys_down});
}

void QueueKey(HWND window, UINT message, WPARAM key, LPARAM flags, const QString& characters) {
    if (message == WM_KEYDOWN) HurryFrames();
    g_input.push_back({MakeMessage(window, message, key, flags), characters, g_keys_down});
}

void SetKeyDown(size_t virtual_key, bool down) { g_keys_down[virtual_key] = down; }

bool IsKeyDown(size_t virtual_key) { return g_keys_down[virtual_key]; }

bool QuitPosted() { return g_quit; }

void TakeMessagesFor(HWND window) {
    const std::lock_guard<std::mutex> lock(g_posted_mutex);
    g_takers.insert(window);
}

static void EraseInput(const std::function<bool(const MSG&)>& matches) {
    std::erase_if(g_input, [&](const QueuedMessage& m) { return matches(m.message); });
}

void ForgetWindowMessages(HWND window) {
    {
        const std::lock_guard<std::mutex> lock(g_posted_mutex);
        g_takers.erase(window);
        std::erase_if(g_posted, [&](const MSG& m) { return m.hwnd == window; });
        PostedChanged();
    }
    EraseInput([&](const MSG& m) { return m.hwnd == window; });
    std::erase_if(g_timers, [&](const MSG& m) { return m.hwnd == window; });
    std::erase_if(g_running_timers, [&](const auto& t) { return t.first.first == window; });
}

bool DropPosted(HWND window, UINT message, WPARAM wparam) {
    const std::lock_guard<std::mutex> lock(g_posted_mutex);
    const auto dropped = std::erase_if(g_posted, [&](const MSG& m) {
        return m.hwnd == window && m.message == message && m.wParam == wparam;
    });
    PostedChanged();
    return dropped > 0;
}

void ResetMessages() {
    {
        const std::lock_guard<std::mutex> lock(g_posted_mutex);
        g_posted.clear();
        PostedChanged();
    }
    g_input.clear();
    g_timers.clear();
    g_running_timers.clear();
    g_key_characters.clear();
    g_keys_down.reset();
    g_keys_taken.reset();
    g_quit = false;
    g_took_posted = false;
    g_rests = 0;
    g_since_collected.invalidate();
    ResetFrames();
    g_dispatcher.store(nullptr);
}

BOOL GetMessageW(MSG* message, HWND window, UINT first, UINT last) {
    while (!Step(message, window, first, last, true, [] { return true; })) {
    }
    if (message->message != WM_QUIT) return TRUE;
    g_quit = false;
    return FALSE;
}

BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    if (!Step(message, window, first, last, remove & PM_REMOVE, [] { return false; })) return FALSE;
    if (message->message == WM_QUIT && (remove & PM_REMOVE)) g_quit = false;
    return TRUE;
}

// A control's notice of what has already happened in it, such as another selection in a list.
static bool IsNotice(const MSG& message) {
    return message.message == WM_COMMAND && HIWORD(message.wParam) != BN_CLICKED;
}

void DropInput() {
    EraseInput([](const MSG& m) { return !IsNotice(m); });
}

void RunModalLoop(const std::function<bool()>& done) {
    MSG message;
    while (!done() && !g_quit) {
        if (!Step(&message, nullptr, 0, 0, true, [&] { return !done(); })) continue;
        if (message.message == WM_QUIT) return;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void DispatchPosted(const std::function<bool()>& done) {
    QElapsedTimer since;
    since.start();
    MSG message;
    while (!done() && since.elapsed() < kFrameMilliseconds &&
           TakePosted(&message, nullptr, 0, 0, true))
        DispatchMessageW(&message);
}

SHORT GetKeyState(int virtual_key) {
    const auto held = [](size_t key) { return g_keys_taken[key]; };
    if (virtual_key < 0 || virtual_key > 255) return 0;
    bool down = held(static_cast<size_t>(virtual_key));
    if (virtual_key == VK_SHIFT) down = held(VK_LSHIFT) || held(VK_RSHIFT);
    if (virtual_key == VK_CONTROL) down = held(VK_LCONTROL) || held(VK_RCONTROL);
    if (virtual_key == VK_MENU) down = held(VK_LMENU) || held(VK_RMENU);
    return static_cast<SHORT>(down ? 0x8000 : 0);
}

BOOL TranslateMessage(const MSG* message) {
    const bool plain = message->message == WM_KEYDOWN;
    if (!plain && message->message != WM_SYSKEYDOWN) return FALSE;
    const std::u16string characters = ToWide(g_key_characters);
    const KeyStates keys = g_keys_taken;
    g_key_characters.clear();
    // The characters come next, before any other input.
    auto place = g_input.begin();
    for (const char16_t character : characters)
        place = g_input.insert(place, {MakeMessage(message->hwnd, plain ? WM_CHAR : WM_SYSCHAR,
                                                   character, message->lParam),
                                       QString(), keys}) +
                1;
    return TRUE;
}

LRESULT DispatchMessageW(const MSG* message) {
    Window* window = FindWindowRecord(message->hwnd);
    if (!window) return 0;
    if (message->message != WM_PAINT)
        return CallWindowProcedure(*window, message->message, message->wParam, message->lParam);
    PaintFrameOf(*window);
    return 0;
}

LRESULT SendMessageW(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
    Window* window = FindAnyWindow(handle);
    return window ? window->operations->send(*window, message, wparam, lparam) : 0;
}

BOOL PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    {
        const std::lock_guard<std::mutex> lock(g_posted_mutex);
        if (window && !g_takers.contains(window)) return FALSE;
        g_posted.push_back(MakeMessage(window, message, wparam, lparam));
        PostedChanged();
    }
    QAbstractEventDispatcher* dispatcher = g_dispatcher.load();
    if (dispatcher && g_waiting.load()) dispatcher->wakeUp();
    return TRUE;
}

void PostQuitMessage(int exit_code) {
    g_quit = true;
    g_quit_code = exit_code;
}

UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure) {
    if (!FindWindowRecord(window)) return 0;
    auto& timer = g_running_timers[{window, id}];
    timer = std::make_unique<QTimer>();
    QObject::connect(timer.get(), &QTimer::timeout, qApp, [window, id, procedure] {
        for (const MSG& waiting : g_timers)
            if (waiting.hwnd == window && waiting.wParam == id) return;
        g_timers.push_back(MakeMessage(window, WM_TIMER, id, reinterpret_cast<LPARAM>(procedure)));
    });
    timer->start(static_cast<int>(milliseconds));
    if (window_observer.timer) window_observer.timer(window, id, timer->interval());
    return id;
}

BOOL KillTimer(HWND window, UINT_PTR id) {
    if (window_observer.timer) window_observer.timer(window, id, -1);
    std::erase_if(g_timers, [&](const MSG& m) { return m.hwnd == window && m.wParam == id; });
    return g_running_timers.erase({window, id}) > 0;
}

// SPDX-License-Identifier: MIT
// The running program on the slice: a host, a person and the desktop do what the input says
// (window_events.h). The first byte of the input says whether there is a session (bit 0) and sets
// the device's size (bits 1 and 2). The program starts once for many inputs and again if it has
// ended. Its network is a double, its clock stands still, and each event comes when the program
// waits for messages.
//
// At the end of an input, all dialogs are left by Cancel. What must hold then:
// - no dialog or box stays open,
// - the terminal is within its bounds,
// - the terminal's window has the picture that painting everything anew gives,
// - put back to the state after the start, the program has the windows, the terminal and the
// picture
//   that it had then.
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <new>
#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QBackingStore>
#include <QClipboard>
#include <thread>

#include "fuzz/window_events.h"
#include "platform/qt/host/host.h"
#include "platform/qt/services/services.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"
#include "protocol/protocols.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/settings.h"
#include "settings/toolbars.h"
#include "terminal/screen_buffer.h"
#include "tests/terminal/terminal_state.h"
#include "text/text.h"
#include "ui/main_window.h"
#include "ui/view/input.h"
#include "ui/view/view.h"

using Target = int (*)(const uint8_t* data, size_t size);
extern "C" int LLVMFuzzerRunDriver(int* argc, char*** argv, Target target);

static const int kMostSteps = 400;  // to leave all dialogs, and to come to rest

static std::string root;

static void Require(bool holds, const std::string& what) {
    if (holds) return;
    fprintf(stderr, "broken: %s\n", what.c_str());
    abort();
}

// ---------------------------------------------------------------- the system

int RealSend(SOCKET to, const char* bytes, int size, int) __asm__("__real__Z9SliceSendmPKcii");
int FakeSend(SOCKET to, const char* bytes, int size, int) __asm__("__wrap__Z9SliceSendmPKcii");
int FakeSend(SOCKET to, const char* bytes, int size, int flags) {
    return to == kHostSocket ? size : RealSend(to, bytes, size, flags);
}

int RealShutdown(SOCKET of, int how) __asm__("__real__Z13SliceShutdownmi");
int FakeShutdown(SOCKET of, int how) __asm__("__wrap__Z13SliceShutdownmi");
int FakeShutdown(SOCKET of, int how) { return of == kHostSocket ? 0 : RealShutdown(of, how); }

// The receiving thread would then report the end.
int RealClose(SOCKET of) __asm__("__real__Z16SliceCloseSocketm");
int FakeClose(SOCKET of) __asm__("__wrap__Z16SliceCloseSocketm");
int FakeClose(SOCKET of) {
    if (of != kHostSocket) return RealClose(of);
    PostMessageW(session.main_window, WM_SOCKET_DATA, 1, 0);
    return 0;
}

// The program's timer ticks when the input says so.
UINT_PTR NoTimer(HWND window, UINT_PTR id, UINT milliseconds,
                 TIMERPROC) __asm__("__wrap__Z8SetTimerP11SliceWindowmjPFvS0_jmjE");
UINT_PTR NoTimer(HWND, UINT_PTR id, UINT, TIMERPROC) { return id; }

BOOL NoHelp(LPCWSTR, LPWSTR, LPVOID, LPVOID, BOOL, DWORD, LPVOID, LPCWSTR, LPVOID, PROCESS_INFORMATION*) __asm__(
    "__wrap__Z14CreateProcessWPKDsPDsPvS2_ijS2_S0_S2_P19PROCESS_INFORMATION");
BOOL NoHelp(LPCWSTR, LPWSTR, LPVOID, LPVOID, BOOL, DWORD, LPVOID, LPCWSTR, LPVOID,
            PROCESS_INFORMATION*) {
    return TRUE;
}

// The queue polls for a moment before it sleeps. On a busy machine each yield would take long.
int NoYield() __asm__("__wrap_sched_yield");
int NoYield() { return 0; }

static int NetworkError(NetworkCall call) {
    const int kRefused = 10061, kNoHost = 11001;
    if (call == NetworkCall::kConnect) return kRefused;
    return call == NetworkCall::kHostLookup ? kNoHost : 0;
}

static DialUpHost NoDialUp() { return {"/nonexistent", "/bin/false", 0}; }

// ---------------------------------------------------------------- the state after the start

struct Start {
    Settings settings;
    DWORD bars[kToolbarRows][kToolbars];
    std::string keys[kKeyRows];
    QImage picture;
    size_t windows;
    qsizetype widgets;
};
static Start start;

// What the screen shows, without painting it.
static QImage Shown() {
    QBackingStore* store = ReadyStore(DeviceScreen());
    Require(store && store->paintDevice()->devType() == QInternal::Image, "the screen has a store");
    return static_cast<QImage*>(store->paintDevice())->copy();
}

static qsizetype WidgetsKept() { return DeviceScreen()->findChildren<QWidget*>().size(); }

static void NoteTables() {
    start.settings = session.settings;
    for (int i = 0; i < kToolbarRows; ++i) {
        start.bars[i][0] = toolbar_buttons[i].onBar1;
        start.bars[i][1] = toolbar_buttons[i].onBar2;
        start.bars[i][2] = toolbar_buttons[i].onBar3;
    }
    for (int i = 0; i < kKeyRows; ++i) start.keys[i] = key_map[i].text ? key_map[i].text : "";
}

static void NoteShown() {
    start.picture = Shown();
    start.windows = AllWindows().size();
    start.widgets = WidgetsKept();
}

static void RestoreTables() {
    session.settings = start.settings;
    for (int i = 0; i < kToolbarRows; ++i) {
        toolbar_buttons[i].onBar1 = start.bars[i][0];
        toolbar_buttons[i].onBar2 = start.bars[i][1];
        toolbar_buttons[i].onBar3 = start.bars[i][2];
    }
    for (int i = 0; i < kKeyRows; ++i) {
        WCHAR text[kLongestKeyText + 1];
        WideFromAnsi(start.keys[i].c_str(), text, kLongestKeyText + 1);
        SetKeyText(&key_map[i], text);
    }
}

static void RestoreSession() {
    session.socket = INVALID_SOCKET;
    session.connected = 0;
    session.connect_pending = session.closing = session.dial_request = session.dialling = 0;
    session.last_dial_state = -1;
    session.key_taken = 0;
    session.toolbar = 1;
    session.save_settings = 1;
    session.telnet = {};
    session.login = {};
    memset(session.custom_colors, 0, sizeof(session.custom_colors));
    ForgetSshSession();
    NewTerminal();
    session.settings = start.settings;
}

static void RestoreWindows() {
    QApplication::clipboard()->clear();
    ForgetStylus();
    for (size_t key = 0; key < 256; ++key) SetKeyDown(key, false);
    ShowInputPanel(false);
    DeviceScreen()->resize(kDeviceWidth, kDeviceHeight);
    DeviceScreen()->activateWindow();
    ReturnFocus();
    CreateTerminalFont();
    session.view.blink_phase = 0;
    session.view.view_top = session.view.view_left = 0;
    RebuildStatusBar();
    RebuildMenuBar();
    LayoutTerminal();
    UpdateStatus();
}

static void PutBack() {
    RestoreTables();
    RestoreSession();
    RestoreWindows();
}

// ---------------------------------------------------------------- what must hold

static void CheckTerminal() {
    const std::string field = FieldOutOfBounds();
    Require(field.empty(), "out of bounds: " + field);
}

// The area of the terminal's window that the program paints; the toolkit paints its bars when it
// likes.
static QRect Glass() {
    const Window* client = FindWindowRecord(session.client_window);
    const QRect area = ClientArea(*client).adjusted(0, 0, 0, -session.status_height);
    return area.translated(client->widget->mapTo(DeviceScreen(), QPoint(0, 0)));
}

// Painted at once, so that nothing comes between the two pictures.
static void CheckPicture() {
    if (!DeviceScreen()->isVisible()) return;
    const QImage shown = Shown().copy(Glass());
    RepaintTerminal();
    UpdateWindow(session.client_window);
    const QImage whole = Shown().copy(Glass());
    if (shown == whole) return;
    if (const char* folder = getenv("QUILL_FUZZ_PICTURES")) {
        shown.save(QString(folder) + "/shown.png");
        whole.save(QString(folder) + "/whole.png");
    }
    Require(false, "the window shows what painting it anew gives");
}

static void CheckStart() {
    Require(AllWindows().size() == start.windows, "no window is left");
    Require(WidgetsKept() == start.widgets, "no widget is left: " + std::to_string(WidgetsKept()) +
                                                " instead of " + std::to_string(start.widgets));
    const QImage shown = Shown();
    if (shown != start.picture && getenv("QUILL_FUZZ_PICTURES")) {
        shown.save(QString(getenv("QUILL_FUZZ_PICTURES")) + "/shown.png");
        start.picture.save(QString(getenv("QUILL_FUZZ_PICTURES")) + "/whole.png");
    }
    Require(shown == start.picture, "put back, the program shows what it showed at its start");
}

// ---------------------------------------------------------------- from step to step

enum class Stage { kStarting, kPanelShown, kStarted, kEvents, kLeaving, kRestoring, kWaiting };

static std::mutex mutex;
static std::condition_variable turn;
static const uint8_t* given = nullptr;  // the input that the window thread is to take, or has
static size_t given_size = 0;
static bool over = false;  // the driver has ended
static Stage stage = Stage::kStarting;
static EventInput events;
static int steps = 0;

static void FinishInput() {
    const std::lock_guard<std::mutex> lock(mutex);
    given = nullptr;
    turn.notify_all();
}

// Waits for the next input; false: there is none.
static bool TakeInput() {
    std::unique_lock<std::mutex> lock(mutex);
    turn.wait(lock, [] { return given || over; });
    if (over) return false;
    events = {given, given_size};
    return true;
}

static void BeginInput() {
    static const QSize kSizes[] = {
        {kDeviceWidth, kDeviceHeight}, {240, 320}, {320, 240}, {640, 480}};
    stage = Stage::kEvents;
    steps = 0;
    const unsigned flags = events.left > 0 ? *events.at : 0;
    if (events.left > 0) ++events.at, --events.left;
    DeviceScreen()->resize(kSizes[flags >> 1 & 3]);
    if (flags & 1) BeginFakeSession();
}

static bool Painting() {
    for (const Window* window : AllWindows())
        if (!window->invalid.isEmpty() && PaintedByProgram(*window) && window->widget->isVisible())
            return true;
    return false;
}

static void Leave() {
    Require(++steps < kMostSteps, "dialogs can be left");
    if (CloseTopMost()) return;
    CheckTerminal();
    CheckPicture();
    PutBack();
    stage = Stage::kRestoring;
}

static void Step() {
    switch (stage) {
        case Stage::kStarting:
            NoteTables();
            ShowInputPanel(true);  // its keys are made when it is first shown
            stage = Stage::kPanelShown;
            return;
        case Stage::kPanelShown:
            PutBack();
            stage = Stage::kStarted;
            return;
        case Stage::kStarted:
            NoteShown();
            return BeginInput();
        case Stage::kEvents:
            while (events.left > 0 && DoEvent(&events)) {
            }
            if (events.left == 0) stage = Stage::kLeaving;
            return;
        case Stage::kLeaving:
            return Leave();
        case Stage::kRestoring:
            CheckStart();
            stage = Stage::kWaiting;
            FinishInput();
            return;
        case Stage::kWaiting:
            if (!TakeInput()) return PostQuitMessage(0);
            return BeginInput();
    }
}

// The program waits for messages. The next step comes once all is painted.
static void OnIdle() {
    if (Painting()) {
        Require(++steps < 100 * kMostSteps, "painting comes to an end");
        HurryFrames();
    } else {
        Step();
    }
    QAbstractEventDispatcher::instance()->wakeUp();
}

// ---------------------------------------------------------------- the program and the driver

static void EmptyRoot() {
    for (const auto& entry : std::filesystem::directory_iterator(root))
        std::filesystem::remove_all(entry.path());
}

static void RunProgramOnce() {
    EmptyRoot();
    session.~SessionState();
    std::memset(static_cast<void*>(&session), 0, sizeof(session));
    new (&session) SessionState();
    HostOptions options;
    options.root = root;
    options.screen = QSize(kDeviceWidth, kDeviceHeight);
    stage = Stage::kStarting;
    OpenDevice(options);
    WinMain(nullptr, nullptr, nullptr, SW_SHOW);
    Require(!QApplication::activeModalWidget(), "no dialog outlives the program");
    CloseDevice();
    Require(AllWindows().empty(), "no window outlives the program");
    if (stage != Stage::kWaiting) FinishInput();
}

static int RunInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 4096) return 0;
    std::unique_lock<std::mutex> lock(mutex);
    given = data;
    given_size = size;
    turn.notify_all();
    turn.wait(lock, [] { return !given; });
    return 0;
}

// The driver ends the process from its own thread, under the toolkit.
static void EndAtOnce(int status, void*) {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
    fflush(nullptr);
    _exit(status);
}

static void MakeRoot() {
    std::string path = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    path += "/quill-fuzz-XXXXXX";
    Require(mkdtemp(path.data()) != nullptr, "a folder");
    root = path;
    on_exit(EndAtOnce, nullptr);
}

// The alarm for inputs that take too long has to come to the driver's thread.
static void HoldAlarms(int how) {
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    pthread_sigmask(how, &alarms, nullptr);
}

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("QT_NO_GLIB", "1", 0);
    HoldAlarms(SIG_BLOCK);
    int own_count = 1;
    QApplication application(own_count, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setCursorFlashTime(0);
    services_observer = {NetworkError, [] { return int64_t{5}; }, NoDialUp};
    window_observer.idle = OnIdle;
    MakeRoot();
    std::thread driver([&] {
        HoldAlarms(SIG_UNBLOCK);
        exit(LLVMFuzzerRunDriver(&argc, &argv, RunInput));
    });
    while (TakeInput()) RunProgramOnce();
    driver.join();
    return 0;
}

// The toolkit keeps memory that it never gives back.
extern "C" int __lsan_is_turned_off() { return 1; }

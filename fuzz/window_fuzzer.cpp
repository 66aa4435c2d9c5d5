// SPDX-License-Identifier: MIT
// The running program on the slice: a host, a person and the desktop do what the input says
// (window_events.h, window_outside.h). The first byte of the input says whether there is a session
// (bit 0) and sets the device's size (bits 1 and 2). The program starts once for many inputs and
// again if it has ended. Its network is a double, its clock stands still, and each event comes when
// the program waits for messages.
//
// At the end of an input, all dialogs are left by Cancel. What must hold then:
// - no dialog or box stays open,
// - the terminal is within its bounds, as it is after each event,
// - the terminal's window has the picture that painting everything anew gives; an event can ask for
//   this at any time,
// - put back to the state after the start, the program has the windows and the picture that it had
//   then.
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <new>
#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QBackingStore>
#include <QClipboard>
#include <QCursor>
#include <thread>
#include <vector>

#include "fuzz/window_balance.h"
#include "fuzz/window_outside.h"
#include "platform/qt/host/host.h"
#include "platform/qt/services/services.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/terminal_source.h"
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

void Break(const std::string& what) {
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

DWORD FakeDial(LPVOID, LPCWSTR, RASDIALPARAMSW*, DWORD, LPVOID,
               HRASCONN*) __asm__("__wrap__Z7RasDialPvPKDsP14RASDIALPARAMSWjS_PP11SliceDialUp");
DWORD FakeDial(LPVOID, LPCWSTR, RASDIALPARAMSW*, DWORD, LPVOID, HRASCONN* connection) {
    if (NextDialError() == 0) *connection = reinterpret_cast<HRASCONN>(kHostSocket);
    return NextDialError();
}

DWORD FakeHangUp(HRASCONN) __asm__("__wrap__Z9RasHangUpP11SliceDialUp");
DWORD FakeHangUp(HRASCONN) {
    PostMessageW(session.main_window, WM_RASDIALEVENT, RASCS_Disconnected, 0);
    return 0;
}

// The queue polls for a moment before it sleeps. On a busy machine each yield would take long.
int NoYield() __asm__("__wrap_sched_yield");
int NoYield() { return 0; }

static int NetworkError(NetworkCall call) {
    const int kNoHost = 11001;
    if (call == NetworkCall::kConnect) return NextConnectError();
    return call == NetworkCall::kHostLookup ? kNoHost : 0;
}

static std::string peers;  // the folder of the modem's entries
static DialUpHost DialUp() { return {peers.c_str(), "/bin/false", 0}; }

// ---------------------------------------------------------------- the state after the start

struct Start {
    Settings settings;
    DWORD bars[kToolbarRows][kToolbars];
    std::string keys[kKeyRows];
    QImage picture;
    size_t windows;
    qsizetype widgets;
    qsizetype tops;
    Balance balance;
};
static Start start;

// What the screen shows, without painting it. Not copied: each picture of that size would be a new
// mapping of memory.
static const QImage& Shown() {
    QBackingStore* store = ReadyStore(DeviceScreen());
    Require(store && store->paintDevice()->devType() == QInternal::Image, "the screen has a store");
    const auto& image = *static_cast<const QImage*>(store->paintDevice());
    Require(image.depth() == 32, "its pixels have 32 bits");
    return image;
}

static qsizetype WidgetsKept() { return DeviceScreen()->findChildren<QWidget*>().size(); }

// The input panel stays a window of its own after a dialog that had it.
static qsizetype TopsKept() {
    return QApplication::topLevelWidgets().size() - ShellInputPanel()->isWindow();
}

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
    start.picture = Shown().copy();
    start.windows = AllWindows().size();
    start.widgets = WidgetsKept();
    start.tops = TopsKept();
    start.balance = balance;
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
    session.ras_connection = nullptr;
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
    EndOutside();
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

// Row by row, into memory that stays.
static void CopyPixels(const QRect& part, std::vector<QRgb>* pixels) {
    const QImage& image = Shown();
    const auto width = static_cast<size_t>(part.width());
    pixels->resize(width * static_cast<size_t>(part.height()));
    for (int row = 0; row < part.height(); ++row) {
        const uchar* line = image.constScanLine(part.top() + row);
        memcpy(pixels->data() + width * static_cast<size_t>(row),
               reinterpret_cast<const QRgb*>(line) + part.left(), width * sizeof(QRgb));
    }
}

static QImage PictureOf(const std::vector<QRgb>& pixels, QSize size) {
    const auto* bytes = reinterpret_cast<const uchar*>(pixels.data());
    return QImage(bytes, size.width(), size.height(), QImage::Format_RGB32).copy();
}

static void Keep(const char* name, const QImage& picture) {
    if (const char* folder = getenv("QUILL_FUZZ_PICTURES"))
        picture.save(QString(folder) + "/" + name);
}

// Painted at once, so that nothing comes between the two pictures.
static void CheckPicture() {
    if (!DeviceScreen()->isVisible() || DeviceScreen()->isMinimized()) return;
    static std::vector<QRgb> shown, whole;
    const QRect part = Glass() & Shown().rect();
    CopyPixels(part, &shown);
    RepaintTerminal();
    UpdateWindow(session.client_window);
    CopyPixels(part, &whole);
    if (shown == whole) return;
    Keep("shown.png", PictureOf(shown, part.size()));
    Keep("whole.png", PictureOf(whole, part.size()));
    Break("the window shows what painting it anew gives");
}

static void CheckStart() {
    Require(AllWindows().size() == start.windows, "no window is left");
    Require(WidgetsKept() == start.widgets, "no widget is left: " + std::to_string(WidgetsKept()) +
                                                " instead of " + std::to_string(start.widgets));
    Require(TopsKept() == start.tops, "no window of the toolkit is left");
    Require(balance == start.balance, "all that the device gave is given back");
    if (Shown() == start.picture) return;
    Keep("shown.png", Shown());
    Keep("whole.png", start.picture);
    Break("put back, the program shows what it showed at its start");
}

// ---------------------------------------------------------------- from step to step

enum class Stage {
    kStarting,
    kPanelShown,
    kStarted,
    kEvents,
    kLifting,
    kLeaving,
    kRestoring,
    kWaiting
};

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
    BeginOutside();
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
            CheckTerminal();
            if (TakeWishToCompare()) CheckPicture();
            while (events.left > 0 && DoEvent(&events)) {
            }
            if (events.left == 0) stage = Stage::kLifting;
            return;
        case Stage::kLifting:
            LiftStylus();
            LeaveOutside();
            stage = Stage::kLeaving, steps = 0;
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

static void MakePeers() {
    peers = root + "/peers";
    std::filesystem::create_directory(peers);
    for (const char* name : {"/office", "/provider", "/provider.bak"})
        std::ofstream(peers + name) << "connect\n";
}

static void RunProgramOnce() {
    EmptyRoot();
    MakePeers();
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
    // What its platform for tests cannot do, the toolkit says each time.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QApplication application(own_count, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setCursorFlashTime(0);
    QCursor::setPos(9999, 9999);  // the toolkit's own pointer would light the button below it
    ServeTerminalText();
    services_observer = {NetworkError, [] { return int64_t{5}; }, DialUp};
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

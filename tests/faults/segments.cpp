// SPDX-License-Identifier: MIT
// The pieces.
#include "tests/faults/segments.h"

#include <filesystem>
#include <fstream>
#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QtTest/QTest>

#include "connection/connection.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/stored.h"
#include "tests/faults/faults.h"
#include "tests/long_runs/hosts.h"
#include "tests/qt_driver/driver.h"
#include "tests/settings/settings_rows.h"
#include "tests/support/services_test_hooks.h"
#include "tests/support/sessions.h"
#include "ui/dialogs/dialogs.h"

// Milliseconds that the user waits, once a call has failed for what may not come any more.
static constexpr int kShort = 300;
static constexpr int kLong = 6000;

static int Patience() { return HasFailed() ? kShort : kLong; }

static std::vector<std::string> g_boxes;
static std::string g_wrong;  // what a piece has noticed itself

// ---------------------------------------------------------------- a user who accepts anything

static bool Soon(const std::function<bool()>& condition, int milliseconds = Patience()) {
    return Eventually([&] { return !ProgramRuns() || condition(); }, milliseconds) && ProgramRuns();
}

static void Settle() {
    Soon([] { return !MessagesWaiting(); });
}

static void PressBoxButton(QMessageBox* box) {
    g_boxes.push_back((box->windowTitle() + ": " + box->text()).toStdString());
    QAbstractButton* ok = box->button(QMessageBox::Ok);
    if (!ok) ok = box->defaultButton();
    if (ok) ok->click();
}

// Closes one thing that covers the window; false if there is none.
static bool CloseTop() {
    if (QMessageBox* box = ShownMessageBox()) return PressBoxButton(box), true;
    if (QColorDialog* chooser = ShownColorDialog()) return chooser->reject(), true;
    if (!ShownDialog()) return false;
    if (!ClickControl(IDCANCEL) && !ClickControl(IDOK)) SendMessageW(ShownDialog(), WM_CLOSE, 0, 0);
    return true;
}

static void CloseAll() {
    for (int i = 0; i < 20; ++i) {
        bool any = false;
        OnWindowThread([&] { any = CloseTop(); });
        Settle();
        if (!any) return;
    }
}

static void Answer() {
    if (Soon([] { return ShownMessageBox() != nullptr; })) OnWindowThread([] { CloseTop(); });
    Settle();
}

static void Command(WORD id) {
    PostToMain(WM_COMMAND, id);
    Settle();
}

static void Use(const std::function<void()>& hands) {
    OnWindowThread(hands);
    Settle();
}

// Opens a dialog by its command, does that, and presses the button.
static void InDialog(WORD command, int button, const std::function<void()>& hands) {
    Command(command);
    if (!Soon([] { return ShownDialog() || ShownColorDialog() || ShownMessageBox(); })) return;
    Use(hands);
    Use([=] { ClickControl(button); });
    CloseAll();
}

// ---------------------------------------------------------------- start and window

static void StageNothing(Stage& stage) { stage.root = FreshRoot(); }

static void StageImport(Stage& stage) {
    stage.root = FreshRoot();
    stage.config = "# a comment\nport = 0x17\nhost = \"my host\"\nblink = 1\n";
}

static void DoNothing() { Settle(); }

static void ImportFile() { Answer(); }

static void UseWindow() {
    PostToMain(WM_TIMER, 1);
    ResizeDevice(177, 93);
    Settle();
    ResizeDevice(640, 480);
    for (const int id : {IDM_LARGER_FONT, IDM_SMALLER_FONT, IDM_TOOLBAR_FIRST, IDM_F1})
        Command(static_cast<WORD>(id));
    PressKey(Qt::Key_F5);
    TypeText("x");
    PressKey(Qt::Key_F1, Qt::AltModifier);
    Settle();
}

// Scrolls, asks for help, and starts the program again. On a small screen the panel covers rows.
static void StageSmall(Stage& stage) {
    stage.root = FreshRoot();
    stage.width = 240, stage.height = 320;
}

static void TapPanelButton() {
    OnWindowThread([] { QTest::mouseClick(ShellMenuStrip()->panel_button(), Qt::LeftButton); });
    Settle();
}

static void UseSmallWindow() {
    for (const WPARAM code : {SB_PAGEDOWN, SB_LINEUP}) {
        Use([=] { SendMessageW(session.client_window, WM_VSCROLL, code, 0); });
        Use([=] { SendMessageW(session.client_window, WM_HSCROLL, code, 0); });
    }
    TapPanelButton();
    TapPanelButton();
    PostToMain(WM_HELP);
    Settle();
    Use([] { WinMain(nullptr, nullptr, nullptr, SW_SHOW); });
}

static void ResetAll() {
    InDialog(IDM_FONT, IDOK, [] {});  // saves, so that there is something to delete
    Command(IDM_RESET);
    Answer();
    Answer();
    Answer();
}

static void Exit() {
    Command(IDM_EXIT);
    Soon([] { return !ProgramRuns(); });
}

// ---------------------------------------------------------------- sessions

static void UseKind(const LongHost& host, const HostKind& kind, DWORD cipher) {
    OnWindowThread([&] {
        Settings& settings = session.settings;
        settings.port = static_cast<DWORD>(host.net.port);
        settings.ssh = static_cast<DWORD>(kind.ssh);
        settings.ssh_type2 = static_cast<DWORD>(kind.ssh_type2);
        settings.ssh_type = cipher;
        settings.ssh_def = 1;
        lstrcpyW(settings.host, u"127.0.0.1");
        lstrcpyW(settings.ssh_u, u"visitor");
        lstrcpyW(settings.ssh_p, u"warehouse7");
    });
}

static void ServeUntil(LongHost& host, const std::function<bool()>& condition) {
    for (int waited = 0; waited < Patience() && !condition() && !host.gone; waited += 5)
        Serve(host, 5);
}

static bool Open(LongHost& host, const HostKind& kind, DWORD cipher, int patience = Patience()) {
    UseKind(host, kind, cipher);
    ConnectLater();
    if (!host.net.Accept(patience)) return false;
    BeginSession(host, kind, static_cast<unsigned>(cipher));
    ServeUntil(host, [&] { return host.ready && Connected(); });
    return true;
}

static const char kText[] =
    "\x1b[2J\x1b[H\x1b[1mbold\x1b[0m \x1b[5mblink\x1b[0m \x1b[7mreverse\x1b[0m "
    "\x1b(0lqqk~}a\x1b(B, under_score"
    "\x1b#6wide\xe4\x05\x1b[c\r\n12. an entry\a login: ";

static void Talk(LongHost& host) {
    Show(host, kText);
    ServeUntil(host, [] { return TerminalText().find("login:") != std::string::npos; });
    TypeText("ab\n");
    PressKey(Qt::Key_F5);
    Serve(host, 20);
    host.kind->stir(host, 1);
    TypeText("held");
    ServeUntil(host, [&] { return host.received.find("held") != std::string::npos; });
    host.kind->stir(host, 2);
    Serve(host, 20);
    Settle();
}

static void HoldSession(const HostKind& kind, DWORD cipher) {
    LongHost host;
    if (!Open(host, kind, cipher)) return CloseAll();
    Talk(host);
    host.net.Drop();
    Answer();
    CloseAll();
    if (Open(host, kind, cipher)) Serve(host, 10);
    Close();
    Soon([] { return !session.connected && !session.connect_pending; });
    CloseAll();
}

static void HoldTelnet() {
    OnWindowThread([] {
        session.settings.nego = 1;
        lstrcpyW(session.settings.sear1, u"ogin:");
        lstrcpyW(session.settings.resp1, u"visitor\\015");
    });
    HoldSession(telnet_kind, 1);
}

static void HoldSsh1() { HoldSession(ssh1_kind, 1); }
static void HoldSsh2() { HoldSession(ssh2_kind, 1); }
static void HoldBlowfish() { HoldSession(ssh2_kind, 2); }

// Asks before it closes the session, the program and the window, and for a second session.
static void Ask() {
    LongHost host;
    OnWindowThread([] { session.settings.confirm_exit = session.settings.xbox = 1; });
    if (!Open(host, telnet_kind, 0)) return CloseAll();
    Use([] { QMetaObject::invokeMethod(qApp, SessionConnect, Qt::QueuedConnection); });
    Answer();
    const auto refuse = [] {
        if (!Soon([] { return ShownMessageBox() != nullptr; })) return;
        OnWindowThread([] { ShownMessageBox()->reject(); });
        Settle();
    };
    Command(IDM_EXIT);
    refuse();
    PostToMain(WM_SIZE, SIZE_MINIMIZED);
    refuse();
    Command(IDM_CONNECT);
    Answer();
    Soon([] { return !session.connected; });
    CloseAll();
}

// A password that the host does not take, then no name.
static void FailToSignOn(const HostKind& kind) {
    LongHost host;
    OnWindowThread([] { lstrcpyW(session.settings.ssh_u, u""); });
    UseKind(host, kind, 1);
    OnWindowThread([] {
        session.settings.ssh_u[0] = 0;
        session.settings.ssh_def = 0;
    });
    ConnectLater();
    if (!host.net.Accept(Patience())) return CloseAll();
    BeginSession(host, kind, 1);
    for (int i = 0; i < 60 && !host.gone; ++i) {
        Serve(host, 5);
        OnWindowThread([] { CloseTop(); });
    }
    Close();
    CloseAll();
}

static void FailSsh1() { FailToSignOn(ssh1_kind); }
static void FailSsh2() { FailToSignOn(ssh2_kind); }

static const char kPosting[] = "_Z12PostMessageWP11SliceWindowjml";

// The queue takes no message for a while. What the host sent, and its end, come later then.
static void FillQueue() {
    LongHost host;
    UseKind(host, telnet_kind, 0);
    ConnectLater();
    if (!host.net.Accept(Patience())) return CloseAll();
    BeginSession(host, telnet_kind, 0);
    Show(host, "kept for later");
    Serve(host, kShort / 4);
    FailEvery(nullptr);
    const auto shown = [] { return TerminalText().find("kept for later") != std::string::npos; };
    if (!Soon(shown, kLong)) g_wrong += "the host's text is lost; ";
    FailEvery(kPosting);
    host.net.Drop();
    Settle();
    FailEvery(nullptr);
    if (!Soon([] { return !session.connected; }, kLong)) g_wrong += "the host's end is lost; ";
    CloseAll();
}

static void LookUpHost() {
    LongHost host;
    UseKind(host, telnet_kind, 0);
    OnWindowThread([] { lstrcpyW(session.settings.host, u"localhost"); });
    ConnectLater();
    if (host.net.Accept(Patience())) host.net.Send("there");
    Settle();
    CloseAll();
    Close();
    Soon([] { return !session.connected; });
}

static void BeRefused() {
    OnWindowThread([] {
        lstrcpyW(session.settings.host, u"127.0.0.1");
        session.settings.port = static_cast<DWORD>(RefusingPort());
    });
    ConnectLater();
    Answer();
    CloseAll();
}

// ---------------------------------------------------------------- stylus and clipboard

static void Mouse(QEvent::Type type, QPoint at, bool down) {
    const Window* window = FindWindowRecord(session.client_window);
    if (!window || !window->widget) return;
    const bool move = type == QEvent::MouseMove;
    QMouseEvent event(type, at, window->widget->mapToGlobal(at),
                      move ? Qt::NoButton : Qt::LeftButton, down ? Qt::LeftButton : Qt::NoButton,
                      Qt::NoModifier);
    QApplication::sendEvent(window->widget, &event);
}

static void Drag() {
    Mouse(QEvent::MouseButtonPress, QPoint(5, 5), true);
    Mouse(QEvent::MouseMove, QPoint(90, 20), true);
    Mouse(QEvent::MouseButtonRelease, QPoint(90, 20), false);
}

static void DoubleTap() {
    Mouse(QEvent::MouseButtonPress, QPoint(9, 9), true);
    Mouse(QEvent::MouseButtonRelease, QPoint(9, 9), false);
    Mouse(QEvent::MouseButtonDblClick, QPoint(9, 9), true);
    Mouse(QEvent::MouseButtonRelease, QPoint(9, 9), false);
}

static void UseClipboard() {
    LongHost host;
    OnWindowThread([] { session.settings.hotspot = 1; });
    if (!Open(host, telnet_kind, 0)) return CloseAll();
    Show(host, "\x1b[H12. an entry");
    ServeUntil(host, [] { return TerminalText().find("12. an entry") != std::string::npos; });
    Settle();
    Use([] { Drag(); });
    Command(IDM_COPY);
    Use([] { DoubleTap(); });
    Use([] { QApplication::clipboard()->setText("a paste\nof two lines"); });
    Command(IDM_PASTE);
    Serve(host, 30);
    Close();
    Soon([] { return !session.connected; });
}

// ---------------------------------------------------------------- dialogs

static void UseFont() {
    InDialog(IDM_FONT, IDOK, [] {
        ClickEntry(IDC_FONTS, 0);
        ClickControl(IDC_FONT_BOLD);
    });
    InDialog(IDM_FONT, IDCANCEL, [] {});
}

static void UseConnect() {
    OnWindowThread([] { lstrcpyW(session.settings.hist0a, u"an.earlier.host"); });
    InDialog(IDM_CONNECT, IDCANCEL, [] {
        TypeInto(IDC_HOST, "127.0.0.1");
        ClickControl(IDC_ADVANCED);
    });
    Command(IDM_CONNECT);
    Use([] { ClickControl(IDC_ADVANCED); });
    Use([] {
        TypeInto(IDC_PORT, QString::number(RefusingPort()));
        ClickControl(IDC_SSH);
        ClickControl(IDC_SSH1);
        ClickControl(IDC_SSH2);
        ClickControl(IDOK);
    });
    Use([] { TypeInto(IDC_HOST, "127.0.0.1"); });
    Use([] { ClickControl(IDOK); });
    Answer();
    CloseAll();
}

static void UseAutoLogin() {
    InDialog(IDM_AUTO_LOGIN, IDOK, [] {
        TypeInto(IDC_SEAR1, "ogin");
        TypeInto(IDC_RESP1, "me");
    });
    InDialog(IDM_AUTO_LOGIN, IDCANCEL, [] {});
    InDialog(IDM_ABOUT, IDOK, [] {});
}

static void UseSheet() {
    Command(IDM_PROPERTIES);
    for (const int id :
         {IDC_HIDESTATUS, IDC_FOLLOWCURSOR, IDC_BELL, IDC_NEGO, IDC_HOTSPOT, IDC_ALIVE})
        Use([=] { ClickControl(id); });
    Use([] {
        TypeInto(IDC_TERMTYPE, "vt100");
        TypeInto(IDC_RAS, "office");
    });
    Use([] { TurnPage(1); });
    Use([] { DoubleClickEntry(IDC_BAR1, 5); });
    Use([] { TurnPage(2); });
    Use([] { ClickEntry(IDC_KEYS, 3); });
    Use([] { ClickControl(IDC_CHANGE); });
    Use([] { TypeInto(IDC_KEY_TEXT, "\\033x"); });
    Use([] { ClickControl(IDOK); });
    Use([] { ClickControl(IDOK); });
    CloseAll();
    Command(IDM_PROPERTIES);
    Use([] { ClickControl(IDC_HIDESTATUS); });
    CloseAll();
}

static void UseSignOn() {
    for (const int button : {IDOK, IDCANCEL}) {
        QMetaObject::invokeMethod(
            qApp, [] { AskSignOn(); }, Qt::QueuedConnection);
        Soon([] { return ShownDialog() != nullptr; });
        Use([] {
            TypeInto(IDC_SSH_U, "visitor");
            TypeInto(IDC_SSH_P, "warehouse7");
            ClickControl(IDC_SSH_DEF);
        });
        Use([=] { ClickControl(button); });
        CloseAll();
    }
}

static void UseChooser() {
    for (const int id : {IDM_COLOR_BG, IDM_COLOR_CURSOR, IDM_COLOR_TEXT, IDM_COLOR_BOLD}) {
        Command(static_cast<WORD>(id));
        Soon([] { return ShownColorDialog() != nullptr; });
        Use([] {
            if (ShownColorDialog()) ShownColorDialog()->accept();
        });
        CloseAll();
    }
}

// ---------------------------------------------------------------- the modem

static std::string g_dial;

static void StageDial(Stage& stage) {
    stage.root = FreshRoot();
    g_dial = FreshRoot();
    std::filesystem::create_directory(g_dial + "/peers");
    std::ofstream(g_dial + "/peers/office") << "/dev/ttyS0\n";
    std::ofstream(g_dial + "/pppd")
        << "#!/bin/sh\ntrap 'exit 5' TERM\n"
           "echo 'Serial connection established.'; echo 'Using interface ppp0'\n"
           "echo 'Connect: ppp0 <--> /dev/ttyS0'; echo 'PAP authentication succeeded'\n"
           "echo 'local  IP address 10.0.0.2'; echo 'remote IP address 10.0.0.1'\n"
           "while :; do sleep 0.02; done\n";
    std::filesystem::permissions(g_dial + "/pppd", std::filesystem::perms::owner_all);
    services_test_hooks.dial_up_folder = g_dial + "/peers";
    services_test_hooks.dial_up_program = g_dial + "/pppd";
}

// The host cannot be reached: the user agrees to dial, and the link comes up.
static void DialUp() {
    LongHost host;
    UseKind(host, telnet_kind, 0);
    OnWindowThread([] { session.settings.ras[0] = 0; });
    services_test_hooks.force_connect_error = 10065;
    ConnectLater();
    Answer();
    services_test_hooks.force_connect_error = 0;
    PostToMain(WM_TIMER, 1);
    Soon([] { return session.dialling == 1 || ShownMessageBox(); });
    if (host.net.Accept(Patience())) host.net.Send("dialled");
    CloseAll();
    Soon([] { return session.connected == 1; });
    OnWindowThread([] {
        SessionClose();
        HangUpDial();
    });
    Soon([] { return session.dialling == 0 && !session.connected; });
    CloseAll();
    services_test_hooks = ServicesTestHooks();
}

// ---------------------------------------------------------------- the table

static const char kThreads[] = "_Z12CreateThreadPvjPFjS_ES_jPj";

// clang-format off
const std::vector<Segment> segments = {
    {"Start",      StageNothing, DoNothing,      nullptr},
    {"Import",     StageImport,  ImportFile,     nullptr},
    {"Window",     StageNothing, UseWindow,      nullptr},
    {"Small",      StageSmall,   UseSmallWindow, nullptr},
    {"Telnet",     StageNothing, HoldTelnet,     nullptr},
    {"Ssh1",       StageNothing, HoldSsh1,       nullptr},
    {"Ssh2",       StageNothing, HoldSsh2,       nullptr},
    {"Blowfish",   StageNothing, HoldBlowfish,   nullptr},
    {"NoSignOn1",  StageNothing, FailSsh1,       nullptr},
    {"NoSignOn2",  StageNothing, FailSsh2,       nullptr},
    {"HostName",   StageNothing, LookUpHost,     nullptr},
    {"Refused",    StageNothing, BeRefused,      nullptr},
    {"Threadless", StageNothing, BeRefused,      kThreads},
    {"FullQueue",  StageNothing, FillQueue, kPosting},
    {"Questions",  StageNothing, Ask,            nullptr},
    {"Clipboard",  StageNothing, UseClipboard,   nullptr},
    {"Font",       StageNothing, UseFont,        nullptr},
    {"Connect",    StageNothing, UseConnect,     nullptr},
    {"AutoLogin",  StageNothing, UseAutoLogin,   nullptr},
    {"Properties", StageNothing, UseSheet,       nullptr},
    {"SignOn",     StageNothing, UseSignOn,      nullptr},
    {"Chooser",    StageNothing, UseChooser,     nullptr},
    {"Dial",       StageDial,    DialUp,         nullptr},
    {"Reset",      StageNothing, ResetAll,       nullptr},
    {"Exit",       StageNothing, Exit,           nullptr},
};
// clang-format on

// ---------------------------------------------------------------- afterwards

// A session as before: what the host shows is there, and what is typed arrives. No fault may have
// left anything in its way.
static std::string Unwell() {
    LongHost host;
    OnWindowThread([] {
        SessionClose();
        HangUpDial();
        session.settings.nego = 0;
        session.settings.sear1[0] = 0;
        session.settings.exit_dis = 0;
    });
    CloseAll();
    if (!Open(host, telnet_kind, 0, kLong) || !host.ready) return "no connection";
    Show(host, "\x1b[2J\x1b[Hall is well");
    if (!Soon([] { return TerminalText().find("all is well") != std::string::npos; }, kLong))
        return "the host's text does not come";
    if (!Soon([] { return DrawnText().find("all is well") != std::string::npos; }, kLong))
        return "the host's text is not drawn";
    TypeText("typed");
    for (int i = 0; i < 200 && host.received.find("typed") == std::string::npos; ++i)
        Serve(host, 10);
    if (host.received.find("typed") == std::string::npos) return "typing does not arrive";
    Close();
    if (!Soon([] { return !session.connected && !session.connect_pending; }, kLong))
        return "the session does not end";
    CloseAll();
    return "";
}

// ---------------------------------------------------------------- the settings on disk

static std::string TextBytes(const WCHAR* text) {
    std::string bytes;
    do {
        bytes += static_cast<char>(*text & 0xff);
        bytes += static_cast<char>(*text >> 8);
    } while (*text++);
    return bytes;
}

static std::string NumberBytes(DWORD value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i, value >>= 8) bytes += static_cast<char>(value & 0xff);
    return bytes;
}

// How many settings the file does not have as the program had them at its end.
static int CountUnsaved(const std::string& root) {
    if (!std::filesystem::exists(root + "/registry.db")) return 0;
    std::map<std::string, StoredSetting> stored = StoredSettings(root);
    int unsaved = 0;
    for (const NumberSetting& row : number_settings)
        unsaved += stored[row.name].data != NumberBytes(*row.field);
    for (const TextSetting& row : text_settings)
        unsaved += stored[row.name].data != TextBytes(row.field);
    return unsaved;
}

// ---------------------------------------------------------------- one run

static void Act(const Segment& segment, RunResult& result) {
    Settle();
    segment.act();
    CloseAll();
    FailEvery(nullptr);
    result.in_segment = HasFailed();
    result.ended_early = !ProgramRuns();
    if (!result.ended_early) result.first_try = g_wrong + Unwell();
    CloseAll();
    if (!result.first_try.empty() && ProgramRuns()) result.second_try = Unwell();
    result.ended_early = !ProgramRuns();
}

RunResult RunSegment(const Segment& segment) {
    RunResult result;
    Stage stage;
    g_boxes.clear();
    g_wrong.clear();
    segment.stage(stage);
    FailEvery(segment.broken);
    result.code = RunProgram(stage, [&] { Act(segment, result); });
    FailEvery(nullptr);
    result.boxes = g_boxes;
    if (session.save_settings == 1) result.unsaved = CountUnsaved(stage.root);
    if (std::filesystem::exists(stage.root + "/registry.db"))
        result.integrity = Integrity(stage.root);
    return result;
}

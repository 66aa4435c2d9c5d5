// SPDX-License-Identifier: MIT
// The pieces that hold sessions: the three protocols, questions, hosts that are not there, and a
// dial.
#include <filesystem>
#include <fstream>
#include <QApplication>
#include <QMessageBox>

#include "connection/connection.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/stored.h"
#include "tests/faults/faults.h"
#include "tests/faults/pieces.h"
#include "tests/faults/user.h"
#include "tests/support/services_test_hooks.h"
#include "tests/support/sessions.h"

std::string piece_wrong;

static const char kText[] =
    "\x1b[2J\x1b[H\x1b[1mbold\x1b[0m \x1b[5mblink\x1b[0m \x1b[7mreverse\x1b[0m "
    "\x1b(0lqqk~}a\x1b(B, under_score"
    "\x1b#6wide\xe4\x05\x1b[c\r\n12. an entry\a login: ";

static void Talk(LongHost& host) {
    Show(host, kText);
    ServeUntil(host, [] { return TerminalText().find("login:") != std::string::npos; });
    CloseAll();  // the keys would answer a box unseen
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

void HoldTelnet() {
    OnWindowThread([] {
        session.settings.nego = 1;
        lstrcpyW(session.settings.sear1, u"ogin:");
        lstrcpyW(session.settings.resp1, u"visitor\\015");
    });
    HoldSession(telnet_kind, 1);
}

void HoldSsh1() { HoldSession(ssh1_kind, 1); }
void HoldSsh2() { HoldSession(ssh2_kind, 1); }
void HoldBlowfish() { HoldSession(ssh2_kind, 2); }

// Asks before it closes the session, the program and the window, and for a second session.
void Ask() {
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

void FailSsh1() { FailToSignOn(ssh1_kind); }
void FailSsh2() { FailToSignOn(ssh2_kind); }

// The queue takes no message for a while. What the host sent, and its end, come later then, unless
// the failed call has ended the session.
void FillQueue() {
    LongHost host;
    UseKind(host, telnet_kind, 0);
    ConnectLater();
    if (!host.net.Accept(Patience())) return CloseAll();
    BeginSession(host, telnet_kind, 0);
    Show(host, "kept for later");
    Serve(host, kShort / 4);
    FailEvery(nullptr);
    const auto shown = [] { return TerminalText().find("kept for later") != std::string::npos; };
    const auto over = [] { return HasFailed() && !session.connected; };
    if (!Soon([&] { return shown() || over(); }, kLong)) piece_wrong += "the host's text is lost; ";
    FailEvery(kPosting);
    host.net.Drop();
    Settle();
    FailEvery(nullptr);
    if (!Soon([] { return !session.connected; }, kLong)) piece_wrong += "the host's end is lost; ";
    CloseAll();
}

void LookUpHost() {
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

void BeRefused() {
    OnWindowThread([] {
        lstrcpyW(session.settings.host, u"127.0.0.1");
        session.settings.port = static_cast<DWORD>(RefusingPort());
    });
    ConnectLater();
    Answer();
    CloseAll();
}

// ---------------------------------------------------------------- the modem

static std::string g_dial;

void StageDial(Stage& stage) {
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
void DialUp() {
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

// SPDX-License-Identifier: MIT
// How sessions begin, rest and end.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "connection/connection.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/long_runs/checks.h"
#include "tests/long_runs/steps.h"
#include "tests/support/person.h"
#include "tests/support/services_test_hooks.h"
#include "tests/support/sessions.h"

static constexpr int kLongest = 30000;  // ms that a busy machine may take
static constexpr int kMoment = 10;

// Gives the host its turn until the condition holds.
static bool Await(LongRun& run, const std::function<bool()>& condition) {
    for (int waited = 0; waited < kLongest; waited += kMoment) {
        if (condition()) return true;
        if (run.host.gone)
            Sleep(kMoment);
        else
            Serve(run.host, kMoment);
    }
    return false;
}

// ---------------------------------------------------------------- beginning

static void UseKind(LongRun& run, const HostKind& kind, unsigned cipher) {
    OnWindowThread([&] {
        Settings& settings = session.settings;
        settings.port = static_cast<DWORD>(run.host.net.port);
        settings.ssh = static_cast<DWORD>(kind.ssh);
        settings.ssh_type2 = static_cast<DWORD>(kind.ssh_type2);
        settings.ssh_type = cipher % 3;
        settings.ssh_def = 1;
        settings.nego = cipher % 5 == 0;  // a trace hides what another terminal shows
        lstrcpyW(settings.host, u"127.0.0.1");
        lstrcpyW(settings.ssh_u, u"visitor");
        lstrcpyW(settings.ssh_p, u"warehouse7");
    });
}

// The connections of requests that were cancelled wait there too.
static void ForgetCallers(LongRun& run) {
    while (run.host.net.Accept(0)) {
    }
}

// The engine keeps a subnegotiation that its session was closed in.
static void EndSubnegotiation(LongRun& run) {
    bool inside = false;
    OnWindowThread([&] { inside = session.telnet.in_subneg; });
    if (inside && run.host.kind == &telnet_kind) run.host.net.Send("\xf0");
}

static void Greet(LongRun& run) {
    EndSubnegotiation(run);
    Show(run.host, run.tame ? "\x1b[12h\x1b(B\x0f\x1b[0m\x1b[H\x1b[J" : "welcome\r\n");
    EXPECT_TRUE(Await(run, [&] { return run.host.ready; })) << "no shell";
    EXPECT_TRUE(Await(run, [] { return Connected(); })) << "not connected";
}

void BeginRandomSession(LongRun& run) {
    Tell(run, "a session begins");
    const HostKind& kind = *host_kinds[Below(run.random, kHostKinds)];
    const unsigned cipher = Below(run.random, 60);
    run.tame = Below(run.random, 2);
    ForgetCallers(run);
    UseKind(run, kind, cipher);
    OnWindowThread([] {
        SessionConnect();
        StartReplay();
    });
    ASSERT_TRUE(run.host.net.Accept()) << "no connection";
    BeginSession(run.host, kind, cipher);
    Greet(run);
}

// ---------------------------------------------------------------- resting

static void ExpectAllShown(LongRun& run) {
    const size_t wanted = run.host.shown.size();
    EXPECT_TRUE(Await(run, [&] { return BytesOfHost().size() >= wanted; }))
        << BytesOfHost().size() << " of " << wanted << " bytes came";
    EXPECT_TRUE(BytesOfHost() == run.host.shown) << "other bytes came than the host has sent";
}

static std::string Describe(const LongHost& host) {
    return std::string(host.kind->name) + ": " + std::to_string(host.received.size()) +
           " bytes came, " + std::to_string(host.wire.size()) + " wait, " +
           std::to_string(host.held.size()) + " are held, " + std::to_string(host.window) +
           " of window, " + std::to_string(host.rekeys) + " key exchanges" +
           (host.rekeying ? " and one more" : "") + (host.gone ? ", gone" : "");
}

// An answer of Telnet's negotiation may come between two typed letters: IAC, a command and an
// option, or IAC SB up to IAC SE. A key may send the byte of IAC alone.
static std::string WithoutCommands(const std::string& bytes) {
    static const std::regex commands("\xFF\xFA[^\xF0]*\xF0|\xFF[\xFB-\xFE][^]");
    return std::regex_replace(bytes, commands, "");
}

static void ExpectTypingArrives(LongRun& run) {
    std::string word = "rest";
    for (int i = 0; i < 9; ++i) word += static_cast<char>('a' + Below(run.random, 26));
    TypeText(word);
    const auto arrived = [&] {
        return WithoutCommands(run.host.received).find(word) != std::string::npos;
    };
    EXPECT_TRUE(Await(run, arrived)) << word << " did not reach the host, " << Describe(run.host);
    run.host.received.clear();
}

void RestOnline(LongRun& run) {
    Tell(run, "rest");
    ExpectAllShown(run);
    ExpectTypingArrives(run);  // now no reply of the terminal comes between
    ExpectPictureOfGrid();
    ExpectReplayAlike();
    if (run.tame && !TerminalWroteItself()) ExpectPeerAlike(run.host.shown);
    ExpectStored(run.root);
}

// ---------------------------------------------------------------- ending

static void DropByHost(LongRun& run) {
    run.host.net.Drop();
    DismissBox(kClosed);
}

static void Reset(LongRun& run) {
    run.host.net.Reset();
    DismissBox(kClosed);
}

static void CloseByUser(LongRun&) { Close(); }

static void DropUnderDialog(LongRun& run) {
    const HWND dialog = OpenDialog(IDM_ABOUT, "About TELNET");
    run.host.net.Drop();
    DismissBox(kClosed);
    ClickControl(dialog, IDOK);
    Closed(dialog);
}

static void CloseInFlood(LongRun& run) {
    Show(run.host, std::string(1 << 16, 'f'));
    Close();
}

static void HangUp(LongRun& run) {
    if (!run.dialled) return;
    OnWindowThread([] { HangUpDial(); });
    EXPECT_TRUE(Eventually([] { return session.dialling == 0; }));
    run.dialled = false;
}

void EndSession(LongRun& run) {
    static const Step kEnds[] = {
        {"the host closes", 1, DropByHost},
        {"the line breaks", 1, Reset},
        {"the user closes", 1, CloseByUser},
        {"the host closes under a dialog", 1, DropUnderDialog},
        {"the user closes in a flood", 1, CloseInFlood},
    };
    const Step& end = kEnds[Below(run.random, std::size(kEnds))];
    Tell(run, end.name);
    end.run(run);
    EXPECT_TRUE(Offline());
    run.host.net.Drop();
    HangUp(run);
}

// ---------------------------------------------------------------- other beginnings

static void AnyBox() {
    if (!AwaitBox(300).empty()) PressOk();
}

static void Refused(LongRun& run) {
    UseKind(run, telnet_kind, 0);
    OnWindowThread([] { session.settings.port = static_cast<DWORD>(RefusingPort()); });
    ConnectLater();
    DismissBox(kNotPossible);
    EXPECT_TRUE(Offline());
}

static void Cancelled(LongRun& run) {
    UseKind(run, telnet_kind, 0);
    OnWindowThread([] {
        SessionConnect();
        SessionClose();
    });
    AnyBox();
    EXPECT_TRUE(Offline());
}

static const char kDialUp[] =
    "#!/bin/sh\ntrap 'exit 5' TERM\n"
    "echo 'Serial connection established.'; echo 'Using interface ppp0'\n"
    "echo 'Connect: ppp0 <--> /dev/ttyS0'; echo 'PAP authentication succeeded'\n"
    "while ! [ -e FOLDER/go ]; do sleep 0.02; done\n"
    "echo 'local  IP address 10.0.0.2'; echo 'remote IP address 10.0.0.1'\n"
    "while :; do sleep 0.02; done\n";

void StageDialUp(LongRun& run) {
    std::filesystem::create_directories(run.dial + "/peers");
    std::ofstream(run.dial + "/peers/office") << "/dev/ttyS0\n";
    std::string script = kDialUp;
    script.replace(script.find("FOLDER"), 6, run.dial);
    std::ofstream(run.dial + "/pppd") << script;
    std::filesystem::permissions(run.dial + "/pppd", std::filesystem::perms::owner_all);
    services_test_hooks.dial_up_folder = run.dial + "/peers";
    services_test_hooks.dial_up_program = run.dial + "/pppd";
}

// The user gives up, or the link comes and a session begins by itself, which the user closes.
static void Dialled(LongRun& run) {
    const std::string go = run.dial + "/go";
    const bool up = Below(run.random, 2);
    std::filesystem::remove(go);
    ForgetCallers(run);
    UseKind(run, telnet_kind, 0);
    OnWindowThread([] {
        lstrcpyW(session.settings.ras, u"office");
        session.dial_request = 1;
    });
    PostToMain(WM_TIMER, 1);
    EXPECT_TRUE(Eventually([] { return session.dialling == 1; })) << "it does not dial";
    run.dialled = true;
    if (up) {
        std::ofstream(go) << "\n";
        EXPECT_TRUE(run.host.net.Accept()) << "no connection after the dial";
        run.host.net.Send("dialled");
        EXPECT_TRUE(Online());
        Close();
        EXPECT_TRUE(Offline());
    }
    HangUp(run);
}

void WhileOffline(LongRun& run) {
    static const Step kBetween[] = {
        {"nothing", 1, [](LongRun&) {}},          {"a refused connection", 1, Refused},
        {"a cancelled connection", 1, Cancelled}, {"a dial", 1, Dialled},
        {"nothing", 1, [](LongRun&) {}},          {"nothing", 1, [](LongRun&) {}},
    };
    const Step& step = kBetween[Below(run.random, std::size(kBetween))];
    Tell(run, step.name);
    step.run(run);
}

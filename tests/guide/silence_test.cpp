// SPDX-License-Identifier: MIT
// Hosts that send nonsense, UTF-8 or binary files: the advice of docs/hosts.md brings the session
// back without a restart of the program.
#include <gtest/gtest.h>
#include <fstream>
#include <QThread>
#include <random>
#include <set>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/guide/host_page.h"
#include "tests/guide/host_steps.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/view/input.h"

namespace {

struct Nonsense {
    const char* name;
    std::string bytes;
};

std::string RandomBytes(unsigned seed) {
    std::mt19937 generator(seed);
    std::string bytes;
    for (int i = 0; i < 3000; ++i) bytes += static_cast<char>(generator() & 0xff);
    return bytes;
}

std::string BinaryFile() {
    std::ifstream file("/bin/ls", std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return bytes.substr(0, 40000);
}

const char kUtf8[] =
    "Gr\xC3\xBC\xC3\x9F"
    "e \xC3\x84rger \xC3\x8Dsland \xC4\x9B\xC5\x9B "
    "\xE2\x94\x8C\xE2\x94\x80\xE2\x94\x90 \xD0\x90\xD0\x91 \xE2\x80\x9Equoted\xE2\x80\x9C\n";

const std::vector<Nonsense>& AllNonsense() {
    static const std::vector<Nonsense> all = {
        {"random1", RandomBytes(1)},
        {"random2", RandomBytes(2)},
        {"random3", RandomBytes(3)},
        {"random4", RandomBytes(4)},
        {"binary", BinaryFile()},
        {"utf8", kUtf8},
        {"string", "\x1bPsilence"},
        {"string8", "\x90silence"},
        {"negotiation", "\xff\xfa\x18silence"},
        {"drawing", "\x0e\x1b)0\x1b(0"},
        {"modes", "\x1b[4h\x1b[20h\x1b[12l\x1b[?6h\x1b[?7l\x1b[?25l\x1b[?1h\x1b[5;8r"},
        {"vt52", "\x1b[?2l"},
        {"replies", "\x1b G\x1b[c\x1b[5n\x05\x1b[x"},
        {"lines", "\x1b#6\x1b#8\x1b[10p\x1b[1s\x1b[7;5m\x1b[1\"q"},
        {"below", "\x1b[1;5r\x1b[24;1H\n\n\n\n\n\n\n\n"},
    };
    return all;
}

void PutNonsense(const Machine& machine) {
    for (const Nonsense& nonsense : AllNonsense()) machine.Put(nonsense.name, nonsense.bytes);
}

// Expects the modes of a new connection. There G1 is ASCII; after the reset of the entry it is line
// drawing, which only matters to a host that uses G1.
void ExpectModesOfANewSession(bool drawing_in_g1 = false) {
    OnWindowThread([=] {
        EXPECT_EQ(session.modes.g1_set != 0, drawing_in_g1);
        const TerminalModes& modes = session.modes;
        EXPECT_EQ(modes.insert_mode, 0u);
        EXPECT_EQ(modes.autowrap, 1u);
        EXPECT_EQ(modes.origin_mode, 0u);
        EXPECT_EQ(modes.newline_mode, 0u);
        EXPECT_EQ(modes.localecho, 0u);
        EXPECT_EQ(modes.cursor_visible, 1u);
        EXPECT_EQ(modes.vt52_mode, 0u);
        EXPECT_EQ(modes.c1_replies, 0u);
        EXPECT_EQ(modes.g0_set, 0);
        EXPECT_EQ(modes.graphic_active, 0);
        EXPECT_EQ(session.screen.top_margin, 1);
        EXPECT_EQ(session.screen.bottom_margin, 24);
        EXPECT_EQ(session.screen.current_attr, 0);
    });
}

// Waits until nothing changes any more, which is how a person sees that the host is done.
void AwaitRest() {
    std::string before;
    for (int same = 0; same < 15; ++same) {
        QThread::msleep(10);
        std::string now;
        OnWindowThread([&] {
            now = TerminalText() + std::to_string(session.parser.parser_state) + ',' +
                  std::to_string(session.screen.cursor_row * 100 + session.screen.cursor_col) +
                  ',' + std::to_string(session.telnet.subneg_count);
        });
        if (now != before) same = 0;
        before = now;
    }
}

// An interrupted shell drops input that arrives at the same time, so this waits as a person would.
void PressCtrlC() {
    TypeText("\003");
    QThread::msleep(200);
}

// Turns the ring, and turns attributes on and off.
void UseTheSession() {
    ClearAndRun("printf '\\033[1;4;5;7m'; seq 90; printf '\\033[m'");
    ASSERT_TRUE(ShowsRow("90")) << TerminalText();
}

// Shows each file, or those of `kinds`, follows the page's advice without reading the screen, and
// continues to work.
void ExpectSessionBack(const Machine& machine, const std::function<void()>& repair,
                       const std::set<std::string>& kinds = {}, bool drawing_in_g1 = false) {
    UseTheSession();
    for (const Nonsense& nonsense : AllNonsense()) {
        if (!kinds.empty() && kinds.count(nonsense.name) == 0) continue;
        SCOPED_TRACE(nonsense.name);
        const std::string shown = std::string(nonsense.name) + ".shown";
        TypeText(std::string("cat /var/log/") + nonsense.name + "; : >/var/log/" + shown + "\n");
        ASSERT_TRUE(Eventually([&] { return machine.Has(shown); }));
        AwaitRest();
        bool back = false;
        for (int tries = 0; tries < 3 && !back; ++tries) {
            repair();
            back = Eventually([] { return TerminalRow(1) == "$"; }, 3000);
        }
        ASSERT_TRUE(back) << TerminalText();
        AwaitRest();
        TypeText("\025");  // Ctrl+U deletes the terminal's replies from the line
        RunAtPrompt("echo still $((40 + 2))", "still 42");
        ExpectModesOfANewSession(drawing_in_g1);
        if (testing::Test::HasFailure()) return;
    }
}

void PressCtrlCAndTypeTheLine() {
    PressCtrlC();
    TypeText(Recipe("repair"));
}

TEST(Silence, LineTypedBlindBringsATelnetSessionBack) {
    const Host host = InetdHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    PutNonsense(machine);
    WithTelnetSession(host, "", [&] { ExpectSessionBack(machine, PressCtrlCAndTypeTheLine); });
}

TEST(Silence, LineTypedBlindBringsAnSshSessionBack) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    PutNonsense(machine);
    WithSshSession(host, "", [&] { ExpectSessionBack(machine, PressCtrlCAndTypeTheLine); });
}

TEST(Silence, OneKeyBringsASessionBack) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    PutNonsense(machine);
    WithSshSession(host, Recipe("repair-key"), [&] {
        PasteAtPrompt(Recipe("profile"));
        TypeText(". ~/.profile\n");
        ExpectSessionBack(machine, [] {
            PressCtrlC();
            PressKey(Qt::Key_F9, Qt::ShiftModifier);
        });
    });
}

void PressCtrlCAndTypeReset() {
    PressCtrlC();
    TypeText("reset\n");
}

// The program waits a second each time, and its string begins as the page's line does.
const std::set<std::string> kForReset = {"binary", "string", "drawing", "modes", "vt52", "below"};

TEST(Silence, ResetOfTheEntryBringsAnSshSessionBack) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    PutNonsense(machine);
    WithSshSession(host, "",
                   [&] { ExpectSessionBack(machine, PressCtrlCAndTypeReset, kForReset, true); });
}

TEST(Silence, ResetOfTheEntryBringsATelnetSessionBack) {
    const Host host = InetdHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    PutNonsense(machine);
    WithTelnetSession(host, "", [&] {
        ExpectSessionBack(machine, PressCtrlCAndTypeReset, {"string", "negotiation"}, true);
    });
}

// ---------------------------------------------------------------- without a prompt

// Connects by the menu, as the page says.
void ConnectByTheMenu() {
    const HWND dialog = OpenDialog(IDM_CONNECT, "Connect");
    ClickControl(dialog, IDOK);
    ASSERT_TRUE(Closed(dialog));
}

TEST(Silence, DisconnectAndConnectStartOver) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\x1b[?25l\x1b[4;20h\x1b(0\x1b[3;9r\x1b[7;9H\x1bPsilence");
        ASSERT_TRUE(Eventually([] { return session.parser.parser_state == 7; }));
        PostToMain(WM_COMMAND, IDM_CONNECT);
        ASSERT_TRUE(Offline());
        ConnectByTheMenu();
        ASSERT_TRUE(host.Accept());
        host.Send("hello again");
        EXPECT_TRUE(TerminalShows("hello again")) << TerminalText();
        EXPECT_EQ(TerminalRow(1), "hello again");
        ExpectModesOfANewSession();
    });
}

// Each kind in turn in one run of the program. The byte 240 ends a false negotiation, the server's
// offer to echo ends local echo, and its prompt resets the attributes.
TEST(Silence, AnotherConnectClearsEachKindOfNonsense) {
    FakeHost host;
    WithSession(host, [&] {
        for (const Nonsense& nonsense : AllNonsense()) {
            SCOPED_TRACE(nonsense.name);
            host.Send(nonsense.bytes);
            AwaitRest();
            PostToMain(WM_COMMAND, IDM_CONNECT);
            ASSERT_TRUE(Offline());
            ConnectByTheMenu();
            ASSERT_TRUE(host.Accept());
            DWORD silent = 0;
            OnWindowThread([&] { silent = session.telnet.in_subneg; });
            host.Send((silent ? "\xf0" : "") + std::string("\xff\xfb\x01\x1b[mhello again"));
            EXPECT_TRUE(TerminalShows("hello again")) << TerminalText();
            EXPECT_EQ(TerminalRow(1), "hello again");
            ExpectModesOfANewSession();
            if (testing::Test::HasFailure()) return;
        }
    });
}

TEST(Silence, FalseNegotiationOutlivesTheSessionUntilTheByte240) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\xff\xfa\x18silence");
        ASSERT_TRUE(Eventually([] { return session.telnet.in_subneg == 1; }));
        PostToMain(WM_COMMAND, IDM_CONNECT);
        ASSERT_TRUE(Offline());
        ConnectByTheMenu();
        ASSERT_TRUE(host.Accept());
        host.Send("login: ");
        ASSERT_TRUE(Online());
        host.Send("\xf0$ ");
        EXPECT_TRUE(TerminalShows("$")) << TerminalText();
        EXPECT_EQ(TerminalRow(1), "$") << "what came before is gone";
    });
}

// After Ctrl+C a Telnet server sends a data mark; the next byte then belongs to a subnegotiation.
TEST(Silence, DataMarkAfterSuchANegotiationBeginsAnotherUnlessNegotiationIsShown) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send(
            "\xff\xfa\x18silence\xf0"
            "back \xff\xf2"
            "A silent");
        ASSERT_TRUE(Eventually([] { return session.telnet.in_subneg == 1; }));
        EXPECT_TRUE(TerminalShows("back")) << TerminalText();
        OnWindowThread([] { session.settings.nego = 1; });
        host.Send(
            "\xf0\xff\xf2"
            "shown");
        EXPECT_TRUE(TerminalShows("shown")) << TerminalText();
        OnWindowThread([] { EXPECT_EQ(session.telnet.in_subneg, 0u); });
    });
}

}  // namespace

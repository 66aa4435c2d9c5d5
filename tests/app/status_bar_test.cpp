// SPDX-License-Identifier: MIT
// The status line and the title.
#include <gtest/gtest.h>

#include "session/session_state.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/view/view.h"

namespace {

TEST(StatusBar, NarrowScreenUsesTheShortFormat) {
    RunProgram({.width = 240, .height = 320},
               [] { OnWindowThread([] { EXPECT_EQ(StatusText(), "OFF  1,1    "); }); });
}

TEST(StatusBar, WideScreenRightAlignsTheWordInTenColumns) {
    RunProgram({.width = 640, .height = 240}, [] {
        OnWindowThread([] { EXPECT_EQ(StatusText(), "   offline    row: 1  column: 1     "); });
    });
}

TEST(StatusBar, HiddenThereIsNoWindowAndTheTitleKeepsItsText) {
    RunProgram({}, [] {
        OnWindowThread([] {
            EXPECT_EQ(Title(), "Quill Telnet  []");
            session.settings.hidestatus = 1;
            RebuildStatusBar();
            EXPECT_EQ(session.status_window, nullptr);
            EXPECT_EQ(session.status_height, 0);
            EXPECT_EQ(GetDlgItem(session.client_window, 106), nullptr);
            lstrcpyW(session.settings.host, u"other");
            UpdateStatus();
            EXPECT_EQ(Title(), "Quill Telnet  []");
        });
    });
}

TEST(StatusBar, TitleShowsTheHost) {
    RunProgram({}, [] {
        OnWindowThread([] {
            lstrcpyW(session.settings.host, u"stores.example");
            UpdateStatus();
            EXPECT_EQ(Title(), "Quill Telnet  [stores.example]");
        });
    });
}

TEST(StatusBar, TitleHoldsTheLongestHost) {
    RunProgram({}, [] {
        OnWindowThread([] {
            for (int i = 0; i < kHostUnits - 1; i++) session.settings.host[i] = u'h';
            session.settings.host[kHostUnits - 1] = 0;
            UpdateStatus();
            EXPECT_EQ(Title(), "Quill Telnet  [" + std::string(kHostUnits - 1, 'h') + "]");
        });
    });
}

TEST(StatusBar, SitsAtTheBottomOfTheClientWindow) {
    RunProgram({}, [] {
        OnWindowThread([] {
            RECT bar, client;
            GetWindowRect(session.status_window, &bar);
            GetWindowRect(session.client_window, &client);
            EXPECT_EQ(bar.bottom, client.bottom);
            EXPECT_EQ(bar.right, client.right);
            EXPECT_EQ(bar.bottom - bar.top, session.status_height);
            EXPECT_GT(session.status_height, 8);
        });
    });
}

struct WordCase {
    DWORD connected, pending, ssh, banner, progress, version;
    const char* long_word;
    const char* short_word;
};

const WordCase kWords[] = {
    {0, 0, 0, 0, 0, 1, "   offline", "OFF"},  {0, 1, 0, 0, 0, 1, "   request", "REQ"},
    {0, 1, 1, 1, 0, 1, "   request", "REQ"},  {1, 0, 0, 0, 0, 1, "    online", "ON"},
    {1, 1, 0, 0, 0, 1, "    online", "ON"},   {1, 0, 1, 0, 0, 1, "    online", "ON"},
    {1, 0, 1, 1, 0, 1, "    online", "SSH2"}, {1, 0, 1, 1, 0, 0, "    online", "SSH1"},
    {1, 0, 1, 1, 1, 1, "    secure", "SSH2"}, {1, 0, 1, 1, 2, 0, "    secure", "SSH1"},
    {1, 0, 0, 0, 5, 1, "    online", "ON"},   {1, 0, 1, 1, 0, 2, "    online", "SSH1"},
    {1, 0, 2, 1, 1, 2, "    secure", "SSH1"}, {1, 0, 2, 1, 0, 1, "    online", "SSH2"},
};

TEST(StatusBar, StateWordsOfEverySituation) {
    RunProgram({}, [] {
        OnWindowThread([] {
            for (const WordCase& c : kWords) {
                session.connected = c.connected;
                session.connect_pending = c.pending;
                session.settings.ssh = c.ssh;
                session.banner_sent = c.banner;
                session.ssh_progress = c.progress;
                session.settings.ssh_type2 = c.version;
                session.narrow_screen = 0;
                UpdateStatus();
                EXPECT_EQ(StatusText(), std::string(c.long_word) + "    row: 1  column: 1     ");
                session.narrow_screen = 1;
                UpdateStatus();
                EXPECT_EQ(StatusText(), std::string(c.short_word) + "  1,1    ");
            }
            session.connected = 0;
            session.connect_pending = 0;
        });
    });
}

TEST(StatusBar, FollowsTheCursorAndTheSession) {
    FakeHost host;
    RunProgram({.config = host.Config()}, [&] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        ASSERT_TRUE(host.Accept());
        host.Send("\033[12;34H");
        EXPECT_TRUE(
            Eventually([] { return StatusText() == "    online    row: 12  column: 34     "; }));
        OnWindowThread([] { EXPECT_EQ(Title(), "Quill Telnet  [127.0.0.1]"); });
    });
}

TEST(StatusBar, FollowsTheCursorOfTheNegotiationsLines) {
    FakeHost host;
    RunProgram({.config = host.Config("nego = 1\n")}, [&] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        ASSERT_TRUE(host.Accept());
        host.Send("\377\375\037");
        ASSERT_TRUE(TerminalShows("CLIENT: IAC  WONT  31"));
        EXPECT_TRUE(
            Eventually([] { return StatusText() == "    online    row: 3  column: 1     "; }, 2000))
            << StatusText();
    });
}

TEST(StatusBar, HiddenFromTheStartLeavesTheWindowItsFirstTitle) {
    RunProgram({.config = "hidestatus = 1\n"}, [] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        OnWindowThread([] {
            EXPECT_EQ(session.status_window, nullptr);
            EXPECT_EQ(Title(), "Quill TELNET");
        });
    });
}

TEST(StatusBar, AnyValueButZeroHidesIt) {
    RunProgram({.config = "hidestatus = 2\n"}, [] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        OnWindowThread([] {
            EXPECT_EQ(session.status_window, nullptr);
            EXPECT_EQ(session.status_height, 0);
            session.settings.hidestatus = 0;
            RebuildStatusBar();
            EXPECT_NE(session.status_window, nullptr);
            session.settings.hidestatus = 0xFFFFFFFF;
            RebuildStatusBar();
            EXPECT_EQ(session.status_window, nullptr);
        });
    });
}

TEST(StatusBar, FormatDependsOnTheScreenSizeAtTheStart) {
    const struct {
        int width, later;
        const char* text;
        const char* online;
    } rows[] = {
        {240, 640, "OFF  1,1    ", "ON  1,6    "},
        {640, 240, "   offline    row: 1  column: 1     ", "    online    row: 1  column: 6     "},
    };
    for (const auto& row : rows) {
        FakeHost host;
        RunProgram({.width = row.width, .height = 320}, [&] {
            ResizeDevice(row.later, 320);
            OnWindowThread([&] {
                UpdateStatus();
                EXPECT_EQ(StatusText(), row.text);
                RebuildStatusBar();
                UpdateStatus();
                EXPECT_EQ(StatusText(), row.text);
            });
            SetHost(u"127.0.0.1", host.port);
            Connect();
            ASSERT_TRUE(host.Accept());
            host.Send("hello");
            EXPECT_TRUE(Eventually([&] { return StatusText() == row.online; })) << StatusText();
        });
    }
}

TEST(StatusBar, ShowsTheNewHostAndTheCursorsPlaceUnderTheErrorOfAFailedConnect) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[12;34H");
        ASSERT_TRUE(
            Eventually([] { return StatusText() == "    online    row: 12  column: 34     "; }));
        Close();
        ASSERT_TRUE(Offline());
        SetHost(u"no-such-host.invalid", host.port);
        ConnectLater();
        ASSERT_EQ(AwaitBox(), "Error: Cannot connect to the UNIX Host");
        EXPECT_EQ(StatusText(), "   offline    row: 1  column: 1     ");
        EXPECT_EQ(Title(), "Quill Telnet  [no-such-host.invalid]");
        PressOk();
    });
}

}  // namespace

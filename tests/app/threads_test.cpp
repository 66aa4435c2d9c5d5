// SPDX-License-Identifier: MIT
// The window thread and the receiving threads, session after session.
#include <dirent.h>
#include <gtest/gtest.h>

#include "connection/connection.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

size_t OpenFiles() {
    size_t count = 0;
    DIR* folder = opendir("/proc/self/fd");
    while (readdir(folder)) count++;
    closedir(folder);
    return count;
}

size_t Threads() {
    size_t count = 0;
    DIR* folder = opendir("/proc/self/task");
    while (readdir(folder)) count++;
    closedir(folder);
    return count;
}

TEST(Threads, FiveHundredSessionsInARowLeaveNothingBehind) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        size_t files = 0, threads = 0;
        for (int i = 0; i < 500; i++) {
            Connect();
            ASSERT_TRUE(host.Accept());
            const std::string word = "session " + std::to_string(i);
            host.Send(word);
            ASSERT_TRUE(TerminalShows(word));
            OnWindowThread(
                [&] { EXPECT_EQ(TerminalRow(1), word) << "nothing of another session"; });
            Close();
            ASSERT_TRUE(Offline());
            if (i == 20) OnWindowThread([&] { files = OpenFiles(), threads = Threads(); });
        }
        host.Drop();
        EXPECT_TRUE(Eventually([&] { return OpenFiles() <= files + 1; }));
        EXPECT_TRUE(Eventually([&] { return Threads() <= threads + 1; }));
    });
}

// The old session is closed and the new one opened within one message, while the old host floods.
TEST(Threads, NothingOfAClosedSessionReachesTheNext) {
    FakeHost first, second;
    RunProgram({}, [&] {
        for (int i = 0; i < 50; i++) {
            SetHost(u"127.0.0.1", first.port);
            Connect();
            ASSERT_TRUE(first.Accept());
            first.Send(std::string(20000, 'o'));
            ASSERT_TRUE(Online());
            OnWindowThread([&] {
                SessionClose();
                session.settings.port = static_cast<DWORD>(second.port);
                SessionConnect();
            });
            ASSERT_TRUE(second.Accept());
            second.Send("new");
            ASSERT_TRUE(TerminalShows("new"));
            OnWindowThread([] {
                EXPECT_EQ(TerminalText().find('o'), std::string::npos);
                SessionClose();
            });
            ASSERT_TRUE(Offline());
        }
    });
}

TEST(Threads, RequestsCancelledAtOnceLeaveTheNextSessionAlone) {
    FakeHost host;
    RunProgram({.before = [] { AnswerMessageBoxes(true); }}, [&] {
        SetHost(u"127.0.0.1", host.port);
        for (int i = 0; i < 50; i++) {
            OnWindowThread([] {
                SessionConnect();
                SessionClose();
                SessionConnect();
            });
            ASSERT_TRUE(host.Accept());
            ASSERT_TRUE(host.Accept());
            Sleep(10);
            OnWindowThread(
                [] { EXPECT_EQ(session.connect_pending, 1u) << "the end of the request before"; });
            host.Send("kept");
            ASSERT_TRUE(TerminalShows("kept"));
            Close();
            ASSERT_TRUE(Offline());
        }
        AnswerMessageBoxes(false);
    });
}

TEST(Threads, SessionsThatTheHostDropsLeaveNoSocketOpen) {
    FakeHost host;
    const Stage stage{.before = [] { AnswerMessageBoxes(true); }};
    RunProgram(stage, [&] {
        SetHost(u"127.0.0.1", host.port);
        size_t files = 0;
        for (int i = 0; i < 60; i++) {
            Connect();
            ASSERT_TRUE(host.Accept());
            host.Send("short");
            ASSERT_TRUE(TerminalShows("short"));
            host.Drop();
            ASSERT_TRUE(Offline());
            if (i == 20) OnWindowThread([&] { files = OpenFiles(); });
        }
        EXPECT_TRUE(Eventually([&] { return OpenFiles() <= files + 2; }));
        AnswerMessageBoxes(false);
    });
}

}  // namespace

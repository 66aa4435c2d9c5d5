// SPDX-License-Identifier: MIT
// Edge cases of sessions: an end during another step, and windows while the host floods.
#include <gtest/gtest.h>
#include <QInputMethodEvent>

#include "connection/connection.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window_widget.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/drawn.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

const char kClosed[] = "Error: Connection to the UNIX Host has been closed...";
const char kMayClose[] = "Warning: Do you really want to close this program";

// Sends without a pause until the program has closed its side.
struct Flood {
    explicit Flood(FakeHost& to) : host(to) {
        for (int i = 0; i < 200; i++) block += "a line of the fast stream that scrolls by\r\n";
    }
    void Pour(int milliseconds) {
        for (int passed = 0; passed < milliseconds; passed++) {
            host.TrySend(block);
            Sleep(1);
        }
    }
    FakeHost& host;
    std::string block;
};

TEST(SessionEdges, ConnectRightAfterADisconnectThatEndsTheProgramEndsIt) {
    FakeHost host;
    int code = -1;
    code = RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        OnWindowThread([] {
            session.settings.exit_dis = 1;
            SessionClose();
            SessionConnect();
            EXPECT_EQ(session.socket.load(), INVALID_SOCKET);
        });
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
    });
    EXPECT_EQ(code, 0);
}

TEST(SessionEdges, StatusLineIsPaintedWhileTheHostFloods) {
    FakeHost host;
    WithSession(host, [&] {
        Flood flood(host);
        flood.Pour(200);
        OnWindowThread([] { StartRecording(); });
        flood.Pour(500);
        OnWindowThread([] {
            int status = 0, terminal = 0;
            for (const DrawCall& call : RecordedCalls()) {
                status += call.window == session.status_window;
                terminal += call.window == session.client_window;
            }
            EXPECT_GT(status, 0);
            EXPECT_GT(terminal, 0);
            StopRecording();
        });
    });
}

TEST(SessionEdges, RebuiltMenuBarsLeaveNoWidgetBehind) {
    RunProgram({}, [] {
        const auto widgets = [] { return DeviceScreen()->findChildren<QWidget*>().size(); };
        qsizetype before = 0;
        ASSERT_TRUE(Eventually([] { return session.menu_bar != nullptr; }));
        PostToMain(WM_SOCKET_CONNECTED);
        OnWindowThread([] {});
        OnWindowThread([&] { before = widgets(); });
        for (int i = 0; i < 20; i++) PostToMain(WM_SOCKET_CONNECTED);
        EXPECT_TRUE(Eventually([&] { return widgets() == before; }, 2000));
    });
}

TEST(SessionEdges, CommittedTextAfterAKeyWithoutCharacterReachesTheHost) {
    FakeHost host;
    WithSession(host, [&] {
        PressKey(Qt::Key_Up);
        EXPECT_EQ(host.Read(3), "\033[A");
        OnWindowThread([] {
            QInputMethodEvent event;
            event.setCommitString(QString::fromLatin1("\xe9t\xe9"));
            QApplication::sendEvent(QApplication::focusWidget(), &event);
        });
        EXPECT_EQ(host.Read(3), "\xe9t\xe9");
    });
}

TEST(SessionEdges, MinimisingEndsTheProgramWhileTheHostFloods) {
    FakeHost host;
    int ended = 0;
    WithSession(host, [&] {
        Flood flood(host);
        flood.Pour(100);
        OnWindowThread([] { session.settings.xbox = 1, session.settings.confirm_exit = 0; });
        PostToMain(WM_SIZE, SIZE_MINIMIZED);
        for (int i = 0; i < 100 && ProgramRuns(); i++) flood.Pour(20);
        ended = !ProgramRuns();
    });
    EXPECT_EQ(ended, 1);
}

TEST(SessionEdges, DataKeepsArrivingWhileTheCloseQuestionIsOpen) {
    FakeHost host;
    int ended = 0;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.confirm_exit = 1; });
        PostToMain(WM_CLOSE);
        ASSERT_EQ(AwaitBox(), kMayClose);
        host.Send("\r\nunder the box");
        EXPECT_TRUE(TerminalShows("under the box"));
        PressCancel();
        EXPECT_TRUE(Eventually([] { return ShownMessageBox() == nullptr; }));
        PostToMain(WM_CLOSE);
        ASSERT_EQ(AwaitBox(), kMayClose);
        Flood flood(host);
        flood.Pour(100);
        PressOk();
        for (int i = 0; i < 100 && ProgramRuns(); i++) flood.Pour(20);
        ended = !ProgramRuns();
    });
    EXPECT_EQ(ended, 1);
}

TEST(SessionEdges, HostThatDropsUnderTheCloseQuestionIsReportedOnTop) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.confirm_exit = 1; });
        PostToMain(WM_CLOSE);
        ASSERT_EQ(AwaitBox(), kMayClose);
        host.Drop();
        EXPECT_TRUE(Eventually([] {
            return ShownMessageBox() && ShownMessageBox()->text().contains("has been closed");
        }));
        DismissBox(kClosed);
        ASSERT_TRUE(Eventually([] {
            return ShownMessageBox() && ShownMessageBox()->text().contains("this program");
        }));
        PressOk();
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
    });
}

TEST(SessionEdges, ExitOnDisconnectEndsTheProgramUnderAnOpenQuestion) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.confirm_exit = session.settings.exit_dis = 1; });
        PostToMain(WM_CLOSE);
        ASSERT_EQ(AwaitBox(), kMayClose);
        host.Drop();
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
    });
}

TEST(SessionEdges, TwoClosesAtOnceAskTwiceAndEndOnce) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            session.settings.confirm_exit = session.settings.xbox = 1;
            PostMessageW(session.main_window, WM_SIZE, SIZE_MINIMIZED, 0);
            PostMessageW(session.main_window, WM_CLOSE, 0, 0);
        });
        EXPECT_TRUE(Eventually([] {
            return ShownMessageBox() && ShownMessageBox()->text().contains("this program");
        }));
        PressOk();
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
    });
}

TEST(SessionEdges, CloseWhileARequestIsPendingEndsTheProgram) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        PostToMain(WM_CLOSE);
        for (int i = 0; i < 1000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
        EXPECT_TRUE(host.Closed());
    });
}

TEST(SessionEdges, EachSessionNegotiatesFromTheStart) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        for (int i = 0; i < 2; i++) {
            Connect();
            ASSERT_TRUE(host.Accept());
            host.Send("\377\375\001\377\373\001\377\373\003\377");
            EXPECT_EQ(host.Read(6), "\377\375\001\377\375\003") << "session " << i;
            EXPECT_EQ(host.ReadSome(50), "");
            Close();
            ASSERT_TRUE(Offline());
        }
    });
}

TEST(SessionEdges, SubnegotiationCutByADroppedLineContinuesInTheNextSession) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("\377\372\030\001");
        ASSERT_TRUE(Eventually([] { return session.telnet.subneg_count == 2; }));
        host.Drop();
        DismissBox(kClosed);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("swallowed\360shown");
        EXPECT_EQ(host.Read(11).substr(0, 4), std::string("\377\372\030\0", 4));
        ASSERT_TRUE(TerminalShows("shown"));
        OnWindowThread([] { EXPECT_EQ(TerminalRow(1), "shown"); });
    });
}

TEST(SessionEdges, ClosedRequestIsOverAtOnce) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        OnWindowThread([] {
            SessionConnect();
            EXPECT_EQ(session.connect_pending, 1u);
            SessionClose();
            EXPECT_EQ(session.connect_pending, 0u);
            EXPECT_EQ(session.closing, 1u);
            EXPECT_EQ(session.socket.load(), INVALID_SOCKET);
        });
        DismissBox("Error: Not possible to create a session to the UNIX Host");
    });
}

}  // namespace

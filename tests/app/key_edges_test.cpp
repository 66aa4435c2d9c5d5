// SPDX-License-Identifier: MIT
// Edge cases of keys: accelerators, what a key press sends to the host, stored sequences.
#include <gtest/gtest.h>
#include <QKeyEvent>
#include <QtTest/QTest>

#include "platform/qt/shell/shell.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

bool Ended() {
    for (int i = 0; i < 2000 && ProgramRuns(); i++) Sleep(5);
    return !ProgramRuns();
}

// ---------------------------------------------------------------- accelerators

// The key events of X11: Shift turns = into + and - into _.
void Strike(int key, Qt::KeyboardModifiers modifiers, const QString& text = QString()) {
    OnWindowThread([=] {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, modifiers, text);
            QApplication::sendEvent(QApplication::focusWidget(), &event);
        }
    });
}

const Qt::KeyboardModifiers kBoth = Qt::ControlModifier | Qt::ShiftModifier;

TEST(KeyEdges, AcceleratorsChangeTheFont) {
    RunProgram({}, [] {
        ASSERT_TRUE(Eventually([] { return session.view.font != nullptr; }));
        int height = 0;
        OnWindowThread([&] { height = session.view.cell_height; });
        for (const auto& [larger, smaller, modifiers] :
             {std::tuple(Qt::Key_Plus, Qt::Key_Underscore, kBoth),
              std::tuple(Qt::Key_Equal, Qt::Key_Minus, kBoth),
              std::tuple(Qt::Key_Plus, Qt::Key_Minus, kBoth | Qt::KeypadModifier)}) {
            Strike(larger, modifiers);
            EXPECT_TRUE(Eventually([&] { return session.view.cell_height == height + 1; }));
            Strike(smaller, modifiers);
            EXPECT_TRUE(Eventually([&] { return session.view.cell_height == height; }));
        }
    });
}

TEST(KeyEdges, AcceleratorsDisconnectAndExit) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(Qt::Key_N, kBoth, "\x0e");
        EXPECT_TRUE(Offline());
        EXPECT_EQ(host.ReadSome(50), "") << "the key is the program's alone";
        EXPECT_TRUE(ProgramRuns());
        Strike(Qt::Key_Q, kBoth, "\x11");
        EXPECT_TRUE(Ended());
    });
}

TEST(KeyEdges, KeysOtherThanTheAcceleratorsGoToTheHost) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(Qt::Key_N, Qt::ControlModifier, "\x0e");
        Strike(Qt::Key_Q, Qt::ControlModifier, "\x11");
        Strike(Qt::Key_C, Qt::ControlModifier, "\x03");
        Strike(Qt::Key_Q, Qt::ShiftModifier, "Q");
        EXPECT_EQ(host.Read(4), "\x0e\x11\x03Q");
    });
}

// ---------------------------------------------------------------- typed characters

TEST(KeyEdges, TypedCharacterDropsTheSelection) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.screen.selection_active = 1; });
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
        OnWindowThread([] { EXPECT_EQ(session.screen.selection_active, 0u); });
    });
}

TEST(KeyEdges, KeysAndCharactersAreEscapedByTheSessionsFlag) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            SetKeyText(&key_map[0], u"a\\377");
            session.telnet.escape_iac = 1;
        });
        Strike(0, Qt::NoModifier, QString(QChar(0xff)));
        PressKey(Qt::Key_F1);
        const std::string record_end = "\xff\xef";
        EXPECT_EQ(host.Read(9), "\xff\xff" + record_end + "a\xff\xff" + record_end);
        OnWindowThread([] { session.telnet.escape_iac = 0; });
        Strike(0, Qt::NoModifier, QString(QChar(0xff)));
        PressKey(Qt::Key_F1);
        EXPECT_EQ(host.Read(3),
                  "\xff"
                  "a\xff");
    });
}

TEST(KeyEdges, TerminalReportsAreSentUnescapedWhateverTypedDataDoes) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.telnet.escape_iac = 1; });
        host.Send("\033[3;4H\033[6n\033[5n");
        EXPECT_EQ(host.Read(10), "\033[3;4R\033[0n");
        TypeText("x");
        EXPECT_EQ(host.Read(3), "x\xff\xef");
        host.Send("\033[6n");
        EXPECT_EQ(host.Read(6), "\033[3;4R");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(KeyEdges, TabAndReturnAreLeftToTheKeyTable) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(Qt::Key_I, Qt::ControlModifier, "\t");
        Strike(Qt::Key_M, Qt::ControlModifier, "\r");
        Strike(Qt::Key_J, Qt::ControlModifier, "\n");
        EXPECT_EQ(host.Read(1), "\n");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(KeyEdges, CharacterAfterAMenusKeyIsTyped) {
    FakeHost host;
    WithSession(host, [&] {
        PostToMain(WM_COMMAND, 40153);
        PostToMain(WM_CHAR, 'x');
        EXPECT_EQ(host.Read(2), "\rx");
    });
}

TEST(KeyEdges, NewlineModeChangesOnlyEnter) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.modes.newline_mode = 1; });
        PressKey(Qt::Key_Up);
        TypeText("x");
        PostToMain(WM_COMMAND, 40153);
        EXPECT_EQ(host.Read(6), "\033[Ax\r\n");
        OnWindowThread([] { SetKeyText(&key_map[33], u""); });
        PressKey(Qt::Key_Return);
        TypeText("y");
        EXPECT_EQ(host.Read(1), "y") << "no sequence, nothing to follow it";
    });
}

// ---------------------------------------------------------------- the panel's keys

TEST(KeyEdges, PanelKeyThatIsHeldRepeats) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            SIPINFO panel = {};
            panel.cbSize = sizeof(panel);
            panel.fdwFlags = SIPF_ON;
            SHSipInfo(SPI_SETSIPINFO, 0, &panel, 0);
        });
        const auto key = [](const char* label) {
            PanelKey* found = nullptr;
            for (PanelKey* each : ShellInputPanel()->findChildren<PanelKey*>())
                if (each->accessibleName() == label) found = each;
            return found;
        };
        OnWindowThread([&] { QTest::mousePress(key("a"), Qt::LeftButton); });
        EXPECT_EQ(host.Read(3), "aaa");
        OnWindowThread([&] {
            QTest::mouseRelease(key("a"), Qt::LeftButton);
            QTest::mousePress(key("CAP"), Qt::LeftButton);
        });
        host.ReadSome(1000);
        OnWindowThread([&] {
            EXPECT_NE(key("A"), nullptr) << "a latch does not repeat";
            QTest::mouseRelease(key("CAP"), Qt::LeftButton);
        });
        TypeText("|");
        EXPECT_EQ(host.Read(1), "|");
    });
}

// ---------------------------------------------------------------- stored sequences

void StoreKey(LPCWSTR name, const std::u16string& text) {
    HKEY key;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, u"Software\\QUILLWARE\\TELNET", 0, nullptr, 0,
                              KEY_SET_VALUE, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
    RegCloseKey(key);
}

TEST(KeyEdges, StoredSequenceThatIsTooLongIsReplacedByTheDefault) {
    FakeHost host;
    Stage stage;
    stage.before = [] {
        StoreKey(u"key4", std::u16string(300, u'x'));
        StoreKey(u"key5", u"\\033six");
        StoreKey(u"key6", u"");
    };
    RunProgram(stage, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        PressKey(Qt::Key_F5);
        PressKey(Qt::Key_F6);
        PressKey(Qt::Key_F7);
        TypeText("|");
        EXPECT_EQ(host.Read(10), "\033[15~\033six|");
    });
}

TEST(KeyEdges, WithAltTooAnAcceleratorsKeyIsTheHosts) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(Qt::Key_N, kBoth | Qt::AltModifier, "\x0e");
        EXPECT_EQ(host.Read(1), "\x0e");
        OnWindowThread([] { EXPECT_EQ(session.connected, 1u); });
    });
}

// As a compose key does that types more than one letter.
TEST(KeyEdges, CharactersOfOneKeyKeepTheirOrder) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(Qt::Key_unknown, Qt::NoModifier, "abc");
        EXPECT_EQ(host.Read(3), "abc");
    });
}

}  // namespace

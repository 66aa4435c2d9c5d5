// SPDX-License-Identifier: MIT
// A desktop's keyboard: each key press reaches the host once, as the bytes of its row or as its
// character.
#include <gtest/gtest.h>
#include <QKeyEvent>

#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "terminal/screen_buffer.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

constexpr quint32 kLeftShift = 0xffe1, kRightShift = 0xffe2;
constexpr quint32 kLeftControl = 0xffe3, kRightControl = 0xffe4;
constexpr quint32 kLevel3Shift = 0xfe03;  // AltGr

void Give(QEvent::Type type, int key, Qt::KeyboardModifiers modifiers, quint32 symbol,
          const QString& text = QString(), quint32 code = 0, bool repeat = false) {
    OnWindowThread([=] {
        QKeyEvent event(type, key, modifiers, code, symbol, 0, text, repeat);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    });
}

void Strike(int key, Qt::KeyboardModifiers modifiers, const QString& text = QString()) {
    Give(QEvent::KeyPress, key, modifiers, 1, text);
    Give(QEvent::KeyRelease, key, modifiers, 1, text);
}

struct ModifierCase {
    int key;
    quint32 symbol;
    Qt::KeyboardModifier modifier;
    int struck;
    const char* bytes;
};

TEST(Keyboard, LeftAndRightModifiersBothCount) {
    const ModifierCase cases[] = {
        {Qt::Key_Shift, kLeftShift, Qt::ShiftModifier, Qt::Key_F1, "\033[25~"},
        {Qt::Key_Shift, kRightShift, Qt::ShiftModifier, Qt::Key_F1, "\033[25~"},
        {Qt::Key_Control, kLeftControl, Qt::ControlModifier, Qt::Key_5, "\033[15~"},
        {Qt::Key_Control, kRightControl, Qt::ControlModifier, Qt::Key_5, "\033[15~"},
    };
    FakeHost host;
    WithSession(host, [&] {
        for (const ModifierCase& row : cases) {
            Give(QEvent::KeyPress, row.key, Qt::NoModifier, row.symbol);
            Strike(row.struck, row.modifier);
            Give(QEvent::KeyRelease, row.key, row.modifier, row.symbol);
            EXPECT_EQ(host.Read(5), row.bytes) << row.symbol;
        }
        Strike(Qt::Key_F1, Qt::NoModifier);
        EXPECT_EQ(host.Read(2), "\217P") << "the last one is up again";
    });
}

TEST(Keyboard, LostReleaseOfAModifierDoesNotStick) {
    FakeHost host;
    WithSession(host, [&] {
        Give(QEvent::KeyPress, Qt::Key_Shift, Qt::NoModifier, kLeftShift);
        Strike(Qt::Key_F1, Qt::NoModifier);
        EXPECT_EQ(host.Read(2), "\217P");
    });
}

TEST(Keyboard, CtrlWithALetterIsItsControlCharacter) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(Qt::Key_C, Qt::ControlModifier, "\x03");
        Strike(Qt::Key_Z, Qt::ControlModifier, "\x1a");
        EXPECT_EQ(host.Read(2), "\x03\x1a");
    });
}

TEST(Keyboard, ControlCharactersAreDroppedWhileEscapeIacIsSet) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.telnet.escape_iac = 1; });
        Strike(Qt::Key_C, Qt::ControlModifier, "\x03");
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

TEST(Keyboard, OnlyCharactersBelow32AreDroppedWhileEscapeIacIsSet) {
    FakeHost host;
    WithSession(host, [&] {
        std::string all, printable;
        for (int c = 0; c < 256; c++) {
            if (c != 9 && c != 13) all += static_cast<char>(c);
            if (c >= 32) printable += static_cast<char>(c);
        }
        const auto type_all = [](DWORD escape) {
            OnWindowThread([=] { session.telnet.escape_iac = escape; });
            for (int c = 0; c < 256; c++) {
                WCHAR character = 0;
                const char byte = static_cast<char>(c);
                MultiByteToWideChar(CP_ACP, 0, &byte, 1, &character, 1);
                PostToMain(WM_CHAR, character);
            }
        };
        type_all(0);
        EXPECT_EQ(host.Read(all.size()), all);
        type_all(1);
        std::string escaped;
        for (const char c : printable) {
            escaped += c == '\xff' ? std::string(2, c) : std::string(1, c);
            escaped += "\xff\xef";
        }
        EXPECT_EQ(host.Read(escaped.size()), escaped);
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Keyboard, NumberPadTypesDigitsAndSignsWhateverCtrlSays) {
    FakeHost host;
    WithSession(host, [&] {
        for (int digit = 0; digit <= 9; digit++)
            Strike(Qt::Key_0 + digit, Qt::KeypadModifier, QString::number(digit));
        Strike(Qt::Key_Plus, Qt::KeypadModifier, "+");
        Strike(Qt::Key_Period, Qt::KeypadModifier, ".");
        Strike(Qt::Key_5, Qt::KeypadModifier | Qt::ControlModifier, "5");
        EXPECT_EQ(host.Read(13), "0123456789+.5") << "Ctrl 5 is the key of the upper row";
        Strike(Qt::Key_Home, Qt::KeypadModifier);
        EXPECT_EQ(host.Read(3), "\2331~");
        Strike(Qt::Key_Enter, Qt::KeypadModifier, "\r");
        EXPECT_EQ(host.Read(1), "\r");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Keyboard, HeldKeyRepeats) {
    FakeHost host;
    WithSession(host, [&] {
        Give(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier, 1);
        for (int i = 0; i < 4; i++) {
            Give(QEvent::KeyRelease, Qt::Key_Up, Qt::NoModifier, 1, "", 0, true);
            Give(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier, 1, "", 0, true);
        }
        Give(QEvent::KeyRelease, Qt::Key_Up, Qt::NoModifier, 1);
        EXPECT_EQ(host.Read(15), "\033[A\033[A\033[A\033[A\033[A");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Keyboard, AltGrCharactersOfEuropeanLayoutsAreTyped) {
    FakeHost host;
    WithSession(host, [&] {
        Give(QEvent::KeyPress, Qt::Key_AltGr, Qt::NoModifier, kLevel3Shift);
        Give(QEvent::KeyPress, Qt::Key_At, Qt::GroupSwitchModifier, '@', "@", 24);
        Give(QEvent::KeyRelease, Qt::Key_At, Qt::GroupSwitchModifier, '@', "@", 24);
        Give(QEvent::KeyPress, Qt::Key_BraceLeft, Qt::GroupSwitchModifier, '{', "{", 16);
        Give(QEvent::KeyRelease, Qt::Key_BraceLeft, Qt::GroupSwitchModifier, '{', "{", 16);
        Give(QEvent::KeyRelease, Qt::Key_AltGr, Qt::GroupSwitchModifier, kLevel3Shift);
        EXPECT_EQ(host.Read(2), "@{") << "{ lies on the key of 7";
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Keyboard, CharactersAreConvertedToTheAnsiCodePageOneByteEach) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(0, Qt::NoModifier, QString(QChar(0xe9)));
        Strike(0, Qt::NoModifier, QString(QChar(0x20ac)));
        Strike(0, Qt::NoModifier, QString(QChar(0x4e2d)));
        EXPECT_EQ(host.Read(3), "\xe9\x80?");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Keyboard, OneKeyPressReachesTheHostOnce) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(Qt::Key_Escape, Qt::NoModifier, "\033");
        Strike(Qt::Key_Return, Qt::NoModifier, "\r");
        Strike(Qt::Key_Tab, Qt::NoModifier, "\t");
        Strike(Qt::Key_Backspace, Qt::NoModifier, "\b");
        EXPECT_EQ(host.Read(4), "\033\r\t\b");
        OnWindowThread([] { SetKeyText(&key_map[39], u"\\177"); });
        Strike(Qt::Key_Backspace, Qt::NoModifier, "\b");
        Strike(Qt::Key_Delete, Qt::NoModifier, "\177");
        EXPECT_EQ(host.Read(2), "\177\177") << "a changed Backspace goes as its row alone";
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

// ---------------------------------------------------------------- keys in the table

struct NamedKey {
    int key;
    Qt::KeyboardModifiers modifiers;
    const char* character;  // the character that the desktop sends with the key
    int row;
};

const NamedKey kNamedKeys[] = {
    {Qt::Key_0, Qt::ControlModifier, "0", 42},
    {Qt::Key_1, Qt::ControlModifier, "1", 43},
    {Qt::Key_2, Qt::ControlModifier, "\x03", 44},
    {Qt::Key_9, Qt::ControlModifier, "9", 51},
    {Qt::Key_1, Qt::ControlModifier | Qt::ShiftModifier, "!", 53},
    {Qt::Key_6, Qt::ControlModifier | Qt::ShiftModifier, "\x1e", 58},
    {Qt::Key_Return, Qt::NoModifier, "\r", 33},
    {Qt::Key_Escape, Qt::NoModifier, "\033", 37},
    {Qt::Key_Delete, Qt::NoModifier, "\177", 38},
    {Qt::Key_Backspace, Qt::NoModifier, "\b", 39},
    {Qt::Key_Tab, Qt::NoModifier, "\t", 40},
    {Qt::Key_Tab, Qt::ShiftModifier, "\t", 41},
};

void GiveRow(int row, const std::u16string& text) {
    OnWindowThread([&] { SetKeyText(&key_map[row], text.c_str()); });
}

TEST(Keyboard, KeyInTheTableIsNeverSentAsItsCharacter) {
    const std::u16string texts[] = {u"",         u"\\000", u"\\",
                                    u"\\000abc", u"\\08",  std::u16string(255, u'x')};
    FakeHost host;
    RunProgram({}, [&] {
        for (int times = 0; times < 2; times++) {
            BeginSession(host);
            for (const NamedKey& named : kNamedKeys) {
                for (const std::u16string& text : texts) {
                    GiveRow(named.row, text);
                    Strike(named.key, named.modifiers, named.character);
                    TypeText("|");
                    EXPECT_EQ(host.Read(1), "|") << named.row << ", " << text.size();
                }
                GiveRow(named.row, u"ab");
                Strike(named.key, named.modifiers, named.character);
                EXPECT_EQ(host.Read(2), "ab") << named.row;
            }
            EXPECT_EQ(host.ReadSome(50), "");
            Close();
            ASSERT_TRUE(Offline());
        }
    });
}

TEST(Keyboard, BackspaceWithItsDefaultRowAndKeysOutsideTheTableAreSentAsCharacters) {
    FakeHost host;
    WithSession(host, [&] {
        const auto strike = [&] {
            Strike(Qt::Key_Backspace, Qt::NoModifier, "\b");
            Strike(Qt::Key_H, Qt::ControlModifier, "\b");
            Strike(Qt::Key_1, Qt::NoModifier, "1");
        };
        strike();
        EXPECT_EQ(host.Read(3), "\b\b1");
        GiveRow(39, u"");
        strike();
        EXPECT_EQ(host.Read(2), "\b1") << "an emptied row sends nothing";
        GiveRow(39, u"\\008");
        strike();
        EXPECT_EQ(host.Read(3), "\b\b1") << "the default again";
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

// A dead key pressed before adds a second character to a press.
TEST(Keyboard, OneCharacterIsKeptBackForAKeyThatTheTableTakes) {
    FakeHost host;
    RunProgram({}, [&] {
        BeginSession(host);
        PostToMain(WM_KEYDOWN, VK_ESCAPE);
        for (const WPARAM character : {WPARAM{27}, WPARAM{'x'}, WPARAM{'y'}})
            PostToMain(WM_CHAR, character);
        EXPECT_EQ(host.Read(3), "\033xy");
        PostToMain(WM_KEYDOWN, VK_ESCAPE);
        EXPECT_EQ(host.Read(1), "\033");
        Close();
        ASSERT_TRUE(Offline());
        PostToMain(WM_KEYDOWN, 'A');
        BeginSession(host);
        PostToMain(WM_CHAR, 'z');
        EXPECT_EQ(host.Read(1), "z") << "the key was pressed in the last session";
    });
}

TEST(Keyboard, RowWithoutASequenceSendsNothing) {
    FakeHost host;
    WithSession(host, [&] {
        for (const int row : {37, 39, 43}) {
            OnWindowThread([=] {
                std::free(key_map[row].text);
                key_map[row].text = nullptr;
            });
        }
        Strike(Qt::Key_Escape, Qt::NoModifier, "\033");
        Strike(Qt::Key_Backspace, Qt::NoModifier, "\b");
        Strike(Qt::Key_1, Qt::ControlModifier, "1");
        TypeText("|");
        EXPECT_EQ(host.Read(1), "|");
    });
}

TEST(Keyboard, CharacterTypedOfflineLeavesSelectionScreenAndHostAlone) {
    FakeHost host;
    const auto type_offline = [](const std::string& row) {
        OnWindowThread([] {
            session.modes.localecho = 1;
            SetSelection(1, 1, 3, 1);
        });
        TypeText("x");
        PostToMain(WM_CHAR, 'y');
        OnWindowThread([] {});
        OnWindowThread([&] {
            EXPECT_EQ(session.screen.selection_active, 1u);
            EXPECT_EQ(TerminalRow(1), row);
        });
    };
    RunProgram({}, [&] {
        ASSERT_TRUE(Eventually([] { return session.accelerators != nullptr; }));
        type_offline("");
        BeginSession(host);
        Close();
        ASSERT_TRUE(Offline());
        type_offline("hello");
        Connect();
        ASSERT_TRUE(host.Accept());
        type_offline("");
        EXPECT_EQ(host.ReadSome(50), "") << "a request is no session yet";
    });
}

TEST(Keyboard, NewlineModeMakesEnterSendALineFeedToo) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[20hnl");
        ASSERT_TRUE(TerminalShows("nl"));
        Strike(Qt::Key_Return, Qt::NoModifier, "\r");
        EXPECT_EQ(host.Read(2), "\r\n");
    });
}

TEST(Keyboard, ArrowsKeepTheirFormInApplicationMode) {
    FakeHost host;
    WithSession(host, [&] {
        host.Send("\033[?1h\033=app");
        ASSERT_TRUE(TerminalShows("app"));
        Strike(Qt::Key_Left, Qt::NoModifier);
        EXPECT_EQ(host.Read(3), "\033[D");
    });
}

TEST(Keyboard, SequencesOf255BytesAndMoreAreNotSent) {
    FakeHost host;
    WithSession(host, [&] {
        for (const auto& [letters, sent] :
             {std::pair(1, true), std::pair(254, true), std::pair(255, false)}) {
            const std::u16string text(static_cast<size_t>(letters), u'k');
            OnWindowThread([&] { SetKeyText(&key_map[0], text.c_str()); });
            Strike(Qt::Key_F1, Qt::NoModifier);
            TypeText("|");
            const std::string expected =
                (sent ? std::string(static_cast<size_t>(letters), 'k') : std::string()) + "|";
            EXPECT_EQ(host.Read(expected.size()), expected);
        }
    });
}

TEST(Keyboard, SequencesEndAtTheirFirstZeroByte) {
    FakeHost host;
    WithSession(host, [&] {
        for (const auto& [text, sent] : {std::pair(u"", ""), std::pair(u"ab\\000cd", "ab"),
                                         std::pair(u"\\000", ""), std::pair(u"\\", "")}) {
            OnWindowThread([&, text = text] { SetKeyText(&key_map[1], text); });
            Strike(Qt::Key_F2, Qt::NoModifier);
            TypeText("|");
            const std::string expected = std::string(sent) + "|";
            EXPECT_EQ(host.Read(expected.size()), expected);
        }
    });
}

}  // namespace

// SPDX-License-Identifier: MIT
// The page "Keyboard" of the Properties sheet, and its dialog "Change".
#include <gtest/gtest.h>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/settings.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/dialogs/stored.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

using Text = std::u16string;

struct OpenSheet {
    HWND sheet;
    HWND page;
};

OpenSheet OpenKeyboard() {
    const HWND sheet = OpenDialog(IDM_PROPERTIES, "Properties");
    ClickTab(sheet, "Keyboard");
    return {sheet, PageOf(sheet)};
}

HWND OpenChange(const OpenSheet& open) {
    ClickControl(open.page, IDC_CHANGE);
    return AwaitDialog("Change");
}

void CloseBy(HWND dialog, int button) {
    ClickControl(dialog, button);
    ASSERT_TRUE(Closed(dialog));
}

// Selects the row, types its new text in "Change" and presses the button.
void ChangeRow(const OpenSheet& open, int row, const Text& text, int button = IDOK) {
    ClickLine(open.page, IDC_KEYS, row);
    const HWND change = OpenChange(open);
    TypeInto(change, IDC_KEY_TEXT, text);
    CloseBy(change, button);
}

std::vector<Text> Shown(const OpenSheet& open) { return Lines(open.page, IDC_KEYSTROKE); }

Stage FreshStage(const std::function<void()>& before = {}) {
    Stage stage;
    stage.root = FreshRoot();
    stage.before = before;
    return stage;
}

TEST(KeyboardPage, ListsAllRowsInOrderWithTheFirstOneSelected) {
    RunProgram(FreshStage(), [] {
        const OpenSheet open = OpenKeyboard();
        const std::vector<Text> names = Lines(open.page, IDC_KEYS);
        ASSERT_EQ(names.size(), 66u);
        for (size_t i = 0; i < names.size(); i++)
            EXPECT_EQ(QString::fromStdU16String(names[i]), QString(key_map[i].name));
        EXPECT_EQ(names[0], u"f1");
        EXPECT_EQ(names[65], u"Arrow right");
        EXPECT_EQ(SelectedLine(open.page, IDC_KEYS), 0);
        EXPECT_EQ(Shown(open), std::vector<Text>{u"\\217P"});
    });
}

TEST(KeyboardPage, EachRowShowsItsKeystroke) {
    RunProgram(FreshStage(), [] {
        const OpenSheet open = OpenKeyboard();
        for (int row : {65, 4, 28, 39, 0, 32, 33}) {
            ClickLine(open.page, IDC_KEYS, row);
            const Text expected = QString(key_map[row].defaultText).toStdU16String();
            EXPECT_EQ(Shown(open), std::vector<Text>{expected}) << key_map[row].name;
        }
    });
}

TEST(KeyboardPage, ArrowKeysMoveThroughTheRows) {
    RunProgram(FreshStage(), [] {
        const OpenSheet open = OpenKeyboard();
        ClickLine(open.page, IDC_KEYS, 0);
        PressKey(Qt::Key_Down);
        PressKey(Qt::Key_Down);
        EXPECT_EQ(SelectedLine(open.page, IDC_KEYS), 2);
        EXPECT_EQ(Shown(open), std::vector<Text>{u"\\217R"});
        PressKey(Qt::Key_End);
        EXPECT_EQ(SelectedLine(open.page, IDC_KEYS), 65);
        EXPECT_EQ(Shown(open), std::vector<Text>{u"\\033[C"});
        PressKey(Qt::Key_Home);
        EXPECT_EQ(SelectedLine(open.page, IDC_KEYS), 0);
    });
}

TEST(ChangeKey, OpensWithTheSelectedRowsText) {
    RunProgram(FreshStage(), [] {
        const OpenSheet open = OpenKeyboard();
        ClickLine(open.page, IDC_KEYS, 4);
        EXPECT_EQ(TextOf(OpenChange(open), IDC_KEY_TEXT), u"\\033[15~");
    });
}

TEST(ChangeKey, OkReplacesTheRowsTextAndTheSheetSavesIt) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenKeyboard();
        ChangeRow(open, 4, u"abc");
        EXPECT_EQ(Shown(open), std::vector<Text>{u"abc"});
        EXPECT_STREQ(key_map[4].text, "abc");
        EXPECT_EQ(StoredText(stage.root, "key4"), u"(not stored)") << "saved before its time";
        CloseBy(open.sheet, IDOK);
        EXPECT_EQ(StoredText(stage.root, "key4"), u"abc");
        EXPECT_EQ(StoredText(stage.root, "key3"), u"\\217S");
        EXPECT_EQ(StoredText(stage.root, "key5"), u"\\033[17~");
    });
}

TEST(ChangeKey, ClosesWith0ByOkAndMinus1ByCancel) {
    RunProgram(FreshStage(), [] {
        const OpenSheet open = OpenKeyboard();
        for (const int button : {IDOK, IDCANCEL}) {
            const HWND change = OpenChange(open);
            std::shared_ptr<DialogData> closed;
            OnWindowThread([&] { closed = FindWindowRecord(change)->dialog; });
            CloseBy(change, button);
            EXPECT_EQ(closed->result, button == IDOK ? 0 : -1);
        }
    });
}

TEST(ChangeKey, CancelChangesNothing) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenKeyboard();
        ChangeRow(open, 4, u"abc", IDCANCEL);
        EXPECT_EQ(Shown(open), std::vector<Text>{u"\\033[15~"});
        CloseBy(open.sheet, IDOK);
        EXPECT_EQ(StoredText(stage.root, "key4"), u"\\033[15~");
    });
}

TEST(ChangeKey, TextTakenByOkStaysWhenTheSheetIsCancelled) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenKeyboard();
        ChangeRow(open, 65, u"right");
        CloseBy(open.sheet, IDCANCEL);
        EXPECT_EQ(StoredText(stage.root, "key65"), u"right");
    });
}

TEST(ChangeKey, AChangedRowSendsItsLettersAndAnEmptyOneNothing) {
    FakeHost host;
    WithSession(host, [&] {
        const OpenSheet open = OpenKeyboard();
        ChangeRow(open, 4, u"abc");
        ChangeRow(open, 5, u"");
        EXPECT_EQ(Shown(open), std::vector<Text>{u""});
        CloseBy(open.sheet, IDOK);
        PressKey(Qt::Key_F6);
        PressKey(Qt::Key_F5);
        EXPECT_EQ(host.Read(3), "abc");
        EXPECT_EQ(host.ReadSome(100), "");
    });
}

TEST(ChangeKey, ShiftTabHasItsOwnRow) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenKeyboard();
        ChangeRow(open, 41, u"\\033[Z");
        CloseBy(open.sheet, IDOK);
        EXPECT_EQ(StoredText(stage.root, "key40"), u"\\011");
        EXPECT_EQ(StoredText(stage.root, "key41"), u"\\033[Z");
    });
}

TEST(ChangeKey, The40thCharacterCannotBeTyped) {
    Stage stage;
    stage.root = FreshRoot();
    RunProgram(stage, [] {
        const OpenSheet open = OpenKeyboard();
        for (int times = 0; times < 2; times++) {
            const HWND dialog = OpenChange(open);
            TypeInto(dialog, IDC_KEY_TEXT, Text(39, u'k') + u"XYZ");
            EXPECT_EQ(TextOf(dialog, IDC_KEY_TEXT), Text(39, u'k'));
            CloseBy(dialog, IDOK);
        }
    });
}

TEST(ChangeKey, Holds39CharactersAndCutsThe40th) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenKeyboard();
        ChangeRow(open, 0, Text(39, u'k'));
        ChangeRow(open, 1, Text(39, u'k') + u"XY");
        CloseBy(open.sheet, IDOK);
        EXPECT_EQ(StoredText(stage.root, "key0"), Text(39, u'k'));
        EXPECT_EQ(StoredText(stage.root, "key1"), Text(39, u'k'));
    });
}

TEST(ChangeKey, TextOutsideTheCodePageBecomesQuestionMarks) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenKeyboard();
        ChangeRow(open, 0, u"\xe4\x4e2d\x20ac");
        EXPECT_EQ(Shown(open), std::vector<Text>{u"\xe4?\x20ac"});
        CloseBy(open.sheet, IDOK);
        EXPECT_EQ(StoredText(stage.root, "key0"), u"\xe4?\x20ac");
    });
}

TEST(ChangeKey, TextIsNotCheckedNorConverted) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenKeyboard();
        ChangeRow(open, 0, u"\\9\\\\&x %d\\0101");
        EXPECT_EQ(Shown(open), std::vector<Text>{u"\\9\\\\&x %d\\0101"});
        CloseBy(open.sheet, IDOK);
        EXPECT_EQ(StoredText(stage.root, "key0"), u"\\9\\\\&x %d\\0101");
    });
}

// Loading stops at the first row whose text cannot be read; it and all later rows have no text.
TEST(ChangeKey, ARowWithoutATextOpensEmptyAndCanBeGivenOne) {
    RunProgram(FreshStage(), [] {
        OnWindowThread([] {
            free(key_map[7].text);
            key_map[7].text = nullptr;
        });
        const OpenSheet open = OpenKeyboard();
        ClickLine(open.page, IDC_KEYS, 7);
        EXPECT_EQ(Shown(open), std::vector<Text>{u""});
        const HWND change = OpenChange(open);
        EXPECT_EQ(TextOf(change, IDC_KEY_TEXT), u"");
        TypeInto(change, IDC_KEY_TEXT, u"new");
        CloseBy(change, IDOK);
        EXPECT_STREQ(key_map[7].text, "new");
    });
}

TEST(ChangeKey, TheLongestTextIsShownWholeAndCancelKeepsIt) {
    static const Text kLongest = Text(254, u'a') + u'b';
    RunProgram(FreshStage(), [] {
        OnWindowThread([] { ASSERT_TRUE(SetKeyText(&key_map[4], kLongest.c_str())); });
        const OpenSheet open = OpenKeyboard();
        ClickLine(open.page, IDC_KEYS, 4);
        EXPECT_EQ(Shown(open), std::vector<Text>{kLongest});
        const HWND change = OpenChange(open);
        EXPECT_EQ(TextOf(change, IDC_KEY_TEXT), kLongest);
        CloseBy(change, IDCANCEL);
        EXPECT_EQ(key_map[4].text, std::string(254, 'a') + 'b');
    });
}

TEST(ChangeKey, IsCentredOverTheSheetOrPlacedAtItsCorner) {
    RunProgram(FreshStage(), [] {
        const OpenSheet open = OpenKeyboard();
        const RECT change = Place(OpenChange(open));
        RECT room = {};
        POINT corner = {};
        OnWindowThread([&] {
            GetClientRect(open.sheet, &room);
            ClientToScreen(open.sheet, &corner);
        });
        const int left = (room.right - (change.right - change.left)) / 2;
        const int top = (room.bottom - (change.bottom - change.top)) / 2;
        EXPECT_EQ(change.left, corner.x + std::max(0, left));
        EXPECT_EQ(change.top, corner.y + std::max(0, top));
    });
}

}  // namespace

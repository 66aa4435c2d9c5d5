// SPDX-License-Identifier: MIT
// The page "Other" of the Properties sheet.
#include <gtest/gtest.h>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/dialogs/stored.h"
#include "tests/support/person.h"
#include "ui/view/view.h"

namespace {

Settings& s = session.settings;

struct OpenSheet {
    HWND sheet;
    HWND page;
};

OpenSheet OpenOther() {
    const HWND sheet = OpenDialog(IDM_PROPERTIES, "Properties");
    return {sheet, PageOf(sheet)};
}

void CloseBy(const OpenSheet& open, int button) {
    ClickControl(open.sheet, button);
    ASSERT_TRUE(Closed(open.sheet));
}

Stage FreshStage(const std::function<void()>& before = {}) {
    Stage stage;
    stage.root = FreshRoot();
    stage.before = before;
    return stage;
}

struct MarkCase {
    int id;
    const char* name;
    DWORD Settings::*field;
    uint32_t fallback;
};

void PrintTo(const MarkCase& each, std::ostream* out) { *out << each.name; }

const MarkCase kMarks[] = {
    {1201, "hidestatus", &Settings::hidestatus, 0},
    {1202, "followcursor", &Settings::followcursor, 1},
    {1204, "bell", &Settings::bell, 1},
    {1248, "nego", &Settings::nego, 0},
    {1249, "hotspot", &Settings::hotspot, 0},
    {1251, "alive", &Settings::alive, 1},
};

class OtherMark : public testing::TestWithParam<MarkCase> {};

void ExpectStored(const std::string& root, const MarkCase& turned) {
    for (const MarkCase& each : kMarks) {
        const uint32_t value = each.id == turned.id ? !each.fallback : each.fallback;
        EXPECT_EQ(s.*each.field, value) << each.name;
        EXPECT_EQ(StoredNumber(root, each.name), value) << each.name;
    }
}

TEST_P(OtherMark, AClickTogglesMarkAndSettingAtOnceAndOkSaves) {
    const MarkCase& mark = GetParam();
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenOther();
        for (const MarkCase& each : kMarks)
            EXPECT_EQ(Marked(open.page, each.id), each.fallback == 1) << each.name;
        ClickControl(open.page, mark.id);
        EXPECT_EQ(Marked(open.page, mark.id), mark.fallback == 0);
        EXPECT_EQ(s.*mark.field, !mark.fallback);
        EXPECT_EQ(StoredNumber(stage.root, mark.name), kNotStored) << "saved before its time";
        CloseBy(open, IDOK);
        ExpectStored(stage.root, mark);
    });
}

TEST_P(OtherMark, CancelDoesNotUndoTheMark) {
    const MarkCase& mark = GetParam();
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenOther();
        ClickControl(open.page, mark.id);
        CloseBy(open, IDCANCEL);
        ExpectStored(stage.root, mark);
    });
}

TEST_P(OtherMark, ASecondClickTogglesItBack) {
    const MarkCase& mark = GetParam();
    RunProgram(FreshStage(), [&] {
        const OpenSheet open = OpenOther();
        ClickControl(open.page, mark.id);
        ClickControl(open.page, mark.id);
        EXPECT_EQ(Marked(open.page, mark.id), mark.fallback == 1);
        EXPECT_EQ(s.*mark.field, mark.fallback);
        CloseBy(open, IDOK);
    });
}

INSTANTIATE_TEST_SUITE_P(Each, OtherMark, testing::ValuesIn(kMarks),
                         [](const auto& info) { return std::string(info.param.name); });

// A click toggles the mark and the setting separately, so different values stay different.
TEST(OtherPage, MarkAndSettingAreToggledIndependently) {
    RunProgram(FreshStage(), [] {
        const OpenSheet open = OpenOther();
        OnWindowThread([] { s.bell = 0; });
        ClickControl(open.page, IDC_BELL);
        EXPECT_FALSE(Marked(open.page, IDC_BELL));
        EXPECT_EQ(s.bell, 1u);
        CloseBy(open, IDOK);
    });
}

TEST(OtherPage, AButtonThatIsNoneOfItsMarksTogglesNothing) {
    const Stage stage = FreshStage();
    RunProgram(stage, [] {
        const OpenSheet open = OpenOther();
        OnWindowThread([&] {
            EXPECT_EQ(0, SendMessageW(open.page, WM_COMMAND,
                                      static_cast<WPARAM>(MAKELONG(IDC_TERMTYPE, BN_CLICKED)), 0));
        });
        CloseBy(open, IDOK);
        for (const MarkCase& each : kMarks) EXPECT_EQ(s.*each.field, each.fallback) << each.name;
    });
}

struct TextCase {
    int id;
    const char* name;
    WCHAR* text;
    const char16_t* fallback;
};

void PrintTo(const TextCase& each, std::ostream* out) { *out << each.name; }

const TextCase kTexts[] = {
    {1002, "termtype", session.settings.termtype, u"vt220"},
    {1003, "ras", session.settings.ras, u""},
};

class OtherText : public testing::TestWithParam<TextCase> {};

void TypeAndClose(const TextCase& field, const std::u16string& typed, int button,
                  const std::u16string& expected) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenOther();
        EXPECT_EQ(TextOf(open.page, field.id), field.fallback);
        TypeInto(open.page, field.id, typed);
        EXPECT_EQ(std::u16string(field.text), field.fallback) << "before the page is left";
        CloseBy(open, button);
        EXPECT_EQ(std::u16string(field.text), expected);
        EXPECT_EQ(StoredText(stage.root, field.name), expected);
        for (const TextCase& each : kTexts)
            EXPECT_TRUE(each.id == field.id || std::u16string(each.text) == each.fallback);
    });
}

TEST_P(OtherText, OkStoresIt) { TypeAndClose(GetParam(), u"vt100 \\x", IDOK, u"vt100 \\x"); }
TEST_P(OtherText, CancelKeepsTheOldText) {
    TypeAndClose(GetParam(), u"other", IDCANCEL, GetParam().fallback);
}
TEST_P(OtherText, Holds39Characters) {
    TypeAndClose(GetParam(), std::u16string(39, u't'), IDOK, std::u16string(39, u't'));
}
TEST_P(OtherText, CutsThe40thCharacter) {
    TypeAndClose(GetParam(), std::u16string(39, u't') + u"XY", IDOK, std::u16string(39, u't'));
}
TEST_P(OtherText, The40thCharacterCannotBeTyped) {
    RunProgram(FreshStage(), [] {
        for (int times = 0; times < 2; times++) {
            const OpenSheet open = OpenOther();
            TypeInto(open.page, GetParam().id, std::u16string(39, u't') + u"XYZ");
            EXPECT_EQ(TextOf(open.page, GetParam().id), std::u16string(39, u't'));
            CloseBy(open, IDOK);
        }
    });
}
TEST_P(OtherText, KeepsTextOutsideTheCodePage) {
    TypeAndClose(GetParam(), u"\x4e2d\x0416", IDOK, u"\x4e2d\x0416");
}
TEST_P(OtherText, CanBeEmptied) { TypeAndClose(GetParam(), u"", IDOK, u""); }

TEST_P(OtherText, IsTakenWhenAnotherPageIsShownAndStaysAfterCancel) {
    const TextCase& field = GetParam();
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const OpenSheet open = OpenOther();
        TypeInto(open.page, field.id, u"left");
        ClickTab(open.sheet, "Keyboard");
        EXPECT_EQ(std::u16string(field.text), u"left");
        CloseBy(open, IDCANCEL);
        EXPECT_EQ(StoredText(stage.root, field.name), u"left");
    });
}

INSTANTIATE_TEST_SUITE_P(Each, OtherText, testing::ValuesIn(kTexts),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Properties, HasItsPagesInOrder) {
    RunProgram(FreshStage(), [] {
        const OpenSheet open = OpenOther();
        EXPECT_EQ(Tabs(open.sheet), (std::vector<std::string>{"Other", "Toolbar", "Keyboard"}));
        CloseBy(open, IDCANCEL);
    });
}

TEST(Properties, NothingIsSavedAfterAReset) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        OnWindowThread([] { session.save_settings = 0; });
        const OpenSheet open = OpenOther();
        ClickControl(open.page, IDC_BELL);
        CloseBy(open, IDOK);
        EXPECT_EQ(StoredNumber(stage.root, "bell"), kNotStored);
    });
}

// ---------------------------------------------------------------- the status bar

bool AwaitRows(int rows) {
    return Eventually([=] { return session.view.visible_rows == rows; });
}

TEST(HideStatusBar, RemovesTheBarAndGivesItsRoomToTheTerminal) {
    Stage stage = FreshStage();
    stage.width = 400, stage.height = 200;
    RunProgram(stage, [&] {
        ASSERT_TRUE(Eventually([] { return session.view.visible_rows > 0; }));
        const int rows = session.view.visible_rows, status = session.status_height;
        const int cell = session.view.cell_height;
        ASSERT_GT(status, 0);
        const OpenSheet open = OpenOther();
        ClickControl(open.page, IDC_HIDESTATUS);
        EXPECT_EQ(session.status_window, nullptr) << "at once, before OK";
        EXPECT_EQ(session.status_height, 0);
        EXPECT_TRUE(AwaitRows(rows + status / cell) || AwaitRows(rows + status / cell + 1));
        EXPECT_EQ(session.view.cell_height, cell);

        ClickControl(open.page, IDC_HIDESTATUS);
        EXPECT_TRUE(AwaitRows(rows));
        OnWindowThread([] { EXPECT_TRUE(IsWindowVisible(session.status_window)); });
        EXPECT_NE(StatusText().find("offline"), std::string::npos) << StatusText();
        CloseBy(open, IDOK);
    });
}

class HideStatusBarAtSize : public testing::TestWithParam<DWORD> {};

TEST_P(HideStatusBarAtSize, KeepsTheFont) {
    const Stage stage = FreshStage([] { WriteNumber(u"fsize", GetParam()); });
    RunProgram(stage, [&] {
        ASSERT_TRUE(Eventually([] { return session.view.visible_rows > 0; }));
        const DWORD size = s.fsize;
        const int height = session.view.cell_height, width = session.view.cell_width;
        const OpenSheet open = OpenOther();
        for (int times = 0; times < 4; times++) {
            ClickControl(open.page, IDC_HIDESTATUS);
            EXPECT_EQ(s.fsize, size);
            EXPECT_EQ(session.view.cell_height, height);
            EXPECT_EQ(session.view.cell_width, width);
        }
        CloseBy(open, IDOK);
        EXPECT_EQ(StoredNumber(stage.root, "fsize"), size);
    });
}

INSTANTIATE_TEST_SUITE_P(EachSize, HideStatusBarAtSize,
                         testing::Values(1u, 2u, 5u, 8u, 9u, 10u, 13u, 24u, 25u));

TEST(HideStatusBar, AFontSizeOutOfRangeIsClampedToTheLargest) {
    const Stage stage = FreshStage([] { WriteNumber(u"fsize", 4000000000u); });
    RunProgram(stage, [&] {
        ASSERT_TRUE(Eventually([] { return session.view.visible_rows > 0; }));
        const OpenSheet open = OpenOther();
        ClickControl(open.page, IDC_HIDESTATUS);
        EXPECT_EQ(s.fsize, 25u);
        CloseBy(open, IDOK);
        EXPECT_EQ(StoredNumber(stage.root, "fsize"), 25u);
    });
}

TEST(HideStatusBar, TheTitleOfAHiddenBarStays) {
    RunProgram(FreshStage(), [&] {
        const OpenSheet open = OpenOther();
        const std::string title = Title();
        ClickControl(open.page, IDC_HIDESTATUS);
        CloseBy(open, IDOK);
        OnWindowThread([] { lstrcpyW(s.host, u"elsewhere"); });
        PostToMain(WM_KEYDOWN, VK_F1);
        OnWindowThread([] {});
        EXPECT_EQ(Title(), title);
    });
}

}  // namespace

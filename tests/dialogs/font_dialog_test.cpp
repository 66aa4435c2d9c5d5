// SPDX-License-Identifier: MIT
// "Font": the terminal's face, bold and italic.
#include <gtest/gtest.h>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/dialogs/stored.h"
#include "tests/support/person.h"

namespace {

Settings& s = session.settings;

HWND OpenFont() { return OpenDialog(IDM_FONT, "Font"); }

Stage FreshStage(const std::function<void()>& before = {}) {
    Stage stage;
    stage.root = FreshRoot();
    stage.before = before;
    return stage;
}

std::u16string Face(int i) { return session.view.faces[i].font.lfFaceName; }

// Adds a second face with a known name, because a machine may have only one.
void AddFace(const char16_t* name) {
    OnWindowThread([=] {
        ViewState& view = session.view;
        ASSERT_LT(view.face_count, kMaxFontFaces);
        view.faces[view.face_count] = view.faces[0];
        lstrcpyW(view.faces[view.face_count++].font.lfFaceName, name);
    });
}

TEST(FontDialog, ListsTheFacesInTheOrderOfTheirEnumeration) {
    RunProgram(FreshStage(), [] {
        AddFace(u"Zulu Mono");
        AddFace(u"Alpha Mono");
        const HWND dialog = OpenFont();
        const std::vector<std::u16string> lines = Lines(dialog, IDC_FONTS);
        ASSERT_EQ(lines.size(), static_cast<size_t>(session.view.face_count));
        for (int i = 0; i < session.view.face_count; i++) {
            EXPECT_EQ(lines[static_cast<size_t>(i)], Face(i));
            OnWindowThread([&] {
                EXPECT_EQ(SendDlgItemMessageW(dialog, IDC_FONTS, LB_GETITEMDATA,
                                              static_cast<WPARAM>(i), 0),
                          i);
            });
        }
        EXPECT_EQ(lines.back(), u"Alpha Mono") << "the list is not sorted";
    });
}

TEST(FontDialog, SelectsTheFaceOfTheSettings) {
    RunProgram(FreshStage(), [] {
        AddFace(u"Second Mono");
        OnWindowThread([] { lstrcpyW(s.fname, u"Second Mono"); });
        EXPECT_EQ(SelectedLine(OpenFont(), IDC_FONTS), session.view.face_count - 1);
    });
}

TEST(FontDialog, FaceNameInOtherCaseDoesNotMatchAndTheFirstIsSelected) {
    RunProgram(FreshStage(), [] {
        AddFace(u"Second Mono");
        for (const char16_t* name : {u"second mono", u"SECOND MONO", u"Second MonO"}) {
            OnWindowThread([=] { lstrcpyW(s.fname, name); });
            const HWND dialog = OpenFont();
            EXPECT_EQ(SelectedLine(dialog, IDC_FONTS), 0);
            ClickControl(dialog, IDCANCEL);
            ASSERT_TRUE(Closed(dialog));
            EXPECT_EQ(std::u16string(s.fname), name);
        }
    });
}

TEST(FontDialog, SelectsTheFirstFaceIfTheStoredOneIsMissing) {
    RunProgram(FreshStage([] { WriteString(u"fname", u"No Such Face"); }),
               [] { EXPECT_EQ(SelectedLine(OpenFont(), IDC_FONTS), 0); });
}

TEST(FontDialog, OkTakesTheFaceAndTheResultIsItsPosition) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        AddFace(u"Second Mono");
        const int line = session.view.face_count - 1;
        const HWND dialog = OpenFont();
        ClickLine(dialog, IDC_FONTS, line);
        EXPECT_NE(std::u16string(s.fname), u"Second Mono") << "before OK";
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(std::u16string(s.fname), u"Second Mono");
        EXPECT_EQ(session.dialog_result, line);
        EXPECT_EQ(StoredText(stage.root, "fname"), u"Second Mono");
    });
}

TEST(FontDialog, OkTakesTheFirstFaceToo) {
    RunProgram(FreshStage(), [] {
        AddFace(u"Second Mono");
        OnWindowThread([] { lstrcpyW(s.fname, u"Second Mono"); });
        const HWND dialog = OpenFont();
        ClickLine(dialog, IDC_FONTS, 0);
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(std::u16string(s.fname), Face(0));
        EXPECT_EQ(session.dialog_result, 0);
    });
}

TEST(FontDialog, CancelKeepsFaceAndMarksAndTheResultIsMinusOne) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        AddFace(u"Second Mono");
        const HWND dialog = OpenFont();
        ClickLine(dialog, IDC_FONTS, session.view.face_count - 1);
        ClickControl(dialog, IDC_FONT_BOLD);
        ClickControl(dialog, IDC_FONT_ITALIC);
        ClickControl(dialog, IDCANCEL);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(session.dialog_result, -1);
        EXPECT_EQ(StoredText(stage.root, "fname"), u"Terminal");
        EXPECT_EQ(StoredNumber(stage.root, "font_bold"), 0u);
        EXPECT_EQ(StoredNumber(stage.root, "font_italic"), 0u);
    });
}

struct MarkCase {
    int id;
    const char* name;
    DWORD Settings::*field;
};

void PrintTo(const MarkCase& each, std::ostream* out) { *out << each.name; }

class FontMark : public testing::TestWithParam<MarkCase> {};

TEST_P(FontMark, OkStoresItAndTheTerminalIsRedrawn) {
    const MarkCase& mark = GetParam();
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        ASSERT_TRUE(Eventually([] { return session.view.font != nullptr; }));
        HWND dialog = OpenFont();
        EXPECT_FALSE(Marked(dialog, mark.id));
        ClickControl(dialog, mark.id);
        EXPECT_EQ(s.*mark.field, 0u) << "before OK";
        const HFONT font = session.view.font;
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(s.*mark.field, 1u);
        EXPECT_EQ(s.font_bold + s.font_italic, 1u);
        EXPECT_EQ(StoredNumber(stage.root, mark.name), 1u);
        EXPECT_NE(session.view.font, font);

        dialog = OpenFont();
        EXPECT_TRUE(Marked(dialog, mark.id));
        ClickControl(dialog, mark.id);
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(StoredNumber(stage.root, mark.name), 0u);
    });
}

INSTANTIATE_TEST_SUITE_P(Each, FontMark,
                         testing::Values(MarkCase{1249, "font_bold", &Settings::font_bold},
                                         MarkCase{1251, "font_italic", &Settings::font_italic}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(FontDialog, TheTerminalIsLaidOutForTheNewFontsCells) {
    Stage stage = FreshStage();
    stage.width = 240, stage.height = 320;
    RunProgram(stage, [] {
        ASSERT_TRUE(Eventually([] { return session.view.visible_columns > 0; }));
        const int columns = session.view.visible_columns;
        const HWND dialog = OpenFont();
        OnWindowThread([] { s.fsize = 20; });  // instead of a face with larger cells
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_TRUE(Eventually([=] { return session.view.visible_columns < columns; }, 3000));
    });
}

TEST(FontDialog, WithoutASelectionTheMarksAreStoredAndTheResultIsMinusOne) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const HWND dialog = OpenFont();
        OnWindowThread([=] {
            SendDlgItemMessageW(dialog, IDC_FONTS, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
        });
        ClickControl(dialog, IDC_FONT_BOLD);
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(session.dialog_result, -1);
        EXPECT_EQ(StoredNumber(stage.root, "font_bold"), 1u);
        EXPECT_EQ(StoredText(stage.root, "fname"), u"Terminal");
    });
}

TEST(FontDialog, WithoutAnyFaceItStillOpensAndCloses) {
    RunProgram(FreshStage(), [] {
        OnWindowThread([] { session.view.face_count = 0; });
        const HWND dialog = OpenFont();
        EXPECT_TRUE(Lines(dialog, IDC_FONTS).empty());
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(session.dialog_result, -1);
    });
}

TEST(FontDialog, ArrowKeysAndEnterChooseAFace) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        AddFace(u"Second Mono");
        const HWND dialog = OpenFont();
        ClickLine(dialog, IDC_FONTS, 0);
        PressKey(Qt::Key_End);
        PressKey(Qt::Key_Return);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(StoredText(stage.root, "fname"), u"Second Mono");
    });
}

TEST(FontDialog, AFontSizeOutOfRangeInTheRegistryIsClamped) {
    const Stage stage = FreshStage([] { WriteNumber(u"fsize", 0); });
    RunProgram(stage, [&] {
        const HWND dialog = OpenFont();
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(StoredNumber(stage.root, "fsize"), 1u);
    });
}

}  // namespace

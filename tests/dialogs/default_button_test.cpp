// SPDX-License-Identifier: MIT
// Which button Enter presses, and that a person can see which one it is.
#include <gtest/gtest.h>
#include <QPushButton>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_cases.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

namespace {

Stage FreshStage() {
    Stage stage;
    stage.width = 640, stage.height = 480;
    return stage;
}

QPushButton* Button(int id) { return qobject_cast<QPushButton*>(DialogWidgetOf(id)); }

QImage Face(int id) {
    QImage face;
    OnWindowThread([&] { face = Button(id)->grab().toImage(); });
    return face;
}

void TabTo(HWND dialog, int id) {
    for (int presses = 0; presses < 20 && FocusedControl(dialog) != id; presses++)
        PressKey(Qt::Key_Tab);
    ASSERT_EQ(FocusedControl(dialog), id);
}

// The buttons of the top window that are drawn as the default one. Call it on the window thread.
std::vector<QPushButton*> Defaults() {
    std::vector<QPushButton*> defaults;
    for (QPushButton* button : QApplication::activeModalWidget()->findChildren<QPushButton*>())
        if (button->isVisible() && button->isDefault()) defaults.push_back(button);
    return defaults;
}

TEST(DefaultButton, ATapOnAnotherButtonDoesNotMakeItTheDefault) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = OpenDialog(IDM_CONNECT, "Connect");
        TypeInto(dialog, IDC_HOST, u"no.invalid");
        ClickControl(dialog, IDC_ADVANCED);
        const HWND advanced = AwaitDialog("Connect Advanced");
        ClickControl(advanced, IDCANCEL);
        ASSERT_TRUE(Closed(advanced));
        AwaitDialog("Connect");
        OnWindowThread([] {
            ASSERT_EQ(Defaults().size(), 1u);
            EXPECT_EQ(Defaults()[0], Button(IDOK));
        });
        PressKey(Qt::Key_Return);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(session.connect_request, 1u);
        DismissBox("Error: Cannot connect to the UNIX Host");
    });
}

TEST(DefaultButton, ATapLeavesTheKeyboardInTheFieldBefore) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = OpenDialog(IDM_CONNECT, "Connect");
        ASSERT_EQ(FocusedControl(dialog), IDC_HOST);
        ClickControl(dialog, IDC_ADVANCED);
        ASSERT_TRUE(AwaitDialog("Connect Advanced"));
        PressKey(Qt::Key_Escape);
        ASSERT_TRUE(AwaitDialog("Connect"));
        EXPECT_EQ(FocusedControl(dialog), IDC_HOST);
    });
}

class EachDefaultButton : public testing::TestWithParam<DialogCase> {};

// The default button is the one with the focus, or the template's if no button has the focus.
TEST_P(EachDefaultButton, IsTheOnlyOneDrawnAsDefaultWhereverTheFocusIs) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = GetParam().open();
        for (const int id : GetParam().tabs) {
            TabTo(dialog, id);
            OnWindowThread([&] {
                QPushButton* expected = Button(id) ? Button(id) : Button(IDOK);
                ASSERT_EQ(Defaults().size(), 1u) << id;
                EXPECT_EQ(Defaults()[0], expected) << id;
            });
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Each, EachDefaultButton, testing::ValuesIn(dialog_cases),
                         [](const auto& info) { return info.param.name; });

TEST(DefaultButton, LooksDifferentFromTheOthersAndShowsTheFocus) {
    RunProgram(FreshStage(), [] {
        ClickControl(OpenDialog(IDM_CONNECT, "Connect"), IDC_ADVANCED);
        const HWND dialog = AwaitDialog("Connect Advanced");
        TabTo(dialog, 1002);
        const QImage ok = Face(IDOK), cancel = Face(IDCANCEL);
        TabTo(dialog, IDOK);
        const QImage focused = Face(IDOK);
        EXPECT_EQ(Face(IDCANCEL), cancel);
        TabTo(dialog, IDCANCEL);
        const QImage plain = Face(IDOK), other = Face(IDCANCEL);
        EXPECT_NE(ok, focused) << "the focus cannot be seen";
        EXPECT_NE(ok, plain) << "OK looks like the default button while Cancel is";
        EXPECT_NE(focused, plain);
        EXPECT_NE(cancel, other);
    });
}

}  // namespace

// SPDX-License-Identifier: MIT
// Clicks and keys that must not clear the selection of a list, and the radio button at which Tab
// enters a group.
#include <gtest/gtest.h>
#include <QtTest/qtestkeyboard.h>
#include <QtTest/qtestmouse.h>
#include <QAbstractButton>
#include <QListWidget>
#include <set>

#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

namespace {

QListWidget* Faces() { return qobject_cast<QListWidget*>(DialogWidgetOf(IDC_FONTS)); }

// Opens "Font" with two faces, of which the second one is selected.
void WithTwoFaces(const std::function<void(HWND dialog)>& person) {
    RunProgram({}, [&] {
        OnWindowThread([] {
            ViewState& view = session.view;
            view.faces[1] = view.faces[0];
            lstrcpyW(view.faces[1].font.lfFaceName, u"Second Mono");
            view.face_count = 2;
        });
        const HWND dialog = OpenDialog(IDM_FONT, "Font");
        ClickLine(dialog, IDC_FONTS, 1);
        ASSERT_EQ(SelectedLine(dialog, IDC_FONTS), 1);
        person(dialog);
        EXPECT_EQ(SelectedLine(dialog, IDC_FONTS), 1);
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(session.dialog_result, 1);
        EXPECT_EQ(std::u16string(session.settings.fname), u"Second Mono");
    });
}

QPoint BelowTheLastLine() {
    const QWidget* room = Faces()->viewport();
    return QPoint(room->width() / 2, room->height() - 3);
}

TEST(ListSelection, StaysAtAClickBelowTheLastLine) {
    WithTwoFaces([](HWND) {
        OnWindowThread([] {
            ASSERT_EQ(Faces()->itemAt(BelowTheLastLine()), nullptr);
            for (const auto keys : {Qt::NoModifier, Qt::ControlModifier, Qt::ShiftModifier})
                QTest::mouseClick(Faces()->viewport(), Qt::LeftButton, keys, BelowTheLastLine());
            QTest::mouseDClick(Faces()->viewport(), Qt::LeftButton, {}, BelowTheLastLine());
        });
    });
}

TEST(ListSelection, StaysAtADragFromTheEmptyRoom) {
    WithTwoFaces([](HWND) {
        OnWindowThread([] {
            QWidget* room = Faces()->viewport();
            QTest::mousePress(room, Qt::LeftButton, {}, BelowTheLastLine());
            QTest::mouseMove(room, BelowTheLastLine() - QPoint(4, 0));
            QTest::mouseRelease(room, Qt::LeftButton, {}, BelowTheLastLine() - QPoint(4, 0));
        });
    });
}

TEST(ListSelection, StaysAtAClickWithControl) {
    WithTwoFaces([](HWND) {
        OnWindowThread([] {
            const QPoint place = Faces()->visualItemRect(Faces()->item(1)).center();
            QTest::mouseClick(Faces()->viewport(), Qt::LeftButton, Qt::ControlModifier, place);
        });
    });
}

TEST(ListSelection, StaysAtTheSpaceBarWithControl) {
    WithTwoFaces([](HWND) {
        OnWindowThread([] { QTest::keyClick(Faces(), Qt::Key_Space, Qt::ControlModifier); });
    });
}

HWND OpenAdvanced() {
    ClickControl(OpenDialog(IDM_CONNECT, "Connect"), IDC_ADVANCED);
    return AwaitDialog("Connect Advanced");
}

// The radio buttons that Tab stops at in one round.
std::set<int> RadioStops(HWND dialog) {
    std::set<int> stops;
    for (int presses = 0; presses < 12; presses++) {
        const int id = FocusedControl(dialog);
        for (int radio : {IDC_SSH1, IDC_SSH2, IDC_DES, IDC_TRIPLE_DES, IDC_BLOWFISH})
            if (id == radio) stops.insert(id);
        PressKey(Qt::Key_Tab);
    }
    return stops;
}

using Stops = std::set<int>;

TEST(RadioTabStop, IsTheMarkedButtonOfEachGroup) {
    RunProgram({}, [] {
        OnWindowThread([] { session.settings.ssh_type = 2, session.settings.ssh_type2 = 0; });
        const HWND dialog = OpenAdvanced();
        EXPECT_EQ(RadioStops(dialog), Stops({IDC_SSH1, IDC_BLOWFISH}));
    });
}

TEST(RadioTabStop, FollowsTheMouse) {
    RunProgram({}, [] {
        const HWND dialog = OpenAdvanced();
        ClickControl(dialog, IDC_DES);
        ClickControl(dialog, IDC_SSH1);
        ClickControl(dialog, IDC_XBOX);
        EXPECT_EQ(RadioStops(dialog), Stops({IDC_SSH1, IDC_DES}));
    });
}

TEST(RadioTabStop, FollowsAPressThatDoesNotMoveTheFocus) {
    RunProgram({}, [] {
        const HWND dialog = OpenAdvanced();
        OnWindowThread([] {  // the way a screen reader does it
            qobject_cast<QAbstractButton*>(DialogWidgetOf(IDC_BLOWFISH))->click();
        });
        EXPECT_EQ(RadioStops(dialog), Stops({IDC_SSH2, IDC_BLOWFISH}));
    });
}

TEST(RadioTabStop, IsTheFirstButtonWhereNoneIsMarked) {
    RunProgram({}, [] {
        OnWindowThread([] { session.settings.ssh_type = 7; });
        const HWND dialog = OpenAdvanced();
        EXPECT_EQ(RadioStops(dialog), Stops({IDC_SSH2, IDC_DES}));
        EXPECT_FALSE(Marked(dialog, IDC_DES)) << "Tab marks nothing";
    });
}

}  // namespace

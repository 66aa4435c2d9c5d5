// SPDX-License-Identifier: MIT
// The page "Toolbar" of the Properties sheet.
#include <gtest/gtest.h>
#include <QListWidget>
#include <QtTest/QTest>

#include "platform/qt/window/window.h"
#include "platform/qt/window/window_widget.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "settings/toolbars.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"
#include "ui/dialogs/dialogs.h"

namespace {

constexpr int kLists[] = {IDC_BAR1, IDC_BAR2, IDC_BAR3};
constexpr int kPage = 1;  // after "Other"

void OpenToolbars() {
    ASSERT_TRUE(Eventually([] { return session.view.font != nullptr; }));
    QMetaObject::invokeMethod(
        qApp, [] { ShowPropertiesSheet(); }, Qt::QueuedConnection);
    ASSERT_TRUE(Eventually([] { return ShownDialog() && DialogTitle() == "Properties"; }));
    OnWindowThread([] { TurnPage(kPage); });
    ASSERT_TRUE(Eventually([] { return DialogWidgetOf(IDC_BAR3) != nullptr; }));
}

bool Closed() {
    return Eventually([] { return ShownDialog() == nullptr; });
}

void CloseBy(int button) {
    OnWindowThread([=] { EXPECT_TRUE(ClickControl(button)); });
    ASSERT_TRUE(Closed());
    OnWindowThread([] {});  // waits for what the program does next
}

Stage FreshStage(const std::function<void()>& before = {}) {
    Stage stage;
    stage.root = FreshRoot();
    stage.before = before;
    return stage;
}

// The line of the list for a row that is, or is not, on its bar.
QString Line(int row, bool on) { return QString(on ? "v " : "  ") + toolbar_buttons[row].name; }

QString ShownLine(int list, int row) {
    QStringList lines;
    OnWindowThread([&] { lines = ControlEntries(list); });
    return lines.value(row);
}

int SelectedLine(int list) {
    LRESULT row = LB_ERR;
    OnWindowThread([&] { row = SendDlgItemMessageW(ShownPage(), list, LB_GETCURSEL, 0, 0); });
    return static_cast<int>(row);
}

DWORD Membership(int row) {
    const ToolbarButton& button = toolbar_buttons[row];
    return (button.onBar1 ? 4u : 0u) + (button.onBar2 ? 2u : 0u) + (button.onBar3 ? 1u : 0u);
}

DWORD BitOf(int list) { return list == IDC_BAR1 ? 4 : list == IDC_BAR2 ? 2 : 1; }

// Compares all three lists with the flags.
void ExpectLists() {
    OnWindowThread([] {
        for (const int list : kLists) {
            const QStringList lines = ControlEntries(list);
            ASSERT_EQ(lines.size(), kToolbarRows);
            for (int row = 0; row < kToolbarRows; row++)
                EXPECT_EQ(lines[row], Line(row, Membership(row) & BitOf(list)))
                    << list << ' ' << row;
        }
    });
}

bool HasFocus(int list) {
    return Eventually([=] { return DialogWidgetOf(list)->hasFocus(); }, 1000);
}

bool AwaitMembership(int row, DWORD membership) {
    return Eventually([=] { return Membership(row) == membership; }, 3000);
}

// Double-clicks with the mouse and waits until the program has handled it.
void DoubleClickLine(int list, int row) {
    const DWORD before = Membership(row);
    OnWindowThread([=] { EXPECT_TRUE(DoubleClickEntry(list, row)); });
    EXPECT_TRUE(AwaitMembership(row, before ^ BitOf(list))) << list << ' ' << row;
}

// The value in the registry.
DWORD Stored(LPCWSTR name) {
    DWORD value = 0;
    OnWindowThread([&] { value = ReadNumber(name, 99); });
    return value;
}

void Press(int key) {
    OnWindowThread([=] { EXPECT_TRUE(PressInDialog(key)); });
    OnWindowThread([] {});
}

TEST(ToolbarPage, ListsEveryRowInTheTablesOrderWithItsMark) {
    RunProgram(FreshStage(), [] {
        OpenToolbars();
        ExpectLists();
        EXPECT_EQ(ShownLine(IDC_BAR1, 1), "v connect");
        EXPECT_EQ(ShownLine(IDC_BAR2, 1), "  connect");
        EXPECT_EQ(ShownLine(IDC_BAR3, 0), "v swap toolbar");
        EXPECT_EQ(ShownLine(IDC_BAR1, 17), "  P11");
        CloseBy(IDCANCEL);
    });
}

TEST(ToolbarPage, ListsAreNamedForAScreenReader) {
    RunProgram(FreshStage(), [] {
        OpenToolbars();
        OnWindowThread([&] {
            const char* names[] = {"Toolbar #1", "Toolbar #2", "Toolbar #3"};
            for (int i = 0; i < 3; i++) {
                ASSERT_NE(DialogWidgetOf(kLists[i]), nullptr);
                EXPECT_EQ(DialogWidgetOf(kLists[i])->accessibleName(), QString(names[i]));
            }
        });
        CloseBy(IDCANCEL);
    });
}

TEST(ToolbarPage, DoubleClickTogglesThatRowOnThatBarAndKeepsItSelected) {
    RunProgram(FreshStage(), [] {
        OpenToolbars();
        for (const int list : kLists) {
            for (const int row : {0, 1, 13, 26}) {
                const DWORD before = Membership(row);
                DoubleClickLine(list, row);
                EXPECT_TRUE(AwaitMembership(row, before ^ BitOf(list))) << list << ' ' << row;
                EXPECT_EQ(SelectedLine(list), row);
                ExpectLists();
            }
        }
        CloseBy(IDOK);
    });
}

TEST(ToolbarPage, SecondDoubleClickTakesTheFirstBack) {
    RunProgram(FreshStage(), [] {
        OpenToolbars();
        const DWORD before = Membership(5);
        DoubleClickLine(IDC_BAR2, 5);
        EXPECT_TRUE(AwaitMembership(5, before ^ 2));
        DoubleClickLine(IDC_BAR2, 5);
        EXPECT_TRUE(AwaitMembership(5, before));
        ExpectLists();
        CloseBy(IDOK);
    });
}

TEST(ToolbarPage, SingleClickSelectsAndChangesNothing) {
    RunProgram(FreshStage(), [] {
        OpenToolbars();
        const DWORD before = Membership(8);
        OnWindowThread([] { EXPECT_TRUE(ClickEntry(IDC_BAR3, 8)); });
        EXPECT_EQ(SelectedLine(IDC_BAR3), 8);
        EXPECT_EQ(Membership(8), before);
        ExpectLists();
        CloseBy(IDOK);
    });
}

TEST(ToolbarPage, KeyboardWalksTheListsAndTheSpaceBarToggles) {
    RunProgram(FreshStage(), [] {
        OpenToolbars();
        OnWindowThread([] { EXPECT_TRUE(ClickEntry(IDC_BAR1, 0)); });
        EXPECT_TRUE(HasFocus(IDC_BAR1));
        Press(Qt::Key_Tab);
        EXPECT_TRUE(HasFocus(IDC_BAR2));
        Press(Qt::Key_Home);
        for (int i = 0; i < 3; i++) Press(Qt::Key_Down);
        EXPECT_EQ(SelectedLine(IDC_BAR2), 3);
        const DWORD before = Membership(3);
        Press(Qt::Key_Space);
        EXPECT_TRUE(AwaitMembership(3, before ^ 2));
        EXPECT_EQ(SelectedLine(IDC_BAR2), 3);
        Press(Qt::Key_End);
        EXPECT_EQ(SelectedLine(IDC_BAR2), 26);
        Press(Qt::Key_Space);
        EXPECT_TRUE(AwaitMembership(26, 7 ^ 2));  // P20 is on all bars by default
        ExpectLists();
        Press(Qt::Key_Escape);
        EXPECT_TRUE(Closed());
    });
}

// Call it on the window thread.
LRESULT TopLine(int list) { return SendDlgItemMessageW(ShownPage(), list, LB_GETTOPINDEX, 0, 0); }

// A second double tap at the same place must hit the same line.
TEST(ToolbarPage, ToggleDoesNotMoveTheView) {
    RunProgram(FreshStage(), [] {
        OpenToolbars();
        for (const int list : kLists) {
            for (const int top : {26, 5, 0}) {
                LRESULT before = 0;
                QPoint place;
                int row = 0;
                OnWindowThread([&] {
                    auto* widget = qobject_cast<QListWidget*>(DialogWidgetOf(list));
                    SendDlgItemMessageW(ShownPage(), list, LB_SETTOPINDEX, top, 0);
                    before = TopLine(list);
                    place = QPoint(20, widget->viewport()->height() / 2);
                    row = widget->indexAt(place).row();
                });
                ASSERT_GE(row, 0);
                for (int tap = 0; tap < 2; tap++) {
                    const DWORD membership = Membership(row);
                    OnWindowThread([&] {
                        auto* widget = qobject_cast<QListWidget*>(DialogWidgetOf(list));
                        QTest::mouseClick(widget->viewport(), Qt::LeftButton, {}, place);
                        QTest::mouseDClick(widget->viewport(), Qt::LeftButton, {}, place);
                    });
                    EXPECT_TRUE(AwaitMembership(row, membership ^ BitOf(list)))
                        << list << " from " << top << " line " << row << " tap " << tap;
                    EXPECT_TRUE(Eventually([] { return !MessagesWaiting(); }));
                    EXPECT_EQ(SelectedLine(list), row);
                    OnWindowThread([&] { EXPECT_EQ(TopLine(list), before) << top; });
                }
            }
        }
        ExpectLists();
        CloseBy(IDCANCEL);
    });
}

TEST(ToolbarPage, SpaceTogglesTheLineThatTabHasReached) {
    RunProgram(FreshStage(), [] {
        OpenToolbars();
        OnWindowThread([] { EXPECT_TRUE(ClickEntry(IDC_BAR1, 4)); });
        for (const int list : {IDC_BAR2, IDC_BAR3}) {
            Press(Qt::Key_Tab);
            EXPECT_TRUE(HasFocus(list));
            const DWORD before = Membership(0);
            Press(Qt::Key_Space);
            EXPECT_TRUE(AwaitMembership(0, before ^ BitOf(list))) << list;
            EXPECT_EQ(SelectedLine(list), 0);
        }
        ExpectLists();
        CloseBy(IDCANCEL);
    });
}

class ToolbarPageClosedBy : public testing::TestWithParam<int> {};

TEST_P(ToolbarPageClosedBy, KeepsAndSavesWhatWasToggled) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        OpenToolbars();
        DoubleClickLine(IDC_BAR1, 6);   // ENTER: 7
        DoubleClickLine(IDC_BAR3, 1);   // connect: 4
        DoubleClickLine(IDC_BAR2, 26);  // P20: 7
        CloseBy(GetParam());
        EXPECT_EQ(Membership(6), 3u);
        EXPECT_EQ(Membership(1), 5u);
        EXPECT_EQ(Membership(26), 5u);
        EXPECT_EQ(Stored(u"tbar6"), 3u);
        EXPECT_EQ(Stored(u"tbar1"), 5u);
        EXPECT_EQ(Stored(u"tbar26"), 5u);
        EXPECT_EQ(Stored(u"tbar0"), 7u);
    });
    RunProgram(stage, [] {
        OpenToolbars();
        EXPECT_EQ(ShownLine(IDC_BAR1, 6), "  ENTER");
        EXPECT_EQ(ShownLine(IDC_BAR3, 1), "v connect");
        EXPECT_EQ(ShownLine(IDC_BAR2, 26), "  P20");
        CloseBy(IDCANCEL);
    });
}

INSTANTIATE_TEST_SUITE_P(Each, ToolbarPageClosedBy, testing::Values(IDOK, IDCANCEL),
                         [](const auto& info) { return info.param == IDOK ? "Ok" : "Cancel"; });

TEST(ToolbarPage, CommandBarShowsTheChangeOnceTheSheetIsClosed) {
    RunProgram(FreshStage(), [] {
        const auto has_button = [](const char* name) {
            const Window* bar = FindWindowRecord(session.command_bar);
            if (!bar) return false;
            for (const QWidget* button : bar->widget->findChildren<QWidget*>())
                if (button->accessibleName() == name) return true;
            return false;
        };
        ASSERT_TRUE(Eventually([&] { return has_button("swap toolbar"); }));
        EXPECT_FALSE(has_button("P13"));
        OpenToolbars();
        DoubleClickLine(IDC_BAR1, 19);  // P13
        CloseBy(IDCANCEL);
        EXPECT_TRUE(Eventually([&] { return has_button("P13"); }));
    });
}

TEST(ToolbarPage, MarksFollowValuesOutOfRange) {
    const Stage stage = FreshStage([] {
        WriteNumber(u"tbar0", 0xFFFFFFFF);
        WriteNumber(u"tbar1", 0xFFFFFFF8);
        WriteString(u"tbar2", u"v paste");
        WriteNumber(u"tbar5", 7);
    });
    RunProgram(stage, [] {
        OpenToolbars();
        ExpectLists();
        for (const int list : kLists) {
            EXPECT_EQ(ShownLine(list, 0), "v swap toolbar");
            EXPECT_EQ(ShownLine(list, 1), "  connect");
            EXPECT_EQ(ShownLine(list, 5), "v smaller font");
        }
        CloseBy(IDOK);
    });
}

}  // namespace

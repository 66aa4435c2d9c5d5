// SPDX-License-Identifier: MIT
// The input panel while a dialog is open: it types into the dialog, and a tap into a field shows
// it.
#include <gtest/gtest.h>
#include <QComboBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QtTest/QTest>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/app/soft_keyboard.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

// Clicks through the window system, which blocks the mouse for windows below a modal dialog.
void TapAsTheDesktopDoes(const QString& label) {
    OnWindowThread([&] {
        PanelKey* key = KeyLabelled(label);
        QTest::mouseClick(key->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          key->mapTo(key->window(), key->rect().center()));
    });
    OnWindowThread([] {});
}

HWND OpenOnSmallDevice(WORD command) {
    PostToMain(WM_COMMAND, command);
    EXPECT_TRUE(Eventually([] { return ShownDialog() != nullptr; }));
    HWND dialog = nullptr;
    OnWindowThread([&] { dialog = ShownDialog(); });
    return dialog;
}

bool Gone(HWND dialog) {
    return Eventually([=] { return !IsWindow(dialog); });
}

void ExpectBackOnTheScreen() {
    OnWindowThread([] {
        InputPanel* panel = ShellInputPanel();
        EXPECT_FALSE(panel->isWindow());
        EXPECT_TRUE(panel->isVisible());
        EXPECT_EQ(panel->geometry(), QRect(0, 320 - 26 - 80, 240, 80));
    });
}

void PutIntoFoot(QWidget* dialog, bool shown) {
    ShellInputPanel()->setParent(dialog);
    ShellInputPanel()->setVisible(shown);
}

void ExpectOnTheScreen(bool shown) {
    OnWindowThread([=] {
        ASSERT_NE(ShellInputPanel(), nullptr);
        EXPECT_EQ(ShellInputPanel()->parentWidget(), DeviceScreen());
        EXPECT_EQ(InputPanelShown(), shown);
    });
}

// Where a dialog holds the panel at its foot, the panel outlives the dialog, as it is.
TEST(InputPanelInDialogs, OutlivesTheDialogThatHoldsIt) {
    for (const bool shown : {false, true}) {
        RunProgram(SmallDevice(), [=] {
            const HWND dialog = OpenOnSmallDevice(40011);
            OnWindowThread([=] {
                PutIntoFoot(FindWindowRecord(dialog)->widget, shown);
                EndDialog(dialog, 0);
            });
            ASSERT_TRUE(Gone(dialog));
            ExpectOnTheScreen(shown);
        });
    }
}

void OpenChooser() {
    PostToMain(WM_COMMAND, IDM_COLOR_TEXT);
    ASSERT_TRUE(Eventually([] { return ShownColorDialog() != nullptr; }));
}

void CloseChooser() {
    OnWindowThread([] { ShownColorDialog()->reject(); });
    EXPECT_TRUE(Eventually([] { return ShownColorDialog() == nullptr; }));
}

TEST(InputPanelInDialogs, OutlivesTheColorChooserThatHoldsIt) {
    for (const bool shown : {false, true}) {
        RunProgram(SmallDevice(), [=] {
            OpenChooser();
            OnWindowThread([=] { PutIntoFoot(ShownColorDialog()->window(), shown); });
            CloseChooser();
            ExpectOnTheScreen(shown);
        });
    }
}

TEST(InputPanelInDialogs, TypesIntoADialog) {
    FakeHost host;
    RunProgram(SmallDevice(), [&] {
        TapPanelButton();
        const HWND dialog = OpenOnSmallDevice(40011);
        for (const char* label : {"b", "o", "x"}) TapAsTheDesktopDoes(label);
        OnWindowThread([] { EXPECT_EQ(ControlText(1255).toStdString(), "box"); });
        TapAsTheDesktopDoes("Esc");
        EXPECT_TRUE(Gone(dialog));
        ExpectBackOnTheScreen();
    });
}

TEST(InputPanelInDialogs, TypesIntoADialogOverTheSheetAndTheSheetStaysAboveThePanel) {
    RunProgram(SmallDevice(), [&] {
        TapPanelButton();
        const HWND sheet = OpenOnSmallDevice(40012);
        OnWindowThread([&] {
            RECT place;
            GetWindowRect(sheet, &place);
            EXPECT_LE(place.bottom, 320 - 26 - 80);
            TurnPage(2);
        });
        ASSERT_TRUE(Eventually([] { return ClickControl(1243); }));
        ASSERT_TRUE(Eventually([] { return DialogTitle() == "Change"; }));
        TapAsTheDesktopDoes("k");
        OnWindowThread([] { EXPECT_EQ(ControlText(1002).toStdString(), "k"); });
        TapAsTheDesktopDoes("Esc");
        ASSERT_TRUE(Eventually([] { return DialogTitle() == "Properties"; }));
        TapAsTheDesktopDoes("Esc");
        EXPECT_TRUE(Gone(sheet));
        ExpectBackOnTheScreen();
    });
}

TEST(InputPanelInDialogs, FollowsADeviceResizedUnderADialog) {
    RunProgram(SmallDevice(), [&] {
        TapPanelButton();
        const HWND dialog = OpenOnSmallDevice(40011);
        ResizeDevice(300, 400);
        OnWindowThread([] {
            const QPoint corner = DeviceScreen()->mapToGlobal(QPoint(0, 400 - 26 - 80));
            EXPECT_EQ(ShellInputPanel()->geometry(), QRect(corner, QSize(300, 80)));
            SIPINFO panel = {};
            panel.cbSize = sizeof(panel);
            SHSipInfo(SPI_GETSIPINFO, 0, &panel, 0);
            EXPECT_EQ(panel.rcVisibleDesktop.bottom, 400 - 26 - 80);
            EXPECT_EQ(panel.fdwFlags & SIPF_ON, DWORD{SIPF_ON});
        });
        TapAsTheDesktopDoes("Esc");
        EXPECT_TRUE(Gone(dialog));
    });
}

TEST(InputPanelInDialogs, KeyThatClosesADialogIsReleased) {
    RunProgram(SmallDevice(), [&] {
        TapPanelButton();
        const HWND dialog = OpenOnSmallDevice(126);
        PanelKey* key = nullptr;
        OnWindowThread([&] {
            key = KeyLabelled("Enter");
            QTest::mousePress(key->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                              key->mapTo(key->window(), key->rect().center()));
            EXPECT_TRUE(key->isDown());
        });
        EXPECT_TRUE(Gone(dialog));
        OnWindowThread([&] { EXPECT_FALSE(key->isDown()) << "it would repeat into the terminal"; });
    });
}

QLineEdit* FieldOf(int control) {
    QWidget* widget = DialogWidgetOf(control);
    auto* combo = qobject_cast<QComboBox*>(widget);
    return combo ? combo->lineEdit() : qobject_cast<QLineEdit*>(widget);
}

// What the toolkit makes of a finger's or a stylus's tap that nobody takes as such.
void TapAsAFinger(QWidget* widget) {
    const QPointF middle = widget->rect().center(), place = widget->mapToGlobal(middle);
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const bool down = type == QEvent::MouseButtonPress;
        QMouseEvent event(type, middle, place, place, Qt::LeftButton,
                          down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier,
                          Qt::MouseEventSynthesizedByQt);
        QApplication::sendEvent(widget, &event);
    }
}

// Sends a tap and lets the program take what it has queued.
void TapField(int control, void (*tap)(QWidget* widget)) {
    OnWindowThread([=] { tap(FieldOf(control)); });
    OnWindowThread([] {});
    OnWindowThread([] {});
}

bool PanelIsUp() {
    bool up = false;
    OnWindowThread([&] { up = !ShellInputPanel()->isHidden(); });
    return up;
}

TEST(InputPanelInDialogs, OfFingerAndMouseOnlyTheFingerShowsItInADialog) {
    RunProgram(SmallDevice(), [] {
        const HWND dialog = OpenOnSmallDevice(40011);
        TapField(1255, [](QWidget* field) { QTest::mouseClick(field, Qt::LeftButton); });
        EXPECT_FALSE(PanelIsUp());
        OnWindowThread([] { FieldOf(1255)->setReadOnly(true); });
        TapField(1255, TapAsAFinger);
        EXPECT_FALSE(PanelIsUp()) << "nothing can be typed there";
        OnWindowThread([] { FieldOf(1255)->setReadOnly(false); });
        TapField(1255, TapAsAFinger);
        EXPECT_TRUE(PanelIsUp());
        TapAsTheDesktopDoes("x");
        OnWindowThread([] { EXPECT_EQ(ControlText(1255).toStdString(), "x"); });
        TapAsTheDesktopDoes("Esc");
        EXPECT_TRUE(Gone(dialog));
        EXPECT_FALSE(PanelIsUp()) << "only a dialog wanted it";
    });
}

void ExpectGrownByTheFoot(const QWidget* dialog, QSize own) {
    EXPECT_EQ(dialog->width(), std::max(own.width(), 240));
    EXPECT_EQ(dialog->height(), own.height() + 80);
}

// The tap places the dialog again.
TEST(InputPanelInDialogs, ADialogWithRoomForItAtItsFootKeepsThatWhenAFieldIsTapped) {
    RunProgram(SmallDevice(), [] {
        const HWND dialog = OpenOnSmallDevice(40011);
        QSize own;
        OnWindowThread([&] {
            QWidget* widget = FindWindowRecord(dialog)->widget;
            own = widget->size();
            widget->setContentsMargins(0, 0, 0, 80);
        });
        TapField(1255, TapAsAFinger);
        OnWindowThread([&] {
            ExpectGrownByTheFoot(FindWindowRecord(dialog)->widget, own);
            EndDialog(dialog, 0);
        });
        EXPECT_TRUE(Gone(dialog));
    });
}

void TapFirstFieldOfTheChooser() {
    OnWindowThread([] { TapAsAFinger(ShownColorDialog()->findChild<QLineEdit*>()); });
    OnWindowThread([] {});
    OnWindowThread([] {});
}

TEST(InputPanelInDialogs, AColorChooserWithRoomForItAtItsFootKeepsThatWhenAFieldIsTapped) {
    RunProgram(SmallDevice(), [] {
        OpenChooser();
        TapFirstFieldOfTheChooser();
        EXPECT_TRUE(PanelIsUp());
        QSize own;
        OnWindowThread([&] {
            QWidget* window = ShownColorDialog()->window();
            own = window->size();
            ShowInputPanel(false);
            window->setContentsMargins(0, 0, 0, 80);
        });
        TapFirstFieldOfTheChooser();
        EXPECT_TRUE(PanelIsUp());
        OnWindowThread([&] { ExpectGrownByTheFoot(ShownColorDialog()->window(), own); });
        CloseChooser();
    });
}

// The one that its button has shown stays, whatever is tapped in a dialog.
TEST(InputPanelInDialogs, OneThatWasUpBeforeADialogStaysAfterIt) {
    RunProgram(SmallDevice(), [] {
        TapPanelButton();
        const HWND dialog = OpenOnSmallDevice(40011);
        TapField(1255, TapAsAFinger);
        TapAsTheDesktopDoes("Esc");
        EXPECT_TRUE(Gone(dialog));
        ExpectBackOnTheScreen();
    });
}

TEST(InputPanelInDialogs, ATapMovesEveryOpenDialogAboveIt) {
    RunProgram(SmallDevice(240, 230), [] {
        const HWND sheet = OpenOnSmallDevice(40012);
        OnWindowThread([] { TurnPage(2); });
        ASSERT_TRUE(Eventually([] { return ClickControl(1243); }));
        ASSERT_TRUE(Eventually([] { return DialogTitle() == "Change"; }));
        TapField(1002, TapAsAFinger);
        EXPECT_TRUE(PanelIsUp());
        OnWindowThread([&] {
            const int top = 230 - 26 - 80;
            for (const HWND dialog : {sheet, ShownDialog()}) {
                RECT place;
                GetWindowRect(dialog, &place);
                EXPECT_LE(place.bottom, top);
                EXPECT_GE(place.top, 0);
            }
            QLineEdit* field = FieldOf(1002);
            EXPECT_TRUE(field->visibleRegion().contains(field->rect().center()));
        });
        TapAsTheDesktopDoes("Esc");
        ASSERT_TRUE(Eventually([] { return DialogTitle() == "Properties"; }));
        EXPECT_TRUE(PanelIsUp()) << "a dialog is still open";
        TapAsTheDesktopDoes("Esc");
        EXPECT_TRUE(Gone(sheet));
        EXPECT_FALSE(PanelIsUp());
    });
}

// Faster than the program takes them.
TEST(InputPanelInDialogs, AKeyIsTypedWhereTheKeyBeforeItHasMovedTheFocus) {
    RunProgram(SmallDevice(), [] {
        TapPanelButton();
        OpenOnSmallDevice(IDM_AUTO_LOGIN);
        OnWindowThread([] {
            for (const char* label : {"a", "Tab", "b", "Tab", "c"})
                QTest::mouseClick(KeyLabelled(label), Qt::LeftButton);
        });
        EXPECT_TRUE(Eventually([] {
            return ControlText(IDC_SEAR1) == "a" && ControlText(IDC_RESP1) == "b" &&
                   ControlText(IDC_SEAR2) == "c";
        })) << ControlText(IDC_SEAR1).toStdString();
    });
}

// It could not be reached below a dialog that covers it.
TEST(InputPanelInDialogs, ScreenWithoutRoomForBothShowsNone) {
    RunProgram(SmallDevice(240, 200), [] {
        OpenOnSmallDevice(40011);
        TapField(1255, TapAsAFinger);
        EXPECT_FALSE(PanelIsUp());
    });
}

TEST(InputPanelInDialogs, ProgramCanEndWhileADialogUsesIt) {
    const int result = RunProgram(SmallDevice(), [&] {
        TapPanelButton();
        OpenOnSmallDevice(40011);
        OnWindowThread([] { DestroyWindow(session.main_window); });
    });
    EXPECT_EQ(result, 0);
}

}  // namespace

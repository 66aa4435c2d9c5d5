// SPDX-License-Identifier: MIT
// Menus, boxes and dialogs that come at the same moment, over each other, or at the program's end.
#include <gtest/gtest.h>
#include <QColorDialog>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QScrollBar>
#include <QSpinBox>
#include <QToolButton>
#include <QtTest/QTest>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/dialogs/dialogs.h"

namespace {

const char kMayClose[] = "Warning: Do you really want to close this session";
const char kMayExit[] = "Warning: Do you really want to close this program";
const char kNotPossible[] = "Error: Not possible to create a session to the UNIX Host";

// As a keyboard does, with the check for shortcuts first.
void Strike(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

bool QueueIsEmpty() {
    return Eventually([] { return !MessagesWaiting(); });
}

bool DialogShown() {
    return Eventually([] {
        const Window* dialog = FindWindowRecord(ShownDialog());
        return dialog && dialog->widget->isVisible();
    });
}

// ---------------------------------------------------------------- menus

TEST(ModalEdges, KeysAreTheTerminalsWhenASessionHasReplacedTheMenusThatAltChose) {
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        ASSERT_TRUE(Eventually([] { return !ShellMenuStrip()->bar()->actions().isEmpty(); }));
        OnWindowThread([] {
            QTest::keyPress(QApplication::focusWidget(), Qt::Key_Alt, Qt::AltModifier);
            QTest::keyRelease(QApplication::focusWidget(), Qt::Key_Alt);
            EXPECT_EQ(QApplication::focusWidget(), ShellMenuStrip()->bar());
        });
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        ASSERT_TRUE(QueueIsEmpty());
        OnWindowThread([] {
            for (const Qt::Key letter : {Qt::Key_F, Qt::Key_K, Qt::Key_S}) Strike(letter);
        });
        EXPECT_EQ(host.Read(3), "fks");
    });
}

// From the queue, as a person does: a menu that ran a loop of its own would hold up whoever waits.
void RightClick(QWidget* widget) {
    const auto click = [widget] {
        const QPoint at = widget->rect().center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, widget->mapToGlobal(at));
        QApplication::sendEvent(widget, &event);
    };
    QMetaObject::invokeMethod(widget, click, Qt::QueuedConnection);
}

// Whether the program still handles its messages.
bool ProgramGoesOn() {
    int before = 0;
    OnWindowThread([&] { before = session.toolbar; });
    PostToMain(WM_COMMAND, IDM_TOOLBAR_FIRST);
    return Eventually([=] { return session.toolbar != before; }, 3000);
}

void ClosePopup() {
    OnWindowThread([] {
        if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
    });
}

TEST(ModalEdges, ARightClickOnAScrollBarOpensNoMenu) {
    RunProgram({.width = 240, .height = 320}, [&] {
        ASSERT_TRUE(Eventually([] { return session.view.visible_rows > 0; }));
        OnWindowThread([] { RightClick(FindWindowRecord(session.client_window)->vertical.bar); });
        EXPECT_TRUE(ProgramGoesOn());
        OnWindowThread([] { EXPECT_EQ(QApplication::activePopupWidget(), nullptr); });
        ClosePopup();
    });
}

TEST(ModalEdges, TheProgramGoesOnUnderTheMenuOfAFieldOfTheChooser) {
    RunProgram({}, [&] {
        PostToMain(WM_COMMAND, IDM_COLOR_BG);
        ASSERT_TRUE(Eventually([] { return ShownColorDialog() != nullptr; }));
        OnWindowThread([] {
            RightClick(ShownColorDialog()->findChild<QSpinBox*>()->findChild<QLineEdit*>());
        });
        EXPECT_TRUE(Eventually([] { return QApplication::activePopupWidget() != nullptr; }));
        EXPECT_TRUE(ProgramGoesOn());
        ClosePopup();
        OnWindowThread([] { RightClick(ShownColorDialog()->findChild<QSpinBox*>()); });
        EXPECT_TRUE(ProgramGoesOn());
        OnWindowThread([] { EXPECT_EQ(QApplication::activePopupWidget(), nullptr); });
        ClosePopup();
    });
}

// ---------------------------------------------------------------- input that came before

int OpenDialogs() {
    int count = 0;
    for (const Window* window : AllWindows()) count += window->dialog != nullptr;
    return count;
}

int OpenBoxes() {
    int count = 0;
    for (const QWidget* widget : QApplication::topLevelWidgets())
        count += widget->isVisible() && qobject_cast<const QMessageBox*>(widget);
    return count;
}

QToolButton* ButtonNamed(const QString& name) {
    for (QToolButton* button : DeviceScreen()->findChildren<QToolButton*>())
        if (button->accessibleName() == name) return button;
    return nullptr;
}

TEST(ModalEdges, TwoPressesInOneMomentOpenOneDialog) {
    RunProgram({}, [] {
        ASSERT_TRUE(Eventually([] { return ButtonNamed("connect") != nullptr; }));
        OnWindowThread([] {
            const QToolButton* button = ButtonNamed("connect");
            const QPoint at = button->mapTo(DeviceScreen(), button->rect().center());
            QTest::mouseDClick(DeviceScreen()->windowHandle(), Qt::LeftButton, {}, at);
        });
        ASSERT_TRUE(DialogShown());
        ASSERT_TRUE(QueueIsEmpty());
        OnWindowThread([] { EXPECT_EQ(OpenDialogs(), 1); });
    });
}

TEST(ModalEdges, TwoPressesOfTheCloseButtonInOneMomentAskOnce) {
    FakeHost host;
    WithSession(host, [] {
        OnWindowThread([] {
            session.settings.confirm_exit = 1;
            DeviceScreen()->close();
            DeviceScreen()->close();
        });
        ASSERT_EQ(AwaitBox(), kMayExit);
        ASSERT_TRUE(QueueIsEmpty());
        OnWindowThread([] { EXPECT_EQ(OpenBoxes(), 1); });
    });
}

TEST(ModalEdges, KeysTypedInTheMomentBeforeAQuestionAreNotTheHosts) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            session.settings.confirm_exit = 1;
            Strike(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
            Strike(Qt::Key_Return);
            Strike(Qt::Key_X);
        });
        ASSERT_EQ(AwaitBox(), kMayClose);
        ASSERT_TRUE(QueueIsEmpty());
        PressCancel();
        TypeText("y");
        EXPECT_EQ(host.Read(1), "y");
    });
}

TEST(ModalEdges, AListsNoticeInTheMomentBeforeADialogIsTaken) {
    RunProgram({}, [] {
        HWND page = nullptr;
        PostToMain(WM_COMMAND, IDM_PROPERTIES);
        ASSERT_TRUE(DialogShown());
        OnWindowThread([] { TurnPage(2); });
        ASSERT_TRUE(QueueIsEmpty());
        OnWindowThread([&] {
            page = ShownPage();
            EXPECT_TRUE(ClickControl(IDC_CHANGE));
            EXPECT_TRUE(ClickEntry(IDC_KEYS, 4));
        });
        ASSERT_TRUE(Eventually([] { return DialogTitle() == "Change"; }));
        ASSERT_TRUE(QueueIsEmpty());
        OnWindowThread([&] {
            WCHAR line[kLongestKeyText + 1] = {};
            SendDlgItemMessageW(page, IDC_KEYSTROKE, LB_GETTEXT, 0, reinterpret_cast<LPARAM>(line));
            EXPECT_EQ(std::u16string(line), u"\\033[15~");
        });
    });
}

// ---------------------------------------------------------------- over each other

TEST(ModalEdges, ADialogIsActiveAgainAfterABoxOverIt) {
    RunProgram({}, [] {
        PostToMain(WM_COMMAND, IDM_CONNECT);
        ASSERT_TRUE(DialogShown());
        PostToMain(WM_SOCKET_DATA, 1);
        ASSERT_TRUE(DismissBox(kNotPossible));
        EXPECT_TRUE(Eventually([] {
            return QApplication::activeWindow() == FindWindowRecord(ShownDialog())->widget;
        }));
        OnWindowThread([] { EXPECT_NE(QApplication::focusWidget(), nullptr); });
    });
}

// A dialog appears only after the messages that were posted before it.
TEST(ModalEdges, ABoxBelongsToNoDialogThatHasNotAppeared) {
    RunProgram({}, [] {
        OnWindowThread([] {
            PostMessageW(session.main_window, WM_COMMAND, IDM_CONNECT, 0);
            PostMessageW(session.main_window, WM_SOCKET_DATA, 1, 0);
        });
        ASSERT_EQ(AwaitBox(), kNotPossible);
        OnWindowThread([] {
            EXPECT_EQ(OpenDialogs(), 1);
            EXPECT_EQ(ShownMessageBox()->parentWidget(), DeviceScreen());
        });
        PressOk();
        EXPECT_TRUE(DialogShown());
    });
}

TEST(ModalEdges, ABoxOverTwoDialogsBelongsToTheLast) {
    RunProgram({}, [] {
        PostToMain(WM_COMMAND, IDM_CONNECT);
        ASSERT_TRUE(DialogShown());
        OnWindowThread([] { EXPECT_TRUE(ClickControl(IDC_ADVANCED)); });
        ASSERT_TRUE(Eventually([] { return DialogTitle() == "Connect Advanced"; }));
        ASSERT_TRUE(DialogShown());
        PostToMain(WM_SOCKET_DATA, 1);
        ASSERT_EQ(AwaitBox(), kNotPossible);
        OnWindowThread([] {
            EXPECT_EQ(ShownMessageBox()->parentWidget(), FindWindowRecord(ShownDialog())->widget);
        });
        PressOk();
    });
}

// The dialog gets the releases of the keys that have opened it.
TEST(ModalEdges, KeysThatOpenedABoxAreNotHeldAfterIt) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            session.settings.confirm_exit = 1;
            const auto both = Qt::ControlModifier | Qt::ShiftModifier;
            QTest::keyPress(QApplication::focusWidget(), Qt::Key_Control);
            QTest::keyPress(QApplication::focusWidget(), Qt::Key_Shift, Qt::ControlModifier);
            QTest::keyPress(QApplication::focusWidget(), Qt::Key_N, both);
        });
        ASSERT_EQ(AwaitBox(), kMayClose);
        PressCancel();
        OnWindowThread([] {
            const QToolButton* button = ButtonNamed("P1");
            const QPoint at = button->mapTo(DeviceScreen(), button->rect().center());
            QTest::mouseClick(DeviceScreen()->windowHandle(), Qt::LeftButton, {}, at);
        });
        EXPECT_EQ(host.Read(2), "\217P");
    });
}

// ---------------------------------------------------------------- the program's end

// What AskSignOn returns when this happens while its dialog is open.
int SignOnAnswer(const std::function<void()>& meanwhile) {
    int answer = -1;
    RunProgram({}, [&] {
        OnNextDialog(meanwhile);
        QMetaObject::invokeMethod(
            qApp, [&] { answer = AskSignOn(); }, Qt::QueuedConnection);
        for (int i = 0; i < 2000 && ProgramRuns(); ++i) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
    });
    return answer;
}

TEST(ModalEdges, ASignOnThatTheProgramsEndInterruptsSignsNobodyOn) {
    EXPECT_EQ(SignOnAnswer([] { PostQuitMessage(0); }), 0);
    EXPECT_EQ(SignOnAnswer([] { DestroyWindow(session.main_window); }), 0);
}

// ---------------------------------------------------------------- the title

TEST(ModalEdges, TitleShowsAHostOfAStar) {
    RunProgram({}, [] {
        OnWindowThread([] { lstrcpyW(session.settings.host, u"*"); });
        PressKey(Qt::Key_F1);
        ASSERT_TRUE(Eventually([] { return Title() == "Quill Telnet  [*]"; }));
        OnWindowThread(
            [] { EXPECT_EQ(DeviceScreen()->windowHandle()->title().toStdString(), Title()); });
    });
}

}  // namespace

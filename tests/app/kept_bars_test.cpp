// SPDX-License-Identifier: MIT
// The program changes its bars by making them again. What stays on the screen then, and what does
// not.
#include <gtest/gtest.h>
#include <QtTest/qtestmouse.h>
#include <QImage>
#include <QMenuBar>
#include <QToolButton>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "settings/toolbars.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/main_window.h"

namespace {

constexpr int kButtons = 19;  // of a first start
constexpr WPARAM kSwap = 40020;

// ---- the bars on the screen; for the window thread

QWidget* BarWidget() {
    const Window* bar = FindWindowRecord(session.command_bar);
    return bar ? bar->widget.data() : nullptr;
}

QList<QToolButton*> Buttons() {
    const QWidget* bar = BarWidget();
    return bar ? bar->findChildren<QToolButton*>() : QList<QToolButton*>();
}

QToolButton* ButtonNamed(const QString& name) {
    for (QToolButton* button : Buttons())
        if (button->accessibleName() == name) return button;
    return nullptr;
}

QList<QAction*> Menus() { return ShellMenuStrip()->bar()->actions(); }

QStringList MenuTitles() {
    QStringList titles;
    for (const QAction* menu : Menus()) titles << menu->text();
    return titles;
}

struct Pictures {
    QImage command_bar, menus;
    bool operator==(const Pictures&) const = default;
};

Pictures BarPictures() {
    return {BarWidget()->grab().toImage(), ShellMenuStrip()->grab().toImage()};
}

// The names of the buttons that are painted, and the number of paints of the menu bar.
class Paints : public QObject {
  public:
    Paints() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() != QEvent::Paint) return false;
        const auto* button = qobject_cast<QToolButton*>(object);
        if (button && button->parent() == BarWidget()) buttons << button->accessibleName();
        if (object == ShellMenuStrip()->bar()) ++menus;
        return false;
    }
    QStringList buttons;
    int menus = 0;
};

// What the bars have when any part of the screen is first painted.
class FirstPaint : public QObject {
  public:
    FirstPaint() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(object);
        if (came || event->type() != QEvent::Paint || !widget || widget->window() != DeviceScreen())
            return false;
        came = true;
        for (QToolButton* button : Buttons())
            if (button->isVisible() && !button->icon().isNull()) buttons << button;
        titles = MenuTitles();
        return false;
    }
    bool came = false;
    QList<QToolButton*> buttons;
    QStringList titles;
};

// ---- the person

bool QueueIsEmpty() {
    return Eventually([] { return !MessagesWaiting(); });
}

// All bars have been shown, and the first one is shown again.
void WithUsedBars(const std::function<void()>& person) {
    RunProgram({}, [&] {
        ASSERT_TRUE(Eventually([] { return Buttons().size() == kButtons; }));
        for (int bar = 0; bar < 3; ++bar) PostToMain(WM_COMMAND, kSwap);
        ASSERT_TRUE(QueueIsEmpty());
        ASSERT_TRUE(Eventually([] { return Buttons().size() == kButtons; }));
        person();
    });
}

void BeginSession(FakeHost& host) {
    SetHost(u"127.0.0.1", host.port);
    Connect();
    ASSERT_TRUE(host.Accept());
    host.Send("hello");
    ASSERT_TRUE(TerminalShows("hello"));
    ASSERT_TRUE(Eventually([] { return ButtonNamed("disconnect") != nullptr; }));
    ASSERT_TRUE(QueueIsEmpty());
}

// Presses the mouse on the button, or releases it there.
void Mouse(QTest::MouseAction action, const QString& name) {
    OnWindowThread([&] {
        const QToolButton* button = ButtonNamed(name);
        ASSERT_NE(button, nullptr) << name.toStdString();
        const QPoint place = button->mapTo(DeviceScreen(), button->rect().center());
        QTest::mouseEvent(action, DeviceScreen()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          place);
    });
}

}  // namespace

TEST(KeptBars, BarsMadeAgainWithTheSameContentAreNotPaintedAgain) {
    WithUsedBars([] {
        std::unique_ptr<Paints> paints;
        QList<QToolButton*> buttons;
        QList<QAction*> menus;
        Pictures before;
        OnWindowThread([&] {
            before = BarPictures();
            buttons = Buttons();
            menus = Menus();
            paints = std::make_unique<Paints>();
            const HWND bar = session.command_bar, menu_bar = session.menu_bar;
            RebuildMenuBar();
            EXPECT_FALSE(IsWindow(bar));
            EXPECT_FALSE(IsWindow(menu_bar));
            EXPECT_TRUE(IsWindowVisible(session.command_bar));
        });
        EXPECT_TRUE(QueueIsEmpty());
        OnWindowThread([&] {
            EXPECT_EQ(paints->buttons, QStringList());
            EXPECT_EQ(paints->menus, 0);
            paints.reset();
            EXPECT_EQ(Buttons(), buttons);
            EXPECT_EQ(Menus(), menus);
            EXPECT_EQ(BarPictures(), before);
        });
    });
}

TEST(KeptBars, AConnectionPaintsTheOneButtonThatChanges) {
    FakeHost host;
    WithUsedBars([&] {
        std::unique_ptr<Paints> paints;
        OnWindowThread([&] { paints = std::make_unique<Paints>(); });
        BeginSession(host);
        OnWindowThread([&] {
            paints->buttons.removeDuplicates();
            EXPECT_EQ(paints->buttons, QStringList("disconnect"));
            EXPECT_GT(paints->menus, 0);
            paints.reset();
            EXPECT_EQ(ButtonNamed("disconnect")->toolTip(), "disconnect");
        });
    });
}

TEST(KeptBars, BarsThatChangedInPlaceLookLikeNewOnes) {
    FakeHost host;
    WithUsedBars([&] {
        BeginSession(host);
        Pictures changed;
        OnWindowThread([&] {
            changed = BarPictures();
            const QWidget* room = BarWidget()->parentWidget();
            CommandBar_Destroy(session.command_bar);
            DestroyWindow(session.menu_bar);
            EXPECT_EQ(room->findChildren<QToolButton*>().size(), kButtons) << "until the next one";
        });
        ASSERT_TRUE(QueueIsEmpty());
        OnWindowThread([&] {
            const QWidget* room = FindWindowRecord(session.main_window)->widget;
            EXPECT_TRUE(room->findChildren<QToolButton*>().isEmpty()) << "there was no next one";
            EXPECT_EQ(MenuTitles(), QStringList());
            RebuildMenuBar();
        });
        ASSERT_TRUE(QueueIsEmpty());
        OnWindowThread([&] {
            EXPECT_EQ(Buttons().size(), kButtons);
            EXPECT_EQ(BarPictures(), changed);
        });
    });
}

TEST(KeptBars, ABarWithFewerButtonsLosesTheOthers) {
    WithUsedBars([] {
        OnWindowThread([] {
            for (ToolbarButton* row = toolbar_buttons; row->name; ++row) row->onBar1 = 0;
            toolbar_buttons[1].onBar1 = 1;
            RebuildMenuBar();
        });
        EXPECT_TRUE(Eventually([] { return Buttons().size() == 1; }));
        OnWindowThread([] {
            EXPECT_NE(ButtonNamed("connect"), nullptr);
            for (ToolbarButton* row = toolbar_buttons; row->name; ++row) row->onBar1 = 1;
            RebuildMenuBar();
        });
        EXPECT_TRUE(QueueIsEmpty());
        OnWindowThread([] {
            EXPECT_EQ(Buttons().size(), kToolbarRows);
            EXPECT_EQ(Buttons().last()->accessibleName(), "P20");
            EXPECT_TRUE(Buttons().last()->isVisible());
        });
    });
}

TEST(KeptBars, AButtonThatChangesHasNoNameUntilItGetsOne) {
    WithUsedBars([] {
        OnWindowThread([] {
            CommandBar_Destroy(session.command_bar);
            session.command_bar = CommandBar_Create(nullptr, session.main_window, 1);
            EXPECT_EQ(0, CommandBar_AddBitmap(session.command_bar, nullptr, 1541, 1, 16, 16));
            TBBUTTON button = {};
            button.idCommand = static_cast<int>(kSwap);
            button.fsState = TBSTATE_ENABLED;
            EXPECT_TRUE(CommandBar_InsertButton(session.command_bar, 0, &button));
            EXPECT_EQ(Buttons().first()->toolTip(), "");
            EXPECT_EQ(Buttons().first()->accessibleName(), "");
        });
    });
}

TEST(KeptBars, APressDoesNotCountForTheButtonThatTakesThePlace) {
    FakeHost host;
    WithUsedBars([&] {
        OnWindowThread([] { session.settings.confirm_exit = 0; });
        Mouse(QTest::MousePress, "connect");
        BeginSession(host);
        Mouse(QTest::MouseRelease, "disconnect");
        EXPECT_TRUE(QueueIsEmpty());
        OnWindowThread([] { EXPECT_EQ(session.connected, 1u); });
        Mouse(QTest::MousePress, "ENTER");
        OnWindowThread(RebuildMenuBar);
        Mouse(QTest::MouseRelease, "ENTER");
        EXPECT_EQ(host.Read(1), "\r") << "the same button still";
    });
}

TEST(KeptBars, TheFirstPaintHasBothBarsAndAnAutomaticConnectionKeepsThem) {
    FakeHost host;
    std::unique_ptr<FirstPaint> first;
    Stage stage;
    stage.before = [&] {
        WriteString(TEXT("host"), TEXT("127.0.0.1"));
        WriteNumber(TEXT("port"), static_cast<DWORD>(host.port));
        WriteNumber(TEXT("autoconnect"), 1);
        first = std::make_unique<FirstPaint>();
    };
    RunProgram(stage, [&] {
        ASSERT_TRUE(host.Accept());
        ASSERT_TRUE(QueueIsEmpty());
        OnWindowThread([&] {
            ASSERT_TRUE(first->came);
            EXPECT_EQ(first->buttons.size(), kButtons);
            EXPECT_EQ(first->titles, QStringList({"&File", "F&x", "&Keys", "&Settings"}));
            EXPECT_EQ(first->buttons, Buttons());
            EXPECT_EQ(session.connected, 0u);
        });
        host.Send("hello");
        EXPECT_TRUE(TerminalShows("hello"));
        EXPECT_TRUE(Eventually([] { return ButtonNamed("disconnect") != nullptr; }));
        OnWindowThread([&] {
            EXPECT_EQ(first->buttons, Buttons());
            first.reset();
        });
    });
}

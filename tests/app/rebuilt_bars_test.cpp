// SPDX-License-Identifier: MIT
// The program changes its bars by making them again. What they have then, and what a press that
// began before does.
#include <gtest/gtest.h>
#include <QtTest/qtestmouse.h>
#include <QBackingStore>
#include <QImage>
#include <QMenuBar>
#include <QToolButton>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
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

QStringList MenuTitles() {
    QStringList titles;
    for (const QAction* menu : ShellMenuStrip()->bar()->actions()) titles << menu->text();
    return titles;
}

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
            buttons += button->isVisible() && !button->icon().isNull();
        titles = MenuTitles();
        return false;
    }
    bool came = false;
    int buttons = 0;
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

void BeginSessionWithBars(FakeHost& host) {
    BeginSession(host);
    ASSERT_TRUE(Eventually([] { return ButtonNamed("disconnect") != nullptr; }));
    ASSERT_TRUE(QueueIsEmpty());
}

// Presses the mouse on the button, moves it there or releases it.
void Mouse(QTest::MouseAction action, const QString& name, QPoint beside = {}) {
    OnWindowThread([&] {
        const QToolButton* button = ButtonNamed(name);
        ASSERT_NE(button, nullptr) << name.toStdString();
        const QPoint place = button->mapTo(DeviceScreen(), button->rect().center() + beside);
        QTest::mouseEvent(action, DeviceScreen()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          place);
    });
}

}  // namespace

TEST(RebuiltBars, ABarWithFewerButtonsLosesTheOthers) {
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

TEST(RebuiltBars, AButtonHasNoNameUntilItGetsOne) {
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

// ---------------------------------------------------------------- the desktop's colours

namespace {

QPalette Dark() {
    QPalette dark(QColor(0x20, 0x30, 0x40));
    dark.setColor(QPalette::ButtonText, QColor(0xEE, 0xDD, 0xCC));
    dark.setColor(QPalette::Dark, QColor(0x11, 0x22, 0x33));
    dark.setColor(QPalette::Light, QColor(0x44, 0x55, 0x66));
    return dark;
}

// The desktop's colours while it exists.
class DesktopColors {
  public:
    explicit DesktopColors(const QPalette& colors) { Set(colors); }
    ~DesktopColors() { Set(before_); }
    DesktopColors(const DesktopColors&) = delete;
    DesktopColors& operator=(const DesktopColors&) = delete;

  private:
    static void Set(const QPalette& colors) {
        OnWindowThread([&] { QApplication::setPalette(colors); });
        EXPECT_TRUE(Eventually([&] {
            return BarWidget() &&
                   BarWidget()->palette().color(QPalette::Light) == colors.color(QPalette::Light);
        }));
    }
    QPalette before_ = QApplication::palette();
};

std::vector<QImage> ButtonPictures(double ratio) {
    std::vector<QImage> pictures;
    for (const QToolButton* button : Buttons())
        pictures.push_back(button->icon().pixmap(QSize(16, 16), ratio).toImage());
    return pictures;
}

int Distinct(const std::vector<QImage>& pictures) {
    int count = 0;
    for (size_t i = 0; i < pictures.size(); ++i)
        count += std::find(pictures.begin(), pictures.begin() + static_cast<long>(i),
                           pictures[i]) == pictures.begin() + static_cast<long>(i);
    return count;
}

}  // namespace

TEST(RebuiltBars, PicturesFollowTheDesktopsColours) {
    WithUsedBars([] {
        std::vector<QImage> plain[2], later[2], made_then[2];
        const auto take = [](std::vector<QImage>* pictures) {
            OnWindowThread([&] {
                pictures[0] = ButtonPictures(1);
                pictures[1] = ButtonPictures(2);
            });
        };
        take(plain);
        {
            const DesktopColors dark(Dark());
            take(later);
            OnWindowThread(RebuildMenuBar);
            ASSERT_TRUE(QueueIsEmpty());
            ASSERT_TRUE(Eventually([] { return Buttons().size() == kButtons; }));
            take(made_then);
        }
        for (int i = 0; i < 2; ++i) {
            ASSERT_EQ(later[i].size(), static_cast<size_t>(kButtons));
            EXPECT_EQ(Distinct(later[i]), Distinct(plain[i]));
            EXPECT_GE(Distinct(plain[i]), kButtons - 1);
            for (size_t each = 0; each < later[i].size(); ++each) {
                EXPECT_NE(later[i][each], plain[i][each]) << each;
                EXPECT_EQ(later[i][each], made_then[i][each]) << each;
            }
        }
        take(later);
        for (int i = 0; i < 2; ++i) EXPECT_EQ(later[i], plain[i]);
    });
}

// The desktop's colours usually change while another window is the active one.
TEST(RebuiltBars, PicturesOfAnInactiveWindowHaveTheColoursOfAnActiveOne) {
    WithUsedBars([] {
        QPalette faint = Dark();
        faint.setColor(QPalette::Inactive, QPalette::ButtonText, QColor(0x55, 0x55, 0x55));
        faint.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x66, 0x66, 0x66));
        std::vector<QImage> inactive, disabled, active;
        const auto pictures_in = [](const QPalette& colors) {
            const DesktopColors now(colors);
            std::vector<QImage> pictures;
            OnWindowThread([&] { pictures = ButtonPictures(1); });
            return pictures;
        };
        OnWindowThread([] { DeviceScreen()->activateWindow(); });
        ASSERT_TRUE(Eventually([] { return DeviceScreen()->isActiveWindow(); }));
        active = pictures_in(faint);
        OnWindowThread([] { EnableWindow(session.main_window, FALSE); });
        disabled = pictures_in(faint);
        QWidget* other = nullptr;
        OnWindowThread([&] {
            EnableWindow(session.main_window, TRUE);
            other = new QWidget;
            other->show();
            other->activateWindow();
        });
        EXPECT_TRUE(Eventually([] { return !DeviceScreen()->isActiveWindow(); }));
        inactive = pictures_in(faint);
        {
            const DesktopColors first(faint);
            faint.setColor(QPalette::Active, QPalette::ButtonText, QColor(0xAA, 0xBB, 0xCC));
            EXPECT_FALSE(pictures_in(faint) == inactive);
        }
        OnWindowThread([&] { delete other; });
        EXPECT_TRUE(active == disabled);
        EXPECT_TRUE(active == inactive);
    });
}

// What the desktop shows, against all of it painted anew.
TEST(RebuiltBars, TheWholeScreenFollowsTheDesktopsColours) {
    WithUsedBars([] {
        const DesktopColors dark(Dark());
        ASSERT_TRUE(QueueIsEmpty());
        ASSERT_TRUE(Eventually([] { return ReadyStore(DeviceScreen()) != nullptr; }));
        OnWindowThread([] {
            QApplication::sendPostedEvents();
            const auto* store = static_cast<QImage*>(ReadyStore(DeviceScreen())->paintDevice());
            const QImage shown = store->copy();
            EXPECT_EQ(shown, DeviceScreen()->grab().toImage().convertToFormat(shown.format()));
        });
    });
}

// The larger version of a picture is as wide as two. The second button is put in front.
TEST(RebuiltBars, EachButtonHasItsOwnPictureOfAStrip) {
    constexpr int kLargerPicture = 11541;
    WithUsedBars([] {
        OnWindowThread([] {
            CommandBar_Destroy(session.command_bar);
            session.command_bar = CommandBar_Create(nullptr, session.main_window, 1);
            EXPECT_EQ(0, CommandBar_AddBitmap(session.command_bar, nullptr, 1541, 1, 16, 16));
            EXPECT_EQ(
                1, CommandBar_AddBitmap(session.command_bar, nullptr, kLargerPicture, 2, 16, 16));
            for (const int picture : {2, 1}) {
                TBBUTTON button = {};
                button.iBitmap = picture;
                EXPECT_TRUE(CommandBar_InsertButton(session.command_bar, 0, &button));
            }
            ASSERT_EQ(Buttons().size(), 2);
            EXPECT_EQ(Distinct(ButtonPictures(1)), 2);
        });
    });
}

// ---------------------------------------------------------------- presses

TEST(RebuiltBars, APressDoesNotCountForTheButtonThatTakesThePlace) {
    FakeHost host;
    WithUsedBars([&] {
        OnWindowThread([] { session.settings.confirm_exit = 0; });
        Mouse(QTest::MousePress, "connect");
        BeginSessionWithBars(host);
        Mouse(QTest::MouseMove, "disconnect", QPoint(1, 0));
        Mouse(QTest::MouseRelease, "disconnect");
        EXPECT_TRUE(QueueIsEmpty());
        OnWindowThread([] { EXPECT_EQ(session.connected, 1u); });
    });
}

TEST(RebuiltBars, TheFirstPaintHasBothBarsAndAnAutomaticConnectionKeepsThem) {
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
            EXPECT_EQ(first->buttons, kButtons);
            EXPECT_EQ(first->titles, QStringList({"&File", "F&x", "&Keys", "&Settings"}));
            EXPECT_EQ(Buttons().size(), kButtons);
            EXPECT_EQ(session.connected, 0u);
        });
        host.Send("hello");
        EXPECT_TRUE(TerminalShows("hello"));
        EXPECT_TRUE(Eventually([] { return ButtonNamed("disconnect") != nullptr; }));
        OnWindowThread([&] {
            EXPECT_EQ(Buttons().size(), kButtons);
            first.reset();
        });
    });
}

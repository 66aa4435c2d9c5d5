// SPDX-License-Identifier: MIT
// The menu bars: their entries, how a person opens them, and what each entry does.
#include <gtest/gtest.h>
#include <cmath>
#include <QMenu>
#include <QProxyStyle>
#include <QtTest/QTest>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

QMenu* MenuOf(const QString& title) {
    for (QAction* action : ShellMenuStrip()->bar()->actions())
        if (action->text() == title) return action->menu();
    return nullptr;
}

QStringList Entries(const QString& title) {
    QStringList result;
    if (const QMenu* menu = MenuOf(title))
        for (const QAction* action : menu->actions())
            if (!action->isSeparator())
                result << action->text() + " " + QString::number(action->data().toInt());
    return result;
}

QStringList BarTitles() {
    QStringList result;
    for (const QAction* action : ShellMenuStrip()->bar()->actions()) result << action->text();
    return result;
}

QAction* EntryOf(int id) {
    for (QAction* title : ShellMenuStrip()->bar()->actions())
        for (QAction* action : title->menu()->actions())
            if (action->data().toInt() == id) return action;
    return nullptr;
}

void Choose(int id) {
    OnWindowThread([=] {
        QAction* action = EntryOf(id);
        ASSERT_NE(action, nullptr) << id;
        action->trigger();
    });
}

bool FileMenuReads(const QString& first) {
    return Eventually([&] {
        const QStringList entries = Entries("&File");
        return !entries.isEmpty() && entries.first() == first;
    });
}

bool Shown(const QString& title) {
    return Eventually([&] { return MenuOf(title) && MenuOf(title)->isVisible(); });
}

// Sends a key as the desktop does, with the check for shortcuts first.
void Strike(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    OnWindowThread([=] {
        QWidget* target = QApplication::activePopupWidget();
        if (!target) target = QApplication::focusWidget();
        ASSERT_NE(target, nullptr);
        QTest::keyClick(target, key, modifiers);
    });
}

void Ready() { ASSERT_TRUE(FileMenuReads("&Connect... 40011")); }

TEST(Menus, FileMenuReadsConnectOfflineAndDisconnectOnline) {
    FakeHost host;
    RunProgram({}, [&] {
        ASSERT_TRUE(FileMenuReads("&Connect... 40011"));
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("x");
        EXPECT_TRUE(FileMenuReads("&Disconnect... 40011"));
        host.Drop();
        DismissBox("Error: Connection to the UNIX Host has been closed...");
        EXPECT_TRUE(FileMenuReads("&Connect... 40011"));
    });
}

TEST(Menus, BothBarsHoldEveryEntryWithItsCommand) {
    QStringList function_keys;
    for (int key = 1; key <= 20; key++)
        function_keys << QString("F%1 %2").arg(key).arg(40113 + key);
    const QStringList keys = {"Enter 40153",      "Esc 40156",        "Arrow Up 40159",
                              "Arrow Down 40160", "Arrow Left 40157", "Arrow Right 40158",
                              "Page Up 40138",    "Page Down 40140"};
    const QStringList settings = {"&Font... 40004",
                                  "&Properties... 40012",
                                  "&Auto Login... 126",
                                  "B&ackground Color... 40101",
                                  "&Cursor Color... 40102",
                                  "Color &Text... 40103",
                                  "Color &Bold... 40104",
                                  "&Reset configuration... 40111",
                                  "&Help 40113",
                                  "A&bout... 40003"};
    FakeHost host;
    RunProgram({}, [&] {
        for (const char* first : {"&Connect... 40011", "&Disconnect... 40011"}) {
            ASSERT_TRUE(FileMenuReads(first));
            OnWindowThread([&] {
                EXPECT_EQ(BarTitles(), QStringList({"&File", "F&x", "&Keys", "&Settings"}));
                EXPECT_EQ(Entries("&File"), QStringList({first, "E&xit 40002"}));
                EXPECT_EQ(Entries("F&x"), function_keys);
                EXPECT_EQ(Entries("&Keys"), keys);
                EXPECT_EQ(Entries("&Settings"), settings);
            });
            if (session.connected) break;
            SetHost(u"127.0.0.1", host.port);
            Connect();
            ASSERT_TRUE(host.Accept());
            host.Send("x");
        }
        EXPECT_EQ(session.connected, 1u);
    });
}

TEST(Menus, EachFunctionKeyEntrySendsItsRow) {
    FakeHost host;
    WithSession(host, [&] {
        for (int key = 0; key < 20; key++) {
            std::string expected;
            OnWindowThread([&] { expected = UnescapeKeyText(key_map[key].text); });
            Choose(40114 + key);
            EXPECT_EQ(host.Read(expected.size()), expected) << key_map[key].name;
        }
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Menus, EachEntryOfTheKeysMenuSendsItsKey) {
    const struct {
        int id;
        const char* bytes;
    } rows[] = {{40153, "\r"},     {40156, "\033"},   {40159, "\033[A"}, {40160, "\033[B"},
                {40157, "\033[D"}, {40158, "\033[C"}, {40138, "\2335~"}, {40140, "\2336~"}};
    FakeHost host;
    WithSession(host, [&] {
        for (const auto& row : rows) {
            Choose(row.id);
            EXPECT_EQ(host.Read(std::strlen(row.bytes)), row.bytes) << row.id;
        }
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Menus, KeysAndFunctionKeysDoNothingOffline) {
    FakeHost host;
    RunProgram({}, [&] {
        Ready();
        for (int id = 40114; id <= 40133; id++) Choose(id);
        for (int id : {40153, 40156, 40159, 40160, 40157, 40158, 40138, 40140}) Choose(id);
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("x");
        EXPECT_EQ(host.ReadSome(100), "") << "nothing was kept for later";
        EXPECT_EQ(StatusText(), "    online    row: 1  column: 2     ");
    });
}

// The toolkit draws a line below a bar and draws the titles over it.
TEST(Menus, NoLineIsDrawnBelowTheTitles) {
    RunProgram({}, [] {
        ASSERT_TRUE(Eventually([] { return !BarTitles().isEmpty(); }));
        OnWindowThread([] {
            const QImage strip = ShellMenuStrip()->grab().toImage();
            const QRect bar = ShellMenuStrip()->bar()->geometry();
            for (const int y : {bar.bottom() - 1, bar.bottom()})
                for (int x = 0; x < bar.width(); x++)
                    ASSERT_EQ(strip.pixel(x, y), strip.pixel(0, 0)) << x << "," << y;
        });
    });
}

QImage StripAtScale(double scale) {
    QImage picture((QSizeF(ShellMenuStrip()->size()) * scale).toSize(), QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    ShellMenuStrip()->render(&picture);
    return picture;
}

// Where a pixel of the screen is not a pixel of the device, the line may cover parts of two.
TEST(Menus, NoLineIsDrawnBelowTheTitlesAtAnyScale) {
    RunProgram({}, [] {
        ASSERT_TRUE(Eventually([] { return !BarTitles().isEmpty(); }));
        OnWindowThread([] {
            const QRect bar = ShellMenuStrip()->bar()->geometry();
            for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 2.5, 3.0}) {
                const QImage strip = StripAtScale(scale);
                const int right = static_cast<int>(bar.width() * scale);
                for (int y = static_cast<int>((bar.bottom() - 1) * scale); y < strip.height(); ++y)
                    for (int x = 0; x < right; ++x)
                        ASSERT_EQ(strip.pixel(x, y), strip.pixel(0, 0))
                            << x << "," << y << " at " << scale;
            }
        });
    });
}

TEST(Menus, TheKeyboardsPictureIsMadeForTheDensity) {
    RunProgram({}, [] {
        OnWindowThread([] {
            const QIcon icon = ShellMenuStrip()->panel_button()->icon();
            for (const double density : {1.0, 1.25, 2.0, 3.0}) {
                const QPixmap picture = icon.pixmap(QSize(22, 14), density);
                EXPECT_EQ(picture.size(), (QSizeF(22, 14) * density).toSize());
                EXPECT_EQ(picture.devicePixelRatio(), density);
                if (density < 2) continue;
                // The gap between the first two keys, from 4.8 to 5.8, has a clear pixel. In the
                // picture of density 1, and so in an enlarged one, it has none.
                const QPoint gap(int(std::ceil(4.8 * density)), int(4 * density));
                EXPECT_EQ(picture.toImage().pixelColor(gap).alpha(), 0) << density;
            }
        });
    });
}

TEST(Menus, ANarrowBarHasTheDesktopsButtonForTheRest) {
    RunProgram({.width = 120}, [] {
        ASSERT_TRUE(Eventually([] { return !BarTitles().isEmpty(); }));
        OnWindowThread([] {
            const auto* button =
                ShellMenuStrip()->bar()->findChild<QToolButton*>("qt_menubar_ext_button");
            ASSERT_TRUE(button && button->isVisible());
            const auto* style = qobject_cast<QProxyStyle*>(QApplication::style());
            ASSERT_NE(style, nullptr);
            const QIcon wanted =
                style->baseStyle()->standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton);
            for (const double density : {1.0, 2.0}) {
                const QPixmap shown = button->icon().pixmap(button->iconSize(), density);
                const QPixmap own = wanted.pixmap(button->iconSize(), density);
                ASSERT_FALSE(own.isNull());
                EXPECT_EQ(shown.toImage(), own.toImage()) << density;
                EXPECT_EQ(shown.devicePixelRatio(), own.devicePixelRatio());
            }
        });
    });
}

// Presses the button from the queue, as a person does: a menu that ran a loop of its own would hold
// up whoever waits for the press.
void PressRestButton() {
    QMetaObject::invokeMethod(
        ShellMenuStrip(),
        [] {
            auto* button =
                ShellMenuStrip()->bar()->findChild<QToolButton*>("qt_menubar_ext_button");
            QTest::mouseClick(button, Qt::LeftButton);
        },
        Qt::QueuedConnection);
}

bool RestIsOpen() {
    return QApplication::activePopupWidget() && QApplication::activePopupWidget()->isVisible();
}

TEST(Menus, TheTerminalGoesOnWhileTheMenuOfTheRestIsOpen) {
    FakeHost host;
    RunProgram({.width = 120}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("x");
        ASSERT_TRUE(FileMenuReads("&Disconnect... 40011"));
        PressRestButton();
        ASSERT_TRUE(Eventually(RestIsOpen));
        host.Send("yz");
        EXPECT_TRUE(TerminalShows("xyz"));
        OnWindowThread([] {
            QWidget* menu = QApplication::activePopupWidget();
            ASSERT_NE(menu, nullptr);
            const QWidget* bar = ShellMenuStrip();
            EXPECT_LE(menu->geometry().bottom(), bar->mapToGlobal(QPoint(0, bar->height())).y());
            EXPECT_EQ(menu->actions().last()->text(), "&Settings");
            menu->close();
        });
        EXPECT_TRUE(Eventually([] { return !RestIsOpen(); }));
        PressRestButton();
        ASSERT_TRUE(Eventually(RestIsOpen)) << "it opens again";
        OnWindowThread([] {
            QWindow* menu = QApplication::activePopupWidget()->windowHandle();
            auto* button =
                ShellMenuStrip()->bar()->findChild<QToolButton*>("qt_menubar_ext_button");
            const QPoint place = button->mapToGlobal(button->rect().center());
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->mapFromGlobal(place));
        });
        OnWindowThread([] { EXPECT_FALSE(RestIsOpen()) << "a press on its button closes it"; });
        TypeText("after");
        EXPECT_EQ(host.Read(5), "after") << "the keys are the terminal's";
    });
}

TEST(Menus, TappedTitleOpensItsMenuUpward) {
    RunProgram({}, [] {
        Ready();
        OnWindowThread([] {
            QMenuBar* bar = ShellMenuStrip()->bar();
            QTest::mouseClick(bar, Qt::LeftButton, {},
                              bar->actionGeometry(bar->actions()[2]).center());
        });
        ASSERT_TRUE(Shown("&Keys"));
        OnWindowThread([] {
            QMenuBar* bar = ShellMenuStrip()->bar();
            EXPECT_LE(MenuOf("&Keys")->geometry().bottom(), bar->mapToGlobal(QPoint(0, 0)).y());
            EXPECT_EQ(ShellMenuStrip()->height(), 26);
            EXPECT_EQ(ShellMenuStrip()->geometry().bottom(), DeviceScreen()->rect().bottom());
        });
    });
}

TEST(Menus, TappedEntrySendsItsCommand) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            QMenuBar* bar = ShellMenuStrip()->bar();
            QTest::mouseClick(bar, Qt::LeftButton, {},
                              bar->actionGeometry(bar->actions()[1]).center());
        });
        ASSERT_TRUE(Shown("F&x"));
        OnWindowThread([] {
            QMenu* menu = MenuOf("F&x");
            QTest::mouseClick(menu, Qt::LeftButton, {},
                              menu->actionGeometry(EntryOf(40118)).center());
        });
        EXPECT_EQ(host.Read(5), "\033[15~");
        TypeText("after");
        EXPECT_EQ(host.Read(5), "after") << "the keys are the terminal's again";
    });
}

TEST(Menus, AltWithALetterAndTheArrowsReachEveryEntry) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(Qt::Key_K, Qt::AltModifier);
        ASSERT_TRUE(Shown("&Keys"));
        Strike(Qt::Key_Down);
        Strike(Qt::Key_Down);
        Strike(Qt::Key_Return);
        EXPECT_EQ(host.Read(3), "\033[A") << "the third entry";
        Strike(Qt::Key_X, Qt::AltModifier);
        ASSERT_TRUE(Shown("F&x"));
        Strike(Qt::Key_Left);
        ASSERT_TRUE(Shown("&File"));
        Strike(Qt::Key_Escape);
        EXPECT_TRUE(Eventually([] { return !QApplication::activePopupWidget(); }));
        EXPECT_EQ(host.ReadSome(100), "") << "keys of the menu are not the host's";
    });
}

// True if the terminal accepts the key, so that the desktop does not treat it as the letter of a
// menu.
bool KeepsKey(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    bool kept = false;
    OnWindowThread([&] {
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers);
        event.ignore();
        QApplication::sendEvent(QApplication::focusWidget(), &event);
        kept = event.isAccepted();
    });
    return kept;
}

TEST(Menus, KeysWithoutAltStayWithTheTerminal) {
    FakeHost host;
    WithSession(host, [] {
        EXPECT_TRUE(KeepsKey(Qt::Key_K, Qt::NoModifier));
        EXPECT_TRUE(KeepsKey(Qt::Key_K, Qt::ShiftModifier));
        EXPECT_TRUE(KeepsKey(Qt::Key_K, Qt::ControlModifier));
        EXPECT_FALSE(KeepsKey(Qt::Key_K, Qt::AltModifier));
        EXPECT_FALSE(KeepsKey(Qt::Key_K, Qt::AltModifier | Qt::ShiftModifier));
    });
}

TEST(Menus, F10OpensThemOffline) {
    RunProgram({}, [] {
        Ready();
        PressKey(Qt::Key_F10);
        EXPECT_TRUE(Shown("&File"));
    });
}

TEST(Menus, F10GoesToTheHostInASession) {
    FakeHost host;
    WithSession(host, [&] {
        PressKey(Qt::Key_F10);
        EXPECT_EQ(host.Read(5), "\033[21~");
        PressKey(Qt::Key_F10, Qt::ShiftModifier);
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x") << "with Shift its row is empty";
        OnWindowThread([] { EXPECT_EQ(QApplication::activePopupWidget(), nullptr); });
    });
}

TEST(Menus, OpenMenuClosesWhenTheSessionEnds) {
    FakeHost host;
    WithSession(host, [&] {
        Strike(Qt::Key_S, Qt::AltModifier);
        ASSERT_TRUE(Shown("&Settings"));
        host.Drop();
        DismissBox("Error: Connection to the UNIX Host has been closed...");
        OnWindowThread([] { EXPECT_EQ(QApplication::activePopupWidget(), nullptr); });
        EXPECT_TRUE(FileMenuReads("&Connect... 40011"));
        Strike(Qt::Key_F, Qt::AltModifier);
        EXPECT_TRUE(Shown("&File"));
    });
}

}  // namespace

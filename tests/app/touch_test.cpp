// SPDX-License-Identifier: MIT
// A person who has a finger, and neither mouse nor keys: every action that the README names, on a
// device that fills the desktop's screen. The program is run once for each size of screen.
#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QClipboard>
#include <QDesktopServices>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QtTest/QTest>
#include <QUrl>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/toolbars.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

// ---------------------------------------------------------------- the finger

QPointingDevice* TouchScreen() {
    static QPointingDevice* device = QTest::createTouchDevice();
    return device;
}

// What the desktop lets a finger reach: the menu that is open, or else the box on top and the panel
// that is lent to it.
bool TakesTouches(const QWidget* window) {
    if (const QWidget* menu = QApplication::activePopupWidget()) return window == menu;
    const QWidget* modal = QApplication::activeModalWidget();
    return !modal || window == modal || window == ShellInputPanel();
}

// True if the desktop's screen shows that place of the widget and nothing lies over it.
bool CanBeTouched(const QWidget* widget, QPoint at) {
    if (!widget || !widget->isVisible() || !widget->isEnabled()) return false;
    if (!TakesTouches(widget->window()) || !widget->visibleRegion().contains(at)) return false;
    const QPoint place = widget->mapToGlobal(at);
    if (!QGuiApplication::primaryScreen()->geometry().contains(place)) return false;
    const InputPanel* panel = ShellInputPanel();
    const bool covers = panel->isWindow() && panel->isVisible() && widget->window() != panel &&
                        !QApplication::activePopupWidget();
    return !covers || !panel->geometry().contains(place);
}

// The finger comes down on `from`, and goes up at `to`.
void Drag(QWidget* widget, QPoint from, QPoint to) {
    const QPointer<QWindow> window = widget->window()->windowHandle();
    ASSERT_FALSE(window.isNull());
    ASSERT_TRUE(CanBeTouched(widget, from));
    const QPoint corner = widget->mapTo(widget->window(), QPoint(0, 0));
    QTest::touchEvent(window, TouchScreen(), false).press(0, corner + from, window).commit(false);
    if (window && from != to)
        QTest::touchEvent(window, TouchScreen(), false).move(0, corner + to, window).commit(false);
    if (window)
        QTest::touchEvent(window, TouchScreen(), false)
            .release(0, corner + to, window)
            .commit(false);
}

void TapPlace(QWidget* widget, QPoint at) { Drag(widget, at, at); }

// Where the finger goes, if there is such a place by now.
struct Target {
    QWidget* widget = nullptr;
    QPoint at = {};
};
using Finder = std::function<Target()>;

bool CanBeTouched(const Target& target) { return CanBeTouched(target.widget, target.at); }

QPoint Middle(const QWidget* widget) {
    // A check box is as wide as its place in the dialog; a finger goes for its mark.
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const bool mark = button && button->isCheckable() && widget->width() > 3 * widget->height();
    return mark ? QPoint(widget->height() / 2, widget->height() / 2) : widget->rect().center();
}

Target MiddleOf(QWidget* widget) { return widget ? Target{widget, Middle(widget)} : Target{}; }

// A tap on the groove of a scroll bar, towards what is out of sight.
void ScrollTowards(const Target& target) {
    for (QWidget* at = target.widget->parentWidget(); at; at = at->parentWidget()) {
        auto* area = qobject_cast<QScrollArea*>(at);
        if (!area) continue;
        const QPoint middle = target.widget->mapTo(area->viewport(), target.at);
        const bool sideways = middle.x() < 0 || middle.x() >= area->viewport()->width();
        QScrollBar* bar = sideways ? area->horizontalScrollBar() : area->verticalScrollBar();
        if (!bar->isVisible()) continue;
        const bool back = sideways ? middle.x() < 0 : middle.y() < 0;
        constexpr int kFromTheEnd = 18;  // beside the arrow
        const int along = sideways ? bar->width() : bar->height();
        const int place = back ? kFromTheEnd : along - 1 - kFromTheEnd;
        return TapPlace(
            bar, sideways ? QPoint(place, bar->height() / 2) : QPoint(bar->width() / 2, place));
    }
}

bool InSight(const Finder& find) {
    const auto in_sight = [&] { return CanBeTouched(find()); };
    constexpr int kMostTaps = 12;
    constexpr int kShortly = 300;  // milliseconds
    if (Eventually(in_sight, kShortly)) return true;
    for (int taps = 0; taps < kMostTaps; ++taps) {
        OnWindowThread([&] {
            if (find().widget) ScrollTowards(find());
        });
        OnWindowThread([] {});
        if (Eventually(in_sight, 0)) return true;
    }
    return Eventually(in_sight);
}

void TapTarget(const Finder& find, const std::string& what) {
    ASSERT_TRUE(InSight(find)) << what;
    OnWindowThread([&] { TapPlace(find().widget, find().at); });
}

void Tap(const std::function<QWidget*()>& find, const std::string& what) {
    TapTarget([&] { return MiddleOf(find()); }, what);
}

// ---------------------------------------------------------------- what it touches

QAction* ActionNamed(const QList<QAction*>& actions, const QString& name) {
    for (QAction* action : actions)
        if (QString(action->text()).remove('&') == name) return action;
    return nullptr;
}

QMenu* OpenMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

// First the title in the bar, then the line in the menu that it opened.
void TapMenu(const QString& title, const QString& entry) {
    ASSERT_TRUE(Eventually([&] {
        return ShellMenuStrip() && ActionNamed(ShellMenuStrip()->bar()->actions(), title);
    })) << title.toStdString();
    OnWindowThread([&] {
        QMenuBar* bar = ShellMenuStrip()->bar();
        TapPlace(bar, bar->actionGeometry(ActionNamed(bar->actions(), title)).center());
    });
    ASSERT_TRUE(Eventually([&] { return OpenMenu() && ActionNamed(OpenMenu()->actions(), entry); }))
        << entry.toStdString();
    OnWindowThread([&] {
        const QRect line = OpenMenu()->actionGeometry(ActionNamed(OpenMenu()->actions(), entry));
        ASSERT_TRUE(CanBeTouched(OpenMenu(), line.center())) << entry.toStdString();
        TapPlace(OpenMenu(), line.center());
    });
}

void TapControl(int id) {
    Tap([=] { return DialogWidgetOf(id); }, "control " + std::to_string(id));
}

QAbstractButton* ButtonNamed(const QString& name) {
    for (QAbstractButton* each : DeviceScreen()->findChildren<QAbstractButton*>())
        if (each->isVisible() && each->accessibleName() == name) return each;
    return nullptr;
}

// A narrow device has its buttons on three bars; the first button changes them.
void TapBar(const QString& name) {
    constexpr int kBars = 3;
    for (int bar = 1; bar < kBars; ++bar) {
        if (Eventually([&] { return ButtonNamed(name) != nullptr; }, 300)) break;
        Tap([] { return ButtonNamed("swap toolbar"); }, "swap toolbar");
    }
    Tap([&] { return ButtonNamed(name); }, name.toStdString());
}

void TapKeys(const QString& text) {
    for (const QChar character : text)
        Tap(
            [=]() -> QWidget* {
                for (PanelKey* key : ShellInputPanel()->findChildren<PanelKey*>())
                    if (key->accessibleName() == QString(character)) return key;
                return nullptr;
            },
            QString(character).toStdString());
}

void ShowPanel() {
    Tap([] { return ButtonNamed("Keyboard"); }, "the panel's button");
    ASSERT_TRUE(Eventually([] { return ShellInputPanel()->isVisible(); }));
}

void TapTab(const QString& name) {
    TapTarget(
        [&] {
            auto* bar = FindWindowRecord(ShownDialog())->widget->findChild<QTabBar*>();
            for (int i = 0; bar && i < bar->count(); ++i)
                if (bar->tabText(i) == name) return Target{bar, bar->tabRect(i).center()};
            return Target{};
        },
        name.toStdString());
}

void TapRow(int list, int row) {
    TapTarget(
        [=] {
            auto* widget = qobject_cast<QListWidget*>(DialogWidgetOf(list));
            if (!widget) return Target{};
            return Target{widget->viewport(), widget->visualItemRect(widget->item(row)).center()};
        },
        "row " + std::to_string(row));
}

bool DialogShown(const QString& title) {
    return Eventually([&] {
        const Window* dialog = FindWindowRecord(ShownDialog());
        return dialog && dialog->widget->isVisible() && DialogTitle() == title;
    });
}

bool DialogGone() {
    return Eventually([] { return !ShownDialog(); });
}

void AnswerBox(QMessageBox::StandardButton button) {
    Tap(
        [=]() -> QWidget* {
            return ShownMessageBox() ? ShownMessageBox()->button(button) : nullptr;
        },
        "a button of the box");
}

void OnDevice(const std::function<void(FakeHost&)>& person) {
    FakeHost host;
    Stage stage;
    const QSize size = QGuiApplication::primaryScreen()->size();
    stage.width = size.width(), stage.height = size.height();
    RunProgram(stage, [&] {
        ASSERT_TRUE(Eventually([] { return session.view.cell_height > 0; }));
        person(host);
    });
}

void InSession(const std::function<void(FakeHost&)>& person) {
    OnDevice([&](FakeHost& host) {
        SetHost(u"127.0.0.1", host.port);
        TapMenu("File", "Connect...");
        ASSERT_TRUE(DialogShown("Connect"));
        TapControl(IDOK);
        ASSERT_TRUE(host.Accept());
        host.Send("hello 42");
        ASSERT_TRUE(TerminalShows("hello 42"));
        ASSERT_TRUE(Online());
        person(host);
    });
}

// ---------------------------------------------------------------- the table, row by row

TEST(Touch, TypesAHostOnTheSoftKeyboardAndConnects) {
    OnDevice([](FakeHost& host) {
        SetHost(u"", host.port);
        ShowPanel();
        TapMenu("File", "Connect...");
        ASSERT_TRUE(DialogShown("Connect"));
        TapKeys("127.0.0.1");
        TapControl(IDOK);
        ASSERT_TRUE(host.Accept());
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        TapKeys("ls");
        EXPECT_EQ(host.Read(2), "ls");
    });
}

TEST(Touch, ChangesThePortAndTheProtocol) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        TapMenu("File", "Connect...");
        ASSERT_TRUE(DialogShown("Connect"));
        TapControl(IDC_ADVANCED);
        ASSERT_TRUE(DialogShown("Connect Advanced"));
        TapControl(IDC_PORT);
        TapKeys("4");
        TapControl(IDC_SSH);
        TapControl(IDC_SSH1);
        TapControl(IDC_DES);
        TapControl(IDC_CONFIRM_EXIT);
        TapControl(IDOK);
        ASSERT_TRUE(DialogShown("Connect"));
        TapControl(IDCANCEL);
        ASSERT_TRUE(DialogGone());
        OnWindowThread([] {
            EXPECT_NE(session.settings.port, 23u);
            EXPECT_EQ(session.settings.ssh, 1u);
            EXPECT_EQ(session.settings.confirm_exit, 1u);
        });
    });
}

TEST(Touch, ChangesTheFont) {
    OnDevice([](FakeHost&) {
        TapMenu("Settings", "Font...");
        ASSERT_TRUE(DialogShown("Font"));
        TapRow(IDC_FONTS, 0);
        TapControl(IDC_FONT_BOLD);
        TapControl(IDC_FONT_ITALIC);
        TapControl(IDOK);
        ASSERT_TRUE(DialogGone());
        OnWindowThread([] {
            EXPECT_EQ(session.settings.font_bold, 1u);
            EXPECT_EQ(session.settings.font_italic, 1u);
        });
    });
}

TEST(Touch, ChangesThePropertiesOnEachPage) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        TapMenu("Settings", "Properties...");
        ASSERT_TRUE(DialogShown("Properties"));
        for (const int mark :
             {IDC_HIDESTATUS, IDC_FOLLOWCURSOR, IDC_BELL, IDC_NEGO, IDC_HOTSPOT, IDC_ALIVE})
            TapControl(mark);
        TapControl(IDC_HIDESTATUS);  // and back
        TapTab("Toolbar");
        const ToolbarButton& swap = toolbar_buttons[2];
        const int before = static_cast<int>(swap.onBar3);
        TapRow(IDC_BAR3, 2);
        TapRow(IDC_BAR3, 2);
        TapTab("Keyboard");
        TapRow(IDC_KEYS, 1);
        TapControl(IDC_CHANGE);
        ASSERT_TRUE(DialogShown("Change"));
        TapKeys("k");
        TapControl(IDOK);
        ASSERT_TRUE(DialogShown("Properties"));
        TapControl(IDOK);
        ASSERT_TRUE(DialogGone());
        OnWindowThread([&] {
            EXPECT_EQ(session.settings.nego, 1u);
            EXPECT_EQ(session.settings.hidestatus, 0u);
            EXPECT_NE(static_cast<int>(swap.onBar3), before);
        });
    });
}

TEST(Touch, TypesAnAutomaticLogin) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        TapMenu("Settings", "Auto Login...");
        ASSERT_TRUE(DialogShown("Auto Login"));
        TapControl(IDC_RESP1);
        TapKeys("anna");
        TapControl(IDC_RESP2);
        TapKeys("pw");
        TapControl(IDOK);
        ASSERT_TRUE(DialogGone());
        OnWindowThread([] {
            EXPECT_STREQ(FromWide(session.settings.resp1).toStdString().c_str(), "anna");
            EXPECT_STREQ(FromWide(session.settings.resp2).toStdString().c_str(), "pw");
        });
    });
}

QWidget* InChooser(const std::function<bool(const QWidget&)>& wanted) {
    if (!ShownColorDialog()) return nullptr;
    for (QWidget* each : ShownColorDialog()->window()->findChildren<QWidget*>())
        if (each->isVisible() && wanted(*each)) return each;
    return nullptr;
}

bool IsOk(const QWidget& widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(&widget);
    return button && QString(button->text()).remove('&') == "OK";
}

// The squares of colours, or the field that a small chooser has alone.
bool HasColors(const QWidget& widget) {
    const QString name = widget.metaObject()->className();
    return name == "QColorPicker" || name.contains("Well");
}

TEST(Touch, ChoosesEachColor) {
    OnDevice([](FakeHost&) {
        DWORD before = 0;
        OnWindowThread([&] { before = session.settings.color_bg; });
        for (const char* entry :
             {"Background Color...", "Cursor Color...", "Color Text...", "Color Bold..."}) {
            TapMenu("Settings", entry);
            Tap([] { return InChooser(HasColors); }, entry);
            Tap([] { return InChooser(IsOk); }, entry);
            ASSERT_TRUE(Eventually([] { return !ShownColorDialog(); })) << entry;
        }
        OnWindowThread([&] { EXPECT_NE(session.settings.color_bg, before); });
    });
}

TEST(Touch, FontGrowsAndShrinksByTheBar) {
    OnDevice([](FakeHost&) {
        const int before = session.view.cell_height;
        TapBar("larger font");
        EXPECT_TRUE(Eventually([=] { return session.view.cell_height > before; }));
        TapBar("smaller font");
        EXPECT_TRUE(Eventually([=] { return session.view.cell_height == before; }));
    });
}

TEST(Touch, MarksCopiesAndPastes) {
    InSession([](FakeHost& host) {
        OnWindowThread([] {
            const int cell = session.view.cell_width, middle = session.view.cell_height / 2;
            QWidget* terminal = FindWindowRecord(session.client_window)->widget;
            Drag(terminal, QPoint(cell / 2, middle), QPoint(4 * cell + cell / 2, middle));
        });
        ASSERT_TRUE(Eventually([] { return session.screen.selection_active != 0; }));
        TapBar("cut");
        EXPECT_TRUE(
            Eventually([] { return QApplication::clipboard()->text().trimmed() == "hello"; }));
        TapBar("paste");
        EXPECT_EQ(host.Read(5), "hello");
    });
}

// Stands in the way of the desktop's viewer.
class Viewer : public QObject {
    Q_OBJECT
  public:
    QUrl opened;
  public Q_SLOTS:
    void Open(const QUrl& url) { opened = url; }
};

TEST(Touch, OpensTheHelp) {
    OnDevice([](FakeHost&) {
        Viewer viewer;
        OnWindowThread([&] { QDesktopServices::setUrlHandler("file", &viewer, "Open"); });
        TapMenu("Settings", "Help");
        EXPECT_TRUE(Eventually([&] { return viewer.opened.path().endsWith("/telnet.htm"); }));
        OnWindowThread([] { QDesktopServices::unsetUrlHandler("file"); });
        TapMenu("Settings", "About...");
        TapControl(IDOK);
        EXPECT_TRUE(DialogGone());
    });
}

TEST(Touch, EveryFunctionKeyAndEveryKeyOfTheMenusIsSent) {
    InSession([](FakeHost& host) {
        TapMenu("Fx", "F1");
        EXPECT_EQ(host.Read(2), "\217P");
        TapMenu("Fx", "F12");
        EXPECT_EQ(host.Read(5), "\033[24~");
        TapMenu("Fx", "F20");
        EXPECT_EQ(host.Read(5), "\033[34~");
        TapMenu("Keys", "Enter");
        EXPECT_EQ(host.Read(1), "\r");
        TapMenu("Keys", "Arrow Up");
        EXPECT_EQ(host.Read(3), "\033[A");
        TapBar("P5");
        EXPECT_EQ(host.Read(5), "\033[15~");
        TapBar("P20");
        EXPECT_EQ(host.Read(5), "\033[34~");
    });
}

TEST(Touch, ScrollsWhatASmallScreenCutsOff) {
    OnDevice([](FakeHost&) {
        QScrollBar* bar = nullptr;
        OnWindowThread([&] { bar = FindWindowRecord(session.client_window)->vertical.bar; });
        while (!Eventually([&] { return bar->isVisible(); }, 100)) TapBar("larger font");
        OnWindowThread([&] { TapPlace(bar, QPoint(bar->width() / 2, bar->height() - 5)); });
        EXPECT_TRUE(Eventually([] { return session.view.view_top > 0; }));
    });
}

TEST(Touch, EndsTheSessionAndLeaves) {
    InSession([](FakeHost& host) {
        OnWindowThread([] { session.settings.confirm_exit = 1; });
        TapMenu("File", "Disconnect...");
        AnswerBox(QMessageBox::Ok);
        EXPECT_TRUE(host.Closed());
        ASSERT_TRUE(Offline());
        TapMenu("File", "Exit");
        for (int waited = 0; ProgramRuns() && waited < 10000; waited += 10) QTest::qSleep(10);
        EXPECT_FALSE(ProgramRuns());
    });
}

// ---------------------------------------------------------------- sizes

// The device's buttons are 21 by 22 pixels, a key of its panel a fifteenth of the width and 16
// high, a title of its menus 16 high, and its scroll bars 13 across.
TEST(Touch, NothingIsSmallerThanTheDevicesOwn) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        OnWindowThread([] {
            int buttons = 0, keys = 0;
            for (QAbstractButton* each : DeviceScreen()->findChildren<QAbstractButton*>()) {
                if (!each->isVisible() || qobject_cast<PanelKey*>(each)) continue;
                EXPECT_GE(each->width(), 21) << each->accessibleName().toStdString();
                EXPECT_GE(each->height(), 22) << each->accessibleName().toStdString();
                buttons++;
            }
            const int width = DeviceScreen()->width();
            for (PanelKey* key : ShellInputPanel()->findChildren<PanelKey*>()) {
                EXPECT_GE(key->width(), width / 15);
                EXPECT_GE(key->height(), 16);
                keys++;
            }
            EXPECT_GT(buttons, 5);
            EXPECT_GT(keys, 50);
            QMenuBar* bar = ShellMenuStrip()->bar();
            for (QAction* title : bar->actions()) {
                EXPECT_GE(bar->actionGeometry(title).height(), 16) << title->text().toStdString();
                for (QAction* entry : title->menu()->actions())
                    EXPECT_GE(title->menu()->actionGeometry(entry).height(),
                              entry->isSeparator() ? 0 : 13)
                        << entry->text().toStdString();
            }
            const ScrollBarState& scrolled = FindWindowRecord(session.client_window)->vertical;
            EXPECT_GE(scrolled.bar->width(), 13);
        });
    });
}

}  // namespace

#include "touch_test.moc"

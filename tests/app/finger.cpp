// SPDX-License-Identifier: MIT
// Touch events, and the ways of a finger through menus, bars, dialogs and the soft keyboard.
#include "tests/app/finger.h"

#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QListWidget>
#include <QScreen>
#include <QScrollBar>
#include <QTabBar>
#include <QtTest/QTest>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

// ---------------------------------------------------------------- the finger

static QPointingDevice* TouchScreen() {
    static QPointingDevice* device = QTest::createTouchDevice();
    return device;
}

// What the desktop lets a finger reach: the menu that is open, or else the box on top and the panel
// that is lent to it.
static bool TakesTouches(const QWidget* window) {
    if (const QWidget* menu = QApplication::activePopupWidget()) return window == menu;
    const QWidget* modal = QApplication::activeModalWidget();
    return !modal || window == modal || window == ShellInputPanel();
}

// True if the desktop's screen shows that place of the widget and nothing lies over it.
static bool CanBeTouched(const QWidget* widget, QPoint at) {
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

static bool CanBeTouched(const Target& target) { return CanBeTouched(target.widget, target.at); }

static QPoint Middle(const QWidget* widget) {
    // A check box is as wide as its place in the dialog; a finger goes for its mark.
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const bool mark = button && button->isCheckable() && widget->width() > 3 * widget->height();
    return mark ? QPoint(widget->height() / 2, widget->height() / 2) : widget->rect().center();
}

static Target MiddleOf(QWidget* widget) {
    return widget ? Target{widget, Middle(widget)} : Target{};
}

static void ScrollTowards(const Target& target);

static QPoint AlongBar(const QScrollBar& bar, int place) {
    return bar.orientation() == Qt::Horizontal ? QPoint(place, bar.height() / 2)
                                               : QPoint(bar.width() / 2, place);
}

// A tap on the groove of the bar; on its arrow where the slider covers the groove's end.
static void TapBarTowards(QScrollBar* bar, bool back) {
    constexpr int kGroove = 18, kArrow = 5;  // from the end
    const int along = bar->orientation() == Qt::Horizontal ? bar->width() : bar->height();
    const int before = bar->value();
    for (const int from_end : {kGroove, kArrow}) {
        const QPoint place = AlongBar(*bar, back ? from_end : along - 1 - from_end);
        if (!CanBeTouched(bar, place)) return ScrollTowards({bar, place});
        TapPlace(bar, place);
        if (bar->value() != before) return;
    }
}

// A tap on a scroll bar, towards what is out of sight.
static void ScrollTowards(const Target& target) {
    for (QWidget* at = target.widget->parentWidget(); at; at = at->parentWidget()) {
        auto* area = qobject_cast<QAbstractScrollArea*>(at);
        if (!area || target.widget == area->verticalScrollBar() ||
            target.widget == area->horizontalScrollBar())
            continue;
        const QPoint middle = target.widget->mapTo(area->viewport(), target.at);
        if (area->viewport()->rect().contains(middle)) continue;
        const bool sideways = middle.x() < 0 || middle.x() >= area->viewport()->width();
        QScrollBar* bar = sideways ? area->horizontalScrollBar() : area->verticalScrollBar();
        if (bar->isVisible()) return TapBarTowards(bar, sideways ? middle.x() < 0 : middle.y() < 0);
    }
}

bool InSight(const Finder& find) {
    const auto in_sight = [&] { return CanBeTouched(find()); };
    constexpr int kMostTaps = 40;
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
    if (testing::Test::HasFatalFailure()) return;  // nothing that follows can succeed
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
    if (testing::Test::HasFatalFailure()) return;
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

Finder ControlFinder(int id) {
    return [=] { return MiddleOf(DialogWidgetOf(id)); };
}

void TapControl(int id) { TapTarget(ControlFinder(id), "control " + std::to_string(id)); }

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

void TapKey(const QString& label) {
    Tap(
        [=]() -> QWidget* {
            for (PanelKey* key : ShellInputPanel()->findChildren<PanelKey*>())
                if (key->accessibleName() == label) return key;
            return nullptr;
        },
        label.toStdString());
}

void TapKeys(const QString& text) {
    for (const QChar character : text) TapKey(character);
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
            const QMessageBox* box = ShownMessageBox();
            if (!box) return nullptr;
            EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(box->geometry()))
                << "the screen cuts the box off";
            return box->button(button);
        },
        "a button of the box");
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

bool HasBrightness(const QWidget& widget) {
    return QString(widget.metaObject()->className()) == "QColorLuminancePicker";
}

bool HasColors(const QWidget& widget) {
    const QString name = widget.metaObject()->className();
    return name == "QColorPicker" || name.contains("Well");
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

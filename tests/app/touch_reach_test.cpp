// SPDX-License-Identifier: MIT
// What a finger reaches in every dialog while the soft keyboard is shown, and the sizes of what it
// has to hit.
#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTabBar>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/app/finger.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"
#include "ui/dialogs/dialogs.h"

namespace {

// ---------------------------------------------------------------- the controls of a dialog

struct Control {
    int id;
    QWidget* widget;
};

// Those that do something, of the topmost dialog or of the page in front.
std::vector<Control> ShownControls() {
    std::vector<Control> controls;
    OnWindowThread([&] {
        for (const Window* window : AllWindows()) {
            const bool here = window->control && window->parent == ShownPage();
            if (here && window->widget->isEnabled() && !qobject_cast<QLabel*>(window->widget))
                controls.push_back({window->id, window->widget});
        }
    });
    return controls;
}

// Fn with the arrow to the right is the key End.
void TapEnd() {
    TapKey("Fn");
    TapKey("End");
}

void FillIn(const Control& edit) {
    TapControl(edit.id);
    TapEnd();
    TapKeys("7");
    EXPECT_TRUE(Eventually([&] { return ControlText(edit.id).endsWith('7'); })) << edit.id;
}

void Toggle(const Control& box) {
    bool before = false;
    OnWindowThread([&] { before = ControlChecked(box.id); });
    const bool radio = qobject_cast<QRadioButton*>(box.widget) != nullptr;
    TapControl(box.id);
    EXPECT_TRUE(Eventually([&] { return ControlChecked(box.id) == (radio || !before); })) << box.id;
}

void ChooseLast(const Control& list) {
    int rows = 0;
    OnWindowThread([&] { rows = qobject_cast<QListWidget*>(list.widget)->count(); });
    TapRow(list.id, rows - 1);
    const auto is_chosen = [&] {
        return qobject_cast<QListWidget*>(list.widget)->currentRow() == rows - 1;
    };
    EXPECT_TRUE(Eventually(is_chosen)) << list.id;
}

// Does to every control what it is for, but presses no button.
void UseControls(const std::string& dialog) {
    SCOPED_TRACE(dialog);
    const std::vector<Control> controls = ShownControls();
    EXPECT_FALSE(controls.empty());
    for (const Control& each : controls) {
        if (qobject_cast<QPushButton*>(each.widget)) {
            EXPECT_TRUE(InSight(ControlFinder(each.id))) << "button " << each.id;
        } else if (qobject_cast<QAbstractButton*>(each.widget)) {
            Toggle(each);
        } else if (qobject_cast<QListWidget*>(each.widget)) {
            ChooseLast(each);
        } else {
            FillIn(each);
        }
    }
}

struct DialogRow {
    const char* menu;
    const char* entry;
    const char* title;
};
constexpr DialogRow kDialogs[] = {
    {"File", "Connect...", "Connect"},
    {"Settings", "Font...", "Font"},
    {"Settings", "Auto Login...", "Auto Login"},
};
constexpr const char* kPages[] = {"Other", "Toolbar", "Keyboard"};

void OpenDialog(const DialogRow& row) {
    TapMenu(row.menu, row.entry);
    ASSERT_TRUE(DialogShown(row.title));
}

void Leave() {
    TapControl(IDCANCEL);
    ASSERT_TRUE(DialogGone());
}

// The dialog blocks the window thread's caller, so the person does not wait for it.
void OpenSignOn() {
    QMetaObject::invokeMethod(
        qApp, [] { AskSignOn(); }, Qt::QueuedConnection);
    ASSERT_TRUE(DialogShown("Sign on to the host"));
}

void OpenOver(int button, const char* title) {
    TapControl(button);
    ASSERT_TRUE(DialogShown(title));
}

// Calls `look` with each dialog and page open.
void InEachDialog(const std::function<void(const std::string&)>& look) {
    for (const DialogRow& row : kDialogs) {
        OpenDialog(row);
        look(row.title);
        Leave();
    }
    OpenDialog({"File", "Connect...", "Connect"});
    OpenOver(IDC_ADVANCED, "Connect Advanced");
    look("Connect Advanced");
    TapControl(IDCANCEL);
    ASSERT_TRUE(DialogShown("Connect"));
    Leave();
    OpenDialog({"Settings", "Properties...", "Properties"});
    for (const char* page : kPages) {
        TapTab(page);
        look(page);
    }
    OpenOver(IDC_CHANGE, "Change");
    look("Change");
    TapControl(IDCANCEL);
    ASSERT_TRUE(DialogShown("Properties"));
    Leave();
    OpenSignOn();
    look("Sign on to the host");
    Leave();
}

TEST(TouchReach, EveryControlOfEveryDialogIsUsedWithTheSoftKeyboard) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        InEachDialog(UseControls);
    });
}

TEST(TouchReach, EveryControlIsUsedWithTheSoftKeyboardThatATapIntoAFieldShows) {
    OnDevice([](FakeHost&) {
        InEachDialog([](const std::string& dialog) {
            UseControls(dialog);
            for (const Control& each : ShownControls())
                if (qobject_cast<QPushButton*>(each.widget)) {
                    EXPECT_TRUE(InSight(ControlFinder(each.id))) << dialog << ' ' << each.id;
                }
        });
        OnWindowThread([] { EXPECT_TRUE(ShellInputPanel()->isHidden()); });
    });
}

void UseTheChoosersFields(bool shown) {
    OnDevice([=](FakeHost&) {
        if (shown) ShowPanel();
        TapMenu("Settings", "Background Color...");
        ASSERT_TRUE(Eventually([] { return ShownColorDialog() != nullptr; }));
        std::vector<QLineEdit*> fields;
        OnWindowThread([&] {
            for (QLineEdit* each : ShownColorDialog()->findChildren<QLineEdit*>())
                if (each->isVisible()) fields.push_back(each);
        });
        ASSERT_GE(fields.size(), 3u);
        for (QLineEdit* field : fields) {
            QString before;
            OnWindowThread([&] { before = field->text(); });
            Tap([=] { return field; }, "a field of the chooser");
            TapEnd();
            TapKey("Bksp");
            EXPECT_TRUE(Eventually([&] { return field->text() != before; })) << qPrintable(before);
        }
        Tap([] { return InChooser(IsOk); }, "OK");
        ASSERT_TRUE(Eventually([] { return !ShownColorDialog(); }));
        // The panel is the device's own again.
        OnWindowThread([=] {
            EXPECT_FALSE(ShellInputPanel()->isWindow());
            EXPECT_EQ(ShellInputPanel()->isVisible(), shown);
        });
        EXPECT_NE(session.settings.color_bg, 0xFFFFFFu);
    });
}

TEST(TouchReach, TheColorChoosersFieldsAreTypedInto) { UseTheChoosersFields(true); }

TEST(TouchReach, ATapIntoAFieldOfTheColorChooserShowsTheSoftKeyboard) {
    UseTheChoosersFields(false);
}

// ---------------------------------------------------------------- sizes

// Pixels of the device: its buttons are 21 by 22, a key of its panel is a fifteenth of the width
// and 16 high, a title of its menus is 20 by 16, a line of its menus 16 high and of its lists 11,
// and a scroll bar is 13 across.
constexpr int kButtonWidth = 21, kButtonHeight = 22, kKeyHeight = 16, kTitleWidth = 20, kTitle = 16;
constexpr int kMenuLine = 16, kListLine = 11, kScrollBar = 13, kKeysOfAWidth = 15;

void ExpectButtons() {
    int buttons = 0;
    for (QAbstractButton* each : DeviceScreen()->findChildren<QAbstractButton*>()) {
        if (!each->isVisible() || qobject_cast<PanelKey*>(each)) continue;
        EXPECT_GE(each->width(), kButtonWidth) << each->accessibleName().toStdString();
        EXPECT_GE(each->height(), kButtonHeight) << each->accessibleName().toStdString();
        buttons++;
    }
    EXPECT_GT(buttons, 5);
}

void ExpectKeys() {
    const int width = DeviceScreen()->width() / kKeysOfAWidth;
    const auto keys = ShellInputPanel()->findChildren<PanelKey*>();
    EXPECT_GT(keys.size(), 50);
    for (PanelKey* key : keys) {
        EXPECT_GE(key->width(), width) << key->accessibleName().toStdString();
        EXPECT_GE(key->height(), kKeyHeight) << key->accessibleName().toStdString();
    }
}

void ExpectMenus() {
    QMenuBar* bar = ShellMenuStrip()->bar();
    EXPECT_EQ(bar->actions().size(), 4);
    for (QAction* title : bar->actions()) {
        EXPECT_GE(bar->actionGeometry(title).height(), kTitle) << title->text().toStdString();
        EXPECT_GE(bar->actionGeometry(title).width(), kTitleWidth) << title->text().toStdString();
        for (QAction* entry : title->menu()->actions())
            if (!entry->isSeparator()) {
                EXPECT_GE(title->menu()->actionGeometry(entry).height(), kMenuLine)
                    << entry->text().toStdString();
            }
    }
}

void ExpectScrollBars(const QWidget* window) {
    for (const QScrollBar* bar : window->findChildren<QScrollBar*>())
        if (bar->isVisible()) {
            EXPECT_GE(std::min(bar->width(), bar->height()), kScrollBar);
        }
}

TEST(TouchReach, NothingIsSmallerThanTheDevicesOwn) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        OnWindowThread([] {
            ExpectButtons();
            ExpectKeys();
            ExpectMenus();
            EXPECT_GE(FindWindowRecord(session.client_window)->vertical.bar->width(), kScrollBar);
            EXPECT_GE(FindWindowRecord(session.client_window)->horizontal.bar->height(),
                      kScrollBar);
        });
    });
}

// In dialog units, as the device's dialogs have them. A side can lose a pixel, because both its
// ends are rounded.
struct KindRow {
    bool (*is)(const QWidget* widget);
    int width, height;
};
template <typename Kind>
bool Is(const QWidget* widget) {
    return qobject_cast<const Kind*>(widget) != nullptr;
}
constexpr KindRow kKinds[] = {
    {Is<QPushButton>, 28, 14}, {Is<QCheckBox>, 32, 11}, {Is<QRadioButton>, 34, 12},
    {Is<QLineEdit>, 34, 12},   {Is<QComboBox>, 34, 12},
};

void ExpectControls(const std::string& dialog) {
    const std::vector<Control> controls = ShownControls();
    OnWindowThread([&] {
        for (const Control& each : controls) {
            for (const KindRow& row : kKinds) {
                if (!row.is(each.widget)) continue;
                const QSize least = DialogPixels(row.width, row.height) - QSize(1, 1);
                EXPECT_GE(each.widget->width(), least.width()) << dialog << ' ' << each.id;
                EXPECT_GE(each.widget->height(), least.height()) << dialog << ' ' << each.id;
            }
            if (auto* list = qobject_cast<QListWidget*>(each.widget)) {
                EXPECT_GE(list->visualItemRect(list->item(0)).height(), kListLine) << each.id;
            }
        }
        const QWidget* window = FindWindowRecord(ShownDialog())->widget;
        ExpectScrollBars(window);
        const auto* tabs = window->findChild<QTabBar*>();
        for (int i = 0; tabs && i < tabs->count(); i++)
            EXPECT_GE(tabs->tabRect(i).height(), kTitle);
    });
}

TEST(TouchReach, NoControlOfADialogIsSmallerThanTheDevicesOwn) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        InEachDialog(ExpectControls);
    });
}

}  // namespace

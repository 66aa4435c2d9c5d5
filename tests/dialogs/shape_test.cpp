// SPDX-License-Identifier: MIT
// The dialogs on the screen: controls, labels, sizes, names for a screen reader, and the keys that
// work in every dialog.
#include <gtest/gtest.h>
#include <algorithm>
#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/services/resources.h"
#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/dialogs/dialog_cases.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

namespace {

struct ShownControl {
    int id;
    QWidget* widget;
    std::string label;
    QRect place;  // on the device's screen
};

// In the order of their creation. Call it on the window thread.
std::vector<ShownControl> ControlsOf(HWND dialog) {
    std::vector<ShownControl> controls;
    for (const Window* window : AllWindows()) {
        if (window->parent != dialog || !window->control) continue;
        RECT r;
        GetWindowRect(window->handle, &r);
        WCHAR text[200] = {};
        GetWindowTextW(window->handle, text, 200);
        controls.push_back({static_cast<int16_t>(window->id), window->widget.data(),
                            FromWide(text).toStdString(),
                            QRect(QPoint(r.left, r.top), QPoint(r.right - 1, r.bottom - 1))});
    }
    return controls;
}

Kind KindOf(const QWidget* widget) {
    if (qobject_cast<const QLabel*>(widget)) return Kind::kStatic;
    if (qobject_cast<const QLineEdit*>(widget)) return Kind::kEdit;
    if (qobject_cast<const QComboBox*>(widget)) return Kind::kCombo;
    if (qobject_cast<const QAbstractItemView*>(widget)) return Kind::kList;
    if (qobject_cast<const QCheckBox*>(widget)) return Kind::kCheck;
    if (qobject_cast<const QRadioButton*>(widget)) return Kind::kRadio;
    const auto* button = qobject_cast<const QPushButton*>(widget);
    return button && button->isDefault() ? Kind::kDefault : Kind::kButton;
}

bool HasLabel(Kind kind) {
    return kind != Kind::kEdit && kind != Kind::kCombo && kind != Kind::kList;
}

class EachDialog : public testing::TestWithParam<DialogCase> {};

// Style bits for scrolling sideways: 0x80 of an edit, 0x40 of a combo box.
bool ScrollsSideways(const Window& window) {
    const Kind kind = KindOf(window.widget);
    if (kind == Kind::kEdit) return (window.control->style & 0x80) != 0;
    return kind != Kind::kCombo || (window.control->style & 0x40) != 0;
}

Stage FreshStage(int width = 640, int height = 480) {
    Stage stage;
    stage.width = width, stage.height = height;
    return stage;
}

TEST_P(EachDialog, FieldsScrollSideways) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = GetParam().open();
        OnWindowThread([=] {
            for (const Window* window : AllWindows()) {
                if (window->parent != dialog || !window->control) continue;
                EXPECT_TRUE(ScrollsSideways(*window)) << window->id;
            }
        });
    });
}

TEST_P(EachDialog, HasItsControlsInOrderWithTheirNumbersAndLabels) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = GetParam().open();
        OnWindowThread([=] {
            const auto shown = ControlsOf(dialog);
            const auto& expected = GetParam().controls;
            ASSERT_EQ(shown.size(), expected.size());
            for (size_t i = 0; i < shown.size(); i++) {
                EXPECT_EQ(shown[i].id, expected[i].id) << i;
                EXPECT_EQ(KindOf(shown[i].widget), expected[i].kind) << expected[i].id;
                if (HasLabel(expected[i].kind)) {
                    EXPECT_EQ(shown[i].label, expected[i].label);
                }
            }
        });
    });
}

TEST(Templates, AreFoundByTheirNumbers) {
    const struct {
        int number;
        const char16_t* caption;
        size_t controls;
    } kRows[] = {{103, u"About TELNET", 4},
                 {104, u"Font", 6},
                 {108, u"Connect", 5},
                 {113, u"Toolbar", 6},
                 {118, u"Connect Advanced", 14},
                 {127, u"Auto Login", 11},
                 {1051, u"Other", 10},
                 {1054, u"Keyboard", 5},
                 {1545, u"Sign on to the host", 8}};
    RunProgram(FreshStage(), [&] {
        OnWindowThread([&] {
            for (const auto& row : kRows) {
                DialogTemplate shape;
                ASSERT_TRUE(LoadDialogTemplate(MAKEINTRESOURCE(row.number), &shape)) << row.number;
                EXPECT_EQ(shape.caption, row.caption);
                EXPECT_EQ(shape.items.size(), row.controls) << row.number;
            }
        });
    });
}

// The size that the widget needs for its text; a static text may wrap.
QSize NeededRoom(const QWidget* widget) {
    if (const auto* button = qobject_cast<const QPushButton*>(widget))
        return button->fontMetrics().boundingRect(button->text()).size() + QSize(6, 2);
    const auto* label = qobject_cast<const QLabel*>(widget);
    if (!label) return widget->sizeHint();
    if (!label->wordWrap()) return label->sizeHint();
    return QSize(0, label->heightForWidth(label->width()));
}

TEST_P(EachDialog, FitsADeviceOf240PixelsWithAllItsTexts) {
    RunProgram(FreshStage(240, 320), [] {
        const HWND dialog = GetParam().open();
        OnWindowThread([=] {
            RECT client;
            const HWND top = GetActiveWindow();
            GetWindowRect(top, &client);
            EXPECT_LE(client.right - client.left, 240);
            EXPECT_GE(client.left, 0);
            EXPECT_LE(client.right, 240);
            GetWindowRect(dialog, &client);
            const QRect room(QPoint(client.left, client.top),
                             QPoint(client.right - 1, client.bottom - 1));
            for (const ShownControl& control : ControlsOf(dialog)) {
                EXPECT_TRUE(room.contains(control.place)) << control.id << " " << control.label;
                const Kind kind = KindOf(control.widget);
                if (!HasLabel(kind)) continue;
                const QSize needed = NeededRoom(control.widget);
                EXPECT_LE(needed.width(), control.widget->width()) << control.label;
                const int height = kind == Kind::kStatic ? needed.height() - 1 : 0;
                EXPECT_LE(height, control.widget->height()) << control.label;
            }
        });
    });
}

// A box or circle that is higher than its control would be cut off at the bottom.
TEST_P(EachDialog, MarksAreDrawnWhole) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = GetParam().open();
        OnWindowThread([=] {
            for (const ShownControl& control : ControlsOf(dialog)) {
                const Kind kind = KindOf(control.widget);
                if (kind != Kind::kCheck && kind != Kind::kRadio) continue;
                const auto height = kind == Kind::kCheck ? QStyle::PM_IndicatorHeight
                                                         : QStyle::PM_ExclusiveIndicatorHeight;
                EXPECT_GE(control.widget->height(),
                          control.widget->style()->pixelMetric(height, nullptr, control.widget))
                    << control.label;
            }
        });
    });
}

TEST_P(EachDialog, ControlsDoNotOverlap) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = GetParam().open();
        OnWindowThread([=] {
            const auto shown = ControlsOf(dialog);
            for (size_t i = 0; i < shown.size(); i++)
                for (size_t j = 0; j < i; j++)
                    EXPECT_FALSE(shown[i].place.intersects(shown[j].place))
                        << shown[i].id << " " << shown[i].label << " and " << shown[j].id << " "
                        << shown[j].label;
        });
    });
}

class CentredDialog : public testing::TestWithParam<DialogCase> {};

TEST_P(CentredDialog, IsCentredOverTheMainWindow) {
    for (const auto& [width, height] : {std::pair(640, 400), {240, 400}, {150, 100}}) {
        RunProgram(FreshStage(width, height), [] {
            const RECT place = Place(GetParam().open());
            RECT room = {};
            OnWindowThread([&] { GetClientRect(session.main_window, &room); });
            const int left = (room.right - (place.right - place.left)) / 2;
            const int top = (room.bottom - (place.bottom - place.top)) / 2;
            EXPECT_EQ(place.left, std::max(0, left));
            EXPECT_EQ(place.top, std::max(0, top));
        });
    }
}

// The text as a screen reader reads it: without the colon of a field's text or a hyphenation.
std::string Spoken(QString text) {
    QString spoken = text.remove("-\n").simplified();
    while (spoken.endsWith(':') || spoken.endsWith(' ')) spoken.chop(1);
    return spoken.toStdString();
}

TEST(ScreenReader, SaysAWordOfTwoLinesInOnePiece) {
    RunProgram(FreshStage(), [] {
        OpenDialog(40012, "Properties");
        OnWindowThread([] {
            EXPECT_EQ(DialogWidgetOf(1003)->accessibleName(), QString("Modem connection name"));
        });
    });
}

// A label that is there twice has its number in the names of the fields behind it.
static std::string NumberOf(const std::vector<ShownControl>& controls, size_t label) {
    const auto same = [&](const ShownControl& control) {
        return KindOf(control.widget) == Kind::kStatic && control.label == controls[label].label;
    };
    if (std::count_if(controls.begin(), controls.end(), same) < 2) return "";
    const auto here = controls.begin() + static_cast<std::ptrdiff_t>(label);
    return " " + std::to_string(std::count_if(controls.begin(), here + 1, same));
}

// The text before a field is the field's name.
TEST_P(EachDialog, AScreenReaderFindsEachControlsName) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = GetParam().open();
        OnWindowThread([=] {
            std::string before;
            const std::vector<ShownControl> controls = ControlsOf(dialog);
            for (size_t i = 0; i < controls.size(); ++i) {
                const ShownControl& control = controls[i];
                const Kind kind = KindOf(control.widget);
                if (HasLabel(kind))
                    before = Spoken(QString::fromStdString(control.label)) + NumberOf(controls, i);
                if (kind == Kind::kStatic) continue;
                auto* reader = QAccessible::queryAccessibleInterface(control.widget);
                ASSERT_NE(reader, nullptr) << control.id;
                EXPECT_EQ(Spoken(reader->text(QAccessible::Name)), before);
            }
        });
    });
}

TEST_P(EachDialog, TabVisitsItsControlsInOrderAndBackwards) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = GetParam().open();
        const std::vector<int>& tabs = GetParam().tabs;
        if (GetParam().caption == "Properties") {  // the focus may be on the tabs at first
            for (int presses = 0; presses < 8 && FocusedControl(dialog) != tabs[0]; presses++)
                PressKey(Qt::Key_Tab);
        }
        for (size_t i = 0; i < tabs.size(); i++) {
            EXPECT_EQ(FocusedControl(dialog), tabs[i]) << i;
            if (i + 1 < tabs.size()) PressKey(Qt::Key_Tab);
        }
        for (size_t i = tabs.size(); i-- > 1;) {
            EXPECT_EQ(FocusedControl(dialog), tabs[i]);
            PressKey(Qt::Key_Backtab, Qt::ShiftModifier);
        }
        EXPECT_EQ(FocusedControl(dialog), tabs[0]);
    });
}

// A page closes with its sheet.
HWND TopLevel(HWND dialog, bool page) {
    HWND top = dialog;
    OnWindowThread([&] {
        if (page) top = GetParent(dialog);
    });
    return top;
}

TEST_P(EachDialog, EscClosesIt) {
    RunProgram(FreshStage(), [] {
        const HWND top = TopLevel(GetParam().open(), GetParam().caption == "Properties");
        PressKey(Qt::Key_Escape);
        EXPECT_TRUE(Closed(top));
    });
}

TEST_P(EachDialog, EnterPressesTheDefaultButton) {
    RunProgram(FreshStage(), [] {
        const HWND top = TopLevel(GetParam().open(), GetParam().caption == "Properties");
        PressKey(Qt::Key_Return);
        EXPECT_TRUE(Closed(top));
    });
}

TEST_P(EachDialog, SpaceWorksTheControlWithTheFocus) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = GetParam().open();
        for (const ControlCase& control : GetParam().controls) {
            if (control.kind != Kind::kCheck) continue;
            const bool marked = Marked(dialog, control.id);
            for (int presses = 0; presses < 20 && FocusedControl(dialog) != control.id; presses++)
                PressKey(Qt::Key_Tab);
            PressKey(Qt::Key_Space);
            OnWindowThread([] {});
            EXPECT_NE(Marked(dialog, control.id), marked) << control.label;
        }
    });
}

TEST_P(EachDialog, TheProgramCanEndBehindIt) {
    EXPECT_EQ(RunProgram(FreshStage(), [] { GetParam().open(); }), 0);
}

// ---------------------------------------------------------------- damaged settings

const char16_t* const kNumbers[] = {
    u"blink",    u"fsize",     u"bell",         u"alive",      u"xbox",        u"exit_dis",
    u"ssh",      u"ssh_type",  u"confirm_exit", u"table",      u"autoconnect", u"followcursor",
    u"port",     u"nego",      u"hidestatus",   u"hotspot",    u"ssh_def",     u"color_bg",
    u"color_fg", u"ssh_type2", u"color_cursor", u"color_bold", u"font_bold",   u"font_italic"};
const char16_t* const kTexts[] = {u"fname",  u"host",   u"hist0a", u"hist1a",   u"hist2a",
                                  u"hist3a", u"hist4a", u"sear1",  u"sear2",    u"resp1",
                                  u"resp2",  u"ssh_u",  u"ssh_p",  u"termtype", u"ras"};

void StoreNumbers(DWORD value) {
    for (const char16_t* name : kNumbers) WriteNumber(name, value);
    for (int i = 0; i < 27; i++) {
        WCHAR name[16];
        wsprintfW(name, u"tbar%d", i);
        WriteNumber(name, value);
    }
}

void StoreTexts(const std::u16string& text) {
    for (const char16_t* name : kTexts) WriteString(name, text.c_str());
    for (int i = 0; i < 66; i++) {
        WCHAR name[16];
        wsprintfW(name, u"key%d", i);
        WriteString(name, text.c_str());
    }
}

TEST_P(EachDialog, OpensAndClosesWithEverySettingOutOfRange) {
    const bool page = GetParam().caption == "Properties";
    for (DWORD value : {0xFFFFFFFFu, 0x80000000u, 26u}) {
        Stage stage = FreshStage();
        stage.before = [=] {
            StoreNumbers(value);
            StoreTexts(u"%s%n\\\xd800\xfffe\x0001\x4e2d&\t%99999d");
        };
        const int result = RunProgram(stage, [=] {
            const HWND top = TopLevel(GetParam().open(), page);
            PressKey(Qt::Key_Return);
            EXPECT_TRUE(Closed(top));
        });
        EXPECT_EQ(result, 0);
    }
}

std::vector<DialogCase> CentredDialogs() {
    std::vector<DialogCase> centred;
    for (const DialogCase& dialog : dialog_cases)
        if (dialog.centred) centred.push_back(dialog);
    return centred;
}

INSTANTIATE_TEST_SUITE_P(Each, CentredDialog, testing::ValuesIn(CentredDialogs()),
                         [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(Each, EachDialog, testing::ValuesIn(dialog_cases),
                         [](const auto& info) { return info.param.name; });

// ---------------------------------------------------------------- keys of some dialogs

TEST(Keys, EscInConnectIsCancelAndEnterInTheHostIsOk) {
    RunProgram(FreshStage(), [] {
        HWND dialog = OpenDialog(40011, "Connect");
        PressKey(Qt::Key_Escape);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(session.dialog_result, -1);
        dialog = OpenDialog(40011, "Connect");
        TypeInto(dialog, 1255, u"no.invalid");
        PressKey(Qt::Key_Return);
        ASSERT_TRUE(Closed(dialog));
        DismissBox("Error: Cannot connect to the UNIX Host");
        EXPECT_EQ(session.connect_request, 1u);
    });
}

TEST(Keys, EnterOnCancelIsCancel) {
    RunProgram(FreshStage(), [] {
        const HWND dialog = OpenDialog(126, "Auto Login");
        TypeInto(dialog, 1002, u"other");
        for (int i = 0; i < 5; i++) PressKey(Qt::Key_Tab);
        ASSERT_EQ(FocusedControl(dialog), 2);
        PressKey(Qt::Key_Return);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(std::u16string(session.settings.sear1), u"ogin");
    });
}

TEST(Keys, ArrowsMoveTheMarkOfARadioGroupAndStayInIt) {
    RunProgram(FreshStage(), [] {
        ClickControl(OpenDialog(40011, "Connect"), 1242);
        const HWND dialog = AwaitDialog("Connect Advanced");
        ClickControl(dialog, 1205);
        PressKey(Qt::Key_Right);
        EXPECT_TRUE(Marked(dialog, 1206));
        PressKey(Qt::Key_Right);
        EXPECT_TRUE(Marked(dialog, 1259));
        EXPECT_FALSE(Marked(dialog, 1206));
        EXPECT_TRUE(Marked(dialog, 1262));
        EXPECT_FALSE(Marked(dialog, 1261));
    });
}

}  // namespace

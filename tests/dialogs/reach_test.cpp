// SPDX-License-Identifier: MIT
// The dialogs on the smallest device, 240 by 320 pixels, upright and rotated: a person can reach
// every control and scroll to every text.
#include <gtest/gtest.h>
#include <QColorDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QtMath>

#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "tests/dialogs/dialog_cases.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

namespace {

Stage SmallDevice(bool turned = false) {
    Stage stage;
    stage.width = turned ? 320 : 240;
    stage.height = turned ? 240 : 320;
    return stage;
}

// True if no window and no edge of the screen cuts the widget. Call it on the window thread.
bool WhollyInSight(const QWidget* widget) {
    QRect seen = widget->rect();
    for (const QWidget* at = widget; !at->isWindow(); at = at->parentWidget())
        seen = seen.translated(at->pos()) & at->parentWidget()->rect();
    const QPoint corner =
        DeviceScreen()->mapFromGlobal(widget->window()->mapToGlobal(QPoint(0, 0)));
    return seen.size() == widget->size() &&
           DeviceScreen()->rect().contains(seen.translated(corner));
}

QWidget* Focused() { return QApplication::focusWidget(); }

// Presses Tab until the focus is back, and returns the widgets that had it.
std::vector<QWidget*> TabRound() {
    std::vector<QWidget*> round;
    for (int presses = 0; presses < 200; presses++) {
        PressKey(Qt::Key_Tab);
        bool done = false;
        OnWindowThread([&] {
            QWidget* now = Focused();
            done = !round.empty() && now == round.front();
            if (!done) round.push_back(now);
            if (now) {
                EXPECT_TRUE(WhollyInSight(now))
                    << now->metaObject()->className() << " " << now->accessibleName().toStdString();
            }
        });
        if (done) break;
    }
    return round;
}

class EachSmallDialog : public testing::TestWithParam<DialogCase> {};

TEST_P(EachSmallDialog, TabScrollsEveryControlIntoView) {
    for (const bool turned : {false, true}) {
        RunProgram(SmallDevice(turned), [] {
            GetParam().open();
            const std::vector<QWidget*> round = TabRound();
            for (const int id : GetParam().tabs) {
                OnWindowThread([&] {
                    const auto at = std::find(round.begin(), round.end(), DialogWidgetOf(id));
                    EXPECT_NE(at, round.end()) << id;
                });
            }
        });
    }
}

INSTANTIATE_TEST_SUITE_P(Each, EachSmallDialog, testing::ValuesIn(dialog_cases),
                         [](const auto& info) { return info.param.name; });

// Expects that every visible line of the list is wholly visible. Call it on the window thread.
void ExpectWholeLines(const QListWidget* list) {
    for (int row = 0; row < list->count(); row++) {
        const QRect line = list->visualItemRect(list->item(row));
        if (!line.intersects(list->viewport()->rect())) continue;
        EXPECT_GE(line.top(), 0) << row;
        EXPECT_LE(line.bottom(), list->viewport()->rect().bottom()) << row;
    }
}

// True if a line has ink at its right edge, where its text would be cut.
bool InkAtTheEdge(QListWidget* list, int row) {
    const QRect line = list->visualItemRect(list->item(row));
    const QImage face = list->viewport()->grab(line).toImage();
    for (int y = 2; y < face.height() - 2; y++)
        if (qGray(face.pixel(face.width() - 1, y)) < 96) return true;
    return false;
}

class OnEachScreen : public testing::TestWithParam<QSize> {
  protected:
    Stage Device() const {
        Stage stage;
        stage.width = GetParam().width(), stage.height = GetParam().height();
        return stage;
    }
};

// Three lists share the width; a name that is too long continues in a second line.
TEST_P(OnEachScreen, ToolbarNamesAreShownWholeBesideTheirMarks) {
    RunProgram(Device(), [] {
        ClickTab(OpenDialog(IDM_PROPERTIES, "Properties"), "Toolbar");
        for (const int id : {IDC_BAR1, IDC_BAR2, IDC_BAR3}) {
            OnWindowThread([=] {
                auto* list = qobject_cast<QListWidget*>(DialogWidgetOf(id));
                EXPECT_FALSE(list->horizontalScrollBar()->isVisible());
                EXPECT_EQ(list->horizontalScrollBar()->maximum(), 0) << "it moves sideways";
                for (int row = 0; row < list->count(); row++) {
                    const QString text = list->item(row)->text();
                    list->scrollToItem(list->item(row));
                    const QRect line = list->visualItemRect(list->item(row));
                    const QFontMetrics metrics = list->fontMetrics();
                    const int lines = line.height() / metrics.height();
                    EXPECT_GE(line.width() * lines, metrics.horizontalAdvance(text))
                        << text.toStdString();
                    EXPECT_LE(line.width(), list->viewport()->width());
                    EXPECT_FALSE(InkAtTheEdge(list, row)) << text.toStdString();
                }
            });
        }
    });
}

// Expects an empty area below the last whole line. Call it on the window thread.
void ExpectNothingBelowTheLastLine(QListWidget* list) {
    const QImage face = list->viewport()->grab().toImage();
    int last = 0;
    for (int row = 0; row < list->count(); row++) {
        const QRect line = list->visualItemRect(list->item(row));
        if (line.top() >= 0 && line.bottom() < list->viewport()->height()) last = line.bottom() + 1;
    }
    const int end = qCeil(last * face.devicePixelRatio());
    ASSERT_GT(end, face.height() / 2);
    for (int y = end; y < face.height(); y++)
        for (int x = 0; x < face.width(); x++)
            ASSERT_EQ(face.pixel(x, y), list->palette().color(QPalette::Base).rgb())
                << x << "," << y << " below " << end;
}

TEST_P(OnEachScreen, NoLineOfTheToolbarsIsPartlyVisible) {
    RunProgram(Device(), [] {
        ClickTab(OpenDialog(IDM_PROPERTIES, "Properties"), "Toolbar");
        for (const int id : {IDC_BAR1, IDC_BAR2, IDC_BAR3}) {
            for (const int top : {0, 1, 2, 3, 4, 10, 26}) {
                OnWindowThread([=] {
                    SendDlgItemMessageW(ShownPage(), id, LB_SETTOPINDEX, top, 0);
                    ExpectNothingBelowTheLastLine(qobject_cast<QListWidget*>(DialogWidgetOf(id)));
                });
            }
        }
    });
}

// For every line at the top, and for the end of the list.
TEST_P(OnEachScreen, NoLineOfTheListsOfKeysAndFontsIsCut) {
    RunProgram(Device(), [] {
        const HWND sheet = OpenDialog(IDM_PROPERTIES, "Properties");
        ClickTab(sheet, "Keyboard");
        for (const int top : {0, 1, 30, 65}) {
            OnWindowThread([=] {
                SendDlgItemMessageW(ShownPage(), IDC_KEYS, LB_SETTOPINDEX, top, 0);
                ExpectWholeLines(qobject_cast<QListWidget*>(DialogWidgetOf(IDC_KEYS)));
            });
        }
        PressKey(Qt::Key_Escape);
        ASSERT_TRUE(Closed(sheet));
        OpenDialog(IDM_FONT, "Font");
        OnWindowThread(
            [] { ExpectWholeLines(qobject_cast<QListWidget*>(DialogWidgetOf(IDC_FONTS))); });
    });
}

INSTANTIATE_TEST_SUITE_P(Each, OnEachScreen,
                         testing::Values(QSize(240, 320), QSize(320, 240), QSize(640, 480)),
                         [](const auto& info) {
                             return std::to_string(info.param.width()) + "By" +
                                    std::to_string(info.param.height());
                         });

// The list of the keystroke has one line and no room for a scroll bar.
TEST(SmallDevice, ALongKeystrokeStaysVisible) {
    RunProgram(SmallDevice(), [] {
        OnWindowThread(
            [] { SetKeyText(&key_map[0], u"\\033[01;02;03;04;05;06;07;08;09;10;11;12m"); });
        ClickTab(OpenDialog(IDM_PROPERTIES, "Properties"), "Keyboard");
        OnWindowThread([] {
            auto* list = qobject_cast<QListWidget*>(DialogWidgetOf(IDC_KEYSTROKE));
            ASSERT_GT(list->sizeHintForColumn(0), list->viewport()->width());
            EXPECT_FALSE(list->horizontalScrollBar()->isVisible());
            EXPECT_FALSE(list->verticalScrollBar()->isVisible());
        });
    });
}

// The longest texts that the program shows, and its longest question.
TEST(SmallDevice, MessageBoxesFitTheScreenWithTheirWholeTexts) {
    static const char16_t* const kTexts[] = {
        u"I am busy making a connection. Do you want to cancel the request",
        u"RAS Dial has failed. Check your network configuration (633)",
        u"No active network. Should I dial a network using modem (The modem at home) ?",
        u"Do you really want to close this session"};
    for (const bool turned : {false, true}) {
        RunProgram(SmallDevice(turned), [] {
            for (const char16_t* text : kTexts) {
                QMetaObject::invokeMethod(
                    qApp,
                    [=] {
                        MessageBoxW(session.main_window, text, u"Warning",
                                    MB_OKCANCEL | MB_ICONEXCLAMATION);
                    },
                    Qt::QueuedConnection);
                AwaitBox();
                OnWindowThread([&] {
                    const QWidget* box = ShownMessageBox();
                    ASSERT_NE(box, nullptr);
                    const auto* label = box->findChild<QLabel*>("qt_msgbox_label");
                    EXPECT_GE(label->height(), label->wordWrap()
                                                   ? label->heightForWidth(label->width())
                                                   : label->sizeHint().height());
                    const QPoint corner = DeviceScreen()->mapFromGlobal(box->geometry().topLeft());
                    EXPECT_TRUE(DeviceScreen()->rect().contains(QRect(corner, box->size())))
                        << corner.x() << "," << corner.y() << " " << box->width() << "x"
                        << box->height() << " " << ShownMessageBox()->text().toStdString();
                });
                PressCancel();
                ASSERT_TRUE(Eventually([] { return ShownMessageBox() == nullptr; }));
            }
        });
    }
}

}  // namespace

// The dialogs on the smallest device, 240 by 320 pixels, upright and turned: every control is come
// to, and a text that is cut off is scrolled to.
#include <gtest/gtest.h>
#include <QColorDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>

#include "platform/qt/slice.h"
#include "platform/qt/testing.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "tests/dialogs/dialog_cases.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/support/person.h"

namespace {

Stage SmallDevice(bool turned = false) {
    Stage stage;
    stage.width = turned ? 320 : 240;
    stage.height = turned ? 240 : 320;
    return stage;
}

// On the window thread: nothing cuts it, neither a window nor the device's screen.
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

// Presses Tab until the focus is back where it was, and collects where it has been.
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

TEST_P(EachSmallDialog, TabBringsEveryControlIntoSight) {
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

TEST(SmallDevice, TabBringsEveryControlOfTheColourChooserIntoSight) {
    RunProgram(SmallDevice(), [] {
        PostToMain(WM_COMMAND, IDM_COLOR_BG);
        ASSERT_TRUE(
            Eventually([] { return ShownColorDialog() && ShownColorDialog()->isVisible(); }));
        const std::vector<QWidget*> round = TabRound();
        OnWindowThread([&] {
            for (QPushButton* button : ShownColorDialog()->findChildren<QPushButton*>()) {
                if (!button->isVisible()) continue;
                EXPECT_NE(std::find(round.begin(), round.end(), button), round.end())
                    << button->text().toStdString();
            }
            ShownColorDialog()->reject();
        });
    });
}

// Three lists share the width; what is too long for one is scrolled to.
TEST(SmallDevice, LongNamesOfTheToolbarsCanBeReadToTheirEnd) {
    RunProgram(SmallDevice(), [] {
        ClickTab(OpenDialog(IDM_PROPERTIES, "Properties"), "Toolbar");
        for (const int id : {IDC_BAR1, IDC_BAR2, IDC_BAR3}) {
            OnWindowThread([=] {
                auto* list = qobject_cast<QListWidget*>(DialogWidgetOf(id));
                const int needed = list->sizeHintForColumn(0);
                ASSERT_GT(needed, list->viewport()->width()) << "nothing is too long here";
                EXPECT_GE(list->visualItemRect(list->item(0)).width(), needed) << "it is cut";
                QScrollBar* bar = list->horizontalScrollBar();
                EXPECT_TRUE(bar->isVisible());
                bar->setValue(bar->maximum());
                EXPECT_LE(list->visualItemRect(list->item(0)).right(), list->viewport()->width());
            });
        }
    });
}

// The one line of the keystroke has no room for a bar.
TEST(SmallDevice, ALongKeystrokeStaysInSight) {
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
TEST(SmallDevice, MessageBoxesStandOnTheScreenWithTheirTextsWhole) {
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

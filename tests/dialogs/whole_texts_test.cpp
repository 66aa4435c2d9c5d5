// SPDX-License-Identifier: MIT
// The texts of the dialogs as they are drawn: nothing of a label, of a button or of a tab is cut
// off. The test program also runs at scales with a fraction, where letters have other widths.
#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QImage>
#include <QLabel>
#include <QTabBar>

#include "tests/dialogs/dialog_cases.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

namespace {

constexpr int kMoreRoom = 40;  // pixels, and a whole number of the screen's at each scale

class EachDrawnDialog : public testing::TestWithParam<DialogCase> {};

void SetText(QWidget* widget, const QString& text) {
    if (auto* label = qobject_cast<QLabel*>(widget)) label->setText(text);
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) button->setText(text);
}

QString TextOf(const QWidget* widget) {
    if (const auto* label = qobject_cast<const QLabel*>(widget)) return label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) return button->text();
    return QString();
}

// The number of pixels that the text alone makes.
int Ink(QWidget* widget) {
    const QString text = TextOf(widget);
    const QImage with = widget->grab().toImage();
    SetText(widget, QString());
    const QImage without = widget->grab().toImage();
    SetText(widget, text);
    int ink = 0;
    for (int y = 0; y < with.height(); ++y)
        for (int x = 0; x < with.width(); ++x) ink += with.pixel(x, y) != without.pixel(x, y);
    return ink;
}

// A text that is wrapped would be broken elsewhere in a wider place.
QSize MoreRoom(const QWidget* widget) {
    const auto* label = qobject_cast<const QLabel*>(widget);
    return QSize(label && label->wordWrap() ? 0 : kMoreRoom, kMoreRoom);
}

// Call it on the window thread.
void ExpectWholeText(QWidget* widget) {
    widget->clearFocus();
    const QSize size = widget->size();
    const int ink = Ink(widget);
    widget->resize(size + MoreRoom(widget));
    EXPECT_EQ(ink, Ink(widget)) << TextOf(widget).toStdString() << " on " << size.width() << "x"
                                << size.height();
    EXPECT_GT(ink, 0) << TextOf(widget).toStdString();
    widget->resize(size);
}

TEST_P(EachDrawnDialog, NothingOfATextIsCutOff) {
    for (const int width : {240, 640}) {
        Stage stage;
        stage.width = width, stage.height = width == 240 ? 320 : 480;
        RunProgram(stage, [] {
            GetParam().open();
            OnWindowThread([] {
                int texts = 0;
                for (QWidget* each : QApplication::activeModalWidget()->findChildren<QWidget*>()) {
                    if (!each->isVisible() || TextOf(each).trimmed().isEmpty()) continue;
                    ExpectWholeText(each);
                    ++texts;
                }
                EXPECT_GE(texts, 2);
            });
        });
    }
}

TEST_P(EachDrawnDialog, EachTabShowsItsWholeName) {
    if (GetParam().caption != "Properties") return;
    RunProgram(Stage(), [] {
        GetParam().open();
        OnWindowThread([] {
            const auto* tabs = QApplication::activeModalWidget()->findChild<QTabBar*>();
            ASSERT_NE(tabs, nullptr);
            for (int i = 0; i < tabs->count(); ++i) {
                const int wanted = tabs->fontMetrics().horizontalAdvance(tabs->tabText(i));
                EXPECT_GE(tabs->tabRect(i).width(), wanted) << i;
                EXPECT_TRUE(tabs->rect().contains(tabs->tabRect(i))) << i;
            }
        });
    });
}

INSTANTIATE_TEST_SUITE_P(Each, EachDrawnDialog, testing::ValuesIn(dialog_cases),
                         [](const auto& info) { return info.param.name; });

}  // namespace

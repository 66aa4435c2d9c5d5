// SPDX-License-Identifier: MIT
// The colour chooser as a person uses it: Enter and Esc, and which controls are visible. The tests
// named ChooserOnAnyDesktop also run on a desktop of 240 by 320 pixels.
#include <gtest/gtest.h>
#include <QColorDialog>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>

#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

namespace {

void OpenChooser() {
    PostToMain(WM_COMMAND, IDM_COLOR_TEXT);
    ASSERT_TRUE(Eventually([] {
        return ShownColorDialog() && ShownColorDialog()->isVisible() &&
               QApplication::activeWindow() == ShownColorDialog()->window();
    }));
}

bool Closed() {
    return Eventually([] { return QApplication::activeModalWidget() == nullptr; });
}

void OnDevice(int width, int height, const std::function<void()>& person) {
    Stage stage;
    stage.width = width, stage.height = height;
    RunProgram(stage, person);
}

// Call this and the functions below on the window thread.
QPushButton* ButtonNamed(const QString& name) {
    for (auto* button : ShownColorDialog()->window()->findChildren<QPushButton*>())
        if (button->text().remove('&') == name && button->isVisible()) return button;
    return nullptr;
}

QRect Desktop() { return QGuiApplication::primaryScreen()->availableGeometry(); }

bool WhollyInSight(const QWidget* widget) {
    QRect seen = widget->rect();
    for (const QWidget* at = widget; !at->isWindow(); at = at->parentWidget())
        seen = seen.translated(at->pos()) & at->parentWidget()->rect();
    return seen.size() == widget->size() &&
           Desktop().contains(seen.translated(widget->window()->geometry().topLeft()));
}

void ExpectButtonsInSight() {
    for (const char* name : {"OK", "Cancel"}) {
        ASSERT_NE(ButtonNamed(name), nullptr) << name;
        EXPECT_TRUE(WhollyInSight(ButtonNamed(name))) << name;
    }
}

TEST(ChooserOnAnyDesktop, OkAndCancelAreAlwaysVisible) {
    for (const auto& [width, height] : {std::pair(240, 320), {320, 240}, {400, 258}}) {
        OnDevice(width, height, [] {
            OpenChooser();
            std::vector<QWidget*> round;
            for (bool done = false; !done && round.size() < 60;) {
                OnWindowThread([&] {
                    ExpectButtonsInSight();
                    QWidget* now = QApplication::focusWidget();
                    ASSERT_NE(now, nullptr);
                    EXPECT_TRUE(WhollyInSight(now)) << now->metaObject()->className();
                    done = !round.empty() && now == round.front();
                    round.push_back(now);
                });
                PressKey(Qt::Key_Tab);
            }
            OnWindowThread([&] {
                for (auto* button : ShownColorDialog()->window()->findChildren<QPushButton*>())
                    if (button->isVisible()) {
                        EXPECT_NE(std::find(round.begin(), round.end(), button), round.end())
                            << button->text().toStdString();
                    }
            });
            PressKey(Qt::Key_Escape);
            EXPECT_TRUE(Closed());
        });
    }
}

TEST(ChooserOnAnyDesktop, NothingIsCutOffSideways) {
    OnDevice(240, 320, [] {
        OpenChooser();
        OnWindowThread([] {
            const auto* area = ShownColorDialog()->window()->findChild<QScrollArea*>();
            ASSERT_NE(area, nullptr);
            EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0);
            EXPECT_TRUE(Desktop().contains(ShownColorDialog()->window()->geometry()));
            ShownColorDialog()->reject();
        });
    });
}

// The device may be smaller than the chooser, but this desktop is larger.
TEST(Chooser, IsShownWholeOnALargeEnoughDesktop) {
    for (const auto& [width, height] : {std::pair(240, 320), {400, 258}}) {
        OnDevice(width, height, [] {
            OpenChooser();
            OnWindowThread([] {
                const auto* area = ShownColorDialog()->window()->findChild<QScrollArea*>();
                ASSERT_NE(area, nullptr);
                EXPECT_FALSE(area->horizontalScrollBar()->isVisible());
                EXPECT_FALSE(area->verticalScrollBar()->isVisible());
                EXPECT_TRUE(WhollyInSight(ShownColorDialog()));
                ASSERT_NE(ButtonNamed("Add to Custom Colors"), nullptr);
                EXPECT_TRUE(WhollyInSight(ButtonNamed("Add to Custom Colors")));
                ShownColorDialog()->reject();
            });
        });
    }
}

TEST(ChooserOnAnyDesktop, EnterIsOkAsSoonAsItOpens) {
    OnDevice(640, 480, [] {
        OpenChooser();
        OnWindowThread([] {
            ASSERT_NE(ButtonNamed("OK"), nullptr);
            for (auto* button : ShownColorDialog()->window()->findChildren<QPushButton*>())
                if (button->isVisible()) {
                    EXPECT_EQ(button->isDefault(), button == ButtonNamed("OK"))
                        << button->text().toStdString();
                }
            ShownColorDialog()->setCurrentColor(Qt::red);
        });
        PressKey(Qt::Key_Return);
        ASSERT_TRUE(Closed());
        EXPECT_TRUE(Eventually([] { return session.settings.color_fg == 0x0000FF; }));
    });
}

// Enter presses the button that is drawn as the default one, whichever field has the focus.
TEST(ChooserOnAnyDesktop, EnterInEveryFieldIsOk) {
    OnDevice(640, 480, [] {
        for (int tabs = 1; tabs < 40; tabs++) {
            OpenChooser();
            bool button = false, again = false;
            QWidget* first = nullptr;
            for (int presses = 0; presses <= tabs; presses++) {
                OnWindowThread([&] {
                    QWidget* now = QApplication::focusWidget();
                    again = now == first;
                    if (!first) first = now;
                    button = qobject_cast<QPushButton*>(now);
                    EXPECT_EQ(ButtonNamed("OK")->isDefault(), !button || now == ButtonNamed("OK"));
                    if (button) {
                        EXPECT_TRUE(qobject_cast<QPushButton*>(now)->isDefault());
                    }
                });
                if (presses < tabs) PressKey(Qt::Key_Tab);
            }
            OnWindowThread([=] { ShownColorDialog()->setCurrentColor(QColor(tabs, 0, 9)); });
            PressKey(button ? Qt::Key_Escape : Qt::Key_Return);
            ASSERT_TRUE(Closed());
            if (again) return;
            if (button) continue;
            EXPECT_TRUE(
                Eventually([=] { return session.settings.color_fg == RGB(tabs, 0, 9); }, 2000))
                << tabs;
        }
        ADD_FAILURE() << "the focus does not come round";
    });
}

TEST(ChooserOnAnyDesktop, EscOnEitherButtonChangesNothing) {
    OnDevice(640, 480, [] {
        for (const char* name : {"OK", "Cancel"}) {
            OpenChooser();
            OnWindowThread([=] {
                ShownColorDialog()->setCurrentColor(Qt::red);
                ASSERT_NE(ButtonNamed(name), nullptr);
                ButtonNamed(name)->setFocus(Qt::TabFocusReason);
            });
            PressKey(Qt::Key_Escape);
            ASSERT_TRUE(Closed());
            EXPECT_EQ(session.settings.color_fg, 0u);
        }
    });
}

TEST(ChooserOnAnyDesktop, ItsButtonsDoWhatTheySay) {
    OnDevice(640, 480, [] {
        for (const char* name : {"Cancel", "OK"}) {
            OpenChooser();
            OnWindowThread([=] {
                ShownColorDialog()->setCurrentColor(Qt::red);
                ASSERT_NE(ButtonNamed(name), nullptr);
                ButtonNamed(name)->click();
            });
            ASSERT_TRUE(Closed());
            OnWindowThread([] {});
            EXPECT_EQ(session.settings.color_fg, *name == 'O' ? 0x0000FFu : 0u);
        }
    });
}

}  // namespace

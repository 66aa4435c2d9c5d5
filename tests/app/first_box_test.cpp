// SPDX-License-Identifier: MIT
// The position of the message boxes at the start, before the window exists and while it is placed.
#include <gtest/gtest.h>
#include <QScreen>
#include <QTimer>

#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

namespace {

constexpr int kRounding = 2;  // pixels: rounding of halves, and frame widths
const char kImportNotice[] = "Quill Telnet: Installing configuration from file \\mconfig.cfg ";
const char kCannotConnect[] = "Error: Cannot connect to the UNIX Host";

// Call it on the window thread.
QRect BoxPlace() { return ShownMessageBox() ? ShownMessageBox()->geometry() : QRect(); }

bool CentredOn(QPoint middle) {
    return (BoxPlace().center() - middle).manhattanLength() <= 2 * kRounding;
}

QPoint MiddleOfTheDevice() {
    const QRect area = QRect(DeviceScreen()->mapToGlobal(QPoint(0, 0)), DeviceScreen()->size());
    return area.center();
}

void ExpectCentredOn(QPoint middle) {
    EXPECT_TRUE(CentredOn(middle)) << BoxPlace().center().x() << "," << BoxPlace().center().y()
                                   << " in place of " << middle.x() << "," << middle.y();
}

TEST(FirstBox, IsCentredOnTheDesktopWhileThereIsNoWindow) {
    for (const auto& [width, height] : {std::pair(400, 300), {240, 320}}) {
        RunProgram({.width = width, .height = height, .config = "bell = 1\n"}, [] {
            ASSERT_EQ(AwaitBox(), kImportNotice);
            OnWindowThread([] {
                EXPECT_FALSE(DeviceScreen()->isVisible());
                ExpectCentredOn(QGuiApplication::primaryScreen()->availableGeometry().center());
            });
            PressOk();
        });
    }
}

TEST(FirstBox, IsCentredOverTheWindow) {
    RunProgram({.width = 400, .height = 300}, [] {
        ASSERT_TRUE(Eventually([] { return DeviceScreen()->isVisible(); }));
        OnWindowThread([] { DeviceScreen()->move(210, 330); });
        QMetaObject::invokeMethod(
            qApp, [] { MessageBoxW(session.main_window, u"A box", u"Error", MB_OK); },
            Qt::QueuedConnection);
        ASSERT_NE(AwaitBox(), "");
        OnWindowThread([] { ExpectCentredOn(MiddleOfTheDevice()); });
        PressOk();
    });
}

// Simulates a desktop that places a window some time after it is shown.
class LatePlacement : public QObject {
  public:
    LatePlacement() { DeviceScreen()->installEventFilter(this); }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Show)
            QTimer::singleShot(100, DeviceScreen(), [] { DeviceScreen()->move(230, 310); });
        return false;
    }
};

TEST(FirstBox, FollowsTheWindowThatTheDesktopPlacesLate) {
    std::unique_ptr<LatePlacement> desktop;
    Stage stage = {.width = 400, .height = 300, .config = "autoconnect = 1\n"};
    stage.before = [&] { desktop = std::make_unique<LatePlacement>(); };
    RunProgram(stage, [] {
        DismissBox(kImportNotice);
        ASSERT_EQ(AwaitBox(), kCannotConnect);
        EXPECT_TRUE(Eventually([] { return DeviceScreen()->pos() == QPoint(230, 310); }));
        EXPECT_TRUE(Eventually([] { return CentredOn(MiddleOfTheDevice()); }, 2000));
        OnWindowThread([] { ExpectCentredOn(MiddleOfTheDevice()); });
        PressOk();
    });
}

}  // namespace

// SPDX-License-Identifier: MIT
// The program's icon on the desktop's window.
#include <gtest/gtest.h>
#include <QIcon>
#include <QImage>

#include "platform/qt/host/host.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"

namespace {

QRgb PixelOf(const QIcon& icon, int side, int x, int y) {
    return icon.pixmap(QSize(side, side), 1.0).toImage().pixel(x, y);
}

}  // namespace

TEST(ProgramIcon, IsSetOnTheWindowInThreeSizes) {
    const QIcon icon = DeviceScreen()->windowIcon();
    EXPECT_EQ((QList<QSize>{QSize(16, 16), QSize(32, 32), QSize(48, 48)}), icon.availableSizes());
    for (const int side : {16, 32, 48}) {
        EXPECT_EQ(0, qAlpha(PixelOf(icon, side, 0, 0))) << side;
        EXPECT_EQ(qRgb(0, 0, 128), PixelOf(icon, side, side / 4, side * 3 / 4)) << side;
    }
}

TEST(ProgramIcon, UnknownNumberGivesNoIcon) { EXPECT_TRUE(LoadProgramIcon(4711).isNull()); }

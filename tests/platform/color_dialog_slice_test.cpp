// SPDX-License-Identifier: MIT
// The colour chooser, and the library that provides it.
#include <gtest/gtest.h>
#include <QColorDialog>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include "platform/qt/window/device_screen.h"
#include "tests/qt_driver/driver.h"

namespace {

using ChooseColorProcedure = BOOL (*)(LPVOID);

ChooseColorProcedure FindChooser() {
    const HMODULE library = LoadLibraryW(u"commdlg.dll");
    if (!library) return nullptr;
    return reinterpret_cast<ChooseColorProcedure>(
        reinterpret_cast<void (*)()>(GetProcAddressW(library, u"ChooseColor")));
}

class ColorDialog : public testing::Test {
  protected:
    void TearDown() override {
        ForgetDialogs();
        DeviceScreen()->resize(640, 480);
    }
};

constexpr int kSomeTemplate = 101;

struct ColorRequest {
    COLORREF custom[16] = {};
    CHOOSECOLORW request = {};
    ColorRequest() {
        for (int i = 0; i < 16; i++) custom[i] = RGB(i, 2 * i, 3 * i);
        request.lStructSize = sizeof(request);
        request.rgbResult = RGB(10, 20, 30);
        request.lpCustColors = custom;
        request.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ANYCOLOR;
    }
};

}  // namespace

TEST_F(ColorDialog, ChooserStartsWithTheColourAndGivesTheChosenOne) {
    ColorRequest ask;
    OnNextDialog([] {
        ASSERT_NE(nullptr, ShownColorDialog());
        EXPECT_EQ(QColor(10, 20, 30), ShownColorDialog()->currentColor());
        EXPECT_EQ(QColor(5, 10, 15), QColorDialog::customColor(5));
        QColorDialog::setCustomColor(5, QColor(1, 2, 3));
        ShownColorDialog()->setCurrentColor(QColor(200, 100, 50));
        ShownColorDialog()->accept();
    });
    EXPECT_TRUE(FindChooser()(&ask.request));
    EXPECT_EQ(RGB(200, 100, 50), ask.request.rgbResult);
    EXPECT_EQ(RGB(1, 2, 3), ask.custom[5]);
    EXPECT_EQ(RGB(6, 12, 18), ask.custom[6]);
    EXPECT_EQ(nullptr, ShownColorDialog());
}

TEST_F(ColorDialog, CustomColoursOfACancelledChooserAreKept) {
    ColorRequest ask;
    OnNextDialog([] {
        QColorDialog::setCustomColor(5, QColor(1, 2, 3));
        ShownColorDialog()->reject();
    });
    EXPECT_FALSE(FindChooser()(&ask.request));
    EXPECT_EQ(RGB(1, 2, 3), ask.custom[5]);
}

TEST_F(ColorDialog, CancelledChooserChangesNothing) {
    ColorRequest ask;
    OnNextDialog([] {
        ShownColorDialog()->setCurrentColor(QColor(200, 100, 50));
        ShownColorDialog()->reject();
    });
    EXPECT_FALSE(FindChooser()(&ask.request));
    EXPECT_EQ(RGB(10, 20, 30), ask.request.rgbResult);
    OnNextDialog([] { ShownColorDialog()->window()->close(); });
    EXPECT_FALSE(FindChooser()(&ask.request));
}

TEST_F(ColorDialog, ChooserStaysOnTheDesktop) {
    DeviceScreen()->resize(240, 320);
    ColorRequest ask;
    OnNextDialog([] {
        const QRect desktop = DeviceScreen()->screen()->availableGeometry();
        EXPECT_TRUE(desktop.contains(ShownColorDialog()->window()->frameGeometry()));
        ShownColorDialog()->reject();
    });
    EXPECT_FALSE(FindChooser()(&ask.request));
}

TEST_F(ColorDialog, ChooserIsWholeWhereTheDesktopHasRoom) {
    ColorRequest ask;
    OnNextDialog([] {
        const auto* area = ShownColorDialog()->window()->findChild<QScrollArea*>();
        ASSERT_NE(nullptr, area);
        const QRect desktop = DeviceScreen()->screen()->availableGeometry();
        ASSERT_GT(desktop.height(), ShownColorDialog()->window()->frameGeometry().height());
        EXPECT_EQ(area->viewport()->size(), ShownColorDialog()->size());
        EXPECT_FALSE(area->verticalScrollBar()->isVisible());
        EXPECT_FALSE(area->horizontalScrollBar()->isVisible());
        ShownColorDialog()->reject();
    });
    EXPECT_FALSE(FindChooser()(&ask.request));
}

TEST_F(ColorDialog, ChooserRequiresItsTemplateAndItsSize) {
    ColorRequest ask;
    ask.request.Flags |= CC_ENABLETEMPLATE;
    ask.request.lpTemplateName = MAKEINTRESOURCE(199);
    EXPECT_FALSE(FindChooser()(&ask.request));
    ask.request.lpTemplateName = MAKEINTRESOURCE(kSomeTemplate);
    OnNextDialog([] { ShownColorDialog()->accept(); });
    EXPECT_TRUE(FindChooser()(&ask.request));
    ask.request.hwndOwner = reinterpret_cast<HWND>(0x7777);
    OnNextDialog([] { ShownColorDialog()->accept(); });
    EXPECT_FALSE(FindChooser()(&ask.request)) << "that owner is no window";
    ForgetDialogs();
    ask.request.hwndOwner = nullptr;
    ask.request.lStructSize = 4;
    EXPECT_FALSE(FindChooser()(&ask.request));
}

TEST_F(ColorDialog, ChooserEndsWithTheProgram) {
    ColorRequest ask;
    OnNextDialog([] { PostQuitMessage(3); });
    EXPECT_FALSE(FindChooser()(&ask.request));
    MSG message;
    EXPECT_FALSE(GetMessageW(&message, nullptr, 0, 0));
}

TEST_F(ColorDialog, LibraryIsFoundByNameAndCanBeTakenAway) {
    const HMODULE library = LoadLibraryW(u"COMMDLG.DLL");
    ASSERT_NE(nullptr, library);
    EXPECT_EQ(nullptr, GetProcAddressW(library, u"ChooseFont"));
    EXPECT_EQ(nullptr, GetProcAddressW(nullptr, u"ChooseColor"));
    EXPECT_TRUE(FreeLibrary(library));
    EXPECT_FALSE(FreeLibrary(nullptr));
    EXPECT_EQ(nullptr, LoadLibraryW(u"OTHER.DLL"));
    TakeLibrariesAway(true);
    EXPECT_EQ(nullptr, LoadLibraryW(u"COMMDLG.DLL"));
    TakeLibrariesAway(false);
}

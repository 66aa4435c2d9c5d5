// SPDX-License-Identifier: MIT
// The four colours: the request to the chooser, and choosing with the desktop's chooser.
#include <gtest/gtest.h>
#include <QColorDialog>
#include <QThread>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/stored.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

namespace {

Settings& s = session.settings;

struct ColorCase {
    const char* name;
    WORD command;
    DWORD Settings::*field;
    uint32_t fallback;
};

void PrintTo(const ColorCase& each, std::ostream* out) { *out << each.name; }

const ColorCase kColors[] = {
    {"color_bg", IDM_COLOR_BG, &Settings::color_bg, 0xFFFFFF},
    {"color_cursor", IDM_COLOR_CURSOR, &Settings::color_cursor, 0x808080},
    {"color_fg", IDM_COLOR_TEXT, &Settings::color_fg, 0},
    {"color_bold", IDM_COLOR_BOLD, &Settings::color_bold, 0x000080},
};

Stage FreshStage() {
    Stage stage;
    stage.root = FreshRoot();
    return stage;
}

// ---------------------------------------------------------------- with a double of the chooser

CHOOSECOLORW g_request;
int g_asked;
COLORREF g_chosen;
BOOL g_accepted;

BOOL ChooserDouble(LPVOID request) {
    auto* asked = static_cast<CHOOSECOLORW*>(request);
    g_request = *asked;
    g_asked++;
    asked->rgbResult = g_chosen;
    asked->lpCustColors[3] = g_chosen;
    return g_accepted;
}

void UseDouble(COLORREF chosen, BOOL accepted) {
    OnWindowThread([=] {
        session.choose_color = ChooserDouble;
        g_asked = 0, g_chosen = chosen, g_accepted = accepted;
    });
}

void Choose(WORD command) {
    PostToMain(WM_COMMAND, command);
    ASSERT_TRUE(Eventually([] { return g_asked > 0; }));
    OnWindowThread([] {});
}

class Color : public testing::TestWithParam<ColorCase> {};

TEST_P(Color, IsAskedForWithItsValueItsFlagsAndItsTemplate) {
    const ColorCase& color = GetParam();
    RunProgram(FreshStage(), [&] {
        UseDouble(0x00123456, TRUE);
        const HINSTANCE own = session.instance, known = reinterpret_cast<HINSTANCE>(0x400000);
        // The chooser looks for its template in this module.
        OnWindowThread([=] { session.instance = known; });
        Choose(color.command);
        OnWindowThread([=] { session.instance = own; });
        EXPECT_EQ(g_request.lStructSize, sizeof(CHOOSECOLORW));
        EXPECT_EQ(g_request.hwndOwner, session.main_window);
        EXPECT_EQ(g_request.hInstance, known);
        EXPECT_EQ(g_request.rgbResult, color.fallback);
        EXPECT_EQ(g_request.lpCustColors, session.custom_colors);
        EXPECT_EQ(std::size(session.custom_colors), 16u);
        EXPECT_EQ(g_request.Flags, 0x00000001u | 0x00000002u | 0x00000020u | 0x00000100u);
        EXPECT_EQ(g_request.lpTemplateName, MAKEINTRESOURCE(1544));
    });
}

TEST_P(Color, AChosenOneReplacesTheFieldAndIsSavedAtTheEndOnly) {
    const ColorCase& color = GetParam();
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        UseDouble(0x00123456, TRUE);
        Choose(color.command);
        for (const ColorCase& each : kColors)
            EXPECT_EQ(s.*each.field, each.command == color.command ? 0x123456 : each.fallback);
        EXPECT_EQ(StoredNumber(stage.root, color.name), kNotStored);
    });
    EXPECT_EQ(StoredNumber(stage.root, color.name), 0x123456u);
}

TEST_P(Color, ACancelledOneChangesNothing) {
    const ColorCase& color = GetParam();
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        UseDouble(0x00123456, FALSE);
        Choose(color.command);
        EXPECT_EQ(s.*color.field, color.fallback);
    });
    EXPECT_EQ(StoredNumber(stage.root, color.name), color.fallback);
}

TEST_P(Color, DoesNothingOnADeviceWithoutAChooser) {
    const ColorCase& color = GetParam();
    RunProgram(FreshStage(), [&] {
        OnWindowThread([] { session.choose_color = nullptr; });
        PostToMain(WM_COMMAND, color.command);
        OnWindowThread([] {});
        EXPECT_EQ(s.*color.field, color.fallback);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    });
}

INSTANTIATE_TEST_SUITE_P(Each, Color, testing::ValuesIn(kColors),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Colors, TheTerminalIsRepaintedAfterACancelledChoiceToo) {
    RunProgram(FreshStage(), [&] {
        for (const BOOL accepted : {FALSE, TRUE}) {
            UseDouble(0x00123456, accepted);
            OnWindowThread([] {
                session.view.full_repaint = 0;
                SendMessageW(session.main_window, WM_COMMAND, IDM_COLOR_TEXT, 0);
                EXPECT_EQ(session.view.full_repaint, 1u);
            });
        }
    });
}

TEST(Colors, CustomColoursLastForTheRun) {
    RunProgram(FreshStage(), [&] {
        UseDouble(0x00445566, FALSE);
        Choose(IDM_COLOR_BG);
        EXPECT_EQ(session.custom_colors[3], 0x445566u);
        g_asked = 0;
        Choose(IDM_COLOR_BOLD);
        EXPECT_EQ(g_request.lpCustColors[3], 0x445566u);
    });
    RunProgram(FreshStage(), [&] { EXPECT_EQ(session.custom_colors[3], 0u); });
}

// ---------------------------------------------------------------- with the desktop's chooser

void OpenChooser(WORD command) {
    PostToMain(WM_COMMAND, command);
    ASSERT_TRUE(Eventually([] { return ShownColorDialog() != nullptr; }));
}

bool ChooserClosed() {
    return Eventually([] { return QApplication::activeModalWidget() == nullptr; });
}

bool Filled(QColor color) {
    for (int tries = 0; tries < 100; tries++) {
        RECT client;
        OnWindowThread([&] { GetWindowRect(session.client_window, &client); });
        if (Picture().pixelColor(client.left + 200, client.top + 100) == color) return true;
        QThread::msleep(20);
    }
    return false;
}

TEST(Colors, TheDesktopsChooserStartsWithTheColourAndItsChoiceIsDrawn) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        OpenChooser(IDM_COLOR_BG);
        OnWindowThread([] {
            EXPECT_EQ(ShownColorDialog()->currentColor().rgb(), QColor(255, 255, 255).rgb());
            ShownColorDialog()->setCurrentColor(QColor(0x11, 0x22, 0x33));
            ShownColorDialog()->accept();
        });
        ASSERT_TRUE(ChooserClosed());
        EXPECT_TRUE(Eventually([] { return s.color_bg == 0x332211; }));
        EXPECT_TRUE(Filled(QColor(0x11, 0x22, 0x33)));
    });
    EXPECT_EQ(StoredNumber(stage.root, "color_bg"), 0x332211u);
}

TEST(Colors, EscInTheDesktopsChooserChangesNothing) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        OpenChooser(IDM_COLOR_TEXT);
        OnWindowThread([] { ShownColorDialog()->setCurrentColor(Qt::red); });
        PressKey(Qt::Key_Escape);
        ASSERT_TRUE(ChooserClosed());
        EXPECT_EQ(s.color_fg, 0u);
    });
    EXPECT_EQ(StoredNumber(stage.root, "color_fg"), 0u);
}

}  // namespace

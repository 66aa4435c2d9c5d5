// SPDX-License-Identifier: MIT
// Which buttons a bar gets, and the bitmap, command and tip of each.
#include "ui/main_window.h"

#include <bit>
#include "session/session_state.h"
#include "settings/toolbars.h"
#include "tests/settings/command_bar_double.h"
#include "tests/settings/device.h"

namespace {

class ToolbarButtons : public DeviceTest {
  protected:
    void SetUp() override {
        DeviceTest::SetUp();
        command_bar = {};
    }
    void TearDown() override {
        session.connected = 0;
        DeviceTest::TearDown();
    }
};

int Build(int bar, int most = 100) {
    command_bar = {};
    return BuildToolbar(kCommandBar, bar, most);
}

std::vector<std::string> Tips() {
    std::vector<std::string> tips;
    for (const BarButton& button : command_bar.buttons) tips.push_back(button.tip);
    return tips;
}

void StoreAll(DWORD value) {
    for (const std::string& name : NumberedNames("tbar", 27)) StoreNumber(name, value);
}

using Names = std::vector<std::string>;

const Names kWide1 = {"swap toolbar", "connect", "cut", "paste", "larger font",
                      "smaller font", "ENTER",   "P1",  "P2",    "P3",
                      "P4",           "P5",      "P6",  "P7",    "P8",
                      "P9",           "P10",     "P12", "P20"};
const Names kWide2 = {"swap toolbar", "ENTER", "P1",  "P2",  "P3",  "P4",  "P5",  "P6",
                      "P7",           "P8",    "P9",  "P10", "P11", "P12", "P13", "P14",
                      "P15",          "P16",   "P17", "P18", "P19", "P20"};
const Names kWide3 = {"swap toolbar", "ENTER", "P11", "P12", "P13", "P14",
                      "P15",          "P16",   "P17", "P18", "P19", "P20"};
const Names kNarrow1 = {"swap toolbar", "connect", "larger font", "smaller font", "ENTER",
                        "P1",           "P2",      "P3",          "P4",           "P5"};
const Names kNarrow2 = {"swap toolbar", "cut", "paste", "ENTER", "P7",
                        "P8",           "P9",  "P10",   "P11",   "P12"};
const Names kNarrow3 = {"swap toolbar", "ENTER", "P13", "P14", "P15",
                        "P16",          "P17",   "P18", "P19", "P20"};

}  // namespace

TEST_F(ToolbarButtons, AWideScreensBarsHoldTheirDefaultsInTheTablesOrder) {
    LoadToolbars();
    const Names* bars[] = {&kWide1, &kWide2, &kWide3};
    for (int bar = 1; bar <= 3; bar++) {
        EXPECT_EQ(static_cast<int>(bars[bar - 1]->size()), Build(bar));
        EXPECT_EQ(*bars[bar - 1], Tips()) << bar;
    }
}

TEST_F(ToolbarButtons, ANarrowScreensBarsHoldTheirDefaultsInTheTablesOrder) {
    session.narrow_screen = 1;
    LoadToolbars();
    const Names* bars[] = {&kNarrow1, &kNarrow2, &kNarrow3};
    for (int bar = 1; bar <= 3; bar++) {
        EXPECT_EQ(static_cast<int>(bars[bar - 1]->size()), Build(bar));
        EXPECT_EQ(*bars[bar - 1], Tips()) << bar;
    }
}

TEST_F(ToolbarButtons, EachButtonHasItsRowsBitmapAndItsPositionsCommand) {
    StoreAll(7);
    LoadToolbars();
    ASSERT_EQ(27, Build(2));
    for (size_t i = 0; i < 27; i++) {
        EXPECT_EQ(toolbar_buttons[i].bitmapId, command_bar.buttons[i].bitmap) << i;
        EXPECT_EQ(40020 + static_cast<int>(i), command_bar.buttons[i].command) << i;
        EXPECT_EQ(toolbar_buttons[i].name, command_bar.buttons[i].tip) << i;
    }
}

TEST_F(ToolbarButtons, RowsBeyondTheMaximumAreDropped) {
    StoreAll(7);
    LoadToolbars();
    for (const int most : {0, 1, 11, 26, 27, 28, INT32_MAX}) {
        EXPECT_EQ(std::min(most, 27), Build(1, most));
        EXPECT_EQ(static_cast<size_t>(std::min(most, 27)), command_bar.buttons.size());
    }
    for (const int most : {-1, INT32_MIN}) EXPECT_EQ(0, Build(1, most));
}

TEST_F(ToolbarButtons, ARowOnNoBarIsNotShown) {
    StoreNumber("tbar6", 0);
    LoadToolbars();
    for (int bar = 1; bar <= 3; bar++) {
        Build(bar);
        for (const std::string& tip : Tips()) EXPECT_NE("ENTER", tip);
    }
}

TEST_F(ToolbarButtons, ABarWithEveryFlagOffShowsNoButtons) {
    StoreAll(5);
    LoadToolbars();
    EXPECT_EQ(0, Build(2));
    EXPECT_TRUE(command_bar.buttons.empty());
    EXPECT_EQ(27, Build(1));
    EXPECT_EQ(27, Build(3));
}

TEST_F(ToolbarButtons, ABarOfOneButtonHasItsTip) {
    StoreAll(4);
    StoreNumber("tbar6", 2);
    LoadToolbars();
    Build(1);
    EXPECT_EQ(1, Build(2));
    EXPECT_EQ(Names{"ENTER"}, Tips());
    Build(1);
    EXPECT_EQ(1, Build(1, 1));
    EXPECT_EQ(Names{"swap toolbar"}, Tips());
}

TEST_F(ToolbarButtons, AnUnknownBarShowsNoButtons) {
    LoadToolbars();
    for (const int bar : {0, 4, -1, INT32_MAX, INT32_MIN}) EXPECT_EQ(0, Build(bar)) << bar;
}

TEST_F(ToolbarButtons, WhileConnectedTheConnectButtonReadsDisconnect) {
    LoadToolbars();
    Build(1);
    EXPECT_EQ("connect", command_bar.buttons[1].tip);
    EXPECT_EQ(1540, command_bar.buttons[1].bitmap);
    session.connected = 1;
    Build(1);
    EXPECT_EQ("disconnect", command_bar.buttons[1].tip);
    EXPECT_EQ(1539, command_bar.buttons[1].bitmap);
    EXPECT_EQ(40021, command_bar.buttons[1].command);
    session.connected = 0;
    Build(1);
    EXPECT_EQ("connect", command_bar.buttons[1].tip);
    EXPECT_EQ(1540, command_bar.buttons[1].bitmap);
}

TEST_F(ToolbarButtons, OnlyTheThreeLowBitsOfARegistryValueCount) {
    StoreAll(0xFFFFFFF8);
    StoreNumber("tbar3", 0xFFFFFFFF);
    Store("tbar4", REG_SZ, TextBytes(u"77"));  // '7' is 0x37
    // One byte if that is the lowest byte, else all four.
    const size_t given = std::endian::native == std::endian::little ? 1 : 4;
    Store("tbar5", REG_SZ, NumberBytes(6).substr(0, given));
    Store("tbar6", REG_DWORD, "");  // no data
    LoadToolbars();
    Build(1);
    EXPECT_EQ((Names{"paste", "larger font", "smaller font"}), Tips());
    Build(3);
    EXPECT_EQ((Names{"paste", "larger font"}), Tips());
}

TEST_F(ToolbarButtons, ABarThatRefusesAButtonGetsNoMore) {
    LoadToolbars();
    command_bar = {};
    command_bar.room = 3;
    EXPECT_EQ(3, BuildToolbar(kCommandBar, 1, 100));
    EXPECT_EQ((Names{"swap toolbar", "connect", "cut"}), Tips());
}

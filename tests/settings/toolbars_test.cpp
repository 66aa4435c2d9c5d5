// SPDX-License-Identifier: MIT
// The toolbars: the table, how it is saved and loaded, and the action of each position.
#include "settings/toolbars.h"

#include <algorithm>

#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/settings/device.h"
#include "tests/settings/registry_log.h"

namespace {

struct ToolbarRow {
    const char* name;
    BYTE wide[3];
    BYTE narrow[3];
    int bitmap;
    int action;
};

// clang-format off
const ToolbarRow kRows[27] = {
    {"swap toolbar",  {1, 1, 1}, {1, 1, 1}, 1545, 34},
    {"connect",       {1, 0, 0}, {1, 0, 0}, 1540, 29},
    {"cut",           {1, 0, 0}, {0, 1, 0}, 1541, 30},
    {"paste",         {1, 0, 0}, {0, 1, 0}, 1542, 31},
    {"larger font",   {1, 0, 0}, {1, 0, 0}, 1543, 32},
    {"smaller font",  {1, 0, 0}, {1, 0, 0}, 1544, 33},
    {"ENTER",         {1, 1, 1}, {1, 1, 1}, 1550, 13},
    {"P1",            {1, 1, 0}, {1, 0, 0}, 1558, 112},
    {"P2",            {1, 1, 0}, {1, 0, 0}, 1559, 113},
    {"P3",            {1, 1, 0}, {1, 0, 0}, 1560, 114},
    {"P4",            {1, 1, 0}, {1, 0, 0}, 1561, 115},
    {"P5",            {1, 1, 0}, {1, 0, 0}, 1562, 116},
    {"P6",            {1, 1, 0}, {0, 0, 0}, 1563, 117},
    {"P7",            {1, 1, 0}, {0, 1, 0}, 1564, 118},
    {"P8",            {1, 1, 0}, {0, 1, 0}, 1565, 119},
    {"P9",            {1, 1, 0}, {0, 1, 0}, 1566, 120},
    {"P10",           {1, 1, 0}, {0, 1, 0}, 1567, 121},
    {"P11",           {0, 1, 1}, {0, 1, 0}, 1568, 122},
    {"P12",           {1, 1, 1}, {0, 1, 0}, 1569, 123},
    {"P13",           {0, 1, 1}, {0, 0, 1}, 1570, 124},
    {"P14",           {0, 1, 1}, {0, 0, 1}, 1571, 125},
    {"P15",           {0, 1, 1}, {0, 0, 1}, 1572, 126},
    {"P16",           {0, 1, 1}, {0, 0, 1}, 1573, 127},
    {"P17",           {0, 1, 1}, {0, 0, 1}, 1574, 128},
    {"P18",           {0, 1, 1}, {0, 0, 1}, 1575, 129},
    {"P19",           {0, 1, 1}, {0, 0, 1}, 1576, 130},
    {"P20",           {1, 1, 1}, {0, 0, 1}, 1577, 131},
};
// clang-format on

class Toolbars : public DeviceTest {};

std::string BarName(int i) { return "tbar" + std::to_string(i); }

DWORD ValueOf(const BYTE* bars) { return static_cast<DWORD>(4 * bars[0] + 2 * bars[1] + bars[2]); }

DWORD MembershipOf(const ToolbarButton& button) {
    return (button.onBar1 ? 4u : 0u) + (button.onBar2 ? 2u : 0u) + (button.onBar3 ? 1u : 0u);
}

void TakeAllOff() {
    for (ToolbarButton* button = toolbar_buttons; button->name; button++)
        button->onBar1 = button->onBar2 = button->onBar3 = 0;
}

std::vector<int> ActionsOnBar(int bar) {
    std::vector<int> actions;
    for (int position = 0; ToolbarAction(position, bar); position++)
        actions.push_back(ToolbarAction(position, bar));
    return actions;
}

// The rows that a bar shows by default.
std::vector<int> DefaultActions(int bar, bool narrow) {
    std::vector<int> actions;
    for (const ToolbarRow& row : kRows)
        if ((narrow ? row.narrow : row.wide)[bar - 1]) actions.push_back(row.action);
    return actions;
}

}  // namespace

TEST_F(Toolbars, EveryRowHasItsNameDefaultsBitmapAndAction) {
    for (int i = 0; i < 27; i++) {
        const ToolbarButton& button = toolbar_buttons[i];
        EXPECT_STREQ(kRows[i].name, button.name) << i;
        EXPECT_EQ(ValueOf(kRows[i].wide), ValueOf(button.wideDefault)) << button.name;
        EXPECT_EQ(ValueOf(kRows[i].narrow), ValueOf(button.narrowDefault)) << button.name;
        EXPECT_EQ(kRows[i].bitmap, button.bitmapId) << button.name;
        EXPECT_EQ(kRows[i].action, button.action) << button.name;
    }
}

TEST_F(Toolbars, TheTableEndsAfter27Rows) { EXPECT_EQ(nullptr, toolbar_buttons[27].name); }

TEST_F(Toolbars, AWideScreenStartsWithTheWideDefaults) {
    LoadToolbars();
    for (int i = 0; i < 27; i++)
        EXPECT_EQ(ValueOf(kRows[i].wide), MembershipOf(toolbar_buttons[i])) << kRows[i].name;
}

TEST_F(Toolbars, ANarrowScreenStartsWithTheNarrowDefaults) {
    session.narrow_screen = 1;
    LoadToolbars();
    for (int i = 0; i < 27; i++)
        EXPECT_EQ(ValueOf(kRows[i].narrow), MembershipOf(toolbar_buttons[i])) << kRows[i].name;
}

TEST_F(Toolbars, ANarrowScreenStartsWithoutP6) {
    session.narrow_screen = 1;
    LoadToolbars();
    ASSERT_STREQ("P6", toolbar_buttons[12].name);
    for (int bar = 1; bar <= 3; bar++)
        for (const int action : ActionsOnBar(bar)) EXPECT_NE(117, action);
}

TEST_F(Toolbars, LoadedFlagsAreTheValuesBits) {
    StoreNumber("tbar0", 4);
    StoreNumber("tbar1", 2);
    StoreNumber("tbar2", 1);
    StoreNumber("tbar3", 0);
    LoadToolbars();
    const DWORD kExpected[4][3] = {{4, 0, 0}, {0, 2, 0}, {0, 0, 1}, {0, 0, 0}};
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(kExpected[i][0], toolbar_buttons[i].onBar1);
        EXPECT_EQ(kExpected[i][1], toolbar_buttons[i].onBar2);
        EXPECT_EQ(kExpected[i][2], toolbar_buttons[i].onBar3);
    }
}

TEST_F(Toolbars, EveryRowIsLoadedFromItsOwnValue) {
    for (int i = 0; i < 27; i++) StoreNumber(BarName(i), static_cast<DWORD>(i % 8));
    LoadToolbars();
    for (int i = 0; i < 27; i++)
        EXPECT_EQ(static_cast<DWORD>(i % 8), MembershipOf(toolbar_buttons[i])) << i;
}

TEST_F(Toolbars, ARow5Of7PutsSmallerFontOnAllThreeBars) {
    StoreNumber("tbar5", 7);
    LoadToolbars();
    for (int bar = 1; bar <= 3; bar++) {
        const std::vector<int> actions = ActionsOnBar(bar);
        EXPECT_EQ(1, std::count(actions.begin(), actions.end(), 33)) << bar;
    }
}

TEST_F(Toolbars, EveryRowIsSavedAsItsOwnNumber) {
    LoadToolbars();
    SaveToolbars();
    EXPECT_EQ(NumberedNames("tbar", 27), StoredNames());
    for (int i = 0; i < 27; i++) {
        const RegistryValue value = Stored(BarName(i));
        EXPECT_EQ(REG_DWORD, value.type) << i;
        EXPECT_EQ(NumberBytes(ValueOf(kRows[i].wide)), value.data) << i;
    }
}

TEST_F(Toolbars, EveryMembershipSurvivesASaveAndALoad) {
    for (DWORD value = 0; value < 8; value++) {
        for (int i = 0; i < 27; i++) {
            const DWORD bits = (value + static_cast<DWORD>(i)) % 8;
            toolbar_buttons[i].onBar1 = bits & 4 ? 9 : 0;  // any number but 0 is on
            toolbar_buttons[i].onBar2 = bits & 2 ? 0x80000000 : 0;
            toolbar_buttons[i].onBar3 = bits & 1 ? 2 : 0;
        }
        SaveToolbars();
        TakeAllOff();
        LoadToolbars();
        for (int i = 0; i < 27; i++)
            EXPECT_EQ((value + static_cast<DWORD>(i)) % 8, MembershipOf(toolbar_buttons[i]));
    }
}

TEST_F(Toolbars, OtherBitsOfAValueAreNotKept) {
    StoreNumber("tbar1", 0xFFFFFFF8);
    StoreNumber("tbar2", 0xFFFFFFFF);
    LoadToolbars();
    EXPECT_EQ(0u, MembershipOf(toolbar_buttons[1]));
    SaveToolbars();
    EXPECT_EQ(NumberBytes(0), Stored("tbar1").data);
    EXPECT_EQ(NumberBytes(7), Stored("tbar2").data);
}

TEST_F(Toolbars, DeletingDeletesTheRowsAndNothingElse) {
    LoadToolbars();
    SaveToolbars();
    StoreNumber("fsize", 9);
    DeleteToolbars();
    EXPECT_EQ(NumberedNames("tbar", 27), LoggedNames("delete"));
    EXPECT_EQ(std::vector<std::string>{"fsize"}, StoredNames());
}

TEST_F(Toolbars, DeletingWithoutTheKeyDoesNothing) {
    DeleteToolbars();
    EXPECT_TRUE(LoggedNames("delete").empty());
}

TEST_F(Toolbars, EveryPositionHasTheActionOfItsRow) {
    for (const bool narrow : {false, true}) {
        session.narrow_screen = narrow ? 1 : 0;
        LoadToolbars();
        for (int bar = 1; bar <= 3; bar++)
            EXPECT_EQ(DefaultActions(bar, narrow), ActionsOnBar(bar));
    }
}

TEST_F(Toolbars, APositionPastTheLastButtonHasNoAction) {
    LoadToolbars();
    const int count = static_cast<int>(DefaultActions(1, false).size());
    EXPECT_EQ(131, ToolbarAction(count - 1, 1));
    for (const int position : {count, 27, 28, 49, INT32_MAX, -1, -27, INT32_MIN})
        EXPECT_EQ(0, ToolbarAction(position, 1)) << position;
}

TEST_F(Toolbars, AnUnknownBarHasNoAction) {
    LoadToolbars();
    for (const int bar : {0, 4, -1, INT32_MAX, INT32_MIN})
        EXPECT_EQ(0, ToolbarAction(0, bar)) << bar;
}

TEST_F(Toolbars, ABarWithEveryFlagOffHasNoButtons) {
    for (const std::string& name : NumberedNames("tbar", 27)) StoreNumber(name, 3);
    LoadToolbars();
    EXPECT_TRUE(ActionsOnBar(1).empty());
    EXPECT_EQ(27u, ActionsOnBar(2).size());
    EXPECT_EQ(27u, ActionsOnBar(3).size());
}

TEST_F(Toolbars, ARowOnNoBarHasNoButton) {
    StoreNumber("tbar6", 0);
    LoadToolbars();
    for (int bar = 1; bar <= 3; bar++) {
        const std::vector<int> actions = ActionsOnBar(bar);
        EXPECT_EQ(0, std::count(actions.begin(), actions.end(), 13)) << bar;
    }
}

TEST_F(Toolbars, ConnectIsAction29WhileConnectedToo) {
    LoadToolbars();
    EXPECT_EQ(29, ToolbarAction(1, 1));
    session.connected = 1;
    EXPECT_EQ(29, ToolbarAction(1, 1));
    session.connected = 0;
}

// SPDX-License-Identifier: MIT
// Which row a virtual key selects: every code with every modifier, compared with separate rules.
#include <cstdlib>
#include <utility>

#include "settings/key_map.h"
#include "tests/settings/device.h"
#include "tests/settings/window_doubles.h"

namespace {

// Every row has its number as text, so that the sent bytes show the row.
class VirtualKeys : public DeviceTest {
  protected:
    void SetUp() override {
        DeviceTest::SetUp();
        for (int i = 0; i < kKeyRows; i++)
            ASSERT_EQ(1, SetKeyText(&key_map[i], Wide(std::to_string(i)).c_str()));
    }
};

class DefaultKeys : public DeviceTest {
  protected:
    void SetUp() override {
        DeviceTest::SetUp();
        LoadKeyMap();
    }
};

const std::map<int, int> kSingleKeys = {{36, 32}, {8, 39},  {13, 33}, {27, 37}, {33, 35}, {34, 36},
                                        {35, 34}, {37, 64}, {38, 62}, {39, 65}, {40, 63}, {46, 38}};

// -1: not mapped.
int ExpectedRow(int vk, bool shift, bool control) {
    if (vk >= 112 && vk <= 131) return shift ? vk - 92 : vk - 112;
    if (vk == 9) return shift ? 41 : 40;
    if (vk >= 48 && vk <= 57) {
        if (!control) return -1;
        return shift ? vk + 4 : vk - 6;
    }
    const auto found = kSingleKeys.find(vk);
    return found == kSingleKeys.end() ? -1 : found->second;
}

int SentRow(int vk) {
    const char* text = TranslateVirtualKey(vk);
    return text ? atoi(text) : -1;
}

void ExpectAllKeys(bool shift, bool control) {
    for (int vk = -300; vk <= 300; vk++)
        EXPECT_EQ(ExpectedRow(vk, shift, control), SentRow(vk)) << vk;
}

// Each state in which a modifier counts as down.
const SHORT kStates[] = {kKeyDown, kKeyToggled, static_cast<SHORT>(kKeyDown | kKeyToggled)};
constexpr int kShiftKeys[] = {160, 161};
constexpr int kControlKeys[] = {162, 163};

}  // namespace

TEST_F(VirtualKeys, EveryCodeSendsItsRowWithoutModifiers) { ExpectAllKeys(false, false); }

TEST_F(VirtualKeys, EveryCodeSendsItsRowWithShift) {
    for (const int key : kShiftKeys) {
        key_states = {{key, kKeyDown}};
        ExpectAllKeys(true, false);
    }
    key_states = {{160, kKeyDown}, {161, kKeyDown}};
    ExpectAllKeys(true, false);
}

TEST_F(VirtualKeys, EveryCodeSendsItsRowWithCtrl) {
    for (const int key : kControlKeys) {
        key_states = {{key, kKeyDown}};
        ExpectAllKeys(false, true);
    }
    key_states = {{162, kKeyDown}, {163, kKeyDown}};
    ExpectAllKeys(false, true);
}

TEST_F(VirtualKeys, EveryCodeSendsItsRowWithShiftAndCtrl) {
    for (const int shift : kShiftKeys)
        for (const int control : kControlKeys) {
            key_states = {{shift, kKeyDown}, {control, kKeyDown}};
            ExpectAllKeys(true, true);
        }
}

TEST_F(VirtualKeys, AToggledModifierCountsAsDown) {
    for (const SHORT state : kStates) {
        for (const int key : kShiftKeys) {
            key_states = {{key, state}};
            EXPECT_EQ(20, SentRow(VK_F1));
        }
        for (const int key : kControlKeys) {
            key_states = {{key, state}};
            EXPECT_EQ(47, SentRow('5'));
        }
    }
    key_states = {{161, kKeyToggled}, {163, kKeyToggled}};
    EXPECT_EQ(57, SentRow('5'));
}

TEST_F(VirtualKeys, TheGenericModifierCodesAreNotQueried) {
    key_states = {{VK_SHIFT, kKeyDown}, {VK_CONTROL, kKeyDown}, {VK_MENU, kKeyDown}};
    ExpectAllKeys(false, false);
}

TEST_F(VirtualKeys, ShiftF13ToF20LandOnRows32To39) {
    key_states = {{160, kKeyDown}};
    const char* const kNames[] = {"HOME", "ENTER", "END", "PGUP",
                                  "PGDN", "ESC",   "DEL", "BACKSPACE"};
    for (int i = 0; i < 8; i++) {
        EXPECT_EQ(32 + i, SentRow(124 + i));
        EXPECT_STREQ(kNames[i], key_map[32 + i].name);
    }
}

TEST_F(VirtualKeys, CtrlDoesNotChangeFunctionKeys) {
    key_states = {{162, kKeyDown}};
    for (int vk = 112; vk <= 131; vk++) EXPECT_EQ(vk - 112, SentRow(vk));
}

TEST_F(VirtualKeys, CodesBeyondAllRangesAreNotMapped) {
    for (const int vk : {INT32_MIN, -1, 0, 132, 135, 255, 256, 65536 + 112, INT32_MAX})
        EXPECT_EQ(nullptr, TranslateVirtualKey(vk)) << vk;
}

TEST_F(VirtualKeys, ChangingTabLeavesShiftTab) {
    SetKeyText(&key_map[41], TEXT("\\033[Z"));
    EXPECT_STREQ("40", TranslateVirtualKey(VK_TAB));
    key_states = {{160, kKeyDown}};
    EXPECT_STREQ("\x1B[Z", TranslateVirtualKey(VK_TAB));
}

TEST_F(DefaultKeys, BackspaceIsMappedAndSendsNothing) {
    const char* sequence = TranslateVirtualKey(VK_BACK);
    ASSERT_NE(nullptr, sequence);
    EXPECT_EQ('\0', sequence[0]);
    EXPECT_EQ('8', sequence[1]);
}

TEST_F(DefaultKeys, TheTableTakesEveryKeyThatItNamesButBackspaceWithItsDefault) {
    for (const int vk : {VK_F1, VK_F20, VK_HOME, VK_TAB, VK_RETURN, VK_ESCAPE, VK_PRIOR, VK_NEXT,
                         VK_END, VK_LEFT, VK_UP, VK_RIGHT, VK_DOWN, VK_DELETE})
        EXPECT_TRUE(TableTakesKey(vk)) << vk;
    for (const int vk : {VK_BACK, int{'0'}, int{'9'}, int{'A'}, VK_F20 + 1, 0, -1})
        EXPECT_FALSE(TableTakesKey(vk)) << vk;
    key_states = {{163, kKeyToggled}};
    for (const int vk : {int{'0'}, int{'9'}}) EXPECT_TRUE(TableTakesKey(vk)) << vk;
    EXPECT_FALSE(TableTakesKey('0' - 1));
    EXPECT_FALSE(TableTakesKey('9' + 1));
}

TEST_F(DefaultKeys, BackspaceWithAnyOtherTextInItsRowIsTaken) {
    for (const char16_t* text : {u"", u"\\177", u"\\0", u"\\08", u"\\0080", u"\\000"}) {
        SetKeyText(&key_map[39], text);
        EXPECT_TRUE(TableTakesKey(VK_BACK));
    }
    SetKeyText(&key_map[39], u"\\008");
    EXPECT_FALSE(TableTakesKey(VK_BACK));
    SetKeyText(&key_map[37], u"");
    EXPECT_TRUE(TableTakesKey(VK_ESCAPE)) << "an empty row";
}

TEST_F(DefaultKeys, BackspaceRowWithoutATextIsTakenAndSendsNothing) {
    free(std::exchange(key_map[39].text, nullptr));
    EXPECT_TRUE(TableTakesKey(VK_BACK));
    EXPECT_STREQ("", TranslateVirtualKey(VK_BACK));
}

TEST_F(DefaultKeys, ShiftF9ToF12SendNothing) {
    key_states = {{160, kKeyDown}};
    for (int vk = 120; vk <= 123; vk++) EXPECT_STREQ("", TranslateVirtualKey(vk)) << vk;
}

TEST_F(DefaultKeys, ShiftTabSendsATabLikeTab) {
    EXPECT_STREQ("\t", TranslateVirtualKey(VK_TAB));
    key_states = {{160, kKeyDown}};
    EXPECT_STREQ("\t", TranslateVirtualKey(VK_TAB));
}

TEST_F(DefaultKeys, Ctrl5SendsF5AndShiftCtrl0SendsF20) {
    EXPECT_EQ(nullptr, TranslateVirtualKey('5'));
    EXPECT_STREQ("\x1B[15~", TranslateVirtualKey(VK_F1 + 4));
    EXPECT_STREQ("\x1B[34~", TranslateVirtualKey(VK_F20));
    key_states = {{162, kKeyDown}};
    EXPECT_STREQ("\x1B[15~", TranslateVirtualKey('5'));
    key_states = {{162, kKeyDown}, {160, kKeyDown}};
    EXPECT_STREQ("\x1B[34~", TranslateVirtualKey('0'));
}

TEST_F(DefaultKeys, FunctionKeysAndHomeMixTheIntroducers) {
    EXPECT_STREQ("\x8FP", TranslateVirtualKey(VK_F1));
    EXPECT_STREQ(
        "\x9B"
        "1~",
        TranslateVirtualKey(VK_HOME));
    EXPECT_STREQ("\x1B[A", TranslateVirtualKey(VK_UP));
}

TEST_F(DefaultKeys, TheBackslashAndFourDigits0101AreByte8And1) {
    SetKeyText(&key_map[0], TEXT("\\0101"));
    EXPECT_STREQ("\b1", TranslateVirtualKey(VK_F1));
}

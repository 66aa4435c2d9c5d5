// SPDX-License-Identifier: MIT
// AltGr: the messages of the desktop on five layouts, and which Ctrl the program sees as down.
#include "tests/platform/test_windows.h"

namespace {

constexpr LPARAM kRightKey = 1 << 24;
constexpr LPARAM kWasDown = 1 << 30;

// A keyboard: each press produces the messages and key states of the desktop.
class AltGr : public testing::Test {
  protected:
    void SetUp() override { LetGo(); }
    void TearDown() override { LetGo(); }

    void LetGo() {
        BYTE none[256] = {};
        SetKeyboardState(none);
        Tell(WM_KEYUP, VK_CONTROL, 0);
    }
    // A layout without AltGr, like the American and the Japanese one.
    void PressRightAlt() {
        Set(VK_RMENU, 0x80);
        Tell(WM_SYSKEYDOWN, VK_MENU, kRightKey);
    }
    void ReleaseRightAlt() {
        Set(VK_RMENU, 0);
        Tell(WM_SYSKEYUP, VK_MENU, kRightKey);
    }
    // A layout with AltGr: German, French, Swiss, American-International.
    void PressAltGr(DWORD between = 0) {
        Tell(WM_KEYDOWN, VK_CONTROL, Held(VK_LCONTROL));
        now += between;
        Set(VK_LCONTROL, 0x80);
        Set(VK_RMENU, 0x80);
        Tell(WM_KEYDOWN, VK_MENU, kRightKey);
    }
    void ReleaseAltGr() {
        Set(VK_LCONTROL, 0);
        Tell(WM_KEYUP, VK_CONTROL, 0);
        Set(VK_RMENU, 0);
        Tell(WM_SYSKEYUP, VK_MENU, kRightKey);
    }
    void PressLeftControl() {
        Wait();
        Tell(WM_KEYDOWN, VK_CONTROL, Held(VK_LCONTROL));
        Set(VK_LCONTROL, 0x80);
        Wait();
    }
    void ReleaseLeftControl() {
        Set(VK_LCONTROL, 0);
        Tell(WM_KEYUP, VK_CONTROL, 0);
    }
    // Advances the clock, so that the next press has another time.
    void Wait() { now += 50; }

    static bool ControlIsDown() { return GetKeyState(VK_LCONTROL) != 0; }

  private:
    static void Set(int key, BYTE state) {
        BYTE states[256];
        GetKeyboardState(states);
        states[key] = state;
        SetKeyboardState(states);
    }
    static LPARAM Held(int key) { return GetKeyState(key) ? kWasDown : 0; }
    void Tell(UINT message, WPARAM key, LPARAM flags) {
        MSG told = {};
        told.message = message;
        told.wParam = key;
        told.lParam = flags;
        told.time = now;
        DeviceNoteKey(&told);
    }
    DWORD now = 1000;
};

}  // namespace

TEST_F(AltGr, IsNotControl) {
    PressAltGr();
    EXPECT_FALSE(ControlIsDown());
    PressAltGr();  // the desktop repeats both
    EXPECT_FALSE(ControlIsDown());
    ReleaseAltGr();
    EXPECT_FALSE(ControlIsDown());
}

// The times of the two presses may differ a little. Nobody presses two keys as fast as that.
TEST_F(AltGr, IsNotControlWhenItsTwoPressesDifferByMilliseconds) {
    for (const DWORD between : {1u, 3u, 5u}) {
        Wait();
        PressAltGr(between);
        EXPECT_FALSE(ControlIsDown()) << between;
        ReleaseAltGr();
    }
    Wait();
    PressAltGr(40);
    EXPECT_TRUE(ControlIsDown()) << "a real Ctrl";
    ReleaseAltGr();
}

TEST_F(AltGr, LeavesAHeldControlDown) {
    PressLeftControl();
    PressAltGr();
    EXPECT_TRUE(ControlIsDown());
    PressAltGr();
    EXPECT_TRUE(ControlIsDown());
    ReleaseAltGr();
    Wait();
    PressAltGr();
    EXPECT_FALSE(ControlIsDown());
}

TEST_F(AltGr, ControlPressedAfterItCounts) {
    PressAltGr();
    PressLeftControl();
    EXPECT_TRUE(ControlIsDown());
    ReleaseLeftControl();
    EXPECT_FALSE(ControlIsDown());
}

TEST_F(AltGr, ControlWithAPlainRightAltCounts) {
    PressLeftControl();
    PressRightAlt();
    EXPECT_TRUE(ControlIsDown());
    ReleaseRightAlt();
    ReleaseLeftControl();
    Wait();
    PressRightAlt();
    PressLeftControl();
    EXPECT_TRUE(ControlIsDown());
}

// The key is released in the window of another program, so no message reports it.
TEST_F(AltGr, ControlReleasedElsewhereNoLongerCounts) {
    PressLeftControl();
    BYTE none[256] = {};
    SetKeyboardState(none);
    EXPECT_FALSE(ControlIsDown());
    Wait();
    PressAltGr();
    EXPECT_FALSE(ControlIsDown());
}

// German, French, Swiss and American-International have AltGr, Japanese has a plain right Alt. The
// test switches from each layout to each other one; no state of a layout stays for the next.
TEST_F(AltGr, FollowsTheLayoutsAsTheySwitch) {
    const bool has_alt_gr[] = {true, true, true, true, false};
    for (const bool before : has_alt_gr) {
        for (const bool after : has_alt_gr) {
            for (const bool layout : {before, after}) {
                Wait();
                layout ? PressAltGr() : PressRightAlt();
                EXPECT_FALSE(ControlIsDown());
                layout ? ReleaseAltGr() : ReleaseRightAlt();
                PressLeftControl();
                EXPECT_TRUE(ControlIsDown());
                layout ? PressAltGr() : PressRightAlt();
                EXPECT_TRUE(ControlIsDown());
                layout ? ReleaseAltGr() : ReleaseRightAlt();
                ReleaseLeftControl();
                EXPECT_FALSE(ControlIsDown());
            }
        }
    }
}

// Only the messages that the loop takes count.
TEST(AltGrInTheLoop, ControlThatTheLoopTookStaysDownWithAltGr) {
    BYTE states[256] = {};
    states[VK_LCONTROL] = states[VK_RMENU] = 0x80;
    SetKeyboardState(states);
    EXPECT_EQ(0, GetKeyState(VK_LCONTROL));
    MSG message = {};
    PostThreadMessageW(GetCurrentThreadId(), WM_KEYDOWN, VK_CONTROL, 0);
    GetMessageW(&message, nullptr, 0, 0);
    EXPECT_LT(GetKeyState(VK_LCONTROL), 0);
    PostThreadMessageW(GetCurrentThreadId(), WM_KEYUP, VK_CONTROL, 0);
    GetMessageW(&message, nullptr, 0, 0);
    EXPECT_EQ(0, GetKeyState(VK_LCONTROL));
    BYTE none[256] = {};
    SetKeyboardState(none);
}

// SPDX-License-Identifier: MIT
// Dialogs: their procedure, their end, their owner and their position.
#include "tests/platform/known_gap.h"
#include "tests/platform/test_dialogs.h"

namespace {

using Dialogs = DialogTest;

// A window that counts the messages that it gets.
int g_counted = 0;

LRESULT CALLBACK CountProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_APP + 1 || message == WM_TIMER) g_counted++;
    return DefWindowProcW(window, message, wparam, lparam);
}

HWND MakeOwner() {
    WNDCLASSW shape = {};
    shape.lpfnWndProc = CountProcedure;
    shape.lpszClassName = TEXT("DialogOwner");
    RegisterClassW(&shape);
    g_counted = 0;
    return CreateWindowExW(0, TEXT("DialogOwner"), TEXT("owner"), WS_VISIBLE, 0, 0, 300, 200,
                           nullptr, nullptr, nullptr, nullptr);
}

}  // namespace

TEST_F(Dialogs, ResultIsWhatEndDialogWasGiven) {
    g_act = [](HWND dialog) { EndDialog(dialog, -1234567); };
    EXPECT_EQ(-1234567, Show(kEverything));
    g_act = [](HWND dialog) { EndDialog(dialog, 0); };
    EXPECT_EQ(0, Show(kExtended));
}

TEST_F(Dialogs, WithoutATemplateNoDialogOpens) { EXPECT_EQ(-1, Show(kMissing)); }

TEST_F(Dialogs, ControlOfAnUnknownClassRefusesTheDialog) { EXPECT_EQ(-1, Show(kUnknownClass)); }

TEST_F(Dialogs, OwnerThatIsNoWindowRefusesTheDialog) {
    KNOWN_GAP_ON_WINDOWS("0 for an owner that is none, -1 for every other failure");
    const HWND gone = MakeOwner();
    DestroyWindow(gone);
    EXPECT_EQ(-1, Show(kEverything, gone));
}

TEST_F(Dialogs, InitGetsTheParameterAndTheFirstTabStop) {
    HWND first = nullptr;
    g_on_init = [&](HWND dialog) { first = GetDlgItem(dialog, kName); };
    g_on_shown = [&](HWND dialog) {
        EXPECT_EQ(first, GetFocus());
        EndDialog(dialog, 1);
    };
    Show(kEverything, nullptr, 4711);
    EXPECT_EQ(reinterpret_cast<WPARAM>(first), g_init_focus);
    EXPECT_EQ(4711, g_init_parameter);
}

TEST_F(Dialogs, IsShownOnceTheQueueIsEmpty) {
    g_on_init = [](HWND dialog) { EXPECT_FALSE(IsWindowVisible(dialog)); };
    g_act = [](HWND dialog) { EXPECT_FALSE(IsWindowVisible(dialog)); };
    g_on_shown = [](HWND dialog) {
        EXPECT_TRUE(IsWindowVisible(dialog));
        EndDialog(dialog, 1);
    };
    EXPECT_EQ(1, Show(kEverything));
}

TEST_F(Dialogs, FocusSetByInitStaysWhenItReturnsFalse) {
    g_init_answer = FALSE;
    g_on_init = [](HWND dialog) { SetFocus(GetDlgItem(dialog, kPassword)); };
    g_act = [](HWND dialog) {
        EXPECT_EQ(GetDlgItem(dialog, kPassword), GetFocus());
        EndDialog(dialog, 1);
    };
    Show(kEverything);
}

TEST_F(Dialogs, IsNeverShownWhenInitEndsIt) {
    bool acted = false;
    g_on_init = [](HWND dialog) { EndDialog(dialog, 9); };
    g_act = [&](HWND) { acted = true; };
    EXPECT_EQ(9, Show(kEverything));
    EXPECT_FALSE(acted);
}

TEST_F(Dialogs, ClosingIsCancelling) {
    g_act = [](HWND dialog) { SendMessageW(dialog, WM_CLOSE, 0, 0); };
    EXPECT_EQ(IDCANCEL, Show(kEverything));
    EXPECT_EQ(1, NoticesOf(IDCANCEL, BN_CLICKED));
}

TEST_F(Dialogs, ClosingWithCancelSwitchedOffDoesNothing) {
    KNOWN_GAP_ON_WINE("it cancels whether the button is switched on or not");
    g_act = [](HWND dialog) {
        EnableWindow(GetDlgItem(dialog, IDCANCEL), FALSE);
        SendMessageW(dialog, WM_CLOSE, 0, 0);
        g_act = [](HWND same) { EndDialog(same, 7); };
        PostMessageW(dialog, WM_APP, 0, 0);
    };
    EXPECT_EQ(7, Show(kEverything));
    EXPECT_EQ(0, NoticesOf(IDCANCEL, BN_CLICKED));
}

TEST_F(Dialogs, WindowIsDestroyedAtItsEnd) {
    HWND shown = nullptr;
    On(kEverything, [&](HWND dialog) { shown = dialog; });
    EXPECT_NE(nullptr, shown);
    EXPECT_FALSE(IsWindow(shown));
}

TEST_F(Dialogs, CaptionIsThatOfTheTemplate) {
    On(kEverything, [](HWND dialog) {
        WCHAR text[40];
        GetWindowTextW(dialog, text, 40);
        EXPECT_EQ(Text(TEXT("Everything")), text);
        SetWindowTextW(dialog, TEXT("Another"));
        GetWindowTextW(dialog, text, 40);
        EXPECT_EQ(Text(TEXT("Another")), text);
    });
}

TEST_F(Dialogs, InnerOneReturnsToTheOuter) {
    g_on_advanced = [](HWND outer) {
        g_act = [outer](HWND inner) {
            EXPECT_EQ(outer, GetParent(inner));
            EndDialog(inner, 5);
        };
        EXPECT_EQ(5, Show(kExtended, outer));
        EXPECT_TRUE(IsWindow(outer));
        EndDialog(outer, 6);
    };
    g_act = [](HWND dialog) { Tell(dialog, kAdvanced, BM_CLICK); };
    EXPECT_EQ(6, Show(kEverything));
}

TEST_F(Dialogs, ControlAsTheOwnerMeansItsDialog) {
    g_act = [](HWND outer) {
        g_act = [outer](HWND inner) {
            EXPECT_EQ(outer, GetParent(inner));
            EndDialog(inner, 5);
        };
        EXPECT_EQ(5, Show(kExtended, GetDlgItem(outer, kName)));
        EndDialog(outer, 6);
    };
    EXPECT_EQ(6, Show(kEverything));
}

TEST_F(Dialogs, PostedMessagesAndTimersOfOtherWindowsAreHandled) {
    const HWND owner = MakeOwner();
    SetTimer(owner, 1, 10, nullptr);
    g_act = [owner](HWND dialog) {
        if (g_counted < 3) {
            PostMessageW(owner, WM_APP + 1, 0, 0);
            Sleep(15);
            PostMessageW(dialog, WM_APP, 0, 0);
            return;
        }
        EndDialog(dialog, 1);
    };
    EXPECT_EQ(1, Show(kEverything, owner));
    EXPECT_GE(g_counted, 3);
    DestroyWindow(owner);
}

TEST_F(Dialogs, EndsWithItsOwner) {
    const HWND owner = MakeOwner();
    HWND shown = nullptr;
    g_act = [&](HWND dialog) {
        shown = dialog;
        DestroyWindow(owner);
    };
    Show(kEverything, owner);
    EXPECT_FALSE(IsWindow(shown));
}

TEST_F(Dialogs, EndsWithTheProgramAndLeavesItsCode) {
    HWND shown = nullptr;
    g_act = [&](HWND dialog) {
        shown = dialog;
        PostQuitMessage(17);
    };
    Show(kEverything);
    EXPECT_FALSE(IsWindow(shown));
    MSG message;
    EXPECT_FALSE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(17u, message.wParam);
}

TEST_F(Dialogs, KeepsTheProgramsUserData) {
    On(kEverything, [](HWND dialog) {
        EXPECT_EQ(0, SetWindowLongPtrW(dialog, DWLP_USER, 99));
        EXPECT_EQ(99, SetWindowLongPtrW(dialog, DWLP_USER, 100));
        EXPECT_EQ(100, GetWindowLongPtrW(dialog, DWLP_USER));
    });
}

TEST_F(Dialogs, MovesOnTheScreen) {
    On(kExtended, [](HWND dialog) {
        RECT before, after;
        GetWindowRect(dialog, &before);
        SetWindowPos(dialog, nullptr, 20, 30, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        GetWindowRect(dialog, &after);
        EXPECT_EQ(20, after.left);
        EXPECT_EQ(30, after.top);
        EXPECT_EQ(before.right - before.left, after.right - after.left);
        EXPECT_EQ(before.bottom - before.top, after.bottom - after.top);
        MoveWindow(dialog, 40, 50, after.right - 20, after.bottom - 30, TRUE);
        GetWindowRect(dialog, &after);
        EXPECT_EQ(40, after.left);
        EXPECT_EQ(50, after.top);
    });
}

TEST_F(Dialogs, PointsAreMappedBothWays) {
    On(kExtended, [](HWND dialog) {
        RECT list;
        GetWindowRect(GetDlgItem(dialog, kSorted), &list);
        POINT corner = {list.left, list.top};
        ScreenToClient(dialog, &corner);
        RECT units = {4, 20, 84, 40};
        EXPECT_TRUE(MapDialogRect(dialog, &units));
        EXPECT_EQ(units.left, corner.x);
        EXPECT_EQ(units.top, corner.y);
        ClientToScreen(dialog, &corner);
        EXPECT_EQ(list.left, corner.x);
        EXPECT_EQ(list.top, corner.y);
    });
}

TEST_F(Dialogs, ControlsMoveWithinTheDialog) {
    On(kEverything, [](HWND dialog) {
        const HWND edit = GetDlgItem(dialog, kName);
        MoveWindow(edit, 7, 9, 50, 20, TRUE);
        RECT place;
        GetWindowRect(edit, &place);
        POINT corner = {place.left, place.top};
        ScreenToClient(dialog, &corner);
        EXPECT_EQ(7, corner.x);
        EXPECT_EQ(9, corner.y);
        EXPECT_EQ(50, place.right - place.left);
        EXPECT_EQ(20, place.bottom - place.top);
    });
}

// Dialogs, their controls and property sheets, acted upon by messages alone.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/platform/known_gap.h"
#include "windows_ce.h"

namespace {

using Text = std::basic_string<WCHAR>;
using Action = std::function<void(HWND dialog)>;

constexpr int kEverything = 100, kExtended = 101, kFirstPage = 102, kSecondPage = 103,
              kUnknownClass = 105, kMissing = 199;
constexpr int kName = 200, kPassword = 201, kHost = 202, kPlain = 203, kAutomatic = 204, kOne = 206,
              kTwo = 207, kThree = 208, kLeft = 209, kRight = 210, kFont = 211, kHint = 212,
              kDigits = 213, kOff = 214, kAdvanced = 215;
constexpr int kDropList = 300, kSorted = 301;
constexpr int kType = 400, kChange = 401, kBell = 402;

struct Notice {
    int id;
    int code;
    HWND control;
};

// What the dialogs of a test do and have heard.
Action g_on_init, g_act, g_on_advanced;
std::vector<Notice> g_notices;
WPARAM g_init_focus;
LPARAM g_init_parameter;
INT_PTR g_init_answer = TRUE;

void Forget() {
    g_on_init = g_act = g_on_advanced = nullptr;
    g_notices.clear();
    g_init_focus = 0;
    g_init_parameter = 0;
    g_init_answer = TRUE;
}

INT_PTR OnInit(HWND dialog, WPARAM wparam, LPARAM lparam) {
    g_init_focus = wparam;
    g_init_parameter = lparam;
    if (g_on_init) g_on_init(dialog);
    PostMessageW(dialog, WM_APP, 0, 0);
    return g_init_answer;
}

INT_PTR OnCommand(HWND dialog, WPARAM wparam, LPARAM lparam) {
    const int id = LOWORD(wparam);
    g_notices.push_back({id, HIWORD(wparam), reinterpret_cast<HWND>(lparam)});
    if (id == IDOK || id == IDCANCEL) EndDialog(dialog, id);
    if (id == kAdvanced && g_on_advanced) g_on_advanced(dialog);
    return TRUE;
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) return OnInit(dialog, wparam, lparam);
    if (message == WM_COMMAND) return OnCommand(dialog, wparam, lparam);
    if (message != WM_APP) return FALSE;
    if (const Action act = g_act) act(dialog);
    return TRUE;
}

INT_PTR Show(int id, HWND owner = nullptr, LPARAM parameter = 0) {
    return DialogBoxParamW(nullptr, MAKEINTRESOURCE(id), owner, Procedure, parameter);
}

// Opens the dialog, acts on it and closes it by OK.
void On(int id, const Action& act) {
    g_act = [&](HWND dialog) {
        act(dialog);
        EndDialog(dialog, IDOK);
    };
    EXPECT_EQ(IDOK, Show(id));
}

LRESULT Tell(HWND dialog, int id, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
    return SendDlgItemMessageW(dialog, id, message, wparam, lparam);
}

LRESULT TellText(HWND dialog, int id, UINT message, WPARAM wparam, const WCHAR* text) {
    return Tell(dialog, id, message, wparam, reinterpret_cast<LPARAM>(text));
}

Text TextOf(HWND dialog, int id) {
    WCHAR text[200];
    const UINT length = GetDlgItemTextW(dialog, id, text, 200);
    EXPECT_EQ(static_cast<UINT>(lstrlenW(text)), length);
    return text;
}

Text EntryOf(HWND dialog, int id, UINT message, WPARAM row) {
    WCHAR text[200] = {};
    EXPECT_EQ(lstrlenW(text), 0);
    const LRESULT length = Tell(dialog, id, message, row, reinterpret_cast<LPARAM>(text));
    EXPECT_EQ(lstrlenW(text), length);
    return text;
}

int NoticesOf(int id, int code) {
    int count = 0;
    for (const Notice& notice : g_notices) count += notice.id == id && notice.code == code;
    return count;
}

class Dialogs : public testing::Test {
  protected:
    void SetUp() override { Forget(); }
    void TearDown() override { Forget(); }
};
using Controls = Dialogs;

// A window that counts what reaches it.
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

TEST_F(Dialogs, WithoutATemplateThereIsNone) { EXPECT_EQ(-1, Show(kMissing)); }

TEST_F(Dialogs, ControlOfAnUnknownClassRefusesTheDialog) { EXPECT_EQ(-1, Show(kUnknownClass)); }

TEST_F(Dialogs, OwnerThatIsNoWindowRefusesTheDialog) {
    KNOWN_GAP_ON_WINDOWS("0 for an owner that is none, -1 for every other failure");
    const HWND gone = MakeOwner();
    DestroyWindow(gone);
    EXPECT_EQ(-1, Show(kEverything, gone));
}

TEST_F(Dialogs, InitGetsTheParameterAndTheFirstTabStop) {
    KNOWN_GAP_ON_WINDOWS("a dialog is shown once nothing is posted any more");
    HWND first = nullptr;
    g_on_init = [&](HWND dialog) {
        first = GetDlgItem(dialog, kName);
        EXPECT_FALSE(IsWindowVisible(dialog));
    };
    g_act = [&](HWND dialog) {
        EXPECT_TRUE(IsWindowVisible(dialog));
        EXPECT_EQ(first, GetFocus());
        EndDialog(dialog, 1);
    };
    Show(kEverything, nullptr, 4711);
    EXPECT_EQ(reinterpret_cast<WPARAM>(first), g_init_focus);
    EXPECT_EQ(4711, g_init_parameter);
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

TEST_F(Dialogs, EndedByInitItIsNeverShown) {
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
    g_act = [](HWND dialog) {
        EnableWindow(GetDlgItem(dialog, IDCANCEL), FALSE);
        SendMessageW(dialog, WM_CLOSE, 0, 0);
        g_act = [](HWND same) { EndDialog(same, 7); };
        PostMessageW(dialog, WM_APP, 0, 0);
    };
    EXPECT_EQ(7, Show(kEverything));
    EXPECT_EQ(0, NoticesOf(IDCANCEL, BN_CLICKED));
}

TEST_F(Dialogs, WindowGoesWithItsEnd) {
    HWND shown = nullptr;
    On(kEverything, [&](HWND dialog) { shown = dialog; });
    EXPECT_NE(nullptr, shown);
    EXPECT_FALSE(IsWindow(shown));
}

TEST_F(Dialogs, CaptionIsTheTemplates) {
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

TEST_F(Dialogs, ControlAsTheOwnerStandsForItsDialog) {
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

TEST_F(Dialogs, PostedMessagesAndTimersOfOtherWindowsGoOn) {
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

TEST_F(Dialogs, KeepsWhatTheProgramHangsOnIt) {
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

TEST_F(Controls, AreFoundByTheirNumber) {
    On(kEverything, [](HWND dialog) {
        const HWND edit = GetDlgItem(dialog, kName);
        ASSERT_NE(nullptr, edit);
        EXPECT_EQ(kName, GetDlgCtrlID(edit));
        EXPECT_EQ(dialog, GetParent(edit));
        EXPECT_EQ(nullptr, GetDlgItem(dialog, 12345));
        EXPECT_FALSE(SetDlgItemTextW(dialog, 12345, TEXT("x")));
        WCHAR text[4] = {'x', 0};
        EXPECT_EQ(0u, GetDlgItemTextW(dialog, 12345, text, 4));
        EXPECT_EQ(0, text[0]);
    });
}

TEST_F(Controls, TextsComeBackUnitByUnit) {
    const Text text(TEXT("\x05D0\x20AC \\033[A \xD83D\xDE00 &x"));
    On(kEverything, [&](HWND dialog) {
        for (const int id : {kName, kPassword, kHost, kPlain, kHint, kAdvanced}) {
            EXPECT_TRUE(SetDlgItemTextW(dialog, id, text.c_str()));
            EXPECT_EQ(text, TextOf(dialog, id)) << id;
            EXPECT_EQ(static_cast<LRESULT>(text.size()), Tell(dialog, id, WM_GETTEXTLENGTH)) << id;
        }
    });
}

TEST_F(Controls, LongTextIsCutToTheBuffer) {
    On(kEverything, [](HWND dialog) {
        WCHAR text[6] = {0, 0, 0, 0, 0, '!'};
        SetDlgItemTextW(dialog, kName, TEXT("abcdefgh"));
        EXPECT_EQ(4u, GetDlgItemTextW(dialog, kName, text, 5));
        EXPECT_EQ(Text(TEXT("abcd")), text);
        EXPECT_EQ('!', text[5]);
    });
}

TEST_F(Controls, LabelsOfTheTemplateStand) {
    On(kEverything, [](HWND dialog) {
        EXPECT_EQ(Text(TEXT("P&lain")), TextOf(dialog, kPlain));
        EXPECT_EQ(Text(TEXT("\\012 = CR && LF")), TextOf(dialog, kHint));
        EXPECT_EQ(Text(TEXT("A&dvanced...")), TextOf(dialog, kAdvanced));
    });
}

TEST_F(Controls, LimitOfAnEditLeavesWhatTheProgramSets) {
    On(kEverything, [](HWND dialog) {
        Tell(dialog, kName, EM_LIMITTEXT, 3);
        SetDlgItemTextW(dialog, kName, TEXT("abcdef"));
        EXPECT_EQ(Text(TEXT("abcdef")), TextOf(dialog, kName));
        Tell(dialog, kHost, CB_LIMITTEXT, 3);
        SetDlgItemTextW(dialog, kHost, TEXT("abcdef"));
        EXPECT_EQ(Text(TEXT("abcdef")), TextOf(dialog, kHost));
    });
}

TEST_F(Controls, EditTellsOfEachChange) {
    On(kEverything, [](HWND dialog) {
        g_notices.clear();
        SetDlgItemTextW(dialog, kName, TEXT("abc"));
        ASSERT_EQ(1, NoticesOf(kName, EN_CHANGE));
    });
}

TEST_F(Controls, SelectionOfAnEditIsSetReadAndReplaced) {
    On(kEverything, [](HWND dialog) {
        SetDlgItemTextW(dialog, kName, TEXT("abcdef"));
        Tell(dialog, kName, EM_SETSEL, 1, 3);
        DWORD from = 9, to = 9;
        Tell(dialog, kName, EM_GETSEL, reinterpret_cast<WPARAM>(&from),
             reinterpret_cast<LPARAM>(&to));
        EXPECT_EQ(1u, from);
        EXPECT_EQ(3u, to);
        TellText(dialog, kName, EM_REPLACESEL, FALSE, TEXT("XYZ"));
        EXPECT_EQ(Text(TEXT("aXYZdef")), TextOf(dialog, kName));
        Tell(dialog, kName, EM_SETSEL, 0, -1);
        EXPECT_EQ(MAKELONG(0, 7), Tell(dialog, kName, EM_GETSEL));
    });
}

TEST_F(Controls, NumbersAreWrittenAndRead) {
    On(kEverything, [](HWND dialog) {
        BOOL good = FALSE;
        SetDlgItemInt(dialog, kName, 65535, FALSE);
        EXPECT_EQ(Text(TEXT("65535")), TextOf(dialog, kName));
        EXPECT_EQ(65535u, GetDlgItemInt(dialog, kName, &good, FALSE));
        EXPECT_TRUE(good);
        SetDlgItemInt(dialog, kName, static_cast<UINT>(-5), TRUE);
        EXPECT_EQ(Text(TEXT("-5")), TextOf(dialog, kName));
        EXPECT_EQ(static_cast<UINT>(-5), GetDlgItemInt(dialog, kName, &good, TRUE));
        for (const WCHAR* wrong : {TEXT(""), TEXT("abc"), TEXT("99999999999")}) {
            SetDlgItemTextW(dialog, kName, wrong);
            EXPECT_EQ(0u, GetDlgItemInt(dialog, kName, &good, FALSE));
            EXPECT_FALSE(good);
        }
    });
}

TEST_F(Controls, PlainCheckBoxOnlyTells) {
    On(kEverything, [](HWND dialog) {
        Tell(dialog, kPlain, BM_CLICK);
        EXPECT_EQ(1, NoticesOf(kPlain, BN_CLICKED));
        EXPECT_EQ(GetDlgItem(dialog, kPlain), g_notices.back().control);
        EXPECT_EQ(static_cast<UINT>(BST_UNCHECKED), IsDlgButtonChecked(dialog, kPlain));
        CheckDlgButton(dialog, kPlain, BST_CHECKED);
        Tell(dialog, kPlain, BM_CLICK);
        EXPECT_EQ(static_cast<UINT>(BST_CHECKED), IsDlgButtonChecked(dialog, kPlain));
    });
}

TEST_F(Controls, AutomaticCheckBoxTurnsItselfFirst) {
    On(kEverything, [](HWND dialog) {
        g_notices.clear();
        CheckDlgButton(dialog, kAutomatic, BST_CHECKED);
        EXPECT_TRUE(g_notices.empty());
        Tell(dialog, kAutomatic, BM_CLICK);
        EXPECT_EQ(1, NoticesOf(kAutomatic, BN_CLICKED));
        EXPECT_EQ(BST_UNCHECKED, Tell(dialog, kAutomatic, BM_GETCHECK));
        Tell(dialog, kAutomatic, BM_CLICK);
        EXPECT_EQ(BST_CHECKED, Tell(dialog, kAutomatic, BM_GETCHECK));
    });
}

TEST_F(Controls, RadioButtonClearsItsGroupAlone) {
    On(kEverything, [](HWND dialog) {
        CheckDlgButton(dialog, kRight, BST_CHECKED);
        Tell(dialog, kOne, BM_CLICK);
        Tell(dialog, kThree, BM_CLICK);
        EXPECT_EQ(BST_UNCHECKED, Tell(dialog, kOne, BM_GETCHECK));
        EXPECT_EQ(BST_CHECKED, Tell(dialog, kThree, BM_GETCHECK));
        EXPECT_EQ(BST_CHECKED, Tell(dialog, kRight, BM_GETCHECK));
        Tell(dialog, kLeft, BM_CLICK);
        EXPECT_EQ(BST_UNCHECKED, Tell(dialog, kRight, BM_GETCHECK));
        EXPECT_EQ(BST_CHECKED, Tell(dialog, kThree, BM_GETCHECK));
    });
}

TEST_F(Controls, RadioButtonsStartWithoutAMarkAndCanLoseIt) {
    On(kEverything, [](HWND dialog) {
        for (const int id : {kOne, kTwo, kThree, kLeft, kRight})
            EXPECT_EQ(BST_UNCHECKED, Tell(dialog, id, BM_GETCHECK));
        CheckDlgButton(dialog, kTwo, BST_CHECKED);
        CheckDlgButton(dialog, kTwo, BST_UNCHECKED);
        EXPECT_EQ(BST_UNCHECKED, Tell(dialog, kTwo, BM_GETCHECK));
    });
}

TEST_F(Controls, CheckRadioButtonLeavesOne) {
    On(kEverything, [](HWND dialog) {
        CheckDlgButton(dialog, kLeft, BST_CHECKED);
        CheckRadioButton(dialog, kOne, kThree, kTwo);
        CheckRadioButton(dialog, kOne, kThree, kThree);
        EXPECT_EQ(BST_UNCHECKED, Tell(dialog, kTwo, BM_GETCHECK));
        EXPECT_EQ(BST_CHECKED, Tell(dialog, kThree, BM_GETCHECK));
        EXPECT_EQ(BST_CHECKED, Tell(dialog, kLeft, BM_GETCHECK));
    });
}

TEST_F(Controls, ListKeepsItsOrderAndData) {
    On(kEverything, [](HWND dialog) {
        EXPECT_EQ(0, TellText(dialog, kFont, LB_ADDSTRING, 0, TEXT("pear")));
        EXPECT_EQ(1, TellText(dialog, kFont, LB_ADDSTRING, 0, TEXT("apple")));
        EXPECT_EQ(1, TellText(dialog, kFont, LB_INSERTSTRING, 1, TEXT("fig")));
        EXPECT_EQ(3,
                  TellText(dialog, kFont, LB_INSERTSTRING, static_cast<WPARAM>(-1), TEXT("kiwi")));
        EXPECT_EQ(4, Tell(dialog, kFont, LB_GETCOUNT));
        EXPECT_EQ(Text(TEXT("fig")), EntryOf(dialog, kFont, LB_GETTEXT, 1));
        EXPECT_EQ(5, Tell(dialog, kFont, LB_GETTEXTLEN, 2));
        Tell(dialog, kFont, LB_SETITEMDATA, 2, 77);
        EXPECT_EQ(3, Tell(dialog, kFont, LB_DELETESTRING, 0));
        EXPECT_EQ(77, Tell(dialog, kFont, LB_GETITEMDATA, 1));
        EXPECT_EQ(
            2, TellText(dialog, kFont, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), TEXT("KIWI")));
        Tell(dialog, kFont, LB_RESETCONTENT);
        EXPECT_EQ(0, Tell(dialog, kFont, LB_GETCOUNT));
    });
}

TEST_F(Controls, ListSelectionIsTheProgramsWithoutNotice) {
    On(kEverything, [](HWND dialog) {
        EXPECT_EQ(LB_ERR, Tell(dialog, kFont, LB_GETCURSEL));
        for (const WCHAR* text : {TEXT("one"), TEXT("two"), TEXT("three")})
            TellText(dialog, kFont, LB_ADDSTRING, 0, text);
        EXPECT_EQ(LB_ERR, Tell(dialog, kFont, LB_GETCURSEL));
        EXPECT_EQ(1, Tell(dialog, kFont, LB_SETCURSEL, 1));
        EXPECT_EQ(1, Tell(dialog, kFont, LB_GETCURSEL));
        EXPECT_EQ(2,
                  TellText(dialog, kFont, LB_SELECTSTRING, static_cast<WPARAM>(-1), TEXT("THR")));
        EXPECT_EQ(2, Tell(dialog, kFont, LB_GETCURSEL));
        EXPECT_EQ(LB_ERR, Tell(dialog, kFont, LB_SETCURSEL, static_cast<WPARAM>(-1)));
        EXPECT_EQ(LB_ERR, Tell(dialog, kFont, LB_GETCURSEL));
        EXPECT_EQ(0, NoticesOf(kFont, LBN_SELCHANGE));
    });
}

TEST_F(Controls, ReplacedEntryCanStaySelected) {
    On(kEverything, [](HWND dialog) {
        for (const WCHAR* text : {TEXT("  a"), TEXT("  b"), TEXT("  c")})
            TellText(dialog, kFont, LB_ADDSTRING, 0, text);
        Tell(dialog, kFont, LB_SETCURSEL, 1);
        Tell(dialog, kFont, LB_DELETESTRING, 1);
        EXPECT_EQ(LB_ERR, Tell(dialog, kFont, LB_GETCURSEL));
        TellText(dialog, kFont, LB_INSERTSTRING, 1, TEXT("v b"));
        Tell(dialog, kFont, LB_SETCURSEL, 1);
        EXPECT_EQ(1, Tell(dialog, kFont, LB_GETCURSEL));
        EXPECT_EQ(Text(TEXT("v b")), EntryOf(dialog, kFont, LB_GETTEXT, 1));
        EXPECT_EQ(Text(TEXT("  c")), EntryOf(dialog, kFont, LB_GETTEXT, 2));
    });
}

TEST_F(Controls, RowsThatAreNotThereAreErrors) {
    On(kEverything, [](HWND dialog) {
        WCHAR text[4] = {};
        const auto buffer = reinterpret_cast<LPARAM>(text);
        for (const WPARAM row : {WPARAM{0}, WPARAM{7}, static_cast<WPARAM>(-1)}) {
            EXPECT_EQ(LB_ERR, Tell(dialog, kFont, LB_GETTEXT, row, buffer));
            EXPECT_EQ(LB_ERR, Tell(dialog, kFont, LB_DELETESTRING, row));
            EXPECT_EQ(LB_ERR, Tell(dialog, kFont, LB_GETITEMDATA, row));
            EXPECT_EQ(CB_ERR, Tell(dialog, kHost, CB_GETLBTEXT, row, buffer));
            EXPECT_EQ(CB_ERR, Tell(dialog, kHost, CB_DELETESTRING, row));
        }
        EXPECT_EQ(LB_ERR, TellText(dialog, kFont, LB_INSERTSTRING, 5, TEXT("x")));
        EXPECT_EQ(CB_ERR, TellText(dialog, kHost, CB_INSERTSTRING, 5, TEXT("x")));
    });
}

TEST_F(Controls, TopOfAListIsMoved) {
    On(kEverything, [](HWND dialog) {
        for (int i = 0; i < 40; i++) TellText(dialog, kFont, LB_ADDSTRING, 0, TEXT("entry"));
        EXPECT_EQ(0, Tell(dialog, kFont, LB_GETTOPINDEX));
        Tell(dialog, kFont, LB_SETTOPINDEX, 20);
        EXPECT_EQ(20, Tell(dialog, kFont, LB_GETTOPINDEX));
    });
}

TEST_F(Controls, SortedListPutsEntriesInTheirPlace) {
    On(kExtended, [](HWND dialog) {
        EXPECT_EQ(0, TellText(dialog, kSorted, LB_ADDSTRING, 0, TEXT("pear")));
        EXPECT_EQ(0, TellText(dialog, kSorted, LB_ADDSTRING, 0, TEXT("Apple")));
        EXPECT_EQ(1, TellText(dialog, kSorted, LB_ADDSTRING, 0, TEXT("fig")));
        EXPECT_EQ(0, TellText(dialog, kSorted, LB_INSERTSTRING, 0, TEXT("zebra")));
    });
}

TEST_F(Controls, ComboWithAnEditKeepsTheTextWhileTheListChanges) {
    On(kEverything, [](HWND dialog) {
        SetDlgItemTextW(dialog, kHost, TEXT("typed"));
        EXPECT_EQ(0, TellText(dialog, kHost, CB_ADDSTRING, 0, TEXT("one")));
        EXPECT_EQ(1, TellText(dialog, kHost, CB_ADDSTRING, 0, TEXT("two")));
        EXPECT_EQ(0, TellText(dialog, kHost, CB_INSERTSTRING, 0, TEXT("zero")));
        EXPECT_EQ(Text(TEXT("typed")), TextOf(dialog, kHost));
        EXPECT_EQ(CB_ERR, Tell(dialog, kHost, CB_GETCURSEL));
        EXPECT_EQ(3, Tell(dialog, kHost, CB_GETCOUNT));
        EXPECT_EQ(Text(TEXT("one")), EntryOf(dialog, kHost, CB_GETLBTEXT, 1));
        EXPECT_EQ(2, Tell(dialog, kHost, CB_DELETESTRING, 0));
        EXPECT_EQ(Text(TEXT("typed")), TextOf(dialog, kHost));
        EXPECT_EQ(1, Tell(dialog, kHost, CB_SETCURSEL, 1));
        EXPECT_EQ(Text(TEXT("two")), TextOf(dialog, kHost));
        EXPECT_EQ(1, Tell(dialog, kHost, CB_GETCURSEL));
        EXPECT_EQ(0, NoticesOf(kHost, CBN_SELCHANGE) + NoticesOf(kHost, CBN_EDITCHANGE));
    });
}

TEST_F(Controls, ComboWithoutAnEditShowsItsChoice) {
    On(kExtended, [](HWND dialog) {
        for (const WCHAR* text : {TEXT("one"), TEXT("two")})
            TellText(dialog, kDropList, CB_ADDSTRING, 0, text);
        EXPECT_EQ(CB_ERR, Tell(dialog, kDropList, CB_GETCURSEL));
        Tell(dialog, kDropList, CB_SETCURSEL, 1);
        Tell(dialog, kDropList, CB_SETITEMDATA, 1, 5);
        EXPECT_EQ(Text(TEXT("two")), TextOf(dialog, kDropList));
        EXPECT_EQ(5, Tell(dialog, kDropList, CB_GETITEMDATA, 1));
        EXPECT_EQ(0,
                  TellText(dialog, kDropList, CB_SELECTSTRING, static_cast<WPARAM>(-1), TEXT("o")));
        EXPECT_EQ(0, Tell(dialog, kDropList, CB_GETCURSEL));
        EXPECT_EQ(1, TellText(dialog, kDropList, CB_FINDSTRINGEXACT, 0, TEXT("TWO")));
    });
}

TEST_F(Controls, AreSwitchedOffAndHidden) {
    KNOWN_GAP_ON_WINDOWS("a dialog is shown once nothing is posted any more");
    On(kEverything, [](HWND dialog) {
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, kOff)));
        const HWND edit = GetDlgItem(dialog, kName);
        EXPECT_TRUE(IsWindowEnabled(edit));
        EnableWindow(edit, FALSE);
        EXPECT_FALSE(IsWindowEnabled(edit));
        EXPECT_TRUE(IsWindowVisible(edit));
        ShowWindow(edit, SW_HIDE);
        EXPECT_FALSE(IsWindowVisible(edit));
    });
}

// ---------------------------------------------------------------- property sheets

namespace {

// What the pages have heard, "page:notice", and how they are to answer.
std::vector<Text> g_heard;
Action g_in_sheet[2];
LONG_PTR g_kill_answer, g_apply_answer, g_cancel_answer;

struct NoticeName {
    UINT code;
    const WCHAR* name;
    const LONG_PTR* answer;
};

const LONG_PTR kZero = 0;
const NoticeName kNotices[] = {
    {PSN_SETACTIVE, TEXT("set"), &kZero},
    {PSN_KILLACTIVE, TEXT("kill"), &g_kill_answer},
    {PSN_APPLY, TEXT("apply"), &g_apply_answer},
    {PSN_RESET, TEXT("reset"), &kZero},
    {PSN_QUERYCANCEL, TEXT("query"), &g_cancel_answer},
};

INT_PTR OnPage(const WCHAR* name, int index, HWND page, UINT message, LPARAM lparam) {
    const auto hear = [&](const WCHAR* what) { g_heard.push_back(Text(name) + TEXT(":") + what); };
    if (message == WM_INITDIALOG) {
        hear(TEXT("init"));
        PostMessageW(page, WM_APP, 0, 0);
        EXPECT_EQ(index + 50, reinterpret_cast<LPCPROPSHEETPAGEW>(lparam)->lParam);
        return TRUE;
    }
    if (message == WM_APP) {
        if (const Action act = std::exchange(g_in_sheet[index], nullptr)) act(GetParent(page));
        return TRUE;
    }
    if (message != WM_NOTIFY) return FALSE;
    const auto* header = reinterpret_cast<const NMHDR*>(lparam);
    for (const NoticeName& notice : kNotices) {
        if (notice.code != header->code) continue;
        hear(notice.name);
        SetWindowLongPtrW(page, DWLP_MSGRESULT, *notice.answer);
        return TRUE;
    }
    return FALSE;
}

INT_PTR CALLBACK FirstPage(HWND page, UINT message, WPARAM, LPARAM lparam) {
    return OnPage(TEXT("1"), 0, page, message, lparam);
}

INT_PTR CALLBACK SecondPage(HWND page, UINT message, WPARAM, LPARAM lparam) {
    return OnPage(TEXT("2"), 1, page, message, lparam);
}

INT_PTR ShowSheet(UINT start = 0, int second = kSecondPage) {
    PROPSHEETPAGEW pages[2] = {};
    pages[0].dwSize = pages[1].dwSize = sizeof(PROPSHEETPAGEW);
    pages[0].pszTemplate = MAKEINTRESOURCE(kFirstPage);
    pages[1].pszTemplate = MAKEINTRESOURCE(second);
    pages[0].pfnDlgProc = FirstPage;
    pages[1].pfnDlgProc = SecondPage;
    pages[0].lParam = 50;
    pages[1].lParam = 51;
    PROPSHEETHEADERW header = {};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW;
    header.pszCaption = TEXT("Properties");
    header.nPages = 2;
    header.nStartPage = start;
    header.ppsp = pages;
    return PropertySheetW(&header);
}

void Press(HWND sheet, WPARAM button) { SendMessageW(sheet, PSM_PRESSBUTTON, button, 0); }

class Sheets : public testing::Test {
  protected:
    void SetUp() override {
        g_heard.clear();
        g_in_sheet[0] = g_in_sheet[1] = nullptr;
        g_kill_answer = g_apply_answer = g_cancel_answer = 0;
    }
    using Heard = std::vector<Text>;
};

}  // namespace

TEST_F(Sheets, PageThatIsNeverShownIsNeverMade) {
    g_in_sheet[0] = [](HWND sheet) { Press(sheet, PSBTN_OK); };
    EXPECT_GE(ShowSheet(), 1);
    EXPECT_EQ((Heard{TEXT("1:init"), TEXT("1:set"), TEXT("1:kill"), TEXT("1:apply")}), g_heard);
}

TEST_F(Sheets, TurningLeavesOnePageAndEntersTheOther) {
    g_in_sheet[0] = [](HWND sheet) {
        const auto current = [&] {
            return reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        };
        const HWND first = current();
        EXPECT_TRUE(SendMessageW(sheet, PSM_SETCURSEL, 1, 0));
        const HWND second = current();
        EXPECT_NE(first, second);
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(first, kType)));
        EXPECT_TRUE(IsWindowVisible(GetDlgItem(second, kBell)));
        EXPECT_TRUE(SendMessageW(sheet, PSM_SETCURSEL, 0, 0));
        Press(sheet, PSBTN_OK);
    };
    EXPECT_GE(ShowSheet(), 1);
    EXPECT_EQ(
        (Heard{TEXT("1:init"), TEXT("1:set"), TEXT("1:kill"), TEXT("2:init"), TEXT("2:set"),
               TEXT("2:kill"), TEXT("1:set"), TEXT("1:kill"), TEXT("1:apply"), TEXT("2:apply")}),
        g_heard);
}

TEST_F(Sheets, StartPageIsTheOneAsked) {
    g_in_sheet[1] = [](HWND sheet) { Press(sheet, PSBTN_CANCEL); };
    EXPECT_EQ(0, ShowSheet(1));
    EXPECT_EQ((Heard{TEXT("2:init"), TEXT("2:set"), TEXT("2:query"), TEXT("2:reset")}), g_heard);
}

TEST_F(Sheets, PageThatDoesNotLetGoStays) {
    g_in_sheet[0] = [](HWND sheet) {
        g_kill_answer = TRUE;
        const LRESULT page = SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0);
        SendMessageW(sheet, PSM_SETCURSEL, 1, 0);
        EXPECT_EQ(page, SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        Press(sheet, PSBTN_OK);
        EXPECT_EQ((Heard{TEXT("1:init"), TEXT("1:set"), TEXT("1:kill"), TEXT("1:kill")}), g_heard);
        Press(sheet, PSBTN_CANCEL);
    };
    EXPECT_EQ(0, ShowSheet());
}

TEST_F(Sheets, PageThatIsNoneIsNotTurnedTo) {
    g_in_sheet[0] = [](HWND sheet) {
        const LRESULT page = SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0);
        for (const WPARAM index : {WPARAM{2}, WPARAM{1000}, static_cast<WPARAM>(-1)})
            EXPECT_FALSE(SendMessageW(sheet, PSM_SETCURSEL, index, 0));
        EXPECT_EQ(page, SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        Press(sheet, PSBTN_CANCEL);
    };
    EXPECT_EQ(0, ShowSheet());
}

TEST_F(Sheets, PageThatDoesNotApplyIsTheOneToBeSeen) {
    g_in_sheet[0] = [](HWND sheet) {
        const LRESULT first = SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0);
        SendMessageW(sheet, PSM_SETCURSEL, 1, 0);
        EXPECT_NE(first, SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        g_apply_answer = PSNRET_INVALID;
        Press(sheet, PSBTN_OK);
        EXPECT_EQ(first, SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        Press(sheet, PSBTN_CANCEL);
    };
    EXPECT_EQ(0, ShowSheet());
}

TEST_F(Sheets, PageThatDoesNotApplyKeepsTheSheet) {
    g_in_sheet[0] = [](HWND sheet) {
        g_apply_answer = PSNRET_INVALID;
        Press(sheet, PSBTN_OK);
        EXPECT_TRUE(IsWindow(sheet));
        g_apply_answer = PSNRET_NOERROR;
        Press(sheet, PSBTN_OK);
    };
    EXPECT_GE(ShowSheet(), 1);
}

TEST_F(Sheets, CancelCanBeRefused) {
    g_in_sheet[0] = [](HWND sheet) {
        g_cancel_answer = TRUE;
        Press(sheet, PSBTN_CANCEL);
        EXPECT_TRUE(IsWindow(sheet));
        g_cancel_answer = FALSE;
        Press(sheet, PSBTN_CANCEL);
    };
    EXPECT_EQ(0, ShowSheet());
    EXPECT_EQ(
        (Heard{TEXT("1:init"), TEXT("1:set"), TEXT("1:query"), TEXT("1:query"), TEXT("1:reset")}),
        g_heard);
}

TEST_F(Sheets, PageIsADialogOfItsOwn) {
    g_in_sheet[0] = [](HWND sheet) {
        const auto page = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        EXPECT_EQ(sheet, GetParent(page));
        SetDlgItemTextW(page, kType, TEXT("vt220"));
        EXPECT_EQ(Text(TEXT("vt220")), TextOf(page, kType));
        EXPECT_NE(nullptr, GetDlgItem(page, kChange));
        Press(sheet, PSBTN_OK);
    };
    EXPECT_GE(ShowSheet(), 1);
}

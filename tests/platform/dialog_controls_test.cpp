// SPDX-License-Identifier: MIT
// The controls of dialogs, driven only by messages.
#include "tests/platform/test_dialogs.h"

namespace {

using Controls = DialogTest;

}  // namespace

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

TEST_F(Controls, LabelsAreThoseOfTheTemplate) {
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

TEST_F(Controls, EditNotifiesOfEachChange) {
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

TEST_F(Controls, PlainCheckBoxOnlyNotifies) {
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

TEST_F(Controls, AutomaticCheckBoxTogglesBeforeItNotifies) {
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

TEST_F(Controls, RadioButtonClearsOnlyItsGroup) {
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

TEST_F(Controls, CheckRadioButtonChecksExactlyOne) {
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

TEST_F(Controls, ListSelectionByTheProgramSendsNoNotification) {
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

TEST_F(Controls, MissingRowsAreErrors) {
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

TEST_F(Controls, TopRowOfAListCanBeSet) {
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
    g_on_shown = [](HWND dialog) {
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, kOff)));
        const HWND edit = GetDlgItem(dialog, kName);
        EXPECT_TRUE(IsWindowEnabled(edit));
        EnableWindow(edit, FALSE);
        EXPECT_FALSE(IsWindowEnabled(edit));
        EXPECT_TRUE(IsWindowVisible(edit));
        ShowWindow(edit, SW_HIDE);
        EXPECT_FALSE(IsWindowVisible(edit));
        EndDialog(dialog, 1);
    };
    EXPECT_EQ(1, Show(kEverything));
}

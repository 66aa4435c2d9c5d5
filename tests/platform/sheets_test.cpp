// SPDX-License-Identifier: MIT
// Property sheets, driven only by messages.
#include <utility>

#include "tests/platform/test_dialogs.h"

namespace {

// The notifications that the pages got, as "page:notice", and the answers that they give.
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

TEST_F(Sheets, SwitchingLeavesOnePageAndEntersTheOther) {
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

TEST_F(Sheets, StartPageIsTheRequestedOne) {
    g_in_sheet[1] = [](HWND sheet) { Press(sheet, PSBTN_CANCEL); };
    EXPECT_EQ(0, ShowSheet(1));
    EXPECT_EQ((Heard{TEXT("2:init"), TEXT("2:set"), TEXT("2:query"), TEXT("2:reset")}), g_heard);
}

TEST_F(Sheets, PageThatRefusesToBeLeftStays) {
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

TEST_F(Sheets, UnknownPageIsNotShown) {
    g_in_sheet[0] = [](HWND sheet) {
        const LRESULT page = SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0);
        for (const WPARAM index : {WPARAM{2}, WPARAM{1000}, static_cast<WPARAM>(-1)})
            EXPECT_FALSE(SendMessageW(sheet, PSM_SETCURSEL, index, 0));
        EXPECT_EQ(page, SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        Press(sheet, PSBTN_CANCEL);
    };
    EXPECT_EQ(0, ShowSheet());
}

TEST_F(Sheets, PageThatRefusesToApplyIsShown) {
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

TEST_F(Sheets, PageThatRefusesToApplyKeepsTheSheetOpen) {
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

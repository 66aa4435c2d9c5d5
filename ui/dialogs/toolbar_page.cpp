// SPDX-License-Identifier: MIT
// The page "Toolbar" of the Properties sheet: a list for each of the three toolbars.
#include "ui/dialogs/dialogs.h"

#include "resources/resource_ids.h"
#include "settings/toolbars.h"
#include "text/text.h"
#include "ui/dialogs/dialog_tools.h"

constexpr int kLineUnits = 32;
constexpr LPCWSTR kOnBar = TEXT("v ");
constexpr LPCWSTR kOffBar = TEXT("  ");

namespace {

struct BarList {
    int id;
    DWORD ToolbarButton::*on_bar;
};

}  // namespace

const BarList kLists[] = {
    {IDC_BAR1, &ToolbarButton::onBar1},
    {IDC_BAR2, &ToolbarButton::onBar2},
    {IDC_BAR3, &ToolbarButton::onBar3},
};

// `row` is an index of toolbar_buttons. `place` is the position in the list at which the line is
// inserted.
static void InsertLine(HWND page, const BarList& list, int row, int place) {
    const ToolbarButton& button = toolbar_buttons[row];
    WCHAR line[kLineUnits];
    lstrcpyW(line, button.*list.on_bar ? kOnBar : kOffBar);
    const int mark = lstrlenW(line);
    WideFromAnsi(button.name, line + mark, kLineUnits - mark);
    SendDlgItemMessageW(page, list.id, LB_INSERTSTRING, static_cast<WPARAM>(place),
                        reinterpret_cast<LPARAM>(line));
}

static void FillLists(HWND page) {
    for (const BarList& list : kLists) {
        for (int row = 0; toolbar_buttons[row].name; ++row) InsertLine(page, list, row, row);
        FitListWidth(page, list.id);
    }
}

// The list may scroll while it is one line shorter. Restoring its top row keeps the tapped line
// under the stylus.
static void ReplaceLine(HWND page, const BarList& list, int row) {
    const LRESULT top = SendDlgItemMessageW(page, list.id, LB_GETTOPINDEX, 0, 0);
    SendDlgItemMessageW(page, list.id, LB_DELETESTRING, static_cast<WPARAM>(row), 0);
    InsertLine(page, list, row, row);
    SendDlgItemMessageW(page, list.id, LB_SETCURSEL, static_cast<WPARAM>(row), 0);
    SendDlgItemMessageW(page, list.id, LB_SETTOPINDEX, static_cast<WPARAM>(top), 0);
}

static void ToggleSelected(HWND page, const BarList& list) {
    const LRESULT selected = SendDlgItemMessageW(page, list.id, LB_GETCURSEL, 0, 0);
    if (selected < 0 || selected >= kToolbarRows) return;
    const int row = static_cast<int>(selected);
    DWORD& flag = toolbar_buttons[row].*list.on_bar;
    flag = flag ? 0 : 1;
    ReplaceLine(page, list, row);
}

static void ToggleOnBar1(HWND page) { ToggleSelected(page, kLists[0]); }
static void ToggleOnBar2(HWND page) { ToggleSelected(page, kLists[1]); }
static void ToggleOnBar3(HWND page) { ToggleSelected(page, kLists[2]); }

const DialogCommand kCommands[] = {
    {IDC_BAR1, LBN_DBLCLK, ToggleOnBar1},
    {IDC_BAR2, LBN_DBLCLK, ToggleOnBar2},
    {IDC_BAR3, LBN_DBLCLK, ToggleOnBar3},
    {0, 0, nullptr},
};

INT_PTR CALLBACK ToolbarPageProc(HWND page, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(page, message, wparam, FillLists, kCommands);
}

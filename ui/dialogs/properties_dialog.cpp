// SPDX-License-Identifier: MIT
// The "Properties" sheet and its pages "Toolbar", "Keyboard" and "Other". On the page "Other" a
// check box changes its setting at once; the text fields change theirs when the user leaves the
// page.
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/toolbars.h"
#include "text/text.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

// ---------------------------------------------------------------- the page "Toolbar"

// One list for each of the three toolbars, each with every row of toolbar_buttons and a mark at the
// rows that are on this toolbar. A double tap adds a row to the toolbar or removes it. The change
// takes effect in the table at once; Cancel does not undo it. The command bar shows it when the
// sheet has closed.

constexpr int kLineUnits = 32;
constexpr LPCWSTR kOnBar = TEXT("v ");
constexpr LPCWSTR kOffBar = TEXT("  ");

namespace {

struct BarList {
    int id;
    DWORD ToolbarButton::*on_bar;
};

}  // namespace

static const BarList kLists[] = {
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

static const DialogCommand kToolbarCommands[] = {
    {IDC_BAR1, LBN_DBLCLK, ToggleOnBar1},
    {IDC_BAR2, LBN_DBLCLK, ToggleOnBar2},
    {IDC_BAR3, LBN_DBLCLK, ToggleOnBar3},
    {0, 0, nullptr},
};

static INT_PTR CALLBACK ToolbarPageProc(HWND page, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(page, message, wparam, FillLists, kToolbarCommands);
}

// ---------------------------------------------------------------- the page "Keyboard"

// Shows the key table (settings/key_map.h); its button "Change" opens a dialog that edits a key. A
// change of a key takes effect at once.

constexpr int kEditUnits = 40;  // text limit of the Change dialog, terminator included
constexpr int kMostDeletions = 20;
constexpr INT_PTR kTaken = 0;
constexpr INT_PTR kCancelled = -1;

// The text that the Change dialog shows when it opens, and the edited text after OK.
static WCHAR g_edited[kLongestKeyText + 1];

static LRESULT AddLine(HWND page, int list, const char* text) {
    WCHAR line[kLongestKeyText + 1];
    WideFromAnsi(text ? text : "", line, kLongestKeyText + 1);
    return SendDlgItemMessageW(page, list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line));
}

static KeyMapEntry* SelectedRow(HWND page) {
    const LRESULT row = SendDlgItemMessageW(page, IDC_KEYS, LB_GETCURSEL, 0, 0);
    return row >= 0 && row < kKeyRows ? &key_map[row] : nullptr;
}

static void ShowKeystroke(HWND page) {
    for (int i = 0; i < kMostDeletions; ++i)
        if (SendDlgItemMessageW(page, IDC_KEYSTROKE, LB_DELETESTRING, 0, 0) <= 0) break;
    if (const KeyMapEntry* row = SelectedRow(page)) AddLine(page, IDC_KEYSTROKE, row->text);
}

static void OnOpenKeys(HWND page) {
    for (const KeyMapEntry* row = key_map; row->name; ++row) AddLine(page, IDC_KEYS, row->name);
    SendDlgItemMessageW(page, IDC_KEYS, LB_SETCURSEL, 0, 0);
    ShowKeystroke(page);
}

static void OnOpenChange(HWND dialog) {
    SendDlgItemMessageW(dialog, IDC_KEY_TEXT, EM_LIMITTEXT, kEditUnits - 1, 0);
    SetDlgItemTextW(dialog, IDC_KEY_TEXT, g_edited);
    CentreDialog(dialog);
}

static void OnChangeOk(HWND dialog) {
    GetDlgItemTextW(dialog, IDC_KEY_TEXT, g_edited, kEditUnits);
    EndDialog(dialog, kTaken);
}

static void OnChangeCancel(HWND dialog) { EndDialog(dialog, kCancelled); }

static const DialogCommand kChangeCommands[] = {
    {IDOK, BN_CLICKED, OnChangeOk},
    {IDCANCEL, BN_CLICKED, OnChangeCancel},
    {0, 0, nullptr},
};

static INT_PTR CALLBACK ChangeKeyDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OnOpenChange, kChangeCommands);
}

static void ChangeKey(HWND page) {
    KeyMapEntry* row = SelectedRow(page);
    if (!row) return;
    WideFromAnsi(row->text ? row->text : "", g_edited, kLongestKeyText + 1);
    const INT_PTR result = DialogBoxParamW(session.instance, MAKEINTRESOURCE(IDD_CHANGE_KEY), page,
                                           ChangeKeyDialogProc, 0);
    if (result != kTaken) return;
    SetKeyText(row, g_edited);
    ShowKeystroke(page);
}

static const DialogCommand kKeyboardCommands[] = {
    {IDC_KEYS, LBN_SELCHANGE, ShowKeystroke},
    {IDC_CHANGE, BN_CLICKED, ChangeKey},
    {0, 0, nullptr},
};

static INT_PTR CALLBACK KeyboardPageProc(HWND page, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(page, message, wparam, OnOpenKeys, kKeyboardCommands);
}

// ---------------------------------------------------------------- the page "Other"

static Settings& s = session.settings;

static const TextRow kTexts[] = {
    {IDC_TERMTYPE, s.termtype, kSettingUnits},
    {IDC_RAS, s.ras, kSettingUnits},
    {0, nullptr, 0},
};

static const MarkRow kMarks[] = {
    {IDC_HIDESTATUS, &s.hidestatus},
    {IDC_FOLLOWCURSOR, &s.followcursor},
    {IDC_BELL, &s.bell},
    {IDC_NEGO, &s.nego},
    {IDC_HOTSPOT, &s.hotspot},
    {IDC_ALIVE, &s.alive},
    {0, nullptr},
};

static void OnOpen(HWND page) {
    ShowTexts(page, kTexts);
    ShowMarks(page, kMarks);
}

// The check boxes do not toggle by themselves. This toggles the check mark and the setting, each
// from its own current value.
static bool TurnMark(HWND page, int id) {
    for (const MarkRow* row = kMarks; row->id; ++row) {
        if (row->id != id) continue;
        const bool marked = IsDlgButtonChecked(page, id) == BST_CHECKED;
        CheckDlgButton(page, id, marked ? BST_UNCHECKED : BST_CHECKED);
        *row->field = !*row->field;
        ApplySetting(row->field);
        return true;
    }
    return false;
}

static bool OnNotify(HWND page, LPARAM lparam) {
    if (reinterpret_cast<const NMHDR*>(lparam)->code != PSN_KILLACTIVE) return false;
    TakeTexts(page, kTexts);
    SetWindowLongPtrW(page, DWLP_MSGRESULT, FALSE);  // the page may be left
    return true;
}

static INT_PTR CALLBACK OtherPageProc(HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) return OnOpen(page), TRUE;
    if (message == WM_COMMAND && HIWORD(wparam) == BN_CLICKED)
        return TurnMark(page, LOWORD(wparam)) ? TRUE : FALSE;
    if (message == WM_NOTIFY) return OnNotify(page, lparam) ? TRUE : FALSE;
    return FALSE;
}

// ---------------------------------------------------------------- the sheet

namespace {

struct PageRow {
    WORD id;
    DLGPROC procedure;
};

}  // namespace

static const PageRow kPages[] = {
    {IDD_OTHER_PAGE, OtherPageProc},
    {IDD_TOOLBAR_PAGE, ToolbarPageProc},
    {IDD_KEYBOARD_PAGE, KeyboardPageProc},
};
constexpr UINT kPageCount = static_cast<UINT>(sizeof(kPages) / sizeof(kPages[0]));

void ShowPropertiesSheet() {
    PROPSHEETPAGEW pages[kPageCount] = {};
    for (UINT i = 0; i < kPageCount; ++i) {
        pages[i].dwSize = sizeof(pages[i]);
        pages[i].hInstance = session.instance;
        pages[i].pszTemplate = MAKEINTRESOURCE(kPages[i].id);
        pages[i].pfnDlgProc = kPages[i].procedure;
    }
    PROPSHEETHEADERW sheet = {};
    sheet.dwSize = sizeof(sheet);
    sheet.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW;
    sheet.hwndParent = session.main_window;
    sheet.hInstance = session.instance;
    sheet.pszCaption = TEXT("Properties");
    sheet.nPages = kPageCount;
    sheet.ppsp = pages;
    PropertySheetW(&sheet);
    ApplySetting(toolbar_buttons);  // the page "Toolbar" may have changed them
    SettingsChanged();
    SaveIfEnabled();
}

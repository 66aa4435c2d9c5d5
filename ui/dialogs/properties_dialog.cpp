// SPDX-License-Identifier: MIT
// The "Properties" sheet and its page "Other". On this page a check box changes its setting at
// once; the text fields change theirs when the user leaves the page.
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/toolbars.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

// ---------------------------------------------------------------- the page "Other"

static Settings& s = session.settings;

const TextRow kTexts[] = {
    {IDC_TERMTYPE, s.termtype, kSettingUnits},
    {IDC_RAS, s.ras, kSettingUnits},
    {0, nullptr, 0},
};

const MarkRow kMarks[] = {
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

const PageRow kPages[] = {
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

// SPDX-License-Identifier: MIT
// The page "Keyboard" of the Properties sheet, and the dialog that its button "Change" opens. They
// edit the key table (settings/key_map.h).
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "text/text.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

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

static void OnOpenPage(HWND page) {
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

const DialogCommand kChangeCommands[] = {
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

const DialogCommand kPageCommands[] = {
    {IDC_KEYS, LBN_SELCHANGE, ShowKeystroke},
    {IDC_CHANGE, BN_CLICKED, ChangeKey},
    {0, 0, nullptr},
};

INT_PTR CALLBACK KeyboardPageProc(HWND page, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(page, message, wparam, OnOpenPage, kPageCommands);
}

// SPDX-License-Identifier: MIT
// Helpers that the settings dialogs share: message dispatch, check boxes, text fields and
// placement.
#include "ui/dialogs/dialog_tools.h"

#include <algorithm>

#include "session/session_state.h"
#include "settings/settings.h"
#include "ui/view/view.h"

static bool RunDialogCommand(HWND dialog, WPARAM wparam, const DialogCommand* commands) {
    for (; commands->run; ++commands) {
        if (commands->id != LOWORD(wparam) || commands->code != HIWORD(wparam)) continue;
        commands->run(dialog);
        return true;
    }
    return false;
}

INT_PTR RunDialogMessage(HWND dialog, UINT message, WPARAM wparam, void (*open)(HWND dialog),
                         const DialogCommand* commands) {
    if (message == WM_COMMAND) return RunDialogCommand(dialog, wparam, commands) ? TRUE : FALSE;
    if (message != WM_INITDIALOG) return FALSE;
    open(dialog);
    return TRUE;  // the system gives the focus to the first control with a tab stop
}

void CancelDialog(HWND dialog) {
    session.dialog_result = -1;
    EndDialog(dialog, IDCANCEL);
}

void ShowMarks(HWND dialog, const MarkRow* rows) {
    for (; rows->id; ++rows)
        CheckDlgButton(dialog, rows->id, *rows->field ? BST_CHECKED : BST_UNCHECKED);
}

void TakeMarks(HWND dialog, const MarkRow* rows) {
    for (; rows->id; ++rows)
        *rows->field = IsDlgButtonChecked(dialog, rows->id) == BST_CHECKED ? 1 : 0;
}

void ShowTexts(HWND dialog, const TextRow* rows) {
    for (; rows->id; ++rows) {
        const WPARAM limit = static_cast<WPARAM>(rows->units) - 1;
        SendDlgItemMessageW(dialog, rows->id, EM_LIMITTEXT, limit, 0);
        SetDlgItemTextW(dialog, rows->id, rows->field);
    }
}

void TakeTexts(HWND dialog, const TextRow* rows) {
    for (; rows->id; ++rows) GetDlgItemTextW(dialog, rows->id, rows->field, rows->units);
}

// A character of average width is four dialog units wide.
void FitListWidth(HWND dialog, int id) {
    LRESULT longest = 0;
    const LRESULT count = SendDlgItemMessageW(dialog, id, LB_GETCOUNT, 0, 0);
    for (LRESULT row = 0; row < count; ++row)
        longest = std::max(
            longest, SendDlgItemMessageW(dialog, id, LB_GETTEXTLEN, static_cast<WPARAM>(row), 0));
    RECT line = {0, 0, static_cast<LONG>(4 * (longest + 1)), 8};
    MapDialogRect(dialog, &line);
    SendDlgItemMessageW(dialog, id, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(line.right), 0);
}

void CentreDialog(HWND dialog) {
    const HWND parent = GetParent(dialog);
    RECT room, box;
    if (!GetClientRect(parent, &room) || !GetWindowRect(dialog, &box)) return;
    const int width = box.right - box.left, height = box.bottom - box.top;
    POINT corner = {std::max<LONG>(0, (room.right - width) / 2),
                    std::max<LONG>(0, (room.bottom - height) / 2)};
    ClientToScreen(parent, &corner);
    MoveWindow(dialog, corner.x, corner.y, width, height, TRUE);
}

INT_PTR RunDialog(WORD id, DLGPROC procedure) {
    session.dialog_result = 0;
    return DialogBoxParamW(session.instance, MAKEINTRESOURCE(id), session.main_window, procedure,
                           0);
}

void SettingsChanged() { RepaintTerminal(); }

void SaveIfEnabled() {
    if (session.save_settings) SaveSettings();
}

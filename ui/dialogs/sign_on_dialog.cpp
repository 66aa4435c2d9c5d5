// SPDX-License-Identifier: MIT
// The two dialogs about logging in: "Sign on to the host" asks for the user and the password of an
// SSH session; "Auto Login" edits the texts that a Telnet session waits for and its responses.
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

static Settings& s = session.settings;

static const TextRow kTexts[] = {
    {IDC_SSH_U, s.ssh_u, kSettingUnits},
    {IDC_SSH_P, s.ssh_p, kSettingUnits},
    {0, nullptr, 0},
};

static const MarkRow kMarks[] = {
    {IDC_SSH_DEF, &s.ssh_def},
    {0, nullptr},
};

static void OnOpen(HWND dialog) {
    if (!s.ssh_def) memset(s.ssh_p, 0, sizeof(s.ssh_p));
    ShowTexts(dialog, kTexts);
    ShowMarks(dialog, kMarks);
    CentreDialog(dialog);
}

static void OnOk(HWND dialog) {
    TakeMarks(dialog, kMarks);
    TakeTexts(dialog, kTexts);
    EndDialog(dialog, IDOK);
}

static const DialogCommand kCommands[] = {
    {IDOK, BN_CLICKED, OnOk},
    {IDCANCEL, BN_CLICKED, CancelDialog},
    {0, 0, nullptr},
};

static INT_PTR CALLBACK SignOnDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OnOpen, kCommands);
}

bool AskSignOn() {
    const bool shown = RunDialog(IDD_SIGN_ON, SignOnDialogProc) >= 0;
    SettingsChanged();
    return shown;
}

// ---------------------------------------------------------------- Auto Login

static const TextRow kAutoLoginTexts[] = {
    {IDC_SEAR1, s.sear1, kSettingUnits},
    {IDC_RESP1, s.resp1, kSettingUnits},
    {IDC_SEAR2, s.sear2, kSettingUnits},
    {IDC_RESP2, s.resp2, kSettingUnits},
    {0, nullptr, 0},
};

static void OpenAutoLogin(HWND dialog) {
    ShowTexts(dialog, kAutoLoginTexts);
    CentreDialog(dialog);
}

static void TakeAutoLogin(HWND dialog) {
    TakeTexts(dialog, kAutoLoginTexts);
    EndDialog(dialog, IDOK);
}

static const DialogCommand kAutoLoginCommands[] = {
    {IDOK, BN_CLICKED, TakeAutoLogin},
    {IDCANCEL, BN_CLICKED, CancelDialog},
    {0, 0, nullptr},
};

static INT_PTR CALLBACK AutoLoginDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OpenAutoLogin, kAutoLoginCommands);
}

void ShowAutoLoginDialog() {
    RunDialog(IDD_AUTO_LOGIN, AutoLoginDialogProc);
    SettingsChanged();
    SaveIfEnabled();
}

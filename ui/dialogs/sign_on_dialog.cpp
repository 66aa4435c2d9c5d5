// "Sign on to the host": the user and the password of an SSH session.
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

namespace {

Settings& s = session.settings;

const TextRow kTexts[] = {
    {IDC_SSH_U, s.ssh_u, kSettingUnits},
    {IDC_SSH_P, s.ssh_p, kSettingUnits},
    {0, nullptr, 0},
};

const MarkRow kMarks[] = {
    {IDC_SSH_DEF, &s.ssh_def},
    {0, nullptr},
};

void OnOpen(HWND dialog) {
    if (!s.ssh_def) memset(s.ssh_p, 0, sizeof s.ssh_p);
    ShowTexts(dialog, kTexts);
    ShowMarks(dialog, kMarks);
    CentreDialog(dialog);
}

void OnOk(HWND dialog) {
    TakeMarks(dialog, kMarks);
    TakeTexts(dialog, kTexts);
    EndDialog(dialog, IDOK);
}

const DialogCommand kCommands[] = {
    {IDOK, BN_CLICKED, OnOk},
    {IDCANCEL, BN_CLICKED, CancelDialog},
    {0, 0, nullptr},
};

INT_PTR CALLBACK SignOnDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OnOpen, kCommands);
}

}  // namespace

bool AskSignOn() {
    const bool shown = RunDialog(IDD_SIGN_ON, SignOnDialogProc) >= 0;
    SettingsChanged();
    return shown;
}

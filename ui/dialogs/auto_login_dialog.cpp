// "Auto Login": what to wait for, and what to answer.
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

namespace {

Settings& s = session.settings;

const TextRow kTexts[] = {
    {IDC_SEAR1, s.sear1, kSettingUnits},
    {IDC_RESP1, s.resp1, kSettingUnits},
    {IDC_SEAR2, s.sear2, kSettingUnits},
    {IDC_RESP2, s.resp2, kSettingUnits},
    {0, nullptr, 0},
};

void OnOpen(HWND dialog) {
    ShowTexts(dialog, kTexts);
    CentreDialog(dialog);
}

void OnOk(HWND dialog) {
    TakeTexts(dialog, kTexts);
    EndDialog(dialog, IDOK);
}

const DialogCommand kCommands[] = {
    {IDOK, BN_CLICKED, OnOk},
    {IDCANCEL, BN_CLICKED, CancelDialog},
    {0, 0, nullptr},
};

INT_PTR CALLBACK AutoLoginDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OnOpen, kCommands);
}

}  // namespace

void ShowAutoLoginDialog() {
    RunDialog(IDD_AUTO_LOGIN, AutoLoginDialogProc);
    SettingsChanged();
    SaveIfEnabled();
}

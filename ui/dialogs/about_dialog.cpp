// SPDX-License-Identifier: MIT
// The dialog "About TELNET", the only one that changes no setting.
#include "resources/resource_ids.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

static void OnClose(HWND dialog) { EndDialog(dialog, IDOK); }

static const DialogCommand kCommands[] = {
    {IDOK, BN_CLICKED, OnClose},
    {IDCANCEL, BN_CLICKED, OnClose},  // Esc
    {0, 0, nullptr},
};

static INT_PTR CALLBACK AboutDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, CentreDialog, kCommands);
}

void ShowAboutDialog() { RunDialog(IDD_ABOUT, AboutDialogProc); }

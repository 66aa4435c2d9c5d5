// "Connect Advanced": port, protocol and cipher, and the marks around start and end.
#include "ui/dialogs/dialogs.h"

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "ui/dialogs/dialog_tools.h"

namespace {

constexpr int kLeft = 20;  // pixels
constexpr int kTop = 20;
constexpr INT_PTR kClosed = -1;

Settings& s = session.settings;

const MarkRow kMarks[] = {
    {IDC_AUTOCONNECT, &s.autoconnect},
    {IDC_EXIT_DIS, &s.exit_dis},
    {IDC_CONFIRM_EXIT, &s.confirm_exit},
    {IDC_XBOX, &s.xbox},
    {IDC_SSH, &s.ssh},
    {0, nullptr},
};

const int kCiphers[] = {IDC_DES, IDC_TRIPLE_DES, IDC_BLOWFISH};  // at the values of ssh_type

// A value of ssh_type that is none of the ciphers leaves all of them unmarked.
void ShowCipher(HWND dialog) {
    DWORD type = 0;
    for (int id : kCiphers)
        CheckDlgButton(dialog, id, s.ssh_type == type++ ? BST_CHECKED : BST_UNCHECKED);
}

void TakeCipher(HWND dialog) {
    DWORD type = 0;
    for (int id : kCiphers) {
        if (IsDlgButtonChecked(dialog, id) == BST_CHECKED) s.ssh_type = type;
        type++;
    }
}

void ShowPort(HWND dialog) {
    WCHAR text[16];
    wsprintfW(text, TEXT("%d"), s.port);
    SetDlgItemTextW(dialog, IDC_PORT, text);
}

void TakePort(HWND dialog) {
    BOOL parsed = FALSE;
    const UINT port = GetDlgItemInt(dialog, IDC_PORT, &parsed, FALSE);
    if (parsed) s.port = port;
}

void OnOpen(HWND dialog) {
    ShowMarks(dialog, kMarks);
    ShowPort(dialog);
    CheckDlgButton(dialog, s.ssh_type2 == 1 ? IDC_SSH2 : IDC_SSH1, BST_CHECKED);
    ShowCipher(dialog);
    RECT box;
    if (!GetWindowRect(dialog, &box)) return;
    MoveWindow(dialog, kLeft, kTop, box.right - box.left, box.bottom - box.top, TRUE);
}

void OnOk(HWND dialog) {
    TakeMarks(dialog, kMarks);
    TakePort(dialog);
    s.ssh_type2 = IsDlgButtonChecked(dialog, IDC_SSH2) == BST_CHECKED ? 1 : 0;
    TakeCipher(dialog);
    EndDialog(dialog, kClosed);
}

void OnCancel(HWND dialog) { EndDialog(dialog, kClosed); }

const DialogCommand kCommands[] = {
    {IDOK, BN_CLICKED, OnOk},
    {IDCANCEL, BN_CLICKED, OnCancel},
    {0, 0, nullptr},
};

INT_PTR CALLBACK ConnectAdvancedDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OnOpen, kCommands);
}

}  // namespace

void ShowConnectAdvancedDialog(HWND owner) {
    DialogBoxParamW(session.instance, MAKEINTRESOURCE(IDD_CONNECT_ADVANCED), owner,
                    ConnectAdvancedDialogProc, 0);
}

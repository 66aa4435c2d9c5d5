// SPDX-License-Identifier: MIT
// The dialog "Connect", with the host and a list of the last five hosts, and the dialog "Connect
// Advanced", which it opens: port, protocol, cipher, and check boxes for start and exit.
#include "connection/connection.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "text/text.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

static Settings& s = session.settings;

// ---------------------------------------------------------------- Connect Advanced

constexpr int kLeft = 20;  // pixels
constexpr int kTop = 20;
constexpr INT_PTR kClosed = -1;

static const MarkRow kAdvancedMarks[] = {
    {IDC_AUTOCONNECT, &s.autoconnect},
    {IDC_EXIT_DIS, &s.exit_dis},
    {IDC_CONFIRM_EXIT, &s.confirm_exit},
    {IDC_XBOX, &s.xbox},
    {IDC_SSH, &s.ssh},
    {0, nullptr},
};

static const int kCiphers[] = {IDC_DES, IDC_TRIPLE_DES, IDC_BLOWFISH};  // indexed by ssh_type

// If ssh_type has any other value, no cipher is checked.
static void ShowCipher(HWND dialog) {
    DWORD type = 0;
    for (int id : kCiphers)
        CheckDlgButton(dialog, id, s.ssh_type == type++ ? BST_CHECKED : BST_UNCHECKED);
}

static void TakeCipher(HWND dialog) {
    DWORD type = 0;
    for (int id : kCiphers) {
        if (IsDlgButtonChecked(dialog, id) == BST_CHECKED) s.ssh_type = type;
        ++type;
    }
}

static void ShowPort(HWND dialog) {
    WCHAR text[16];
    wsprintfW(text, TEXT("%d"), s.port);
    SetDlgItemTextW(dialog, IDC_PORT, text);
}

static void TakePort(HWND dialog) {
    BOOL parsed = FALSE;
    const UINT port = GetDlgItemInt(dialog, IDC_PORT, &parsed, FALSE);
    if (parsed) s.port = port;
}

static void OpenAdvanced(HWND dialog) {
    ShowMarks(dialog, kAdvancedMarks);
    ShowPort(dialog);
    CheckDlgButton(dialog, s.ssh_type2 == 1 ? IDC_SSH2 : IDC_SSH1, BST_CHECKED);
    ShowCipher(dialog);
    RECT box;
    if (!GetWindowRect(dialog, &box)) return;
    MoveWindow(dialog, kLeft, kTop, box.right - box.left, box.bottom - box.top, TRUE);
}

static void TakeAdvanced(HWND dialog) {
    TakeMarks(dialog, kAdvancedMarks);
    TakePort(dialog);
    s.ssh_type2 = IsDlgButtonChecked(dialog, IDC_SSH2) == BST_CHECKED ? 1 : 0;
    TakeCipher(dialog);
    EndDialog(dialog, kClosed);
}

static void LeaveAdvanced(HWND dialog) { EndDialog(dialog, kClosed); }

static const DialogCommand kAdvancedCommands[] = {
    {IDOK, BN_CLICKED, TakeAdvanced},
    {IDCANCEL, BN_CLICKED, LeaveAdvanced},
    {0, 0, nullptr},
};

static INT_PTR CALLBACK ConnectAdvancedDialogProc(HWND dialog, UINT message, WPARAM wparam,
                                                  LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OpenAdvanced, kAdvancedCommands);
}

// Shows the dialog modally over the dialog `owner`. OK changes session.settings but does not save;
// the next save writes the new values.
static void ShowConnectAdvancedDialog(HWND owner) {
    DialogBoxParamW(session.instance, MAKEINTRESOURCE(IDD_CONNECT_ADVANCED), owner,
                    ConnectAdvancedDialogProc, 0);
}

// ---------------------------------------------------------------- Connect

static LPWSTR const kHistory[] = {s.hist0a, s.hist1a, s.hist2a, s.hist3a, s.hist4a};
constexpr int kHosts = static_cast<int>(sizeof(kHistory) / sizeof(kHistory[0]));

static void OnOpen(HWND dialog) {
    SendDlgItemMessageW(dialog, IDC_HOST, CB_LIMITTEXT, kHostUnits - 1, 0);
    SetDlgItemTextW(dialog, IDC_HOST, s.host);
    for (int i = 0; i < kHosts && kHistory[i][0]; ++i)
        SendDlgItemMessageW(dialog, IDC_HOST, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(kHistory[i]));
    CentreDialog(dialog);
}

static bool InHistory(LPCWSTR host) {
    for (LPCWSTR entry : kHistory)
        if (lstrcmpiW(entry, host) == 0) return true;
    return false;
}

// A host that is already in the history keeps its position.
static void Remember(LPCWSTR host) {
    if (InHistory(host)) return;
    for (int i = kHosts - 1; i > 0; --i) CopyBounded(kHistory[i], kHistory[i - 1], kHostUnits);
    CopyBounded(kHistory[0], host, kHostUnits);
}

static void OnOk(HWND dialog) {
    GetDlgItemTextW(dialog, IDC_HOST, s.host, kHostUnits);
    Remember(s.host);
    session.connect_request = 1;
    EndDialog(dialog, IDOK);
}

static const DialogCommand kCommands[] = {
    {IDOK, BN_CLICKED, OnOk},
    {IDCANCEL, BN_CLICKED, CancelDialog},
    {IDC_ADVANCED, BN_CLICKED, ShowConnectAdvancedDialog},
    {0, 0, nullptr},
};

static INT_PTR CALLBACK ConnectDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OnOpen, kCommands);
}

// Connects after the dialog has closed, so that the message boxes of connecting appear over the
// terminal.
void ShowConnectDialog() {
    session.connect_request = 0;
    RunDialog(IDD_CONNECT, ConnectDialogProc);
    SettingsChanged();
    if (!session.connect_request) return;
    SaveIfEnabled();
    SessionConnect();
}

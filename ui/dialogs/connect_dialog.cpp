// "Connect": the host to connect to, and the five before it.
#include "connection/connection.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "text/wide_text.h"
#include "ui/dialogs/connect_advanced_dialog.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

namespace {

Settings& s = session.settings;

LPWSTR const kHistory[] = {s.hist0a, s.hist1a, s.hist2a, s.hist3a, s.hist4a};
constexpr int kHosts = static_cast<int>(sizeof kHistory / sizeof kHistory[0]);

void OnOpen(HWND dialog) {
    SendDlgItemMessageW(dialog, IDC_HOST, CB_LIMITTEXT, kHostUnits - 1, 0);
    SetDlgItemTextW(dialog, IDC_HOST, s.host);
    for (int i = 0; i < kHosts && kHistory[i][0]; i++)
        SendDlgItemMessageW(dialog, IDC_HOST, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(kHistory[i]));
    CentreDialog(dialog);
}

bool InHistory(LPCWSTR host) {
    for (LPCWSTR entry : kHistory)
        if (lstrcmpiW(entry, host) == 0) return true;
    return false;
}

// A host that is in the list already keeps its place.
void Remember(LPCWSTR host) {
    if (InHistory(host)) return;
    for (int i = kHosts - 1; i > 0; i--) CopyBounded(kHistory[i], kHistory[i - 1], kHostUnits);
    CopyBounded(kHistory[0], host, kHostUnits);
}

void OnOk(HWND dialog) {
    GetDlgItemTextW(dialog, IDC_HOST, s.host, kHostUnits);
    Remember(s.host);
    session.connect_request = 1;
    EndDialog(dialog, IDOK);
}

const DialogCommand kCommands[] = {
    {IDOK, BN_CLICKED, OnOk},
    {IDCANCEL, BN_CLICKED, CancelDialog},
    {IDC_ADVANCED, BN_CLICKED, ShowConnectAdvancedDialog},
    {0, 0, nullptr},
};

INT_PTR CALLBACK ConnectDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OnOpen, kCommands);
}

}  // namespace

// The connection is begun when the dialog is gone: what it has to tell stands over the terminal.
void ShowConnectDialog() {
    session.connect_request = 0;
    RunDialog(IDD_CONNECT, ConnectDialogProc);
    SettingsChanged();
    if (!session.connect_request) return;
    SaveIfEnabled();
    SessionConnect();
}

// SPDX-License-Identifier: MIT
// The status line below the terminal and the main window's title. Both are rewritten together.
#include "ui/view/view.h"

#include "session/session_state.h"

constexpr int kStateOffline = 0;
constexpr int kStateRequest = 1;
constexpr int kStateOnline = 2;
constexpr int kStateSecure = 3;

namespace {

struct StateWords {
    LPCWSTR long_word;
    LPCWSTR short_word;  // on narrow screens, except for an SSH session that is up
};

}  // namespace

static const StateWords kStateWords[] = {
    {TEXT("offline"), TEXT("OFF")},
    {TEXT("request"), TEXT("REQ")},
    {TEXT("online"), TEXT("ON")},
    {TEXT("secure"), TEXT("ON")},
};

static bool SshSession() { return session.settings.ssh != 0 && session.banner_sent != 0; }

static int CurrentState() {
    if (!Connected()) return session.connect_pending ? kStateRequest : kStateOffline;
    return SshSession() && session.ssh_progress >= 1 ? kStateSecure : kStateOnline;
}

static LPCWSTR StateWord() {
    const int state = CurrentState();
    if (!session.narrow_screen) return kStateWords[state].long_word;
    if (state < kStateOnline || !SshSession()) return kStateWords[state].short_word;
    return session.settings.ssh_type2 == 1 ? TEXT("SSH2") : TEXT("SSH1");
}

static void MeasureStatusBar() {
    RECT rect;
    if (GetWindowRect(session.status_window, &rect)) session.status_height = rect.bottom - rect.top;
}

static void MakeStatusBar() {
    session.status_window = CreateWindowExW(
        0, STATUSCLASSNAME, TEXT(""), WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, session.client_window,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(kStatusBarId)), session.instance, nullptr);
    if (session.status_window) MeasureStatusBar();
}

void RebuildStatusBar() {
    if (session.status_window) DestroyWindow(session.status_window);
    session.status_window = nullptr;
    session.status_height = 0;
    if (!session.settings.hidestatus) MakeStatusBar();
    RecountCoveredRows();
}

void PlaceStatusBar() {
    if (!session.status_window) return;
    SendMessageW(session.status_window, WM_SIZE, 0, 0);
    MeasureStatusBar();
}

void UpdateStatus() {
    if (!session.status_window) return;
    WCHAR text[128];
    wsprintfW(text,
              session.narrow_screen ? TEXT("%s  %d,%d   %s")
                                    : TEXT("%10.10s    row: %d  column: %d    %s"),
              StateWord(), session.screen.cursor_row, session.screen.cursor_col, TEXT(" "));
    SetWindowTextW(session.status_window, text);

    WCHAR title[kHostUnits + 32];
    lstrcpyW(title, TEXT("Quill Telnet  "));
    wsprintfW(title + lstrlenW(title), TEXT("[%s]"), session.settings.host);
    SetWindowTextW(session.main_window, title);
}

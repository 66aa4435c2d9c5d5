// SPDX-License-Identifier: MIT
// The handlers of all commands, which menus, accelerators and toolbar buttons send, and the table
// that maps command ids to them. The toolbar buttons come first, then the dialog "About TELNET",
// the only one that changes no setting.
#include "ui/main_window.h"

#include "connection/connection.h"
#include "resources/resource_ids.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "settings/toolbars.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"
#include "ui/view/input.h"
#include "ui/view/view.h"

// ---------------------------------------------------------------- the toolbar's buttons

constexpr int kPixelsPerButton = 21;

static void AbortDialling() {
    DialProgress("Abort modem dialing\r\n");
    HangUpDial();
}

static bool MayCloseSession() {
    return session.settings.confirm_exit == 0 ||
           Agreed(TEXT("Do you really want to close this session"));
}

// The toolbar's connect button. While no session is up it runs the menu's command. For closing a
// session it asks if `confirm_exit` is anything but 0; the menu's command asks only if it is 1.
static void PressConnect() {
    if (session.dialling) {
        AbortDialling();
    } else if (!Connected()) {
        RunCommand(IDM_CONNECT);
    } else if (MayCloseSession()) {
        SessionClose();
    }
    session_ports.rebuild_menu_bar();
}

static void PressLarger() { RunCommand(IDM_LARGER_FONT); }
static void PressSmaller() { RunCommand(IDM_SMALLER_FONT); }

static void SwapToolbar() {
    session.toolbar = session.toolbar % kToolbars + 1;
    session_ports.rebuild_menu_bar();
}

namespace {

struct ActionRow {
    int action;
    void (*run)();
};

}  // namespace

// clang-format off
static const ActionRow kActions[] = {
    {kActionConnect,     PressConnect},
    {kActionCut,         CopySelection},
    {kActionPaste,       PasteClipboard},
    {kActionLargerFont,  PressLarger},
    {kActionSmallerFont, PressSmaller},
    {kActionSwapToolbar, SwapToolbar},
};
// clang-format on

void ShowToolbar() {
    BuildToolbar(session.command_bar, session.toolbar, session.main_width / kPixelsPerButton);
}

void RunToolbarCommand(WORD id) {
    const int action = ToolbarAction(id - IDM_TOOLBAR_FIRST, session.toolbar);
    for (const ActionRow& row : kActions)
        if (row.action == action) return row.run();
    if (action) SendVirtualKey(action);
}

// ---------------------------------------------------------------- the dialog "About TELNET"

static void CloseAbout(HWND dialog) { EndDialog(dialog, IDOK); }

static const DialogCommand kAboutCommands[] = {
    {IDOK, BN_CLICKED, CloseAbout},
    {IDCANCEL, BN_CLICKED, CloseAbout},  // Esc
    {0, 0, nullptr},
};

static INT_PTR CALLBACK AboutDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, CentreDialog, kAboutCommands);
}

static void ShowAboutDialog() { RunDialog(IDD_ABOUT, AboutDialogProc); }

// ---------------------------------------------------------------- the command table

static bool MayEnd(LPCWSTR question) {
    return !(session.settings.confirm_exit == 1 && Connected()) || Agreed(question);
}

static void ConnectOrDisconnect(WORD) {
    if (session.dialling) {
        HangUpDial();
    } else if (Connected()) {
        if (MayEnd(TEXT("Do you really want to close this session"))) SessionClose();
    } else if (session.connect_pending) {
        if (Agreed(TEXT("I am busy making a connection. Do you want to cancel the request")))
            SessionClose();
    } else {
        ShowConnectDialog();
    }
}

static void Exit(WORD) {
    if (!MayEnd(TEXT("Do you really want to close this program"))) return;
    HangUpDial();
    DestroyWindow(session.main_window);
}

static void ResetConfiguration(WORD) {
    if (!Agreed(TEXT("Do you really want to reset the configuration"))) return;
    if (!Agreed(TEXT("Are you sure!"))) return;
    ResetSettings();
    MessageBoxW(session.main_window, TEXT("Program will exit to complete the reset"),
                TEXT("Information"), MB_OK | MB_ICONINFORMATION);
    LeaveSettingsUnsaved();
    DestroyWindow(session.main_window);
}

static void Larger(WORD) {
    LargerFont();
    RecountCoveredRows();
    RepaintTerminal();
}

static void Smaller(WORD) {
    if (session.settings.fsize < 2) return;
    SmallerFont();
    RecountCoveredRows();
    RepaintTerminal();
}

static void FunctionKey(WORD id) { SendVirtualKey(VK_F1 + (id - IDM_F1)); }

template <int kVirtualKey>
static void NamedKey(WORD) {
    SendVirtualKey(kVirtualKey);
}

namespace {

struct CommandRow {
    WORD first;
    WORD last;
    void (*run)(WORD id);
};

}  // namespace

// clang-format off
static const CommandRow kCommands[] = {
    {IDM_CONNECT,       IDM_CONNECT,       ConnectOrDisconnect},
    {IDM_FONT,          IDM_FONT,          [](WORD) { ShowFontDialog(); }},
    {IDM_PROPERTIES,    IDM_PROPERTIES,    [](WORD) { ShowPropertiesSheet(); }},
    {IDM_AUTO_LOGIN,    IDM_AUTO_LOGIN,    [](WORD) { ShowAutoLoginDialog(); }},
    {IDM_EXIT,          IDM_EXIT,          Exit},
    {IDM_COPY,          IDM_COPY,          [](WORD) { CopySelection(); }},
    {IDM_PASTE,         IDM_PASTE,         [](WORD) { PasteClipboard(); }},
    {IDM_RESET,         IDM_RESET,         ResetConfiguration},
    {IDM_COLOR_BG,      IDM_COLOR_BG,      [](WORD) { ChooseBackgroundColor(); }},
    {IDM_COLOR_CURSOR,  IDM_COLOR_CURSOR,  [](WORD) { ChooseCursorColor(); }},
    {IDM_COLOR_TEXT,    IDM_COLOR_TEXT,    [](WORD) { ChooseTextColor(); }},
    {IDM_COLOR_BOLD,    IDM_COLOR_BOLD,    [](WORD) { ChooseBoldColor(); }},
    {IDM_ABOUT,         IDM_ABOUT,         [](WORD) { ShowAboutDialog(); }},
    {IDM_HELP,          IDM_HELP,          [](WORD) { ShowHelp(); }},
    {IDM_F1,            IDM_F20,           FunctionKey},
    {IDM_KEY_ENTER,     IDM_KEY_ENTER,     NamedKey<VK_RETURN>},
    {IDM_KEY_ESC,       IDM_KEY_ESC,       NamedKey<VK_ESCAPE>},
    {IDM_KEY_UP,        IDM_KEY_UP,        NamedKey<VK_UP>},
    {IDM_KEY_DOWN,      IDM_KEY_DOWN,      NamedKey<VK_DOWN>},
    {IDM_KEY_LEFT,      IDM_KEY_LEFT,      NamedKey<VK_LEFT>},
    {IDM_KEY_RIGHT,     IDM_KEY_RIGHT,     NamedKey<VK_RIGHT>},
    {IDM_KEY_PAGE_UP,   IDM_KEY_PAGE_UP,   NamedKey<VK_PRIOR>},
    {IDM_KEY_PAGE_DOWN, IDM_KEY_PAGE_DOWN, NamedKey<VK_NEXT>},
    {IDM_LARGER_FONT,   IDM_LARGER_FONT,   Larger},
    {IDM_SMALLER_FONT,  IDM_SMALLER_FONT,  Smaller},
    {IDM_TOOLBAR_FIRST, IDM_TOOLBAR_LAST,  RunToolbarCommand},
};
// clang-format on

void RunCommand(WORD id) {
    for (const CommandRow& row : kCommands)
        if (id >= row.first && id <= row.last) return row.run(id);
}

void ShowHelp() {
    WCHAR page[] = TEXT("telnet.htm");
    PROCESS_INFORMATION viewer = {};
    if (!CreateProcessW(TEXT("PegHelp.exe"), page, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        nullptr, &viewer))
        return;
    if (viewer.hProcess) CloseHandle(viewer.hProcess);
    if (viewer.hThread) CloseHandle(viewer.hThread);
}

void ExitProgram() { Exit(IDM_EXIT); }

void CloseByMinimising() {
    if (session.settings.xbox != 1) return;
    if (session.settings.confirm_exit == 1 && Connected()) {
        SetForegroundWindow(session.main_window);
        if (!Agreed(TEXT("Do you really want to close Quill Telnet"))) return;
    }
    HangUpDial();
    PostQuitMessage(0);
}

void KeepDeviceAwake() {
    if (!Connected() || session.settings.alive != 1) return;
    keybd_event(VK_F24, 0, KEYEVENTF_KEYUP | KEYEVENTF_SILENT, 0);
}

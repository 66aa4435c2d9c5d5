// The toolbar's actions.
#include "ui/toolbar_commands.h"

#include "connection/connection.h"
#include "resources/resource_ids.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "settings/toolbars.h"
#include "ui/commands.h"
#include "ui/main_window.h"
#include "ui/toolbar_buttons.h"
#include "ui/view/input.h"

namespace {

constexpr int kPixelsPerButton = 21;

void AbortDialling() {
    DialProgress("Abort modem dialing\r\n");
    HangUpDial();
}

bool MayCloseSession() {
    return session.settings.confirm_exit == 0 ||
           Agreed(TEXT("Do you really want to close this session"));
}

// Offline and while connecting it is the menu's command. Here any `confirm_exit` but 0 asks.
void ConnectOrDisconnect() {
    if (session.dialling) {
        AbortDialling();
    } else if (!Connected()) {
        RunCommand(IDM_CONNECT);
    } else if (MayCloseSession()) {
        SessionClose();
    }
    RebuildMenuBar();
}

void Larger() { RunCommand(IDM_LARGER_FONT); }
void Smaller() { RunCommand(IDM_SMALLER_FONT); }

void SwapToolbar() {
    session.toolbar = session.toolbar % kToolbars + 1;
    RebuildMenuBar();
}

struct ActionRow {
    int action;
    void (*run)();
};

// clang-format off
const ActionRow kActions[] = {
    {kActionConnect,     ConnectOrDisconnect},
    {kActionCut,         CopySelection},
    {kActionPaste,       PasteClipboard},
    {kActionLargerFont,  Larger},
    {kActionSmallerFont, Smaller},
    {kActionSwapToolbar, SwapToolbar},
};
// clang-format on

}  // namespace

void ShowToolbar() {
    BuildToolbar(session.command_bar, session.toolbar, session.main_width / kPixelsPerButton);
}

void RunToolbarCommand(WORD id) {
    const int action = ToolbarAction(id - IDM_TOOLBAR_FIRST, session.toolbar);
    for (const ActionRow& row : kActions)
        if (row.action == action) return row.run();
    if (action) SendVirtualKey(action);
}

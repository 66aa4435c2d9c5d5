// SPDX-License-Identifier: MIT
// The actions that some settings need right after a dialog changed them. All other settings take
// effect when they are next read.
#include "session/session_ports.h"
#include "session/session_state.h"
#include "settings/toolbars.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/view/view.h"

static Settings& s = session.settings;

static void MakeFont() {
    CreateTerminalFont();
    LayoutTerminal();
}

// Changing the font size one step up and one step down fits the terminal to its new space. If
// several sizes have the same cell height, or the size is at its limit, the two steps can end at
// another size. The old size is then restored.
static void RefitTerminal() {
    const DWORD size = s.fsize;
    LargerFont();
    RepaintTerminal();
    SmallerFont();
    RepaintTerminal();
    if (s.fsize == size) return;
    s.fsize = size;
    MakeFont();
}

static void ShowOrHideStatusBar() {
    RebuildStatusBar();
    RefitTerminal();
    UpdateStatus();
}

static void ShowButtons() { session_ports.rebuild_menu_bar(); }

namespace {

struct EffectRow {
    const void* setting;
    void (*apply)();
};

}  // namespace

// A setting without a row takes effect where it is read. The colours only need the repaint that
// follows every dialog (SettingsChanged).
// clang-format off
static const EffectRow kEffects[] = {
    {s.fname,         MakeFont},  // also for font_bold and font_italic
    {&s.hidestatus,   ShowOrHideStatusBar},
    {toolbar_buttons, ShowButtons},
};
// clang-format on

void ApplySetting(const void* setting) {
    for (const EffectRow& row : kEffects)
        if (row.setting == setting) return row.apply();
}

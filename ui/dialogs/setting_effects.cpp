// SPDX-License-Identifier: MIT
// What a setting needs, once a dialog has changed it, beyond being read where it is used.
#include "session/session_ports.h"
#include "session/session_state.h"
#include "settings/toolbars.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/view/view.h"

namespace {

Settings& s = session.settings;

void MakeFont() {
    CreateTerminalFont();
    LayoutTerminal();
}

// One step up and one down fit the terminal to its new room. Where sizes share a cell height the
// steps do not meet again; the size is then put back.
void RefitTerminal() {
    const DWORD size = s.fsize;
    LargerFont();
    RepaintTerminal();
    SmallerFont();
    RepaintTerminal();
    if (s.fsize == size) return;
    s.fsize = size;
    MakeFont();
}

void ShowOrHideStatusBar() {
    RebuildStatusBar();
    RefitTerminal();
    UpdateStatus();
}

void ShowButtons() { session_ports.rebuild_menu_bar(); }

struct EffectRow {
    const void* setting;
    void (*apply)();
};

// A setting without a row takes effect where it is read; the colours need the repaint alone that
// ends every dialog (SettingsChanged).
// clang-format off
const EffectRow kEffects[] = {
    {s.fname,         MakeFont},  // with font_bold and font_italic
    {&s.hidestatus,   ShowOrHideStatusBar},
    {toolbar_buttons, ShowButtons},
};
// clang-format on

}  // namespace

void ApplySetting(const void* setting) {
    for (const EffectRow& row : kEffects)
        if (row.setting == setting) return row.apply();
}

// SPDX-License-Identifier: MIT
// Adapts the terminal to the shell's input panel (the on-screen keyboard), which covers its lower
// rows.
#include "ui/view/view.h"

#include <algorithm>

#include "session/session_state.h"

static bool HorizontalBarShown() { return session.view.visible_columns < session.screen.columns; }

// Returns how many rows the panel covers. It covers the status bar and the horizontal scroll bar
// first. A partly covered row counts as covered.
static int CoveredRows(const RECT& panel) {
    if (session.view.cell_height < 1) return 0;
    int height = panel.bottom - panel.top - session.status_height;
    if (HorizontalBarShown()) height -= GetSystemMetrics(SM_CYHSCROLL);
    return std::max(height / session.view.cell_height + 1, 0);
}

static bool AskShell(SIPINFO* panel) {
    *panel = {};
    panel->cbSize = sizeof(*panel);
    return SHSipInfo(SPI_GETSIPINFO, 0, panel, 0) != 0;
}

static void PanelUp(const RECT& panel) {
    const bool changed = !session.input_panel_up;
    session.input_panel_up = 1;
    CoverRows(CoveredRows(panel));
    if (changed && Connected()) LayoutTerminal();
}

static void PanelDown() {
    if (!session.input_panel_up) return;
    session.input_panel_up = 0;
    CoverRows(0);
    LayoutTerminal();
}

void FollowInputPanel() {
    SIPINFO panel;
    if (!AskShell(&panel)) return;
    panel.fdwFlags& SIPF_ON ? PanelUp(panel.rcSipRect) : PanelDown();
}

// The count depends on whether the horizontal scroll bar is shown. MeasureView decides that, so it
// runs first.
void RecountCoveredRows() {
    SIPINFO panel;
    if (!session.input_panel_up || session.view.cell_height < 1 || !AskShell(&panel)) return;
    MeasureView();
    CoverRows(CoveredRows(panel.rcSipRect));
    LayoutTerminal();
}

// SPDX-License-Identifier: MIT
// The terminal window's view: the area of the screen that the window shows. This file handles its
// geometry, scrolling, following the cursor, repaint requests, and the shell's input panel (the
// on-screen keyboard), which covers the terminal's lower rows.
#include "ui/view/view.h"

#include <algorithm>

#include "session/session_state.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"

// ---------------------------------------------------------------- repaint requests

int ShownCursorColumn() {
    const ScreenBuffer& screen = session.screen;
    return CursorVisible() && CellExists(screen.cursor_row, screen.cursor_col) ? screen.cursor_col
                                                                               : 0;
}

// True if what the window shows of this row is out of date.
static bool RowIsStale(int row) {
    const ScreenBuffer& screen = session.screen;
    const ViewState& view = session.view;
    if (screen.row_changed[row]) return true;
    const bool moved = screen.cursor_row != view.painted_cursor_row ||
                       ShownCursorColumn() != view.painted_cursor_col;
    return moved && (row == screen.cursor_row || row == view.painted_cursor_row);
}

static bool PaintsWholeWindow() {
    const ViewState& view = session.view;
    return !view.font || view.geometry_pending || view.full_repaint || !Connected() ||
           session.screen.selection_active;
}

// `first` and `last` are rows of the window, counted from 1.
static void InvalidateRows(int first, int last) {
    const ViewState& view = session.view;
    const RECT rows = {0, (first - 1) * view.cell_height,
                       (session.screen.columns - view.view_left) * view.cell_width,
                       last * view.cell_height};
    InvalidateRect(session.client_window, &rows, FALSE);
}

static void InvalidateStaleRows() {
    const ViewState& view = session.view;
    const int rows = std::min(view.visible_rows, kScreenRows - view.view_top);
    int first = 1;
    for (int row = 1; row <= rows + 1; ++row) {
        if (row <= rows && RowIsStale(view.view_top + row)) continue;
        if (row > first) InvalidateRows(first, row - 1);
        first = row + 1;
    }
}

// InvalidateRect on a null window would invalidate all windows.
void RefreshTerminal() {
    if (!session.client_window) return;
    if (PaintsWholeWindow()) {
        InvalidateRect(session.client_window, nullptr, FALSE);
    } else {
        InvalidateStaleRows();
    }
}

void RepaintTerminal() {
    session.view.full_repaint = 1;
    MarkAllRows();
    RefreshTerminal();
}

void LayoutTerminal() {
    session.view.geometry_pending = 1;
    RepaintTerminal();
}

void BlinkTick() {
    session.view.blink_phase = !session.view.blink_phase;
    if (!AnyBlinking()) return;
    MarkBlinkingRows();
    RefreshTerminal();
}

// ---------------------------------------------------------------- geometry

static int CellsIn(int pixels, int cell, int taken, int most) {
    if (cell < 1 || pixels < 1) return 0;
    return std::clamp(pixels / cell - taken, 0, most);
}

static void FitCells(int width, int height) {
    ViewState& view = session.view;
    view.visible_rows = CellsIn(height - session.status_height, view.cell_height, view.covered_rows,
                                session.screen.rows + 1);
    view.visible_columns = CellsIn(width, view.cell_width, 0, session.screen.columns);
}

static void SetUpBar(int bar, int cells, int visible) {
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = cells - 1;
    info.nPage = static_cast<UINT>(visible);
    SetScrollInfo(session.client_window, bar, &info, TRUE);
}

// Starts from the size of the whole window, because the client size depends on the scroll bars that
// are shown at the moment. One scroll bar may take the room that makes the other one necessary, so
// the loop repeats. A bar that was needed once stays, so the loop settles.
void MeasureView() {
    ViewState& view = session.view;
    RECT window = {};
    if (!GetWindowRect(session.client_window, &window)) return;  // the next paint measures again
    int width = window.right - window.left, height = window.bottom - window.top;
    bool vertical = false, horizontal = false;
    for (int round = 0; round < 3; ++round) {
        FitCells(width - (vertical ? GetSystemMetrics(SM_CXVSCROLL) : 0),
                 height - (horizontal ? GetSystemMetrics(SM_CYHSCROLL) : 0));
        vertical |= view.visible_rows < session.screen.rows;
        horizontal |= view.visible_columns < session.screen.columns;
    }
    view.view_top = 0;
    view.view_left = 0;
    view.geometry_pending = 0;
    SetUpBar(SB_VERT, session.screen.rows, view.visible_rows);
    SetUpBar(SB_HORZ, session.screen.columns, view.visible_columns);
    PlaceStatusBar();
    if (view.covered_rows > 0 && session.settings.followcursor) FollowCursor();
}

void CoverRows(int rows) {
    session.view.covered_rows = rows;
    if (rows > 0) return;
    session.view.view_top = 0;
    session.view.view_left = 0;
}

// ---------------------------------------------------------------- scrolling

static void SetBarPosition(int bar, int position) {
    if (!session.client_window) return;
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_POS;
    info.nPos = position;
    SetScrollInfo(session.client_window, bar, &info, TRUE);
}

struct BarEvent {
    int first;     // current view_top or view_left
    int visible;   // visible_rows or visible_columns
    int position;  // of the thumb, for SB_THUMBPOSITION
};

constexpr int kLineStep = 2;  // cells

static int LineUp(const BarEvent& event) { return event.first - kLineStep; }
static int LineDown(const BarEvent& event) { return event.first + kLineStep; }
static int PageUp(const BarEvent& event) { return event.first - event.visible; }
static int PageDown(const BarEvent& event) { return event.first + event.visible; }
static int ToThumb(const BarEvent& event) { return event.position; }

struct ScrollRow {
    int code;
    int (*target)(const BarEvent&);
};

// clang-format off
static const ScrollRow kScrollCodes[] = {
    {SB_LINEUP,        LineUp},
    {SB_LINEDOWN,      LineDown},
    {SB_PAGEUP,        PageUp},
    {SB_PAGEDOWN,      PageDown},
    {SB_THUMBPOSITION, ToThumb},
};
// clang-format on

static int ScrollTarget(int code, const BarEvent& event) {
    for (const ScrollRow& row : kScrollCodes) {
        if (row.code == code) return row.target(event);
    }
    return event.first;
}

static void Scroll(int bar, int code, int position, int cells, int visible, int* first) {
    int target = ScrollTarget(code, {*first, visible, position});
    if (target == *first) return;  // no step: keep a view that is past the screen's end
    target = std::clamp(target, 0, std::max(cells - visible, 0));
    if (target == *first) return;
    *first = target;
    SetBarPosition(bar, target);
    RepaintTerminal();
}

void ScrollRows(int code, int position) {
    ViewState& view = session.view;
    Scroll(SB_VERT, code, position, session.screen.rows, view.visible_rows, &view.view_top);
}

void ScrollColumns(int code, int position) {
    ViewState& view = session.view;
    Scroll(SB_HORZ, code, position, session.screen.columns, view.visible_columns, &view.view_left);
}

// Repaints the background too. Otherwise a cell that the window shows only in part would keep its
// old contents.
static void Follow(int bar, int cursor, int visible, int* first) {
    if (cursor > *first && cursor <= *first + visible) return;
    *first = std::max(cursor - visible, 0);
    SetBarPosition(bar, *first);
    RepaintTerminal();
}

void FollowCursor() {
    ViewState& view = session.view;
    Follow(SB_VERT, session.screen.cursor_row, view.visible_rows, &view.view_top);
    Follow(SB_HORZ, session.screen.cursor_col, view.visible_columns, &view.view_left);
}

void ShowChanges() {
    if (session.settings.followcursor) FollowCursor();
    RefreshTerminal();
}

// ---------------------------------------------------------------- the input panel

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

// SPDX-License-Identifier: MIT
// Painting the terminal window. Each row that needs painting is divided into runs of cells with the
// same attributes, and each run is drawn with one call in the colours of its attributes.
#include "ui/view/view.h"

#include <cstring>

#include "session/session_state.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"

// The cursor is steady on this device, whatever the setting `blink` says. If this were true, every
// other timer tick would hide the cursor.
constexpr bool kCursorBlinks = false;

constexpr DWORD kCodeMask = 0xFF;
constexpr DWORD kFirstAscii = ' ';
constexpr DWORD kLastAscii = '~';
constexpr WCHAR kReplacement = 0xFFFD;  // the system's sign for a byte without a character

struct RunColors {
    COLORREF text;
    COLORREF background;
};

// One row, prepared for drawing.
struct PaintRow {
    int window_row;                // 1 = the window's first row
    DWORD cells[kSlotWords];       // [column]; kCellCursor is set where the cursor is
    WCHAR text[kSlotWords];        // [column]
    INT advances[kScreenColumns];  // cell_width for each character: holds glyphs to their cells
};

// ---------------------------------------------------------------- colours

static bool ShowsCursor(DWORD attributes) {
    if (kCursorBlinks && session.settings.blink && session.view.blink_phase) return false;
    return (attributes & kCellCursor) != 0;
}

static RunColors ColorsOf(DWORD attributes) {
    const Settings& settings = session.settings;
    RunColors colors = {settings.color_fg, settings.color_bg};
    if (attributes & kCellBold) colors.text = settings.color_bold;
    if ((attributes & kCellBlink) && session.view.blink_phase) colors.text = settings.color_bg;
    if (attributes & kCellReverse) colors = {colors.background, colors.text};
    if (ShowsCursor(attributes)) colors.background = settings.color_cursor;
    return colors;
}

// ---------------------------------------------------------------- runs

static bool IsGlyph(DWORD cell) {
    DWORD code = cell & kCodeMask;
    return (cell & kCellGraphic) && code >= kFirstGlyph && code <= kLastGlyph;
}

// In many fonts, comma and underscore extend beyond their cells. They are drawn by themselves.
static bool ReachesOut(DWORD cell) {
    DWORD code = cell & kCodeMask;
    return code == ',' || code == '_';
}

static bool DrawnSeparately(DWORD cell) {
    return ReachesOut(cell) || (cell & (kCellGraphic | kCellCursor));
}

// Returns the column after the run that begins at column `first`.
static int RunEnd(const PaintRow& row, int first) {
    int columns = session.screen.columns, end = first + 1;
    if (DrawnSeparately(row.cells[first])) return end;
    DWORD attributes = row.cells[first] & ~kCodeMask;
    while (end <= columns && (row.cells[end] & ~kCodeMask) == attributes &&
           !ReachesOut(row.cells[end])) {
        ++end;
    }
    return end;
}

static RECT RunRect(const PaintRow& row, int first, int end) {
    const ViewState& view = session.view;
    LONG left = (first - view.view_left - 1) * view.cell_width;
    LONG top = (row.window_row - 1) * view.cell_height;
    return {left, top, left + (end - first) * view.cell_width, top + view.cell_height};
}

static void DrawCells(HDC dc, const RECT& rect, const WCHAR* text, int count, const INT* advances) {
    ExtTextOutW(dc, rect.left, rect.top, ETO_OPAQUE | ETO_CLIPPED, &rect, text,
                static_cast<UINT>(count), advances);
}

static void UnderlineRun(HDC dc, const RECT& rect, COLORREF color) {
    LONG y = rect.bottom - session.view.underline_offset;
    DrawLine(dc, {rect.left, y}, {rect.right, y}, color);
}

static void DrawRun(HDC dc, const PaintRow& row, int first, int end) {
    DWORD cell = row.cells[first];
    RECT rect = RunRect(row, first, end);
    RunColors colors = ColorsOf(cell);
    SetTextColor(dc, colors.text);
    SetBkColor(dc, colors.background);
    if (IsGlyph(cell)) {
        DrawCells(dc, rect, TEXT(" "), 1, row.advances);
        DrawGlyph(dc, rect, static_cast<BYTE>(cell & kCodeMask), colors.text);
    } else {
        DrawCells(dc, rect, &row.text[first], end - first, row.advances);
    }
    if ((cell & kCellUnderline) && !ReachesOut(cell) && !ShowsCursor(cell)) {
        UnderlineRun(dc, rect, colors.text);
    }
}

// ---------------------------------------------------------------- rows

// Converts a byte by the ANSI code page. A byte that is only part of a character in that code page
// is shown as a question mark. ASCII's printable characters are the same in every code page.
static WCHAR TextOfByte(DWORD code) {
    if (code >= kFirstAscii && code <= kLastAscii) return static_cast<WCHAR>(code);
    const char byte = static_cast<char>(code);
    WCHAR unit = 0;
    const int units = MultiByteToWideChar(CP_ACP, 0, &byte, 1, &unit, 1);
    const bool shown = units == 1 && unit && unit != kReplacement;
    return shown || !byte ? unit : TEXT('?');
}

// Each cell is converted separately, so that a two-byte code page never combines two cells into one
// character.
static void FillText(PaintRow& row) {
    for (int col = 1; col <= kScreenColumns; ++col) {
        row.text[col] = TextOfByte(row.cells[col] & kCodeMask);
    }
}

static void DrawRow(HDC dc, int screen_row, int window_row) {
    const ScreenBuffer& screen = session.screen;
    PaintRow row = {};
    row.window_row = window_row;
    memcpy(row.cells, GetPaintRow(screen_row), sizeof(row.cells));
    if (screen_row == screen.cursor_row && ShownCursorColumn()) {
        row.cells[screen.cursor_col] |= kCellCursor;
    }
    for (INT& advance : row.advances) advance = session.view.cell_width;
    FillText(row);
    for (int first = session.view.view_left + 1; first <= screen.columns;) {
        int end = RunEnd(row, first);
        DrawRun(dc, row, first, end);
        first = end;
    }
}

static bool RowIsDue(int row) {
    const ScreenBuffer& screen = session.screen;
    return screen.row_changed[row] || screen.selection_active || row == screen.cursor_row ||
           row == session.view.painted_cursor_row;
}

static void DrawDueRows(HDC dc) {
    ViewState& view = session.view;
    for (int i = 1; i <= view.visible_rows; ++i) {
        int row = view.view_top + i;
        if (row > kScreenRows) break;
        if (RowIsDue(row)) DrawRow(dc, row, i);
        ForgetMark(row);
    }
    view.painted_cursor_row = session.screen.cursor_row;
    view.painted_cursor_col = ShownCursorColumn();
}

// ---------------------------------------------------------------- the paint

static void FillBackground(HWND window, HDC dc) {
    RECT client = {};
    GetClientRect(window, &client);
    HBRUSH brush = CreateSolidBrush(session.settings.color_bg);
    FillRect(dc, &client, brush);
    DeleteObject(brush);
}

static void HandOverSelection() {
    const ScreenBuffer& screen = session.screen;
    if (screen.selection_active) {
        SetSelection(screen.selection_start_col, screen.selection_start_row,
                     screen.selection_end_col, screen.selection_end_row);
    } else {
        SetSelection(0, 0, 0, 0);
    }
}

static void PrepareView() {
    ViewState& view = session.view;
    if (!view.font) {
        CreateTerminalFont();
        view.geometry_pending = 1;
    }
    if (!view.geometry_pending) return;
    MeasureTerminalFont();
    MeasureView();
    view.full_repaint = 1;
}

// The order matters. PrepareView comes before BeginPaint, because it may show or hide a scroll bar.
// RefreshTerminal invalidates the rows that changed since the last request: this paint clears their
// flags, so it must be allowed to draw on them. BeginPaint may send WM_ERASEBKGND, whose handler
// sets full_repaint, so full_repaint is read after it.
void PaintTerminal(HWND window) {
    PrepareView();
    RefreshTerminal();
    PAINTSTRUCT paint = {};
    HDC dc = BeginPaint(window, &paint);
    if (!dc) return;
    if (session.view.full_repaint || !Connected()) {
        FillBackground(window, dc);
        MarkAllRows();
    }
    session.view.full_repaint = 0;
    HandOverSelection();
    HGDIOBJ before = session.view.font ? SelectObject(dc, session.view.font) : nullptr;
    DrawDueRows(dc);
    if (before) SelectObject(dc, before);
    EndPaint(window, &paint);
}

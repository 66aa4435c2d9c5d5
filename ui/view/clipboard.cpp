// SPDX-License-Identifier: MIT
// Selecting text with the stylus, copy and paste.
#include "ui/view/input.h"

#include <algorithm>
#include <cstring>

#include "session/session_ports.h"
#include "terminal/screen_buffer.h"
#include "ui/view/view.h"

// ---------------------------------------------------------------- marking

static int CellNumber(int pixel, int cell_size, int first, int most) {
    if (cell_size < 1) return 1;
    return std::clamp(pixel / cell_size + first + 1, 1, most);
}

// A drag can leave the window, so both coordinates are signed.
StylusCell CellUnderStylus(LPARAM position) {
    const ViewState& view = session.view;
    const int x = static_cast<int16_t>(LOWORD(position));
    const int y = static_cast<int16_t>(HIWORD(position));
    return {CellNumber(y, view.cell_height, view.view_top, kRingLines),
            CellNumber(x, view.cell_width, view.view_left, session.screen.columns)};
}

void StartSelection(LPARAM position) {
    const StylusCell cell = CellUnderStylus(position);
    SetSelection(cell.col, cell.row, cell.col, cell.row);
    RefreshTerminal();
}

void ExtendSelection(LPARAM position) {
    const ScreenBuffer& screen = session.screen;
    const StylusCell cell = CellUnderStylus(position);
    if (cell.col == screen.selection_end_col && cell.row == screen.selection_end_row) return;
    MoveSelectionEnd(cell.col, cell.row);
    RefreshTerminal();
}

// ---------------------------------------------------------------- copy and paste

constexpr WCHAR kCarriageReturn = 13;
constexpr WCHAR kLineFeed = 10;

// Space for one copied row: at most 80 characters, CR and LF. The terminator of the text is counted
// separately.
constexpr UINT kBytesARow = (kScreenColumns + 2) * sizeof(WCHAR);

static WCHAR* CopyRow(int row, const ScreenArea& area, WCHAR* to) {
    for (int col = area.first_col; col <= area.last_col; ++col) {
        *to++ = static_cast<WCHAR>(GetCell(row, col) & 0xff);
    }
    *to++ = kCarriageReturn;
    *to++ = kLineFeed;
    return to;
}

// Other programs can read the whole block, which may be larger than the requested size. Clearing it
// keeps old heap contents from them. False if the block has no memory.
static bool CopyText(const ScreenArea& area, HLOCAL block) {
    auto* to = static_cast<WCHAR*>(LocalLock(block));
    if (!to) return false;
    memset(to, 0, LocalSize(block));
    for (int row = area.first_row; row <= area.last_row; ++row) to = CopyRow(row, area, to);
    *to = 0;
    LocalUnlock(block);
    return true;
}

// If the clipboard accepts the block, it owns the block. Otherwise the block is freed here.
static void HandToClipboard(HLOCAL block) {
    const bool open = OpenClipboard(nullptr) != 0;
    const bool taken = open && EmptyClipboard() && SetClipboardData(CF_UNICODETEXT, block);
    if (open) CloseClipboard();
    if (!taken) LocalFree(block);
}

void CopySelection() {
    if (!session.screen.selection_active) return;
    const ScreenArea area = SelectedArea();
    const auto rows = static_cast<UINT>(area.last_row - area.first_row);
    const HLOCAL block = LocalAlloc(LMEM_MOVEABLE, rows * kBytesARow + kBytesARow + sizeof(WCHAR));
    if (!block) return;
    if (!CopyText(area, block)) {
        LocalFree(block);
        return;
    }
    HandToClipboard(block);
    DropSelection();
}

// Text from another program may lack the terminator, so `units` bounds the loop.
static void SendText(const WCHAR* text, size_t units) {
    for (size_t i = 0; i < units && text[i]; ++i) {
        const BYTE byte = static_cast<BYTE>(text[i]);
        if (text[i] == kLineFeed) continue;
        SessionSend(&byte, 1, static_cast<int>(session.telnet.escape_iac));
    }
}

void PasteClipboard() {
    if (!OpenClipboard(nullptr)) return;
    const HLOCAL block = GetClipboardData(CF_UNICODETEXT);
    const auto* text = block ? static_cast<const WCHAR*>(LocalLock(block)) : nullptr;
    if (text) {
        SendText(text, LocalSize(block) / sizeof(WCHAR));
        LocalUnlock(block);
    }
    CloseClipboard();
}

// SPDX-License-Identifier: MIT
// Finds the menu number under a double tap ("hotspot") and sends it. The check is simple
// arithmetic, not a number parser: in " x5." it accepts "x5". This behaviour is intended; do not
// repair it.
#include "ui/view/input.h"

#include "session/session_ports.h"
#include "terminal/screen_buffer.h"
#include "ui/view/view.h"

constexpr int kFirstDigitColumn = 3;  // a tapped digit left of this column is no hotspot
constexpr int kTapLimit = 75;         // taps in this column or right of it are no hotspots
constexpr int kNoNumber = -1;

static bool IsDigit(BYTE c) { return c >= '0' && c <= '9'; }
static bool IsSeparator(BYTE c) { return c == '.' || c == ':'; }

static BYTE CharacterAt(int row, int col) { return static_cast<BYTE>(GetCell(row, col) & 0xff); }

struct Hotspot {
    BYTE characters[2];
    int count;  // 0: no hotspot
};

static int NumberOf(BYTE first, BYTE second) {
    int number = kNoNumber;
    if (IsDigit(first)) number = first - '0';
    if (IsDigit(second)) number = number * 10 + (second - '0');
    return number;
}

// Examines the characters after the blank at column `blank`.
static Hotspot HotspotAfter(int row, int blank) {
    const BYTE first = CharacterAt(row, blank + 1);
    const BYTE second = CharacterAt(row, blank + 2);
    const BYTE third = CharacterAt(row, blank + 3);
    if (NumberOf(first, second) == kNoNumber) return {};
    if (!IsSeparator(second) && !IsSeparator(third)) return {};
    return {{first, second}, IsSeparator(second) ? 1 : 2};
}

static Hotspot HotspotAt(int row, int col) {
    const bool on_digit = IsDigit(CharacterAt(row, col)) && col >= kFirstDigitColumn;
    const int blank = on_digit ? col - 1 : col;
    if (CharacterAt(row, blank) != ' ' || col >= kTapLimit) return {};
    return HotspotAfter(row, blank);
}

static void SendHotspot(const Hotspot& hotspot) {
    if (session.settings.bell) MessageBeep(MB_OK);
    for (int i = 0; i < hotspot.count; ++i) {
        SessionSend(&hotspot.characters[i], 1, static_cast<int>(session.telnet.escape_iac));
    }
    SendVirtualKey(VK_RETURN);
    RefreshTerminal();
}

// The first tap of the double tap starts a selection. Text from the host may have dropped it since,
// so this selects it again.
static void ShowSelection() {
    const ScreenBuffer& screen = session.screen;
    SetSelection(screen.selection_start_col, screen.selection_start_row, screen.selection_end_col,
                 screen.selection_end_row);
}

void TapHotspot(LPARAM position) {
    if (!session.settings.hotspot) {
        MessageBeep(MB_ICONEXCLAMATION);
        return;
    }
    const StylusCell cell = CellUnderStylus(position);
    ShowSelection();
    const Hotspot hotspot = HotspotAt(cell.row, cell.col);
    if (hotspot.count > 0) SendHotspot(hotspot);
}

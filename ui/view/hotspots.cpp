// SPDX-License-Identifier: MIT
// The hotspot's arithmetic. It is not a parser of numbers: what it makes of " x5." is kept as it
// is.
#include "ui/view/input.h"

#include "session/session_ports.h"
#include "terminal/screen_buffer.h"
#include "ui/view/view.h"

static const int kFirstDigitColumn = 3;  // a tapped digit left of it is no hotspot
static const int kTapLimit = 75;         // taps from this column on are none
static const int kNoNumber = -1;

static bool IsDigit(BYTE c) { return c >= '0' && c <= '9'; }
static bool IsSeparator(BYTE c) { return c == '.' || c == ':'; }

static BYTE CharacterAt(int row, int col) { return static_cast<BYTE>(GetCell(row, col) & 0xff); }

struct Hotspot {
    BYTE characters[2];
    int count;  // 0: there is none
};

static int NumberOf(BYTE first, BYTE second) {
    int number = kNoNumber;
    if (IsDigit(first)) number = first - '0';
    if (IsDigit(second)) number = number * 10 + (second - '0');
    return number;
}

// The characters after the blank.
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

// The selection that the first tap began is shown again, should the host's text have dropped it.
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

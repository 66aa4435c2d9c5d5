// The stylus selection.
#include "ui/view/input.h"

#include <algorithm>

#include "terminal/screen_buffer.h"
#include "ui/view/view.h"

static int CellNumber(int pixel, int cell_size, int first, int most) {
    if (cell_size < 1) return 1;
    return std::clamp(pixel / cell_size + first + 1, 1, most);
}

// A drag may leave the window, so that the position's halves are signed.
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

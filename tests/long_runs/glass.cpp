// SPDX-License-Identifier: MIT
// The glass against the cells: each cell's colours are worked out here once more, from the cells
// and the settings, and looked for in the picture of the window.
#include <gtest/gtest.h>
#include <QBackingStore>
#include <sstream>

#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "terminal/screen_buffer.h"
#include "tests/long_runs/checks.h"
#include "tests/support/person.h"
#include "ui/view/view.h"

static QRgb Rgb(COLORREF color) {
    return qRgb(static_cast<int>(color & 0xff), static_cast<int>(color >> 8 & 0xff),
                static_cast<int>(color >> 16 & 0xff));
}

struct CellColors {
    QRgb text, background;
};

static CellColors ColorsOfCell(DWORD cell) {
    const Settings& settings = session.settings;
    CellColors colors = {Rgb(settings.color_fg), Rgb(settings.color_bg)};
    if (cell & kCellBold) colors.text = Rgb(settings.color_bold);
    if (cell & kCellBlink && session.view.blink_phase) colors.text = Rgb(settings.color_bg);
    if (cell & kCellReverse) std::swap(colors.text, colors.background);
    return colors;
}

// In smaller cells, a letter may have no pixel of its own, and reach further than its neighbour.
static constexpr int kLeastWidth = 3;
static constexpr int kLeastHeight = 6;

static bool CellsAreJudged() {
    return session.view.cell_width >= kLeastWidth && session.view.cell_height >= kLeastHeight;
}

static bool IsLetter(DWORD cell) {
    const int code = static_cast<int>(cell & 0xff);
    return !(cell & kCellGraphic) && code < 128 && std::isalnum(code);
}

static bool IsEmpty(DWORD cell) { return (cell & 0xff) == ' ' && !(cell & kCellGraphic); }

// In a narrow font, letters reach into the cells beside them.
static bool IsAmongEmpty(const DWORD* cell) {
    return IsEmpty(cell[-1]) && IsEmpty(cell[0]) && IsEmpty(cell[1]);
}

// Of the middle of the cell, where no neighbour reaches: whether every pixel is of the background.
static bool AllOf(const QImage& picture, const QRect& middle, QRgb color) {
    for (int y = middle.top(); y <= middle.bottom(); ++y)
        for (int x = middle.left(); x <= middle.right(); ++x)
            if ((picture.pixel(x, y) & RGB_MASK) != (color & RGB_MASK)) return false;
    return true;
}

static QRect MiddleOfCell(int row, int col) {
    const ViewState& view = session.view;
    const int left = (col - view.view_left - 1) * view.cell_width;
    const int top = (row - view.view_top - 1) * view.cell_height;
    const int side = view.cell_width / 4;
    return {left + side, top, view.cell_width - 2 * side, view.cell_height};
}

// A letter leaves the background somewhere, and shows it elsewhere; an empty cell is all
// background.
static bool IsShown(const QImage& picture, const DWORD* cell, int row, int col) {
    const CellColors colors = ColorsOfCell(*cell);
    const QRect middle = MiddleOfCell(row, col);
    if (*cell & kCellUnderline || !picture.rect().contains(middle)) return true;
    if (IsAmongEmpty(cell)) return AllOf(picture, middle, colors.background);
    if (!IsLetter(*cell) || colors.text == colors.background) return true;
    return !AllOf(picture, middle, colors.background);
}

static std::string Describe(DWORD cell, int row, int col) {
    const ViewState& view = session.view;
    std::ostringstream text;
    text << "row " << row << ", column " << col << ", cell " << std::hex << cell << std::dec
         << ", view from " << view.view_top << "," << view.view_left << " cells of "
         << view.cell_width << "x" << view.cell_height;
    return text.str();
}

static std::string CellNotShown(const QImage& picture) {
    const ScreenBuffer& screen = session.screen;
    const ViewState& view = session.view;
    if (!CellsAreJudged()) return "";
    for (int i = 1; i <= view.visible_rows && view.view_top + i <= screen.rows; ++i) {
        const int row = view.view_top + i;
        const DWORD* cells = GetPaintRow(row);
        for (int col = view.view_left + 2; col < view.view_left + view.visible_columns; ++col) {
            const bool cursor = row == screen.cursor_row && col == screen.cursor_col;
            if (!cursor && !IsShown(picture, &cells[col], row, col))
                return Describe(cells[col], row, col);
        }
    }
    return "";
}

// What the screen's store holds of the widget. QWidget::grab would paint the widget anew.
static QImage Shown(QWidget* glass) {
    const auto* store = static_cast<QImage*>(ReadyStore(DeviceScreen())->paintDevice());
    return store->copy(QRect(glass->mapTo(DeviceScreen(), QPoint()), glass->size()));
}

void ExpectPictureOfGrid() {
    OnWindowThread([] {
        QWidget* glass = FindWindowRecord(session.client_window)->widget;
        UpdateWindow(session.client_window);
        const QImage shown = Shown(glass);
        EXPECT_EQ("", CellNotShown(shown)) << "is not what the glass shows";
        RepaintTerminal();
        UpdateWindow(session.client_window);
        EXPECT_TRUE(shown == Shown(glass)) << "the glass shows something else";
    });
}

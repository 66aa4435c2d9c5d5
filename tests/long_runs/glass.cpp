// SPDX-License-Identifier: MIT
// The glass against the cells: each cell's colours are worked out here once more, from the cells
// and the settings, and looked for in the picture of the window.
#include <gtest/gtest.h>
#include <QBackingStore>
#include <sstream>
#include <vector>

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

static QRect RectOfCell(int row, int col) {
    const ViewState& view = session.view;
    const int left = (col - view.view_left - 1) * view.cell_width;
    const int top = (row - view.view_top - 1) * view.cell_height;
    return {left, top, view.cell_width, view.cell_height};
}

static QRect MiddleOf(const QRect& cell) {
    const int side = cell.width() / 4;
    return cell.adjusted(side, 0, -side, 0);
}

static int Channel(QRgb color, int which) { return static_cast<int>(color >> 8 * which & 0xff); }

// The edges of letters are smooth: each pixel is background, text or something between. The toolkit
// mixes each channel by itself, darker ones a little more.
static bool IsMix(QRgb pixel, const CellColors& colors) {
    constexpr int kRounding = 3, kLeastRange = 64;
    constexpr double kApart = 0.25;
    double least = 1, most = 0;  // parts of text
    for (int i = 0; i < 3; ++i) {
        const int from = Channel(colors.background, i), to = Channel(colors.text, i);
        const int at = Channel(pixel, i);
        if (at < std::min(from, to) - kRounding || at > std::max(from, to) + kRounding)
            return false;
        if (std::abs(to - from) < kLeastRange) continue;
        const double part = 1.0 * (at - from) / (to - from);
        least = std::min(least, part);
        most = std::max(most, part);
    }
    return most - least <= kApart;
}

static bool AllMixed(const QImage& picture, const QRect& cell, const CellColors& colors) {
    for (int y = cell.top(); y <= cell.bottom(); ++y)
        for (int x = cell.left(); x <= cell.right(); ++x)
            if (!IsMix(picture.pixel(x, y), colors)) return false;
    return true;
}

// The lines that a cell has whatever its font: the underline, and two of the graphic characters.
static std::vector<QRect> LinesOf(DWORD cell, const QRect& rect) {
    const DWORD code = cell & 0xff;
    const int offset = session.view.underline_offset;
    const int center_x = (rect.left() + rect.left() + rect.width()) / 2;
    const int center_y = (rect.top() + rect.top() + rect.height()) / 2;
    std::vector<QRect> lines;
    const bool underlined = cell & kCellUnderline && code != ',' && code != '_';
    if (underlined && offset > 0 && offset <= rect.height())
        lines.push_back({rect.left(), rect.top() + rect.height() - offset, rect.width(), 1});
    if (cell & kCellGraphic && code == 'q')
        lines.push_back({rect.left(), center_y, rect.width(), 1});
    if (cell & kCellGraphic && code == 'x')
        lines.push_back({center_x, rect.top(), 1, rect.height()});
    return lines;
}

// A cell has its two colours only; a letter leaves the background somewhere, and an empty cell is
// all background.
static bool IsShown(const QImage& picture, const DWORD* cell, int row, int col) {
    const CellColors colors = ColorsOfCell(*cell);
    const QRect whole = RectOfCell(row, col), middle = MiddleOf(whole);
    if (!picture.rect().contains(whole)) return true;
    if (!AllMixed(picture, whole, colors)) return false;
    for (const QRect& line : LinesOf(*cell, whole))
        if (!AllOf(picture, line, colors.text)) return false;
    if (*cell & kCellUnderline) return true;
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

// The smallest rectangle around the pixels that differ.
static QRect Difference(const QImage& one, const QImage& other) {
    QRect box;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            if (one.pixel(x, y) != other.pixel(x, y)) box |= QRect(x, y, 1, 1);
    return box;
}

// The cells that the rectangle touches, the first ones if there are many.
static std::string CellsIn(const QRect& box) {
    constexpr int kMost = 12;
    const ViewState& view = session.view;
    if (view.cell_width < 1 || view.cell_height < 1) return "";
    std::string text;
    int told = 0;
    for (int i = box.top() / view.cell_height + 1; i <= box.bottom() / view.cell_height + 1; ++i) {
        const int row = view.view_top + i;
        if (row > session.screen.rows) break;
        const DWORD* cells = GetPaintRow(row);
        const int from = view.view_left + box.left() / view.cell_width + 1;
        const int to = view.view_left + box.right() / view.cell_width + 1;
        for (int col = from; col <= std::min(to, kScreenColumns) && told < kMost; ++col, ++told)
            text += "\n  " + Describe(cells[col], row, col);
    }
    return text;
}

static std::string DescribeView() {
    const ViewState& view = session.view;
    const ScreenBuffer& screen = session.screen;
    std::ostringstream text;
    text << "; " << view.visible_rows << " by " << view.visible_columns << " cells of "
         << view.cell_width << "x" << view.cell_height << " seen, cursor " << screen.cursor_row
         << "," << screen.cursor_col << ", painted " << view.painted_cursor_row << ","
         << view.painted_cursor_col << ", blink phase " << view.blink_phase << ", selection "
         << screen.selection_active << ", font "
         << QString::fromUtf16(session.settings.fname).toStdString() << " "
         << session.settings.fsize << (session.settings.font_bold ? " bold" : "")
         << (session.settings.font_italic ? " italic" : "");
    return text.str();
}

static void KeepPictures(const QImage& shown, const QImage& whole) {
    const char* folder = std::getenv("QUILL_SOAK_PICTURES");
    if (!folder) return;
    shown.save(QString(folder) + "/shown.png");
    whole.save(QString(folder) + "/whole.png");
}

void ExpectPictureOfGrid() {
    OnWindowThread([] {
        const Window* window = FindWindowRecord(session.client_window);
        UpdateWindow(session.client_window);
        const bool due = !window->invalid.isEmpty();
        const QImage shown = Shown(window->widget);
        EXPECT_EQ("", CellNotShown(shown)) << "is not what the glass shows";
        RepaintTerminal();
        UpdateWindow(session.client_window);
        const QImage whole = Shown(window->widget);
        if (shown == whole) return;
        const QRect box = Difference(shown, whole);
        KeepPictures(shown, whole);
        ADD_FAILURE() << "the glass of " << shown.width() << "x" << shown.height()
                      << " shows something else at " << box.x() << "," << box.y() << ", "
                      << box.width() << "x" << box.height() << (due ? ", and a paint is due" : "")
                      << DescribeView() << CellsIn(box);
    });
}

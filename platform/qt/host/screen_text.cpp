// SPDX-License-Identifier: MIT
// Records the text that is visible on each window, from what is drawn.
#include "platform/qt/host/host.h"

#include <map>

namespace {

struct TextPiece {
    int right;
    int advance;
    std::u16string text;
};
using TextRow = std::map<int, TextPiece>;  // by x

}  // namespace

static std::map<HWND, std::map<int, TextRow>> g_text;  // by window and y
static int g_paints = 0;

static void RemovePieces(TextRow& row, int left, int right) {
    std::erase_if(
        row, [&](const auto& piece) { return piece.first < right && piece.second.right > left; });
}

static QString RowText(const TextRow& row) {
    QString line;
    for (const auto& [x, piece] : row) {
        const int column = piece.advance > 0 ? x / piece.advance : 0;
        line = line.leftJustified(column) + QString::fromStdU16String(piece.text);
    }
    while (line.endsWith(' ')) line.chop(1);
    return line;
}

static void KeepText(const TextDrawing& drawn) {
    TextRow& row = g_text[drawn.window][drawn.y];
    RemovePieces(row, drawn.area.left, drawn.area.right);
    row[drawn.x] = {drawn.area.right, drawn.advance, std::u16string(drawn.text, drawn.count)};
}

static void DropFilled(HWND window, const RECT& area, COLORREF) {
    for (auto& [y, row] : g_text[window])
        if (y >= area.top && y < area.bottom) RemovePieces(row, area.left, area.right);
}

static void CountPaint(HWND) { ++g_paints; }

void KeepScreenText() {
    g_text.clear();
    g_paints = 0;
    drawing_observer = DrawingObserver();
    drawing_observer.text = KeepText;
    drawing_observer.fill = DropFilled;
    drawing_observer.paint = CountPaint;
}

void ForgetScreenText() {
    drawing_observer = DrawingObserver();
    g_text.clear();
}

QStringList ScreenText(HWND window) {
    QStringList lines;
    for (const auto& [y, row] : g_text[window]) lines << RowText(row);
    return lines;
}

int PaintsKept() { return g_paints; }

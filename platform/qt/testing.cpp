// Records of what the program drew.
#include "testing.h"

#include <map>

namespace {

struct TextPiece {
    int right;
    int advance;
    std::u16string text;
};

bool g_recording = false;
bool g_keeping = false;
std::vector<DrawCall> g_calls;
std::map<HWND, std::map<int, std::map<int, TextPiece>>> g_text;  // window, y, x
int g_paints = 0;
std::u16string g_refused;

void RemovePieces(std::map<int, TextPiece>& row, int left, int right) {
    std::erase_if(
        row, [&](const auto& piece) { return piece.first < right && piece.second.right > left; });
}

QString RowText(const std::map<int, TextPiece>& row) {
    QString line;
    for (const auto& [x, piece] : row) {
        const int column = piece.advance > 0 ? x / piece.advance : 0;
        line = line.leftJustified(column) + QString::fromStdU16String(piece.text);
    }
    while (line.endsWith(' ')) line.chop(1);
    return line;
}

}  // namespace

void StartRecording() {
    g_calls.clear();
    g_recording = true;
}

void StopRecording() { g_recording = false; }

std::vector<DrawCall> RecordedCalls() { return g_calls; }

int PaintCount() { return g_paints; }

void KeepScreenText(bool keep) { g_keeping = keep; }

QStringList ScreenText(HWND window) {
    QStringList lines;
    for (const auto& [y, row] : g_text[window]) lines << RowText(row);
    return lines;
}

void RecordText(HWND window, int x, int y, const RECT* rect, const std::u16string& text,
                COLORREF color, COLORREF background, int advance) {
    const RECT area = rect ? *rect : RECT{x, y, x, y};
    if (g_recording)
        g_calls.push_back({DrawCall::Kind::kText, window, area, text, color, background});
    if (!g_keeping) return;
    auto& row = g_text[window][y];
    RemovePieces(row, area.left, area.right);
    row[x] = {area.right, advance, text};
}

void RecordFill(HWND window, const RECT& rect, COLORREF color) {
    if (g_recording) g_calls.push_back({DrawCall::Kind::kFill, window, rect, {}, color, color});
    if (!g_keeping) return;
    for (auto& [y, row] : g_text[window])
        if (y >= rect.top && y < rect.bottom) RemovePieces(row, rect.left, rect.right);
}

void RecordLine(HWND window, POINT from, POINT to, COLORREF color) {
    if (g_recording)
        g_calls.push_back(
            {DrawCall::Kind::kLine, window, RECT{from.x, from.y, to.x, to.y}, {}, color, color});
}

void RecordPaint(HWND) { g_paints++; }

void RefuseWindows(LPCWSTR class_name) { g_refused = class_name ? class_name : u""; }

bool WindowRefused(LPCWSTR class_name) { return !g_refused.empty() && g_refused == class_name; }

void ForgetRecords() {
    g_refused.clear();
    ForgetDialogs();
    TakeLibrariesAway(false);
    g_calls.clear();
    g_text.clear();
    g_recording = false;
    g_paints = 0;
}

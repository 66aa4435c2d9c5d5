// SPDX-License-Identifier: MIT
// Records the drawing calls, paints and frames of the program.
#include "tests/support/drawn.h"

#include "platform/qt/window/window.h"

namespace {

DrawingObserver g_before;
bool g_recording = false;
std::vector<DrawCall> g_calls;
int g_paints = 0;
int g_frames = 0;

void Record(const DrawCall& call) {
    if (g_recording) g_calls.push_back(call);
}

void SeeText(const TextDrawing& drawn) {
    if (g_before.text) g_before.text(drawn);
    Record({DrawCall::Kind::kText, drawn.window, drawn.area,
            std::u16string(drawn.text, drawn.count), drawn.color, drawn.background});
}

void SeeFill(HWND window, const RECT& area, COLORREF color) {
    if (g_before.fill) g_before.fill(window, area, color);
    Record({DrawCall::Kind::kFill, window, area, {}, color, color});
}

void SeeLine(HWND window, POINT from, POINT to, COLORREF color) {
    const RECT ends = {from.x, from.y, to.x, to.y};
    Record({DrawCall::Kind::kLine, window, ends, {}, color, color});
}

void SeePaint(HWND window) {
    if (g_before.paint) g_before.paint(window);
    g_paints++;
    Record({.kind = DrawCall::Kind::kPaint, .window = window});
}

void SeeFrame() {
    g_frames++;
    Record({.kind = DrawCall::Kind::kFrame});
}

}  // namespace

void WatchDrawing() {
    g_before = drawing_observer;
    g_recording = false;
    g_calls.clear();
    g_paints = g_frames = 0;
    drawing_observer = {SeeText, SeeFill, SeeLine, SeePaint, SeeFrame};
}

void StartRecording() {
    g_calls.clear();
    g_recording = true;
}

void StopRecording() { g_recording = false; }

const std::vector<DrawCall>& RecordedCalls() { return g_calls; }

int PaintCount() { return g_paints; }

int FrameCount() { return g_frames; }

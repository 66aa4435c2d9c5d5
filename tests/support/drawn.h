// SPDX-License-Identifier: MIT
// What the program drew: its drawing calls, paints and frames. Window thread only.
#ifndef QUILL_TESTS_SUPPORT_DRAWN_H
#define QUILL_TESTS_SUPPORT_DRAWN_H

#include <string>
#include <vector>

#include "windows_ce.h"

struct DrawCall {
    enum class Kind { kText, kFill, kLine, kPaint, kFrame } kind;
    HWND window = nullptr;
    RECT rect = {};  // the area that the call fills, or the two ends of a line
    std::u16string text = {};
    COLORREF color = 0;  // of the text or the line
    COLORREF background = 0;
};

// Starts to observe the platform's drawing; an earlier observer is still called. Resets the counts.
void WatchDrawing();

void StartRecording();  // discards earlier records
void StopRecording();
const std::vector<DrawCall>& RecordedCalls();
int PaintCount();  // WM_PAINT messages since WatchDrawing
int FrameCount();

#endif

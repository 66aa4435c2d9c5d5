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
    RECT rect = {};  // filled by the call; a line's two ends
    std::u16string text = {};
    COLORREF color = 0;  // of text or line
    COLORREF background = 0;
};

// Looks on, and so does whoever looked on before. The counts begin anew.
void WatchDrawing();

void StartRecording();  // forgets what was recorded
void StopRecording();
const std::vector<DrawCall>& RecordedCalls();
int PaintCount();  // WM_PAINTs since WatchDrawing
int FrameCount();

#endif
